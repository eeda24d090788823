#include "product/SODataSourceSession.h"

#include "driversupport/DSProductHelper.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "platform/SettingsStoreFactory.h"
#include "product/SOProductIdentity.h"

namespace Tarni::SparkODBC
{
SODataSourceSession::SODataSourceSession(const tarni_wstring& in_iniPath, std::optional<bool> in_systemMode)
{
    SOProductIdentity::Register();
    m_store = Platform::SettingsStoreFactory::OpenDriverStore(
        DriverSupport::DSProductHelper::GetDriverStoreLocation(in_iniPath));
    m_storeScope.emplace(*m_store);
    DriverSupport::DSUidPwdConfiguration::SetEncryptionOptionsEnabled(true);
    DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
    if (in_systemMode)
    {
        m_modeScope.emplace(*in_systemMode ? Platform::OdbcInstaller::CONFIG_MODE_SYSTEM_DSN
                                           : Platform::OdbcInstaller::CONFIG_MODE_USER_DSN);
    }
}

bool SODataSourceSession::IsSystemMode() const
{
    return Platform::OdbcInstaller::GetConfigMode() == Platform::OdbcInstaller::CONFIG_MODE_SYSTEM_DSN;
}
}  // namespace Tarni::SparkODBC
