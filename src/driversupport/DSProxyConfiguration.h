#pragma once
#include "driversupport/DSUidPwdConfiguration.h"

namespace Tarni::DriverSupport
{
/// The HTTP proxy settings: the switch, host and port, and the proxy's
/// credentials (a credential whose password is saved only in protected form).
class DSProxyConfiguration : public DSUidPwdConfiguration
{
public:
    DSProxyConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger, unsigned in_configType);

    tarni_wstring GetUseProxy() const { return m_map.GetValue(u"UseProxy"); }
    tarni_wstring GetProxyHost() const { return m_map.GetValue(u"ProxyHost"); }
    tarni_wstring GetProxyPort() const { return m_map.GetValue(u"ProxyPort"); }
};
}  // namespace Tarni::DriverSupport
