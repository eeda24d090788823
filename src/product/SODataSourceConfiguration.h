#pragma once
// The configuration of one data source of the driver: a QuillConfiguration
// loaded from and saved to the installer's data-source store, in the user or
// system mode the installer is in. The data source keeps its own server-side
// properties and HTTP headers as entries of its section.
#include "product/QuillConfiguration.h"

namespace Tarni::SparkODBC
{
class SODataSourceConfiguration : public QuillConfiguration
{
public:
    /// in_systemDsn: a system data source (configuration type 2: a secret
    /// is kept only when the user picks a scope), else a user data source
    /// (type 1: kept for the current user by default).
    SODataSourceConfiguration(tarni_wstring in_dsnName, bool in_systemDsn, Support::ILogger* in_logger);

    using QuillConfiguration::Load;
    /// An import: the pairs replace the data source's settings (see the
    /// base), and its groups then hold exactly the prefixed pairs.
    void Load(const DriverSupport::ConfigurationMap& in_values) override;

    /// Sets one setting, keeping the map and the data source's groups in step.
    void SetSetting(tarni_wstring_view in_key, tarni_wstring_view in_value);

    /// Removes one setting: a prefixed key leaves its group; an ordinary key
    /// returns to what the data source inherits (and leaves its section).
    void UnsetSetting(tarni_wstring_view in_key);

protected:
    bool IsGroupKey(tarni_wstring_view in_key) const override;
    /// Every key the product describes, beside those of the base.
    std::vector<tarni_wstring> GetKnownDataSourceKeys() const override;
    void OnDataSourceLoaded(const std::vector<Platform::StoredValue>& in_section) override;
    void OnDataSourceSaving() override;
};
}  // namespace Tarni::SparkODBC
