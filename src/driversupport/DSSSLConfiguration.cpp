#include "driversupport/DSSSLConfiguration.h"

#include <filesystem>
#include <mutex>

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/ProductSettingKeys.h"
#include "platform/DriverInstallation.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSSSLConfiguration";

const tarni_wstring NO_PREFIX;
}  // namespace

DSSSLConfiguration::DSSSLConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger,
                                       unsigned in_configType, std::optional<DSSSLKeySetDescriptor> in_descriptor,
                                       bool in_minTlsShown)
    : m_map(io_map), m_logger(in_logger), m_descriptor(std::move(in_descriptor)), m_minTlsShown(in_minTlsShown)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DSSSLConfiguration");
    DSUidPwdKeySet keys{tarni_wstring(), tarni_wstring(Keys::ClientPrivateKeyPWD),
                        tarni_wstring(Keys::EncryptedClientPrivateKeyPWD), GetPrefix()};
    m_clientKeyCredentials = std::make_unique<DSUidPwdConfiguration>(io_map, in_logger, in_configType, keys);
    m_clientKeyCredentials->SetParentDlgName(u"SSL Options dialog");
    // A client key need not be encrypted: no password is no loss.
    m_clientKeyCredentials->SetPwdOptional();
}

const tarni_wstring& DSSSLConfiguration::GetPrefix() const { return m_descriptor ? m_descriptor->prefix : NO_PREFIX; }

void DSSSLConfiguration::ShowPwdNotSavedInfoMsg(DSMessageBoxHost& io_host) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "ShowPwdNotSavedInfoMsg");
    m_clientKeyCredentials->ShowPwdNotSavedInfoMsg(io_host);
}

tarni_wstring DSSSLConfiguration::GetInstallationDirectory()
{
    static std::mutex lock;
    static std::optional<tarni_wstring> directory;
    const std::lock_guard<std::mutex> guard(lock);
    if (!directory)
    {
        directory = Platform::DriverInstallation::GetDirectory();
    }
    return *directory;
}

tarni_wstring DSSSLConfiguration::GetDefaultTrustedCerts() { return GetInstallationDirectory() + u"cacerts.pem"; }

DSSSLConfiguration::MinTlsVersion DSSSLConfiguration::ParseMinTls(tarni_wstring_view in_text,
                                                                  MinTlsVersion in_default)
{
    if (in_text == u"1.0") return TLS_1_0;
    if (in_text == u"1.1") return TLS_1_1;
    if (in_text == u"1.2") return TLS_1_2;
    if (StringConverter::EqualsIgnoreCase(in_text, u"unrestricted")) return TLS_UNRESTRICTED;
    return in_default;
}

tarni_wstring DSSSLConfiguration::MinTlsText(MinTlsVersion in_version)
{
    switch (in_version)
    {
        case TLS_1_0: return u"1.0";
        case TLS_1_1: return u"1.1";
        case TLS_1_2: return u"1.2";
        case TLS_UNRESTRICTED: break;
    }
    return u"unrestricted";
}

DSSSLConfiguration::MinTlsVersion DSSSLConfiguration::GetDefaultMinTls()
{
    const tarni_wstring setting = DSProductHelper::GetSetting(ProductSettingKeys::MinTls);
    return setting.empty() ? TLS_1_2 : ParseMinTls(setting, TLS_1_2);
}

bool DSSSLConfiguration::IsUnrestrictedTlsPermitted()
{
    const tarni_wstring setting = DSProductHelper::GetSetting(ProductSettingKeys::AllowUnrestrictedTls);
    return setting == u"1" || setting == u"true";
}

void DSSSLConfiguration::GetDefaultDriverProperties(ConfigurationMap& io_defaults) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetDefaultDriverProperties");
    const auto put = [&](tarni_wstring_view in_name, tarni_wstring_view in_value) {
        io_defaults.SetValue(Key(in_name), in_value);
    };
    put(Keys::SSL, (m_descriptor && m_descriptor->sslOnByDefault) ? u"1" : u"0");
    put(Keys::TrustedCerts, GetDefaultTrustedCerts());
    put(Keys::AllowHostNameCNMismatch, u"0");
    put(Keys::AllowSelfSignedServerCert, u"0");
    put(Keys::UseSystemTrustStore,
        StringConverter::EqualsIgnoreCase(DSProductHelper::GetSetting(ProductSettingKeys::UseSystemTrustStore), u"1")
            ? u"1"
            : u"0");
    put(Keys::CheckCertRevocation,
        DSProductHelper::GetSetting(ProductSettingKeys::CheckCertRevocation) == u"0" ? u"0" : u"1");
    const tarni_wstring allowInvalid = DSProductHelper::GetSetting(ProductSettingKeys::AllowInvalidCACert);
    put(Keys::AllowInvalidCACert, (allowInvalid == u"1" || allowInvalid == u"true") ? u"1" : u"0");
    if (IsTwoWaySSLSupported())
    {
        put(Keys::TwoWaySSL, u"0");
    }
    if (m_minTlsShown)
    {
        put(Keys::Min_TLS, MinTlsText(GetDefaultMinTls()));
    }
    m_clientKeyCredentials->GetDefaultDriverProperties(io_defaults);
}

void DSSSLConfiguration::SetSsl(tarni_wstring_view in_value, bool in_userToggled)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetSsl");
    Set(Keys::SSL, in_value);
    if (in_userToggled)
    {
        m_lastUserSelectedSsl = tarni_wstring(in_value);
    }
}

void DSSSLConfiguration::LoadLastUserSelectedSslConfig()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "LoadLastUserSelectedSslConfig");
    if (!m_lastUserSelectedSsl.empty())
    {
        Set(Keys::SSL, m_lastUserSelectedSsl);
    }
}

void DSSSLConfiguration::WarnIfTrustedCertsMissing() const
{
    const tarni_wstring path = Get(Keys::TrustedCerts);
    std::error_code error;
    if (!path.empty() && !std::filesystem::is_regular_file(std::filesystem::path(std::u16string(path)), error) &&
        m_logger != nullptr)
    {
        m_logger->LogWarning(NS, CLS, "WarnIfTrustedCertsMissing",
                             "The trusted certificates file \"%s\" of %s does not exist.",
                             StringConverter::ToUtf8(path).c_str(), StringConverter::ToUtf8(Key(Keys::TrustedCerts)).c_str());
    }
}

void DSSSLConfiguration::InitializeAfterLoad()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "InitializeAfterLoad");
    if (Get(Keys::TrustedCerts).empty())
    {
        Set(Keys::TrustedCerts, GetDefaultTrustedCerts());
    }
    if (m_map.Contains(Key(Keys::SSL)))
    {
        const tarni_wstring ssl = Get(Keys::SSL);
        if (StringConverter::EqualsIgnoreCase(ssl, u"1") || StringConverter::EqualsIgnoreCase(ssl, u"0"))
        {
            m_lastUserSelectedSsl = ssl;
        }
    }
    m_clientKeyCredentials->InitializeAfterLoad();
}

void DSSSLConfiguration::FinalizeBeforeSave()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "FinalizeBeforeSave");
    if (Get(Keys::TrustedCerts).empty())
    {
        Set(Keys::TrustedCerts, GetDefaultTrustedCerts());
    }
    if (IsTwoWaySSLSupported())
    {
        m_clientKeyCredentials->FinalizeBeforeSave();
    }
    else
    {
        m_map.Remove(Key(Keys::ClientPrivateKeyPWD));
    }
}
}  // namespace Tarni::DriverSupport
