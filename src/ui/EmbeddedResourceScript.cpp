// The program's own resource script, embedded as text at build time (see
// cmake/EmbedResourceScript.cmake) and read once on first use.
#include <mutex>

#include "ui/ResourceScript.h"

extern const char* const g_tarniResourceScriptText;
extern const char* const g_tarniResourceHeaderText;

namespace Tarni::Platform
{
const ResourceScript& ResourceScript::Embedded()
{
    static const ResourceScript script =
        Parse(g_tarniResourceScriptText, g_tarniResourceHeaderText, "TarniSparkDriverConfig.rc", "resource.h");
    return script;
}
}  // namespace Tarni::Platform
