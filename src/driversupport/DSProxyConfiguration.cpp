#include "driversupport/DSProxyConfiguration.h"

#include "driversupport/ConfigurationKeys.h"

namespace Tarni::DriverSupport
{
namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSProxyConfiguration";
}  // namespace

DSProxyConfiguration::DSProxyConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger,
                                           unsigned in_configType, DSProxyKeySetDescriptor in_descriptor)
    : DSUidPwdConfiguration(io_map, in_logger, in_configType,
                            DSUidPwdKeySet{tarni_wstring(Keys::ProxyUID), tarni_wstring(Keys::ProxyPWD),
                                           tarni_wstring(Keys::ProxyEncryptedPWD), u""}),
      m_descriptor(std::move(in_descriptor))
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DSProxyConfiguration");
    SetParentDlgName(u"Proxy Options dialog");
    SetPwdOptional();
}

void DSProxyConfiguration::SetUseProxy(bool in_use)
{
    m_map.SetValue(m_descriptor.useProxyKey, in_use ? u"1" : u"0");
}

void DSProxyConfiguration::SetProxyHost(tarni_wstring_view in_host)
{
    m_map.SetValue(m_descriptor.hostKey, in_host);
}

void DSProxyConfiguration::SetProxyPort(tarni_wstring_view in_port)
{
    m_map.SetValue(m_descriptor.portKey, in_port);
}

void DSProxyConfiguration::GetDefaultDriverProperties(ConfigurationMap& io_defaults) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetDefaultDriverProperties");
    DSUidPwdConfiguration::GetDefaultDriverProperties(io_defaults);
    io_defaults.SetValue(m_descriptor.useProxyKey, u"0");
}

void DSProxyConfiguration::ShowPwdNotSavedInfoMsg(DSMessageBoxHost& io_host) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "ShowPwdNotSavedInfoMsg");
    if (!IsUseProxy())
    {
        return;
    }
    DSUidPwdConfiguration::ShowPwdNotSavedInfoMsg(io_host);
}
}  // namespace Tarni::DriverSupport
