#include "platform/SystemLibraryNames.h"

namespace Tarni::Platform
{
tarni_wstring SystemLibraryNames::CryptoLibrary()
{
    return u"libcrypto.so.3";
}

tarni_wstring SystemLibraryNames::OdbcInstallerLibrary()
{
    // unixODBC's installer library; the driver manager installs it.
    return u"libodbcinst.so.2";
}

bool SystemLibraryNames::OdbcInstallerTakesUtf8()
{
    return true;
}
}  // namespace Tarni::Platform
