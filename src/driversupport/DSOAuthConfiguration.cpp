#include "driversupport/DSOAuthConfiguration.h"

#include <boost/url/parse.hpp>

#include "core/ComponentId.h"
#include "core/ErrorException.h"
#include "core/NumberConverter.h"
#include "driversupport/ConfigurationKeys.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSOAuthConfiguration";

[[noreturn]] void Refuse(tarni_wstring_view in_key, tarni_wstring_view in_label, tarni_wstring_view in_value)
{
    throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, tarni_wstring(in_key),
                                  {tarni_wstring(in_label), tarni_wstring(in_value)});
}

bool IsLoopbackHost(const boost::urls::url_view& in_url)
{
    switch (in_url.host_type())
    {
        case boost::urls::host_type::name:
        {
            std::string name = in_url.encoded_host().decode();
            for (char& c : name)
            {
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            }
            return name == "localhost";
        }
        case boost::urls::host_type::ipv4:
            return in_url.host_ipv4_address().is_loopback();
        case boost::urls::host_type::ipv6:
            return in_url.host_ipv6_address().is_loopback();
        default:
            return false;
    }
}
}  // namespace

DSOAuthConfiguration::DSOAuthConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger,
                                           unsigned in_configType, DSUidPwdConfiguration& io_clientSecret,
                                           DSUidPwdConfiguration& io_accessToken)
    : m_map(io_map),
      m_logger(in_logger),
      m_clientSecret(io_clientSecret),
      m_accessToken(io_accessToken),
      // The identity provider is reached over TLS unless the user says otherwise.
      m_ssl(io_map, in_logger, in_configType, DSSSLKeySetDescriptor{tarni_wstring(SSL_PREFIX), false, false, true},
            true)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DSOAuthConfiguration");
    for (DSUidPwdConfiguration* secret : {&m_clientSecret, &m_accessToken})
    {
        secret->SetParentDlgName(u"OAuth Options dialog");
        secret->SetPasswordOptionsButtonName(u"Encryption Options button");
        // Each flow takes only one of the two.
        secret->SetPwdOptional();
    }
    m_ssl.GetClientKeyCredentials().SetParentDlgName(u"SSL Options dialog in the OAuth Options dialog");
}

const std::vector<tarni_wstring>& DSOAuthConfiguration::FlowNames()
{
    static const std::vector<tarni_wstring> names{u"Token Passthrough", u"Client Credentials",
                                                  u"Browser Based Authorization Code"};
    return names;
}

bool DSOAuthConfiguration::FlowUses(unsigned in_flow, Field in_field)
{
    switch (in_flow)
    {
        case FLOW_TOKEN_PASSTHROUGH:
            return in_field == FIELD_ACCESS_TOKEN;
        case FLOW_CLIENT_CREDENTIALS:
            return in_field == FIELD_CLIENT_ID || in_field == FIELD_CLIENT_SECRET || in_field == FIELD_TOKEN_END_POINT ||
                   in_field == FIELD_SCOPE || in_field == FIELD_TOKEN_CACHE;
        case FLOW_BROWSER:
            // Everything but a token handed in from outside; the secret is
            // optional there (public clients use PKCE instead).
            return in_field != FIELD_ACCESS_TOKEN;
        default:
            return false;
    }
}

void DSOAuthConfiguration::GetDefaultDriverProperties(ConfigurationMap& io_defaults) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetDefaultDriverProperties");
    m_ssl.GetDefaultDriverProperties(io_defaults);
}

void DSOAuthConfiguration::InitializeAfterLoad()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "InitializeAfterLoad");
    m_ssl.InitializeAfterLoad();
}

void DSOAuthConfiguration::FinalizeBeforeSave()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "FinalizeBeforeSave");
    m_ssl.FinalizeBeforeSave();
}

std::optional<unsigned> DSOAuthConfiguration::GetFlow() const
{
    return Support::NumberConverter::ToUInt32(m_map.GetValue(Keys::Auth_Flow));
}

void DSOAuthConfiguration::SetFlow(unsigned in_flow)
{
    m_map.SetValue(Keys::Auth_Flow, StringConverter::FromNumber(static_cast<unsigned long long>(in_flow)));
}

void DSOAuthConfiguration::ShareEncryptionOptions()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "ShareEncryptionOptions");
    m_accessToken.SetEncryptPwd(m_clientSecret.IsEncryptPwd());
    m_accessToken.SetDPAPIEncryptForAllUsers(m_clientSecret.IsDPAPIEncryptForAllUsers());
}

void DSOAuthConfiguration::CheckEndPoint(tarni_wstring_view in_label, tarni_wstring_view in_value)
{
    if (in_value.empty())
    {
        return;
    }
    const std::string text = StringConverter::ToUtf8(in_value);
    const auto parsed = boost::urls::parse_absolute_uri(text);
    if (!parsed || !parsed->has_authority() || parsed->encoded_host().empty())
    {
        Refuse(u"DSOAuthEndPointErr", in_label, in_value);
    }
    const boost::urls::scheme scheme = parsed->scheme_id();
    if (scheme == boost::urls::scheme::https)
    {
        return;
    }
    if (scheme == boost::urls::scheme::http)
    {
        if (IsLoopbackHost(*parsed))
        {
            return;
        }
        Refuse(u"DSOAuthPlainHttpErr", in_label, in_value);
    }
    Refuse(u"DSOAuthEndPointErr", in_label, in_value);
}

void DSOAuthConfiguration::CheckRedirect(tarni_wstring_view in_label, tarni_wstring_view in_value)
{
    if (in_value.empty())
    {
        return;
    }
    if (in_value.find_first_not_of(u"0123456789") == tarni_wstring_view::npos)
    {
        const auto port = Support::NumberConverter::ToUInt32(in_value);
        if (!port || *port == 0 || *port > 65535)
        {
            Refuse(u"DSOAuthRedirectPortErr", in_label, in_value);
        }
        return;
    }
    CheckEndPoint(in_label, in_value);
}

void DSOAuthConfiguration::CheckNumber(tarni_wstring_view in_label, tarni_wstring_view in_value)
{
    if (!in_value.empty() && !Support::NumberConverter::ToUInt32(in_value))
    {
        Refuse(u"DSOAuthNumberErr", in_label, in_value);
    }
}
}  // namespace Tarni::DriverSupport
