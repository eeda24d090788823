#pragma once
// The SSL settings of a connection over the owner's map: TLS on or off, how
// the server certificate is judged, the trust store, the minimum TLS version
// and the client certificate of two-way SSL, whose key password is a
// credential saved only in protected form. Every key is read and written
// under the owner's prefix ("AOSS_" for the AOSS status endpoint).
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
    /// An empty trusted certificates path becomes the default file; a stored
    /// "1" or "0" of SSL is remembered as the user's last choice; the client
    /// key password is recovered from its protected form.
    void InitializeAfterLoad() override;
    /// An empty trusted certificates path becomes the default file; the
    /// client key password is protected, or dropped when the owner has no
    /// two-way SSL.
    void FinalizeBeforeSave() override;

    tarni_wstring GetSsl() const { return Get(u"SSL"); }
    /// in_userToggled: the user clicked "Enable SSL" while the dialog was open;
    /// the value is then remembered as the user's last choice.
    void SetSsl(tarni_wstring_view in_value, bool in_userToggled);
    /// Writes the remembered choice back to SSL (nothing is remembered before
    /// a load or a toggle; SSL is then left alone).
    void LoadLastUserSelectedSslConfig();

    tarni_wstring GetAllowHostNameCNMismatch() const { return Get(u"AllowHostNameCNMismatch"); }
    void SetAllowHostNameCNMismatch(tarni_wstring_view in_value) { Set(u"AllowHostNameCNMismatch", in_value); }
    tarni_wstring GetAllowSelfSignedServerCert() const { return Get(u"AllowSelfSignedServerCert"); }
    void SetAllowSelfSignedServerCert(tarni_wstring_view in_value) { Set(u"AllowSelfSignedServerCert", in_value); }
    tarni_wstring GetAllowInvalidCaCert() const { return Get(u"AllowInvalidCACert"); }
    void SetAllowInvalidCaCert(tarni_wstring_view in_value) { Set(u"AllowInvalidCACert", in_value); }
    tarni_wstring GetUseSystemTrustStore() const { return Get(u"UseSystemTrustStore"); }
    void SetUseSystemTrustStore(tarni_wstring_view in_value) { Set(u"UseSystemTrustStore", in_value); }
    tarni_wstring GetCheckCertRevocation() const { return Get(u"CheckCertRevocation"); }
    void SetCheckCertRevocation(tarni_wstring_view in_value) { Set(u"CheckCertRevocation", in_value); }
    tarni_wstring GetTrustedCerts() const { return Get(u"TrustedCerts"); }
    void SetTrustedCerts(tarni_wstring_view in_value) { Set(u"TrustedCerts", in_value); }
    tarni_wstring GetTwoWaySSL() const { return Get(u"TwoWaySSL"); }
    void SetTwoWaySSL(tarni_wstring_view in_value) { Set(u"TwoWaySSL", in_value); }
    tarni_wstring GetClientCert() const { return Get(u"ClientCert"); }
    void SetClientCert(tarni_wstring_view in_value) { Set(u"ClientCert", in_value); }
    tarni_wstring GetClientPrivateKeyFile() const { return Get(u"ClientPrivateKey"); }
    void SetClientPrivateKeyFile(tarni_wstring_view in_value) { Set(u"ClientPrivateKey", in_value); }
    tarni_wstring GetClientPrivateKeyPassword() const { return m_clientKeyCredentials->GetPwd(); }
    void SetClientPrivateKeyPassword(tarni_wstring_view in_value) { m_clientKeyCredentials->SetPwd(in_value); }
    tarni_wstring GetMinTlsVer() const { return Get(u"Min_TLS"); }
    void SetMinTlsVer(tarni_wstring_view in_value) { Set(u"Min_TLS", in_value); }

    /// The owner turns SSL on whatever is stored (false without a descriptor).
    bool IsForcedSSL() const { return m_descriptor && m_descriptor->sslForced; }
    /// The owner supports two-way SSL: the larger dialog, and the client key
    /// password is kept (protected) on save.
    bool IsTwoWaySSLSupported() const { return m_descriptor && m_descriptor->twoWaySSLSupported; }
    bool IsEnableMinTlsDlgElement() const { return m_minTlsShown; }
    const tarni_wstring& GetPrefix() const;
    Support::ILogger* GetLog() const { return m_logger; }
    DSUidPwdConfiguration& GetClientKeyCredentials() { return *m_clientKeyCredentials; }
    const DSUidPwdConfiguration& GetClientKeyCredentials() const { return *m_clientKeyCredentials; }
    /// The client private key password's "Credentials Not Saved" box.
    void ShowPwdNotSavedInfoMsg(DSMessageBoxHost& io_host) const;

    /// Logs a warning when the trusted certificates path names no file; the
    /// path is kept as it is (the user may fix it with "Browse...").
    void WarnIfTrustedCertsMissing() const;

    /// "1.0", "1.1", "1.2" or "unrestricted" (any case); other text gives in_default.
    static MinTlsVersion ParseMinTls(tarni_wstring_view in_text, MinTlsVersion in_default);
    static tarni_wstring MinTlsText(MinTlsVersion in_version);
    /// The product's default: setting "min-tls" when set, else 1.2. A
    /// setting that is none of the four texts also gives 1.2.
    static MinTlsVersion GetDefaultMinTls();
    /// The product setting "allow-unrestricted-tls" is "1" or "true".
    static bool IsUnrestrictedTlsPermitted();
    /// The driver's installation folder, with a trailing separator: computed
    /// once per process (under a lock) and cached.
    static tarni_wstring GetInstallationDirectory();
    /// The installation folder + "cacerts.pem".
    static tarni_wstring GetDefaultTrustedCerts();

private:
    tarni_wstring Key(tarni_wstring_view in_name) const { return GetPrefix() + tarni_wstring(in_name); }
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
