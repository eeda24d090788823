#pragma once
#include "driversupport/ConfigurationMap.h"

namespace Tarni::DriverSupport
{
/// A part of a configuration that owns some of its keys (credentials, SSL,
/// proxy, ...). Each component adds its defaults, reconciles the map after a
/// load and turns its edited state into map entries before a save (this is
/// where secrets are protected).
class DSConfigurationComponent
{
public:
    virtual ~DSConfigurationComponent() = default;
    virtual void GetDefaultDriverProperties(ConfigurationMap& io_defaults) const = 0;
    virtual void InitializeAfterLoad() = 0;
    virtual void FinalizeBeforeSave() = 0;
};
}  // namespace Tarni::DriverSupport
