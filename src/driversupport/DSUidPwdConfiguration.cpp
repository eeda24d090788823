#include "driversupport/DSUidPwdConfiguration.h"

namespace Tarni::DriverSupport
{
namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSUidPwdConfiguration";
}  // namespace

bool DSUidPwdConfiguration::s_encryptionOptionsEnabled = false;
bool DSUidPwdConfiguration::s_dropPlainPasswordOnSave = false;

DSUidPwdConfiguration::DSUidPwdConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger,
                                             unsigned in_configType, DSUidPwdKeySet in_keys)
    : m_map(io_map), m_logger(in_logger), m_configType(in_configType), m_keys(std::move(in_keys))
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DSUidPwdConfiguration");
}

void DSUidPwdConfiguration::GetDefaultDriverProperties(ConfigurationMap&) const
{
    // A credential has no default: an absent user name or password is "none".
}

void DSUidPwdConfiguration::InitializeAfterLoad()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "InitializeAfterLoad");
}

void DSUidPwdConfiguration::FinalizeBeforeSave()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "FinalizeBeforeSave");
    if (m_configType != 1 && m_configType != 2)
    {
        return;
    }
    if (!m_encryptPwd)
    {
        m_map.Remove(m_keys.EncryptedPwd());
    }
    if (s_dropPlainPasswordOnSave)
    {
        m_map.Remove(m_keys.Pwd());
    }
}

tarni_wstring DSUidPwdConfiguration::GetUid() const
{
    return m_map.GetValue(m_keys.Uid());
}

void DSUidPwdConfiguration::SetUid(tarni_wstring_view in_uid)
{
    m_map.SetValue(m_keys.Uid(), in_uid);
}

tarni_wstring DSUidPwdConfiguration::GetPwd() const
{
    if (m_map.Contains(m_keys.Pwd()))
    {
        return m_map.GetValue(m_keys.Pwd());
    }
    if (m_keys.fallback != nullptr)
    {
        return m_map.GetValue(m_keys.fallback->Pwd());
    }
    return {};
}

void DSUidPwdConfiguration::SetPwd(tarni_wstring_view in_pwd)
{
    m_map.SetValue(m_keys.Pwd(), in_pwd);
}

void DSUidPwdConfiguration::SetEncryptionOptionsEnabled(bool in_enabled)
{
    s_encryptionOptionsEnabled = in_enabled;
}

void DSUidPwdConfiguration::SetDropPlainPasswordOnSave(bool in_drop)
{
    s_dropPlainPasswordOnSave = in_drop;
}

bool DSUidPwdConfiguration::IsDropPlainPasswordOnSave()
{
    return s_dropPlainPasswordOnSave;
}
}  // namespace Tarni::DriverSupport
