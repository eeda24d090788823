#pragma once
// The SSL settings of a connection over the owner's map: TLS on or off, how
// the server certificate is judged, the trust store, the minimum TLS version
// and the client certificate of two-way SSL, whose key password is a
// credential saved only in protected form.
#include <memory>
#include <optional>

#include "driversupport/DSSSLKeySetDescriptor.h"
#include "driversupport/DSUidPwdConfiguration.h"

namespace Tarni::DriverSupport
{
class DSSSLConfiguration : public DSConfigurationComponent
{
public:
    enum MinTlsVersion : unsigned
    {
        TLS_1_0 = 0,
        TLS_1_1 = 1,
        TLS_1_2 = 2,
        TLS_UNRESTRICTED = 3,
    };

    DSSSLConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger, unsigned in_configType,
                       std::optional<DSSSLKeySetDescriptor> in_descriptor, bool in_minTlsShown);

    void GetDefaultDriverProperties(ConfigurationMap& io_defaults) const override;
    void InitializeAfterLoad() override;
    void FinalizeBeforeSave() override;

    tarni_wstring GetSsl() const { return Get(u"SSL"); }
    /// in_userToggled: the user clicked "Enable SSL" while the dialog was open.
    void SetSsl(tarni_wstring_view in_value, bool in_userToggled);
    void LoadLastUserSelectedSslConfig();
    tarni_wstring GetTrustedCerts() const { return Get(u"TrustedCerts"); }
    void SetTrustedCerts(tarni_wstring_view in_value) { Set(u"TrustedCerts", in_value); }
    tarni_wstring GetMinTlsVer() const { return Get(u"Min_TLS"); }
    void SetMinTlsVer(tarni_wstring_view in_value) { Set(u"Min_TLS", in_value); }
    bool IsForcedSSL() const { return m_descriptor && m_descriptor->sslForced; }
    bool IsEnableMinTlsDlgElement() const { return m_minTlsShown; }
    DSUidPwdConfiguration& GetClientKeyCredentials() { return *m_clientKeyCredentials; }
    /// The client private key password's "Credentials Not Saved" box.
    void ShowPwdNotSavedInfoMsg(DSMessageBoxHost& io_host) const;

    /// "1.0", "1.1", "1.2" or "unrestricted"; other text gives in_default.
    static MinTlsVersion ParseMinTls(tarni_wstring_view in_text, MinTlsVersion in_default);
    static tarni_wstring MinTlsText(MinTlsVersion in_version);
    /// The product's default: setting "min-tls" when set, else 1.2.
    static MinTlsVersion GetDefaultMinTls();
    /// The driver's installation folder, with a trailing separator; cached.
    static tarni_wstring GetInstallationDirectory();

private:
    tarni_wstring Key(tarni_wstring_view in_name) const;
    tarni_wstring Get(tarni_wstring_view in_name) const { return m_map.GetValue(Key(in_name)); }
    void Set(tarni_wstring_view in_name, tarni_wstring_view in_value) { m_map.SetValue(Key(in_name), in_value); }

    ConfigurationMap& m_map;
    Support::ILogger* m_logger;
    std::optional<DSSSLKeySetDescriptor> m_descriptor;
    bool m_minTlsShown;
    tarni_wstring m_lastUserSelectedSsl;
    std::unique_ptr<DSUidPwdConfiguration> m_clientKeyCredentials;
};
}  // namespace Tarni::DriverSupport
