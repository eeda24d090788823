#pragma once
// The one place where tarni-spark-config opens what a command works on: the
// driver-wide settings (the INI file or the registry, held locked from load
// to save when the command writes) or one data source through the ODBC
// installer in its user or system mode. Either way the command sees one
// configuration, edits it with the same setters and saves it through a
// save that compares first, so it can report what changed.
#include <memory>
#include <optional>
#include <vector>

#include "core/NullLogger.h"
#include "core/TarniString.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "driversupport/DSStoreChange.h"
#include "platform/ISettingsStore.h"
#include "support/TarniSettingStoreScope.h"

namespace Tarni::SparkODBC
{
class QuillConfiguration;
class QDCConfiguration;
class SODataSourceConfiguration;
class SODataSourceSession;

class ConfigSettingsSession
{
public:
    enum class Purpose
    {
        Read,             ///< load only (and --check: compare, never write)
        Update,           ///< load and save
        Create,           ///< a data source that must not exist yet
        ListDataSources,  ///< only the installer's mode, no configuration
    };

    /// in_dsnName: work on that data source (a user one, or with in_system
    /// a system one) instead of the driver-wide settings. A data source that
    /// does not exist (or, to create, one that does) throws ErrorException
    /// naming it and the mode, as does a bad name.
    ConfigSettingsSession(const tarni_wstring& in_iniPath,
                          const std::optional<tarni_wstring>& in_dsnName, bool in_system,
                          Purpose in_purpose);
    ~ConfigSettingsSession();

    ConfigSettingsSession(const ConfigSettingsSession&) = delete;
    ConfigSettingsSession& operator=(const ConfigSettingsSession&) = delete;

    /// The loaded configuration; only ListDataSources has none (logic_error).
    QuillConfiguration& GetConfiguration();

    bool IsDataSource() const { return m_dataSourceMode != nullptr; }
    /// A data source in the installer's system mode: its secrets are
    /// protected for every user of the machine unless a scope is given.
    bool IsSystemDataSource() const;

    /// Sets or removes one setting, keeping the prefixed groups in step.
    void SetSetting(tarni_wstring_view in_key, tarni_wstring_view in_value);
    void UnsetSetting(tarni_wstring_view in_key);

    /// Saves what differs from the store and returns it; with in_planOnly
    /// only returns what a save would change.
    std::vector<DriverSupport::DSStoreChange> Save(bool in_planOnly);

    /// Removes the data source (in_planOnly: only tells) and returns its
    /// entries, each as removed.
    std::vector<DriverSupport::DSStoreChange> RemoveDataSource(bool in_planOnly);

private:
    Support::NullLogger m_logger;
    // The driver-wide settings.
    std::unique_ptr<Platform::ISettingsStore> m_store;
    std::optional<Support::TarniSettingStoreScope> m_storeScope;
    DriverSupport::DSServerSidePropertyGroup m_serverSideProperties;
    DriverSupport::DSPrefixedPropertyGroup m_httpHeaders;
    std::unique_ptr<QDCConfiguration> m_driver;
    // A data source.
    std::unique_ptr<SODataSourceSession> m_dataSourceMode;
    std::unique_ptr<SODataSourceConfiguration> m_dataSource;
};
}  // namespace Tarni::SparkODBC
