#pragma once
#include "driversupport/DSProxyKeySetDescriptor.h"
#include "driversupport/DSUidPwdConfiguration.h"

namespace Tarni::DriverSupport
{
/// The HTTP proxy settings that the proxy dialog edits: the switch, host and
/// port, and the proxy's credentials ("ProxyUID", "ProxyPWD", saved only as
/// "ProxyEncryptedPWD"). Switching the proxy off keeps host, port and
/// credentials for the next time it is switched on.
class DSProxyConfiguration : public DSUidPwdConfiguration
{
public:
    DSProxyConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger, unsigned in_configType,
                         DSProxyKeySetDescriptor in_descriptor = {});

    const DSProxyKeySetDescriptor& GetDescriptor() const { return m_descriptor; }

    tarni_wstring GetUseProxy() const { return m_map.GetValue(m_descriptor.useProxyKey); }
    tarni_wstring GetProxyHost() const { return m_map.GetValue(m_descriptor.hostKey); }
    tarni_wstring GetProxyPort() const { return m_map.GetValue(m_descriptor.portKey); }
    /// Only the exact value "0" switches the proxy off; an absent key is on.
    bool IsUseProxy() const { return GetUseProxy() != u"0"; }

    void SetUseProxy(bool in_use);
    void SetProxyHost(tarni_wstring_view in_host);
    void SetProxyPort(tarni_wstring_view in_port);

    /// A new configuration starts with the proxy off ("UseProxy" = "0").
    void GetDefaultDriverProperties(ConfigurationMap& io_defaults) const override;

    /// The "Credentials Not Saved" warning of the credential model for the
    /// proxy password; nothing while the proxy is off or has no password (a
    /// proxy often needs none).
    void ShowPwdNotSavedInfoMsg(DSMessageBoxHost& io_host) const override;

private:
    DSProxyKeySetDescriptor m_descriptor;
};
}  // namespace Tarni::DriverSupport
