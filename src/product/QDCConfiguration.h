#pragma once
// The driver-wide configuration of this tool: a QuillConfiguration without a
// data source name (mode 2) that loads the values stored under the driver key
// over the defaults and writes the map back on save, together with the two
// prefixed property groups ("SSP_" and "http.header.").
#include <vector>

#include "driversupport/DSServerSidePropertyGroup.h"
#include "driversupport/DSStoreChange.h"
#include "driversupport/DSStoreChangeRecorder.h"
#include "product/QuillConfiguration.h"

namespace Tarni::SparkODBC
{
class QDCConfiguration : public QuillConfiguration
{
public:
    QDCConfiguration(DriverSupport::DSServerSidePropertyGroup& io_serverSideProperties,
                     DriverSupport::DSPrefixedPropertyGroup& io_httpHeaders, Support::ILogger* in_logger,
                     Platform::ISettingsStore& io_store);

    /// Defaults, then the stored driver-wide values, then the groups, the
    /// logging properties and the components' post-load step.
    void Load();

    /// An import: the built-in defaults (not the stored values, which are
    /// what the import replaces), then the pairs, each through SetSetting so
    /// that the prefixed groups and their switches hold exactly what the
    /// pairs say; then the components' post-load step. The save deletes the
    /// group entries the pairs no longer name.
    void Load(const DriverSupport::ConfigurationMap& in_values) override;

    /// Finalises the components (secrets are protected here), writes every
    /// driver-wide key of the map, the logging properties and the groups,
    /// except the values the store already holds: a save that changes
    /// nothing writes nothing. A secret whose stored protected form recovers
    /// to the same secret in the same scope keeps that form. On stores that
    /// can, the whole save is applied at once or not at all. Returns the
    /// stored values it changed.
    std::vector<DriverSupport::DSStoreChange> Save();

    /// What Save would change in the store now, without writing anything;
    /// the configuration stays as it is.
    std::vector<DriverSupport::DSStoreChange> PlanSave();

    DriverSupport::DSServerSidePropertyGroup& GetServerSideProperties() { return m_serverSideProperties; }
    DriverSupport::DSPrefixedPropertyGroup& GetHttpHeaders() { return m_httpHeaders; }
    Platform::ISettingsStore& GetStore() { return m_store; }
    DriverSupport::DSServerSidePropertyGroup& GetServerSidePropertyGroup() override { return m_serverSideProperties; }
    DriverSupport::DSPrefixedPropertyGroup& GetHttpHeaderGroup() override { return m_httpHeaders; }

    /// Sets one setting, keeping the map and the groups in step: a prefixed
    /// key goes into its group, and the server-side switches into theirs.
    void SetSetting(tarni_wstring_view in_key, tarni_wstring_view in_value);

    /// Removes one setting: a prefixed key leaves its group (so the save
    /// deletes it); an ordinary key returns to its default, and a key without
    /// a default is deleted from the store by the next save.
    void UnsetSetting(tarni_wstring_view in_key);

private:
    DriverSupport::DSPrefixedPropertyGroup* GroupOf(tarni_wstring_view in_key);
    void RefuseEmptyPropertyNames(const std::vector<Platform::StoredValue>& in_stored) const;
    void DeleteSecretsNoLongerKept(Platform::ISettingsStore& io_store,
                                   const std::vector<Platform::StoredValue>& in_present);
    /// Runs the save against a recorder over the store's present values.
    DriverSupport::DSStoreChangeRecorder RecordSave();

    DriverSupport::DSServerSidePropertyGroup& m_serverSideProperties;
    DriverSupport::DSPrefixedPropertyGroup& m_httpHeaders;
    Platform::ISettingsStore& m_store;
    std::vector<tarni_wstring> m_keysToDelete;
};
}  // namespace Tarni::SparkODBC
