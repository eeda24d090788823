#pragma once
#include "core/TarniString.h"

namespace Tarni::Platform
{
/// Where the driver-wide settings live on each platform; each platform's
/// store factory takes the part that concerns it.
struct DriverStoreLocation
{
    /// Key under HKEY_LOCAL_MACHINE, e.g. SOFTWARE\Tarni\Tarni Spark ODBC Driver\Driver.
    tarni_wstring registryPath;
    /// The INI file and its section ("Driver").
    tarni_wstring iniPath;
    tarni_wstring iniSection = u"Driver";
};
}  // namespace Tarni::Platform
