#pragma once
// File names of the shared libraries that the program loads at run time, as
// each platform names them, and how each platform's libraries take text.
#include "core/TarniString.h"

namespace Tarni::Platform
{
class SystemLibraryNames
{
public:
    /// OpenSSL 3 libcrypto: "libcrypto.so.3" / "libcrypto-3-x64.dll".
    static tarni_wstring CryptoLibrary();
    /// The ODBC installer library: "libodbcinst.so.2" / "odbccp32.dll".
    static tarni_wstring OdbcInstallerLibrary();
    /// Whether the installer's text is passed to its narrow entry points as
    /// UTF-8 rather than to its wide ones as UTF-16. unixODBC's wide entry
    /// points keep only the low byte of each UTF-16 unit, so a value with
    /// a character beyond ASCII would not survive them; its narrow ones store
    /// the bytes as given. Windows converts its narrow ones to the ANSI code
    /// page, so there the wide ones are the faithful path.
    static bool OdbcInstallerTakesUtf8();
};
}  // namespace Tarni::Platform
