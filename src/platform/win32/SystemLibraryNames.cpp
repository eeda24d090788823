#include "platform/SystemLibraryNames.h"

namespace Tarni::Platform
{
tarni_wstring SystemLibraryNames::CryptoLibrary()
{
    return u"libcrypto-3-x64.dll";
}

tarni_wstring SystemLibraryNames::OdbcInstallerLibrary()
{
    return u"odbccp32.dll";
}

bool SystemLibraryNames::OdbcInstallerTakesUtf8()
{
    return false;
}
}  // namespace Tarni::Platform
