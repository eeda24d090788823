#pragma once
// The configuration of a data source (and the base of the driver-wide
// configuration): it owns the key -> value map and the components that own
// parts of it (credentials, SSL, proxy and further ones such as OAuth, AOSS
// and DFI), and takes them through defaults, load and save.
#include <memory>
#include <vector>

#include "driversupport/DSProxyConfiguration.h"
#include "driversupport/DSSSLConfiguration.h"
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

    DSUidPwdConfiguration& GetCredentials() { return *m_credentials; }
    DSSSLConfiguration& GetSSLConfiguration() { return *m_ssl; }
    DSProxyConfiguration& GetProxyConfiguration() { return *m_proxy; }

    /// Every credential of the configuration whose password is a stored
    /// secret: the DSN's own, the SSL client key's, the proxy's and those of
    /// the further components.
    std::vector<DSUidPwdConfiguration*> GetCredentialComponents() const;

    /// The credential whose plain or protected password key this is, or null.
    DSUidPwdConfiguration* FindCredentialBySecretKey(tarni_wstring_view in_key) const;

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
    /// Whether a stored value with this name belongs in this configuration's map.
    virtual bool AcceptsStoredKey(tarni_wstring_view in_key) const { return !IsNeverStoredKey(in_key); }

    void InitializeComponentsAfterLoad();
    void FinalizeComponentsBeforeSave();
    std::vector<DSConfigurationComponent*> Components() const;

    ConfigurationMap m_map;
    tarni_wstring m_dsnName;
    unsigned m_configType;
    Support::ILogger* m_logger;
    std::unique_ptr<DSUidPwdConfiguration> m_credentials;
    std::unique_ptr<DSSSLConfiguration> m_ssl;
    std::unique_ptr<DSProxyConfiguration> m_proxy;
    std::vector<std::unique_ptr<DSConfigurationComponent>> m_furtherComponents;
};
}  // namespace Tarni::DriverSupport
