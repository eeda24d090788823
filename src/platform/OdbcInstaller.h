#pragma once
// The ODBC installer library ("odbccp32.dll" on Windows, unixODBC's
// "libodbcinst.so.2" on Linux), looked up by name at run time. A machine
// without a driver manager still runs the program: the calls then report
// that they could not be made.
#include <optional>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class OdbcInstaller
{
public:
    /// Values of SQLGetConfigMode.
    static constexpr unsigned short CONFIG_MODE_BOTH_DSN = 0;
    static constexpr unsigned short CONFIG_MODE_USER_DSN = 1;
    static constexpr unsigned short CONFIG_MODE_SYSTEM_DSN = 2;

    /// SQLGetConfigMode: the installer's configuration mode, or nothing when
    /// the library or the function is missing or the call fails.
    static std::optional<unsigned short> GetConfigMode();

    /// The library name to load instead of the platform's; empty restores
    /// it. Drops the loaded library. Lets a test stand in for a machine
    /// without a driver manager.
    static void SetLibraryName(tarni_wstring_view in_libraryName);
};
}  // namespace Tarni::Platform
