#include "platform/SettingsStoreFactory.h"

#include "platform/win32/RegistryStore.h"

namespace Tarni::Platform
{
std::unique_ptr<ISettingsStore> SettingsStoreFactory::OpenDriverStore(const DriverStoreLocation& in_location)
{
    return std::make_unique<RegistryStore>(HKEY_LOCAL_MACHINE, in_location.registryPath);
}
}  // namespace Tarni::Platform
