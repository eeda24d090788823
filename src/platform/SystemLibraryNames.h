#pragma once
// File names of the shared libraries that the program loads at run time, as
// each platform names them.
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
};
}  // namespace Tarni::Platform
