#include "product/QDCConfiguration.h"

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/ProductSettingKeys.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"
#include "support/TarniSettingReader.h"

namespace Tarni::SparkODBC
{
namespace Keys = DriverSupport::Keys;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QDCConfiguration";
}  // namespace

QDCConfiguration::QDCConfiguration(DriverSupport::DSServerSidePropertyGroup& io_serverSideProperties,
                                   DriverSupport::DSPrefixedPropertyGroup& io_httpHeaders,
                                   Support::ILogger* in_logger, Platform::ISettingsStore& io_store)
    : QuillConfiguration(u"", 2, in_logger),
      m_serverSideProperties(io_serverSideProperties),
      m_httpHeaders(io_httpHeaders),
      m_store(io_store)
{
    TARNI_LOG_ENTRY(in_logger, NS, CLS, "QDCConfiguration");
    // The groups are part of this configuration and log into the same log.
    m_serverSideProperties.SetLogger(in_logger);
    m_httpHeaders.SetLogger(in_logger);
}

void QDCConfiguration::Load()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Load");
    std::vector<Platform::StoredValue> stored;
    try
    {
        // The defaults already read stored values: the store's errors arise from here on.
        LoadDefaults();
        stored = Support::TarniSettingReader::ReadAll();
        RefuseEmptyPropertyNames(stored);
    }
    catch (const Support::ErrorException& e)
    {
        // An unreadable or malformed store: nothing is loaded and nothing will be saved over it.
        if (m_logger != nullptr)
        {
            m_logger->LogError(NS, CLS, "Load", e);
        }
        throw;
    }
    for (const auto& value : stored)
    {
        if (IsDriverWideKey(value.name))
        {
            m_map.SetValue(value.name, value.value);
        }
    }
    m_serverSideProperties.Load(stored);
    m_httpHeaders.Load(stored);
    LoadLoggingProperties(stored);
    InitializeComponentsAfterLoad();
}

void QDCConfiguration::Load(const DriverSupport::ConfigurationMap& in_values)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Load");
    const DriverSupport::ConfigurationMap previous = std::move(m_map);
    m_map.clear();
    m_serverSideProperties.ClearEntries();
    m_httpHeaders.ClearEntries();
    m_map.SetValue(Keys::Driver, DriverSupport::DSProductHelper::GetDriverName());
    for (const auto& [key, value] : GetDefaultDriverProperties())
    {
        SetSetting(key, value);
    }
    for (const auto& [key, value] : in_values)
    {
        SetSetting(key, value);
    }
    // A stored key without a default that the pairs do not name leaves the store.
    for (const auto& [key, value] : previous)
    {
        if (!m_map.Contains(key) && IsDriverWideKey(key))
        {
            m_keysToDelete.push_back(key);
        }
    }
    InitializeComponentsAfterLoad();
}

std::vector<DriverSupport::DSStoreChange> QDCConfiguration::Save()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Save");
    // Finalising turns typed secrets into their protected forms; a failed
    // save puts the map back as it was, so the dialog that is still open
    // keeps what the user typed and a later save starts from it again.
    const DriverSupport::ConfigurationMap before = m_map;
    std::vector<DriverSupport::DSStoreChange> changes;
    bool updating = false;
    try
    {
        DriverSupport::DSStoreChangeRecorder recorder = RecordSave();
        changes = recorder.GetChanges(SameSecret());
        // Only values that differ are written: a save that changes nothing
        // leaves the store (the file, its modification time) untouched.
        if (!changes.empty())
        {
            m_store.BeginUpdate();
            updating = true;
            recorder.Replay(m_store, changes);
            m_store.CommitUpdate();
        }
        m_keysToDelete.clear();
    }
    catch (const Support::ErrorException& e)
    {
        if (updating)
        {
            m_store.AbortUpdate();
        }
        m_map = before;
        if (m_logger != nullptr)
        {
            m_logger->LogError(NS, CLS, "Save", e);
        }
        throw;
    }
    catch (...)
    {
        if (updating)
        {
            m_store.AbortUpdate();
        }
        m_map = before;
        throw;
    }
    return changes;
}

std::vector<DriverSupport::DSStoreChange> QDCConfiguration::PlanSave()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "PlanSave");
    const DriverSupport::ConfigurationMap before = m_map;
    try
    {
        const auto changes = RecordSave().GetChanges(SameSecret());
        m_map = before;
        return changes;
    }
    catch (...)
    {
        m_map = before;
        throw;
    }
}

DriverSupport::DSStoreChangeRecorder QDCConfiguration::RecordSave()
{
    const bool suppressServiceDiscovery =
        DriverSupport::DSProductHelper::IsSettingOne(DriverSupport::ProductSettingKeys::SupressServiceDiscovery);
    // What the store holds now: the starting point of the comparison, and
    // where secrets that must leave the store are found.
    const std::vector<Platform::StoredValue> present = m_store.ReadAll();
    DriverSupport::DSStoreChangeRecorder recorder(present, m_store.GetLocation());
    FinalizeComponentsBeforeSave();
    for (const auto& [key, value] : m_map)
    {
        if (suppressServiceDiscovery && (StringConverter::EqualsIgnoreCase(key, Keys::ServiceDiscoveryMode) ||
                                         StringConverter::EqualsIgnoreCase(key, Keys::ZKNamespace)))
        {
            continue;
        }
        if (IsDriverWideKey(key))
        {
            recorder.WriteValue(key, value);
        }
    }
    // Before the steps that write their own keys: a switch of a group
    // (LCaseSspKeyName) that an import leaves out of the map is still
    // written by its group, and must not be deleted after that.
    for (const tarni_wstring& key : m_keysToDelete)
    {
        recorder.DeleteValue(key);
    }
    DeleteSecretsNoLongerKept(recorder, present);
    SaveLoggingProperties(recorder);
    m_serverSideProperties.Save(recorder);
    m_httpHeaders.Save(recorder);
    return recorder;
}

void QDCConfiguration::RefuseEmptyPropertyNames(const std::vector<Platform::StoredValue>& in_stored) const
{
    // "SSP_=1" written by hand would become a property without a name.
    for (const Platform::StoredValue& value : in_stored)
    {
        if (StringConverter::EqualsIgnoreCase(value.name, m_serverSideProperties.GetPrefix()) ||
            StringConverter::EqualsIgnoreCase(value.name, m_httpHeaders.GetPrefix()))
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          u"DSStoreEmptyPropertyNameErr", {value.name, m_store.GetLocation()});
        }
    }
}

void QDCConfiguration::DeleteSecretsNoLongerKept(Platform::ISettingsStore& io_store,
                                                 const std::vector<Platform::StoredValue>& in_present)
{
    // A protected password that the credential no longer keeps (the user
    // chose no encryption, or removed the password) is absent from the map
    // after finalising; unlike an ordinary key it must leave the store too.
    // A plain password found in the store (written by hand) goes as well:
    // after a save no secret is stored in plain text.
    for (const DriverSupport::DSUidPwdConfiguration* credential : GetCredentialComponents())
    {
        for (const tarni_wstring& key : {credential->GetKeySet().EncryptedPwd(), credential->GetKeySet().Pwd()})
        {
            if (m_map.Contains(key) && IsDriverWideKey(key))
            {
                continue;
            }
            for (const Platform::StoredValue& stored : in_present)
            {
                if (StringConverter::EqualsIgnoreCase(stored.name, key))
                {
                    io_store.DeleteValue(stored.name);
                }
            }
        }
    }
}

DriverSupport::DSPrefixedPropertyGroup* QDCConfiguration::GroupOf(tarni_wstring_view in_key)
{
    if (m_serverSideProperties.IsGroupKey(in_key))
    {
        return &m_serverSideProperties;
    }
    if (m_httpHeaders.IsGroupKey(in_key))
    {
        return &m_httpHeaders;
    }
    return nullptr;
}

void QDCConfiguration::SetSetting(tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetSetting");
    if (auto* group = GroupOf(in_key))
    {
        group->GetProperties().SetValue(in_key.substr(group->GetPrefix().size()), in_value);
    }
    else if (StringConverter::EqualsIgnoreCase(in_key, Keys::LCaseSspKeyName))
    {
        m_serverSideProperties.SetLCaseSspKeyName(in_value);
    }
    else if (StringConverter::EqualsIgnoreCase(in_key, Keys::ApplySSPWithQueries))
    {
        m_serverSideProperties.SetApplySSPWithQueries(in_value);
    }
    m_map.SetValue(in_key, in_value);
}

void QDCConfiguration::UnsetSetting(tarni_wstring_view in_key)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "UnsetSetting");
    if (auto* group = GroupOf(in_key))
    {
        group->GetProperties().Remove(in_key.substr(group->GetPrefix().size()));
        m_map.Remove(in_key);
        return;
    }
    const auto defaults = GetDefaultDriverProperties();
    if (const auto it = defaults.find(in_key); it != defaults.end())
    {
        SetSetting(it->first, it->second);
        return;
    }
    m_map.Remove(in_key);
    m_keysToDelete.emplace_back(in_key);
}
}  // namespace Tarni::SparkODBC
