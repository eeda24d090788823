#pragma once
#include <optional>

#include "support/TarniString.h"

namespace Tarni::Platform
{
/// What the process knows about its surroundings: environment variables, the
/// folder of the running executable and the user's home folder.
class ProcessEnvironment
{
public:
    /// The variable's value, or nothing when it is not set.
    static std::optional<tarni_wstring> GetVariable(tarni_wstring_view in_name);
    /// Folder of the running executable, with a trailing separator.
    static tarni_wstring GetExecutableDirectory();
    /// The user's home folder (HOME, else the password database; USERPROFILE on Windows).
    static tarni_wstring GetHomeDirectory();
    /// The path separator of the platform.
    static char16_t PathSeparator();
};
}  // namespace Tarni::Platform
