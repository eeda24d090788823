#include "driversupport/DSDSNConfiguration.h"

#include <cstdint>

#include "core/ErrorException.h"
#include "core/NumberConverter.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSEncryptionUtils.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSSetupException.h"
#include "platform/DataSourceStore.h"
#include "support/TarniSettingReader.h"
#include "support/log/LogUtils.h"

namespace Tarni::DriverSupport
{
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSDSNConfiguration";

/// The largest maximum log file size the dialog accepts, in megabytes.
constexpr unsigned long long MAX_LOG_FILE_SIZE_MB = 4096;

/// Keys written by the logging step, not with the driver-wide values.
const tarni_wstring_view LOGGING_KEYS[] = {Keys::LogLevel, Keys::LogPath, Keys::LogFileCount, Keys::LogFileSize};
/// Keys that belong to a data source only.
const tarni_wstring_view DATA_SOURCE_ONLY[] = {Keys::Driver, Keys::DSN,  Keys::DESCRIPTION,
                                               Keys::Host,   Keys::Port, Keys::Schema};

/// Whether the installer has the data source under this driver's name.
bool IsRegisteredWithDriver(tarni_wstring_view in_dsnName)
{
    return Platform::DataSourceStore::DriverOf(in_dsnName) == DSProductHelper::GetDriverName();
}

/// What a data source always stores, whatever it inherits.
const tarni_wstring_view ALWAYS_STORED[] = {Keys::DESCRIPTION, Keys::Host, Keys::Port};

const tarni_wstring_view PLAIN_SECRET_KEYS[] = {
    Keys::PWD, Keys::ProxyPWD, Keys::ClientPrivateKeyPWD, Keys::Auth_Client_Secret, Keys::Auth_AccessToken,
    Keys::keyFilePassword, u"AOSS_PWD", u"AOSS_ClientPrivateKeyPWD"};
}  // namespace

DSDSNConfiguration::DSDSNConfiguration(tarni_wstring in_dsnName, unsigned in_configType,
                                       Support::ILogger* in_logger)
    : m_dsnName(std::move(in_dsnName)), m_configType(in_configType), m_logger(in_logger)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DSDSNConfiguration");
    m_credentials = std::make_unique<DSUidPwdConfiguration>(
        m_map, in_logger, in_configType,
        DSUidPwdKeySet{tarni_wstring(Keys::UID), tarni_wstring(Keys::PWD), tarni_wstring(Keys::EncryptedPWD), u""});
    // The driver's own SSL settings: the two-way variant, with the minimum TLS version shown.
    m_ssl = std::make_unique<DSSSLConfiguration>(m_map, in_logger, in_configType,
                                                 DSSSLKeySetDescriptor{u"", true, false, false}, true);
    m_proxy = std::make_unique<DSProxyConfiguration>(m_map, in_logger, in_configType);
}

void DSDSNConfiguration::AddComponent(std::unique_ptr<DSConfigurationComponent> in_component)
{
    m_furtherComponents.push_back(std::move(in_component));
}

std::vector<DSConfigurationComponent*> DSDSNConfiguration::Components() const
{
    std::vector<DSConfigurationComponent*> components{m_credentials.get(), m_ssl.get(), m_proxy.get()};
    for (const auto& component : m_furtherComponents)
    {
        components.push_back(component.get());
    }
    return components;
}

std::vector<DSUidPwdConfiguration*> DSDSNConfiguration::GetCredentialComponents() const
{
    std::vector<DSUidPwdConfiguration*> credentials{m_credentials.get(), &m_ssl->GetClientKeyCredentials(),
                                                    m_proxy.get()};
    for (const auto& component : m_furtherComponents)
    {
        if (auto* credential = dynamic_cast<DSUidPwdConfiguration*>(component.get()))
        {
            credentials.push_back(credential);
        }
    }
    return credentials;
}

DSUidPwdConfiguration* DSDSNConfiguration::FindCredentialBySecretKey(tarni_wstring_view in_key) const
{
    for (DSUidPwdConfiguration* credential : GetCredentialComponents())
    {
        if (StringConverter::EqualsIgnoreCase(in_key, credential->GetKeySet().Pwd()) ||
            StringConverter::EqualsIgnoreCase(in_key, credential->GetKeySet().EncryptedPwd()))
        {
            return credential;
        }
    }
    return nullptr;
}

const DSUidPwdConfiguration* DSDSNConfiguration::FindCredentialByProtectedKey(tarni_wstring_view in_key) const
{
    for (const DSUidPwdConfiguration* credential : GetCredentialComponents())
    {
        if (StringConverter::EqualsIgnoreCase(credential->GetKeySet().EncryptedPwd(), in_key))
        {
            return credential;
        }
    }
    return nullptr;
}

DSStoreChangeRecorder::EquivalentValues DSDSNConfiguration::SameSecret() const
{
    // Each protection of a secret gives another text: two protected texts
    // of a credential are the same value when both recover to the same
    // secret in the same scope. One that cannot be recovered is a change.
    return [this](tarni_wstring_view in_name, tarni_wstring_view in_before, tarni_wstring_view in_after)
    {
        if (FindCredentialByProtectedKey(in_name) == nullptr || !DSEncryptionUtils::HasProtectedForm(in_before) ||
            !DSEncryptionUtils::HasProtectedForm(in_after))
        {
            return false;
        }
        try
        {
            const auto was = DSEncryptionUtils::Decrypt(in_before, in_name);
            const auto now = DSEncryptionUtils::Decrypt(in_after, in_name);
            return was.value == now.value && was.scope == now.scope;
        }
        catch (const Support::ErrorException&)
        {
            return false;
        }
    };
}

ConfigurationMap DSDSNConfiguration::GetDefaultDriverProperties() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetDefaultDriverProperties");
    ConfigurationMap defaults;
    for (DSConfigurationComponent* component : Components())
    {
        component->GetDefaultDriverProperties(defaults);
    }
    return defaults;
}

bool DSDSNConfiguration::IsNeverStoredKey(tarni_wstring_view in_key) const
{
    for (const tarni_wstring_view secret : PLAIN_SECRET_KEYS)
    {
        if (StringConverter::EqualsIgnoreCase(in_key, secret))
        {
            return true;
        }
    }
    return false;
}

void DSDSNConfiguration::LoadDefaults()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "LoadDefaults");
    m_map.clear();
    m_map.SetValue(Keys::Driver, DSProductHelper::GetDriverName());
    for (const auto& [key, defaultValue] : GetDefaultDriverProperties())
    {
        const auto stored = AcceptsStoredKey(key) ? Support::TarniSettingReader::Read(key) : std::nullopt;
        m_map.SetValue(key, (stored && !stored->empty()) ? *stored : defaultValue);
    }
}

void DSDSNConfiguration::Load(const ConfigurationMap& in_values)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Load");
    LoadDefaults();
    for (const auto& [key, value] : in_values)
    {
        m_map.SetValue(key, value);
    }
    InitializeComponentsAfterLoad();
}

bool DSDSNConfiguration::IsDriverWideKey(tarni_wstring_view in_key) const
{
    for (const tarni_wstring_view excluded : LOGGING_KEYS)
    {
        if (StringConverter::EqualsIgnoreCase(in_key, excluded))
        {
            return false;
        }
    }
    return !IsDataSourceOnlyKey(in_key) && !IsNeverStoredKey(in_key);
}

bool DSDSNConfiguration::IsDataSourceOnlyKey(tarni_wstring_view in_key)
{
    for (const tarni_wstring_view key : DATA_SOURCE_ONLY)
    {
        if (StringConverter::EqualsIgnoreCase(in_key, key))
        {
            return true;
        }
    }
    return false;
}

bool DSDSNConfiguration::IsSecretKey(tarni_wstring_view in_key) const
{
    return IsNeverStoredKey(in_key) || FindCredentialBySecretKey(in_key) != nullptr;
}

void DSDSNConfiguration::CheckDsnName(tarni_wstring_view in_name)
{
    if (in_name.empty())
    {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDsnNameEmptyErr");
    }
    if (in_name.size() > MAX_DSN_NAME_CHARS)
    {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDsnNameLengthErr",
                                      {tarni_wstring(in_name)});
    }
    if (in_name.find_first_of(DSN_NAME_REFUSED_CHARACTERS) != tarni_wstring_view::npos)
    {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDsnNameInvalidErr");
    }
}

void DSDSNConfiguration::Load(tarni_wstring_view in_dsnName)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Load");
    m_dsnName = tarni_wstring(in_dsnName);
    LoadDefaults();
    // What the driver-wide store holds reaches every data source, except
    // the secrets (each data source keeps its own) and the prefixed groups
    // (the driver adds its own to those of the data source).
    for (const Platform::StoredValue& stored : Support::TarniSettingReader::ReadAll())
    {
        if (IsDriverWideKey(stored.name) && !IsSecretKey(stored.name) && !IsGroupKey(stored.name))
        {
            m_map.SetValue(stored.name, stored.value);
        }
    }
    m_inherited = m_map;
    // A data source still to be named has no section yet.
    const std::vector<Platform::StoredValue> section =
        m_dsnName.empty() ? std::vector<Platform::StoredValue>()
                          : Platform::DataSourceStore(m_dsnName, GetKnownDataSourceKeys()).ReadAll();
    for (const Platform::StoredValue& stored : section)
    {
        // The installer keeps "Driver" (SQLWriteDSNToIni): it is not ours to change.
        if (!StringConverter::EqualsIgnoreCase(stored.name, Keys::Driver))
        {
            m_map.SetValue(stored.name, stored.value);
        }
    }
    m_loadedDsnName = m_dsnName;
    OnDataSourceLoaded(section);
    InitializeComponentsAfterLoad();
}

std::vector<DSStoreChange> DSDSNConfiguration::SaveDataSource()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SaveDataSource");
    return WriteDataSource(true);
}

std::vector<DSStoreChange> DSDSNConfiguration::PlanDataSourceSave()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "PlanDataSourceSave");
    return WriteDataSource(false);
}

std::vector<DSStoreChange> DSDSNConfiguration::WriteDataSource(bool in_apply)
{
    CheckDsnName(m_dsnName);
    const ConfigurationMap before = m_map;
    try
    {
        OnDataSourceSaving();
        FinalizeComponentsBeforeSave();
        // What is written, decided and checked before anything reaches the store.
        ConfigurationMap toWrite;
        for (const auto& [key, value] : m_map)
        {
            if (StringConverter::EqualsIgnoreCase(key, Keys::Driver) || IsNeverStoredKey(key) ||
                StringConverter::EqualsIgnoreCase(key, Keys::DSN))
            {
                continue;
            }
            // A key nothing sets inherits the empty value: an empty entry adds nothing.
            const bool inherited = m_inherited.GetValue(key) == value;
            bool always = false;
            for (const tarni_wstring_view fixed : ALWAYS_STORED)
            {
                always = always || StringConverter::EqualsIgnoreCase(key, fixed);
            }
            if (!always && inherited)
            {
                continue;
            }
            if (value.find_first_of(u"\r\n") != tarni_wstring::npos || key.find_first_of(u"[]=\r\n") != tarni_wstring::npos)
            {
                throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDsnValueErr",
                                              {key, u"a data source entry holds one line and its name no \"[\", \"]\" or \"=\""});
            }
            toWrite.SetValue(key, value);
        }

        // Where the installer cannot list a section, the entries about to be
        // written are looked for too, so that an unchanged one is found.
        std::vector<tarni_wstring> knownKeys = GetKnownDataSourceKeys();
        for (const auto& [key, value] : toWrite)
        {
            knownKeys.push_back(key);
        }
        Platform::DataSourceStore store(m_dsnName, std::move(knownKeys));
        const std::vector<Platform::StoredValue> present = store.ReadAll();
        DSStoreChangeRecorder recorder(present, store.GetLocation());
        for (const auto& [key, value] : toWrite)
        {
            recorder.WriteValue(key, value);
        }
        for (const Platform::StoredValue& stored : present)
        {
            if (!toWrite.Contains(stored.name) && !StringConverter::EqualsIgnoreCase(stored.name, Keys::Driver))
            {
                recorder.DeleteValue(stored.name);
            }
        }
        const std::vector<DSStoreChange> changes = recorder.GetChanges(SameSecret());
        const bool renamed = !m_loadedDsnName.empty() &&
                             !StringConverter::EqualsIgnoreCase(m_loadedDsnName, m_dsnName) &&
                             Platform::DataSourceStore::Exists(m_loadedDsnName);
        if (!in_apply)
        {
            m_map = before;
            return changes;
        }
        if (!IsRegisteredWithDriver(m_dsnName))
        {
            store.Register(DSProductHelper::GetDriverName());
        }
        recorder.Replay(store, changes);
        // A rename: the new data source is complete, now the old one goes.
        if (renamed)
        {
            Platform::DataSourceStore::Remove(m_loadedDsnName);
        }
        m_loadedDsnName = m_dsnName;
        return changes;
    }
    catch (const Support::ErrorException& e)
    {
        m_map = before;
        if (m_logger != nullptr)
        {
            m_logger->LogError(NS, CLS, "SaveDataSource", e);
        }
        throw;
    }
}

std::vector<tarni_wstring> DSDSNConfiguration::GetKnownDataSourceKeys() const
{
    std::vector<tarni_wstring> keys{tarni_wstring(Keys::DESCRIPTION), tarni_wstring(Keys::Host),
                                    tarni_wstring(Keys::Port), tarni_wstring(Keys::Schema)};
    for (const auto& [key, value] : GetDefaultDriverProperties())
    {
        keys.push_back(key);
    }
    for (const DSUidPwdConfiguration* credential : GetCredentialComponents())
    {
        for (const tarni_wstring& key : {credential->GetKeySet().Uid(), credential->GetKeySet().Pwd(),
                                         credential->GetKeySet().EncryptedPwd()})
        {
            if (!key.empty())
            {
                keys.push_back(key);
            }
        }
    }
    return keys;
}

void DSDSNConfiguration::RemoveDataSource(tarni_wstring_view in_dsnName)
{
    Platform::DataSourceStore::Remove(in_dsnName);
}

std::vector<DSStoreChange> DSDSNConfiguration::PlanDataSourceRemoval() const
{
    std::vector<DSStoreChange> changes;
    for (Platform::StoredValue& stored : Platform::DataSourceStore(m_dsnName, GetKnownDataSourceKeys()).ReadAll())
    {
        if (!StringConverter::EqualsIgnoreCase(stored.name, Keys::Driver))
        {
            changes.push_back(DSStoreChange{std::move(stored.name), DSStoreChange::Kind::Removed,
                                            std::move(stored.value), std::nullopt});
        }
    }
    return changes;
}

void DSDSNConfiguration::SetLogLevel(unsigned in_level)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetLogLevel");
    m_map.SetValue(Keys::LogLevel, StringConverter::FromNumber(static_cast<unsigned long long>(in_level)));
}

unsigned DSDSNConfiguration::GetLogLevel() const
{
    return static_cast<unsigned>(Support::LogUtils::ToLogLevel(m_map.GetValue(Keys::LogLevel)));
}

void DSDSNConfiguration::SetLogPath(tarni_wstring_view in_path)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetLogPath");
    m_map.SetValue(Keys::LogPath, in_path);
}

void DSDSNConfiguration::SetLogFileSize(tarni_wstring_view in_megabytes)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetLogFileSize");
    const auto megabytes = Support::NumberConverter::ToUInt64(in_megabytes);
    if (!in_megabytes.empty() && (!megabytes || *megabytes > MAX_LOG_FILE_SIZE_MB))
    {
        throw DSSetupException(SETUP_INVALID_LOG_FILE_SIZE);
    }
    m_map.SetValue(Keys::LogFileSize, in_megabytes);
}

void DSDSNConfiguration::SetLogFileCount(tarni_wstring_view in_count)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetLogFileCount");
    if (!in_count.empty() && !Support::NumberConverter::ToUInt32(in_count))
    {
        throw DSSetupException(SETUP_INVALID_LOG_FILE_COUNT);
    }
    m_map.SetValue(Keys::LogFileCount, in_count);
}

void DSDSNConfiguration::InitializeComponentsAfterLoad()
{
    for (DSConfigurationComponent* component : Components())
    {
        component->InitializeAfterLoad();
    }
}

void DSDSNConfiguration::FinalizeComponentsBeforeSave()
{
    for (DSConfigurationComponent* component : Components())
    {
        component->FinalizeBeforeSave();
    }
}

tarni_wstring DSDSNConfiguration::LogFileSizeToStored(tarni_wstring_view in_megabytes)
{
    const auto megabytes = in_megabytes.empty() ? std::optional<unsigned long long>(0)
                                                : Support::NumberConverter::ToUInt64(in_megabytes);
    if (!megabytes)
    {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSLogFileSizeErr",
                                      {tarni_wstring(in_megabytes)});
    }
    const auto bytes = static_cast<std::uint32_t>(*megabytes << 20);
    return StringConverter::FromNumber(static_cast<unsigned long long>(bytes));
}

tarni_wstring DSDSNConfiguration::LogFileSizeFromStored(tarni_wstring_view in_bytes)
{
    const auto bytes = Support::NumberConverter::ToUInt64(in_bytes);
    return bytes ? StringConverter::FromNumber(*bytes >> 20) : tarni_wstring();
}

void DSDSNConfiguration::LoadLoggingProperties(const std::vector<Platform::StoredValue>& in_stored)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "LoadLoggingProperties");
    for (const auto& stored : in_stored)
    {
        for (const tarni_wstring_view key : {Keys::LogLevel, Keys::LogPath, Keys::LogFileCount, Keys::LogFileSize})
        {
            if (StringConverter::EqualsIgnoreCase(stored.name, key))
            {
                m_map.SetValue(key, key == Keys::LogFileSize ? LogFileSizeFromStored(stored.value) : stored.value);
            }
        }
    }
}

void DSDSNConfiguration::SaveLoggingProperties(Platform::ISettingsStore& io_store) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SaveLoggingProperties");
    // Convert first, so a bad size stops the save before anything of this step is written.
    const tarni_wstring size = LogFileSizeToStored(m_map.GetValue(Keys::LogFileSize));
    io_store.WriteValue(Keys::LogLevel, m_map.GetValue(Keys::LogLevel));
    io_store.WriteValue(Keys::LogPath, m_map.GetValue(Keys::LogPath));
    io_store.WriteValue(Keys::LogFileCount, m_map.GetValue(Keys::LogFileCount));
    io_store.WriteValue(Keys::LogFileSize, size);
}

std::vector<Support::ErrorException> DSDSNConfiguration::GetSecretRecoveryErrors() const
{
    std::vector<Support::ErrorException> errors;
    for (const DSUidPwdConfiguration* credential : GetCredentialComponents())
    {
        if (credential->GetRecoveryError())
        {
            errors.push_back(*credential->GetRecoveryError());
        }
    }
    return errors;
}
}  // namespace Tarni::DriverSupport
