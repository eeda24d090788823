#include "platform/PlatformInitialization.h"

namespace Tarni::Platform
{
// There is no component model here: the terminal host's choosers are its own.
bool PlatformInitialization::InitializePlatform(unsigned, unsigned) { return true; }

void PlatformInitialization::UninitializePlatform() {}
}  // namespace Tarni::Platform
