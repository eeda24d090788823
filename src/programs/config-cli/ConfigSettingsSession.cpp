#include "programs/config-cli/ConfigSettingsSession.h"

#include <stdexcept>

#include "core/ErrorException.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "platform/DataSourceStore.h"
#include "platform/SettingsStoreFactory.h"
#include "product/QDCConfiguration.h"
#include "product/SODataSourceConfiguration.h"
#include "product/SODataSourceSession.h"
#include "product/SOProductIdentity.h"

namespace Tarni::SparkODBC
{
ConfigSettingsSession::ConfigSettingsSession(const tarni_wstring& in_iniPath,
                                             const std::optional<tarni_wstring>& in_dsnName,
                                             bool in_system, Purpose in_purpose)
    : m_httpHeaders("http.header.")
{
    if (in_dsnName || in_purpose == Purpose::ListDataSources)
    {
        m_dataSourceMode = std::make_unique<SODataSourceSession>(in_iniPath, in_system);
        if (!in_dsnName)
        {
            return;
        }
        const tarni_wstring& name = *in_dsnName;
        DriverSupport::DSDSNConfiguration::CheckDsnName(name);
        const bool exists = Platform::DataSourceStore::Exists(name);
        const bool mustExist = in_purpose != Purpose::Create;
        if (exists != mustExist)
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          exists ? u"DSDsnExistsErr" : u"DSDsnNotFoundErr",
                                          {name, m_dataSourceMode->ModeName()});
        }
        m_dataSource = std::make_unique<SODataSourceConfiguration>(name, in_system, &m_logger);
        m_dataSource->Load(tarni_wstring_view(name));
        return;
    }
    SOProductIdentity::Register();
    m_store = Platform::SettingsStoreFactory::OpenDriverStore(
        DriverSupport::DSProductHelper::GetDriverStoreLocation(in_iniPath));
    if (in_purpose == Purpose::Update)
    {
        // Held from load to save, so concurrent edits of other keys are kept.
        m_store->LockForUpdate();
    }
    m_storeScope.emplace(*m_store);
    // The same credential rules as the dialog program: a secret is kept
    // only in protected form, and never in plain text.
    DriverSupport::DSUidPwdConfiguration::SetEncryptionOptionsEnabled(true);
    DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
    m_driver = std::make_unique<QDCConfiguration>(m_serverSideProperties, m_httpHeaders, &m_logger,
                                                  *m_store);
    m_driver->Load();
}

ConfigSettingsSession::~ConfigSettingsSession() = default;

bool ConfigSettingsSession::IsSystemDataSource() const
{
    return m_dataSourceMode && m_dataSourceMode->IsSystemMode();
}

QuillConfiguration& ConfigSettingsSession::GetConfiguration()
{
    if (m_driver)
    {
        return *m_driver;
    }
    if (m_dataSource)
    {
        return *m_dataSource;
    }
    throw std::logic_error("the list of data sources has no configuration");
}

void ConfigSettingsSession::SetSetting(tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    if (m_driver)
    {
        m_driver->SetSetting(in_key, in_value);
        return;
    }
    static_cast<SODataSourceConfiguration&>(GetConfiguration()).SetSetting(in_key, in_value);
}

void ConfigSettingsSession::UnsetSetting(tarni_wstring_view in_key)
{
    if (m_driver)
    {
        m_driver->UnsetSetting(in_key);
        return;
    }
    static_cast<SODataSourceConfiguration&>(GetConfiguration()).UnsetSetting(in_key);
}

std::vector<DriverSupport::DSStoreChange> ConfigSettingsSession::Save(bool in_planOnly)
{
    if (m_driver)
    {
        return in_planOnly ? m_driver->PlanSave() : m_driver->Save();
    }
    auto& dataSource = static_cast<SODataSourceConfiguration&>(GetConfiguration());
    return in_planOnly ? dataSource.PlanDataSourceSave() : dataSource.SaveDataSource();
}

std::vector<DriverSupport::DSStoreChange> ConfigSettingsSession::RemoveDataSource(bool in_planOnly)
{
    if (!m_dataSource)
    {
        throw std::logic_error("only a data source can be removed");
    }
    auto changes = m_dataSource->PlanDataSourceRemoval();
    if (!in_planOnly)
    {
        DriverSupport::DSDSNConfiguration::RemoveDataSource(m_dataSource->GetDsnName());
    }
    return changes;
}
}  // namespace Tarni::SparkODBC
