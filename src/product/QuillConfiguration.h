#pragma once
#include "driversupport/DSDSNConfiguration.h"

namespace Tarni::SparkODBC
{
/// The product's configuration: a data-source configuration with the Spark
/// driver's keys and defaults.
class QuillConfiguration : public DriverSupport::DSDSNConfiguration
{
public:
    QuillConfiguration(tarni_wstring in_dsnName, unsigned in_configType, Support::ILogger* in_logger);

    /// The driver's defaults in their fixed order, then those of the
    /// credential, SSL and proxy components and the further components.
    DriverSupport::ConfigurationMap GetDefaultDriverProperties() const override;

    /// The default properties as an ordered list (the order they are built
    /// in), for documentation and tests of that order.
    static std::vector<std::pair<tarni_wstring, tarni_wstring>> GetOrderedDriverDefaults();
};
}  // namespace Tarni::SparkODBC
