#pragma once
// The configuration of a data source (and the base of the driver-wide
// configuration): it owns the key -> value map and the components that own
// parts of it (credentials, SSL, proxy and further ones such as OAuth, AOSS
// and DFI), and takes them through defaults, load and save.
#include <memory>
#include <vector>

#include "driversupport/DSProxyConfiguration.h"
#include "driversupport/DSSSLConfiguration.h"
#include "driversupport/DSStoreChange.h"
#include "driversupport/DSStoreChangeRecorder.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "platform/ISettingsStore.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration
{
public:
    /// in_configType: 0 connection, 1 user DSN, 2 system DSN / driver-wide configuration.
    DSDSNConfiguration(tarni_wstring in_dsnName, unsigned in_configType, Support::ILogger* in_logger);
    virtual ~DSDSNConfiguration() = default;

    DSDSNConfiguration(const DSDSNConfiguration&) = delete;
    DSDSNConfiguration& operator=(const DSDSNConfiguration&) = delete;

    ConfigurationMap& GetMap() { return m_map; }
    const ConfigurationMap& GetMap() const { return m_map; }
    const tarni_wstring& GetDsnName() const { return m_dsnName; }
    void SetDsnName(tarni_wstring_view in_name) { m_dsnName = tarni_wstring(in_name); }
    unsigned GetConfigType() const { return m_configType; }
    Support::ILogger* GetLog() const { return m_logger; }

    tarni_wstring GetValue(tarni_wstring_view in_key) const { return m_map.GetValue(in_key); }
    void SetValue(tarni_wstring_view in_key, tarni_wstring_view in_value) { m_map.SetValue(in_key, in_value); }

    /// A new map with every default of the driver and of the components.
    virtual ConfigurationMap GetDefaultDriverProperties() const;

    /// Clears the map, sets "Driver" and every default key: the value stored
    /// driver-wide when it is non-empty (and the key belongs to the
    /// driver-wide store), else the built-in default.
    void LoadDefaults();

    /// Clears the map to the defaults, stores every given pair (import) and
    /// runs the components' post-load step.
    virtual void Load(const ConfigurationMap& in_values);

    /// Loads the data source of that name from the installer's data-source
    /// store in its current mode: the defaults, over them what the data
    /// source inherits from the driver-wide store (no data-source keys,
    /// secrets or prefixed groups), over that the data source's own section
    /// (every entry but "Driver", known or not). A data source that does not
    /// exist yet loads as what it would inherit.
    void Load(tarni_wstring_view in_dsnName);

    /// Writes the data source under GetDsnName() in the installer's current
    /// mode: registers it with the driver's name, writes its description,
    /// host and port and every entry that differs from what it inherits
    /// (entries it does not know included; a key nothing else sets inherits
    /// the empty value), removes the entries it no longer
    /// holds, protects its secrets (a plain secret is never written). When
    /// the name differs from the loaded one, the new data source is written
    /// completely before the old one is removed. Only entries whose stored
    /// text changes are written (a secret that recovers to the same secret
    /// in the same scope keeps its stored form), and a data source already
    /// registered with the driver is not registered again: a save that
    /// changes nothing writes nothing. Returns the entries it changed.
    /// Throws ErrorException; the map is then as before the call.
    std::vector<DSStoreChange> SaveDataSource();

    /// What SaveDataSource would change now, without writing anything; the
    /// configuration stays as it is.
    std::vector<DSStoreChange> PlanDataSourceSave();

    /// Removes the data source from the installer's store, its section included.
    static void RemoveDataSource(tarni_wstring_view in_dsnName);

    /// The entries that removing the data source under GetDsnName() takes
    /// away (all but "Driver"), each as removed; nothing is written.
    std::vector<DSStoreChange> PlanDataSourceRemoval() const;

    /// Refuses a data source name that is empty, longer than
    /// MAX_DSN_NAME_CHARS or holds one of DSN_NAME_REFUSED_CHARACTERS
    /// (ErrorException "DSDsnNameEmptyErr", "DSDsnNameLengthErr",
    /// "DSDsnNameInvalidErr").
    static void CheckDsnName(tarni_wstring_view in_name);
    static constexpr size_t MAX_DSN_NAME_CHARS = 32;
    static constexpr const char16_t* DSN_NAME_REFUSED_CHARACTERS = u"[]{}(),;?*=!@\\";

    /// What the loaded data source inherits (defaults and driver-wide values).
    const ConfigurationMap& GetInheritedValues() const { return m_inherited; }
    /// The name the data source was loaded under (empty: none loaded).
    const tarni_wstring& GetLoadedDsnName() const { return m_loadedDsnName; }

    /// False for the logging keys (written by their own step), the
    /// data-source keys "Driver", "DSN", "DESCRIPTION", "Host", "Port",
    /// "Schema", and the keys that are never stored.
    bool IsDriverWideKey(tarni_wstring_view in_key) const;

    /// True for "Driver", "DSN", "DESCRIPTION", "Host", "Port" and "Schema":
    /// a data source keeps them, the driver-wide settings never do.
    static bool IsDataSourceOnlyKey(tarni_wstring_view in_key);

    DSUidPwdConfiguration& GetCredentials() { return *m_credentials; }
    DSSSLConfiguration& GetSSLConfiguration() { return *m_ssl; }
    DSProxyConfiguration& GetProxyConfiguration() { return *m_proxy; }

    /// Every credential of the configuration whose password is a stored
    /// secret: the DSN's own, the SSL client key's, the proxy's and those of
    /// the further components.
    std::vector<DSUidPwdConfiguration*> GetCredentialComponents() const;

    /// The credential whose plain or protected password key this is, or null.
    DSUidPwdConfiguration* FindCredentialBySecretKey(tarni_wstring_view in_key) const;

    /// The credential whose protected form is stored under in_key, or null.
    const DSUidPwdConfiguration* FindCredentialByProtectedKey(tarni_wstring_view in_key) const;

    /// Errors of secrets that the last load could not recover (each kept as
    /// stored); the programs report them as warnings.
    std::vector<Support::ErrorException> GetSecretRecoveryErrors() const;

    /// Further components (OAuth, AOSS, DFI ...) that take part in defaults,
    /// load and save after the credentials, SSL and proxy.
    void AddComponent(std::unique_ptr<DSConfigurationComponent> in_component);

    /// Keys that never reach the store. The plain forms of secrets are here:
    /// even a component that failed to remove one cannot write it.
    virtual bool IsNeverStoredKey(tarni_wstring_view in_key) const;

    /// "LogLevel", "LogPath", "LogFileCount", "LogFileSize" (held in MB in the
    /// map, stored in bytes).
    void LoadLoggingProperties(const std::vector<Platform::StoredValue>& in_stored);
    void SaveLoggingProperties(Platform::ISettingsStore& io_store) const;

    /// The logging settings of the Logging Options dialog. The level is
    /// stored as its index (LOG_OFF 0 ... LOG_TRACE 6).
    void SetLogLevel(unsigned in_level);
    /// The stored level as an index: a number or a level name, as the log reads it.
    unsigned GetLogLevel() const;
    void SetLogPath(tarni_wstring_view in_path);
    /// Empty, or a whole number of megabytes from 0 to 4096; anything else
    /// throws DSSetupException 9 and stores nothing.
    void SetLogFileSize(tarni_wstring_view in_megabytes);
    /// Empty, or a whole number from 0 to 4294967295; anything else throws
    /// DSSetupException 8 and stores nothing.
    void SetLogFileCount(tarni_wstring_view in_count);

    /// Megabytes (empty: 0) to the stored byte count, as an unsigned 32-bit
    /// number: 4096 MB and more wrap around. Throws for text that is not a number.
    static tarni_wstring LogFileSizeToStored(tarni_wstring_view in_megabytes);
    /// Stored bytes to megabytes; text that is not a number reads as empty.
    static tarni_wstring LogFileSizeFromStored(tarni_wstring_view in_bytes);

protected:
    /// Whether a stored driver-wide value with this name belongs in this configuration's map.
    virtual bool AcceptsStoredKey(tarni_wstring_view in_key) const { return IsDriverWideKey(in_key); }

    /// Keys of a driver-wide group that a data source keeps apart from the
    /// driver's (its own server-side properties and HTTP headers).
    virtual bool IsGroupKey(tarni_wstring_view) const { return false; }
    /// The keys looked for one by one where the installer cannot list a
    /// section's entries: the data-source keys, every default, the credentials.
    virtual std::vector<tarni_wstring> GetKnownDataSourceKeys() const;
    /// After the data source's section has been read into the map.
    virtual void OnDataSourceLoaded(const std::vector<Platform::StoredValue>&) {}
    /// Before the data source is written: bring what the components hold apart into the map.
    virtual void OnDataSourceSaving() {}

    void InitializeComponentsAfterLoad();
    void FinalizeComponentsBeforeSave();
    /// Tells a save's recorder that two protected texts of a credential are
    /// the same value when both recover to the same secret in the same scope.
    DSStoreChangeRecorder::EquivalentValues SameSecret() const;
    std::vector<DSConfigurationComponent*> Components() const;

    ConfigurationMap m_map;
    tarni_wstring m_dsnName;
    unsigned m_configType;
    Support::ILogger* m_logger;
    std::unique_ptr<DSUidPwdConfiguration> m_credentials;
    std::unique_ptr<DSSSLConfiguration> m_ssl;
    std::unique_ptr<DSProxyConfiguration> m_proxy;
    std::vector<std::unique_ptr<DSConfigurationComponent>> m_furtherComponents;
    ConfigurationMap m_inherited;
    tarni_wstring m_loadedDsnName;

private:
    /// The data source's save, applied (in_apply) or only compared.
    std::vector<DSStoreChange> WriteDataSource(bool in_apply);
    /// The plain or protected key of any credential.
    bool IsSecretKey(tarni_wstring_view in_key) const;
};
}  // namespace Tarni::DriverSupport
