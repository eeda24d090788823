#pragma once
#include <memory>

#include "platform/DriverStoreLocation.h"
#include "platform/ISettingsStore.h"

namespace Tarni::Platform
{
/// Opens the platform's driver-wide store: the registry key on Windows, the
/// INI file on Linux.
class SettingsStoreFactory
{
public:
    static std::unique_ptr<ISettingsStore> OpenDriverStore(const DriverStoreLocation& in_location);
};
}  // namespace Tarni::Platform
