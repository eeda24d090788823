#include "platform/SettingsStoreFactory.h"

#include "platform/posix/IniFileStore.h"

namespace Tarni::Platform
{
std::unique_ptr<ISettingsStore> SettingsStoreFactory::OpenDriverStore(const DriverStoreLocation& in_location)
{
    return std::make_unique<IniFileStore>(in_location.iniPath, in_location.iniSection);
}
}  // namespace Tarni::Platform
