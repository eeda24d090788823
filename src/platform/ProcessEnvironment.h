#pragma once
#include <optional>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Platform
{
/// What the process knows about its surroundings: environment variables, the
/// folder of the running executable and the user's home folder.
class ProcessEnvironment
{
public:
    /// The variable's value, or nothing when it is not set.
    static std::optional<tarni_wstring> GetVariable(tarni_wstring_view in_name);
    /// Sets the variable for this process and the processes it starts;
    /// no value removes it.
    static void SetVariable(tarni_wstring_view in_name, const std::optional<tarni_wstring>& in_value);
    /// Folder of the running executable, with a trailing separator.
    static tarni_wstring GetExecutableDirectory();
    /// Folder of the module (program or shared library) that holds this
    /// code, with a trailing separator: a library loaded into another
    /// program finds its own files there.
    static tarni_wstring GetModuleDirectory();
    /// Module handle of the module that holds this code (HMODULE on Windows,
    /// the dlopen handle's address on Linux).
    static void* GetOwnModule();
    /// The user's home folder (HOME, else the password database; USERPROFILE on Windows).
    static tarni_wstring GetHomeDirectory();
    /// The path separator of the platform.
    static char16_t PathSeparator();
    /// The program's arguments (without the program name), as UTF-16. On
    /// Windows they come from the wide command line; elsewhere from argv,
    /// whose bytes must be UTF-8 (else SupportException "InvalidUtf8Err").
    static std::vector<tarni_wstring> GetArguments(int in_argc, char** in_argv);
    /// Makes the console show UTF-8 output (the Windows code page) and a
    /// write to a closed pipe an error the program sees (POSIX) rather than
    /// the end of the process.
    static void PrepareConsole();
    /// True where the driver-wide store is an INI file (Linux), false where it
    /// is the registry (Windows).
    static bool UsesIniStore();
};
}  // namespace Tarni::Platform
