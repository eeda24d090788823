#include "thrift/connectiontest/TEConnectionTarget.h"

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSBase64.h"
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSWarningList.h"
#include "support/StringConverter.h"
#include "thrift/TEConnectionUtils.h"
#include "thrift/TEException.h"
#ifdef TARNI_HAVE_ZOOKEEPER
#include "thrift/connectiontest/TEZooKeeperDiscovery.h"
#endif

namespace Tarni::ThriftExtension
{
namespace DSKeys = DriverSupport::Keys;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEConnectionTarget";

/// Seconds when ConnectionTestTimeout and SocketTimeout are both 0 or absent.
constexpr unsigned FALLBACK_TIMEOUT_SECONDS = 30;

std::string Utf8Value(const DriverSupport::DSDSNConfiguration& in_configuration, tarni_wstring_view in_key)
{
    return StringConverter::ToUtf8(in_configuration.GetValue(in_key));
}

bool IsOn(const DriverSupport::DSDSNConfiguration& in_configuration, tarni_wstring_view in_key)
{
    const tarni_wstring value = in_configuration.GetValue(in_key);
    return value == u"1" || StringConverter::EqualsIgnoreCase(value, u"true");
}

/// A whole number, or 0 for an empty or malformed value.
unsigned Number(const DriverSupport::DSDSNConfiguration& in_configuration, tarni_wstring_view in_key)
{
    const std::string text = Utf8Value(in_configuration, in_key);
    if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos)
    {
        return 0;
    }
    return static_cast<unsigned>(std::stoul(text));
}

/// The service discovery mode: its number or its name.
unsigned DiscoveryMode(const DriverSupport::DSDSNConfiguration& in_configuration)
{
    const tarni_wstring value = in_configuration.GetValue(DSKeys::ServiceDiscoveryMode);
    if (StringConverter::EqualsIgnoreCase(value, u"ZooKeeper"))
    {
        return 1;
    }
    if (StringConverter::EqualsIgnoreCase(value, u"AOSS"))
    {
        return 2;
    }
    return Number(in_configuration, DSKeys::ServiceDiscoveryMode);
}

std::string Required(const DriverSupport::DSDSNConfiguration& in_configuration, tarni_wstring_view in_key)
{
    std::string value = Utf8Value(in_configuration, in_key);
    if (value.empty())
    {
        throw TEException::WithText(u"TEConnectionTestMissingSetting", StringConverter::ToUtf8(in_key));
    }
    return value;
}

[[noreturn]] void Unsupported(const std::string& in_what)
{
    throw TEException::WithText(u"TEConnectionTestUnsupported", in_what);
}

// Kerberos (1) goes over the configured SASL or HTTP transport; "Kerberos over
// HTTP" (9) and "over HTTPS" (10) always use HTTP.
void ReadKerberos(const DriverSupport::DSDSNConfiguration& in_configuration, TEConnectionTarget& io_target)
{
    io_target.m_authentication = TEConnectionTarget::Authentication::Kerberos;
    if (io_target.m_authMech != 1)
    {
        io_target.m_transport = TETransportMode::HTTP;
    }
    else if (io_target.m_transport == TETransportMode::Binary)
    {
        throw TEException(u"TEKerberosNeedsTransport");
    }
    io_target.m_krbServiceName = Utf8Value(in_configuration, DSKeys::KrbServiceName);
    io_target.m_krbHostFqdn = Utf8Value(in_configuration, DSKeys::KrbHostFQDN);
    io_target.m_krbRealm = Utf8Value(in_configuration, DSKeys::KrbRealm);
    if (io_target.m_krbServiceName.empty())
    {
        throw TEException::WithText(u"TEConnectionTestMissingSetting", "KrbServiceName");
    }
    if (io_target.m_krbHostFqdn.empty())
    {
        throw TEException::WithText(u"TEConnectionTestMissingSetting", "KrbHostFQDN");
    }
    // Canonicalisation is on unless switched off.
    io_target.m_krbCanonicalize = in_configuration.GetValue(DSKeys::ServicePrincipalCanonicalization) != u"0";
    io_target.m_krbDelegate = IsOn(in_configuration, DSKeys::DelegateKrbCreds);
}
}  // namespace

TEConnectionTarget TEConnectionTarget::FromConfiguration(const DriverSupport::DSDSNConfiguration& in_configuration)
{
    Support::ILogger* log = in_configuration.GetLog();
    TARNI_LOG_ENTRY(log, NS, CLS, "FromConfiguration");
    TEConnectionTarget target;
    DriverSupport::DSWarningList warnings;
    TEConnectionUtils::ReadConnectionSetting(in_configuration.GetMap(), target.m_settings, log, warnings);
    // The test's requests carry a session tag, so that the server's log can
    // be searched for this attempt (the tag is in the driver's log).
    target.m_settings.m_httpSettings.m_enableSessionTag = true;
    target.m_settings.AddSessionTagHeader(log);

    const unsigned discovery = DiscoveryMode(in_configuration);
    if (discovery == 1)
    {
#ifdef TARNI_HAVE_ZOOKEEPER
        // The host list is the ensemble; entries without a port take Port.
        target.m_zooKeeperDiscovery = true;
        target.m_zooKeeperEnsemble = TEZooKeeperDiscovery::BuildEnsemble(
            target.m_settings.m_host, target.m_settings.m_port == 0 ? 2181 : target.m_settings.m_port);
        target.m_zooKeeperNamespace = Required(in_configuration, DSKeys::ZKNamespace);
        if (target.m_zooKeeperNamespace.front() != '/')
        {
            target.m_zooKeeperNamespace.insert(0, "/");
        }
#else
        Unsupported("service discovery through ZooKeeper, for which this build has no ZooKeeper client");
#endif
    }
    if (discovery == 2)
    {
        Unsupported("service discovery through AOSS");
    }

    if (!target.m_zooKeeperDiscovery)
    {
        // The first of a comma-separated host list.
        target.m_host = target.m_settings.m_host.substr(0, target.m_settings.m_host.find(','));
        while (!target.m_host.empty() && target.m_host.back() == ' ')
        {
            target.m_host.pop_back();
        }
        if (target.m_host.empty())
        {
            throw TEException::WithText(u"TEConnectionTestMissingSetting", "Host");
        }
        target.m_port = target.m_settings.m_port;
        if (target.m_port == 0)
        {
            throw TEException::WithText(u"TEConnectionTestMissingSetting", "Port");
        }
    }
    target.m_transport = target.m_settings.m_transportMode;

    unsigned timeout = Number(in_configuration, DSKeys::ConnectionTestTimeout);
    if (timeout == 0)
    {
        timeout = Number(in_configuration, DSKeys::SocketTimeout);
    }
    target.m_timeoutMs = static_cast<int>((timeout == 0 ? FALLBACK_TIMEOUT_SECONDS : timeout) * 1000);

    target.m_authMech = Number(in_configuration, DSKeys::AuthMech);
    target.m_user = Utf8Value(in_configuration, DSKeys::UID);
    switch (target.m_authMech)
    {
        case 0:
            // Without authentication a SASL server still wants a PLAIN
            // exchange; it takes any name.
            if (target.m_transport == TETransportMode::SASL)
            {
                target.m_authentication = Authentication::Plain;
                target.m_user = target.m_user.empty() ? "anonymous" : target.m_user;
                target.m_secret = "anonymous";
            }
            break;
        case 2:
            target.m_authentication = Authentication::Plain;
            break;
        case 3:
        case 4:
        case 5:
        case 6:
            target.m_authentication = Authentication::Plain;
            target.m_secret = Utf8Value(in_configuration, DSKeys::PWD);
            break;
        case 1:
        case 9:
        case 10:
            ReadKerberos(in_configuration, target);
            break;
        case 11:
        {
            const std::string flow = Utf8Value(in_configuration, DSKeys::Auth_Flow);
            target.m_authentication = Authentication::BearerToken;
            if (flow == "1")
            {
                target.m_clientCredentials = true;
                target.m_tokenEndPoint = Required(in_configuration, DSKeys::OAuth2TokenEndPoint);
                target.m_clientId = Required(in_configuration, DSKeys::Auth_Client_ID);
                target.m_clientSecret = Required(in_configuration, DSKeys::Auth_Client_Secret);
                target.m_scope = Utf8Value(in_configuration, DSKeys::Auth_Scope);
                break;
            }
            if (flow == "2")
            {
                Unsupported("the browser-based OAuth 2.0 flow (Auth_Flow 2), which opens a browser; not tested here");
            }
            if (!flow.empty() && flow != "0")
            {
                Unsupported("the OAuth 2.0 flow " + flow + " (Auth_Flow)");
            }
            target.m_secret = Utf8Value(in_configuration, DSKeys::Auth_AccessToken);
            if (target.m_secret.empty())
            {
                throw TEException::WithText(u"TEConnectionTestMissingSetting", "Auth_AccessToken");
            }
            break;
        }
        case 12:
            Unsupported("SAML 2.0 authentication");
        default:
            Unsupported("the authentication mechanism " + std::to_string(target.m_authMech));
    }
    if (target.m_authentication == Authentication::BearerToken && target.m_transport != TETransportMode::HTTP)
    {
        Unsupported("an OAuth 2.0 token over a transport other than HTTP");
    }

    // "Kerberos over HTTPS" is the HTTP transport with TLS.
    target.m_ssl = IsOn(in_configuration, DSKeys::SSL) || target.m_authMech == 10;
    target.m_allowSelfSigned = IsOn(in_configuration, DSKeys::AllowSelfSignedServerCert);
    target.m_allowHostNameMismatch = IsOn(in_configuration, DSKeys::AllowHostNameCNMismatch);
    target.m_useSystemTrustStore = IsOn(in_configuration, DSKeys::UseSystemTrustStore);
    target.m_trustedCertsFile = Utf8Value(in_configuration, DSKeys::TrustedCerts);
    const std::string minTls = Utf8Value(in_configuration, DSKeys::Min_TLS);
    if (!minTls.empty())
    {
        target.m_minTls = minTls;
    }
    target.m_twoWaySsl = IsOn(in_configuration, DSKeys::TwoWaySSL);
    if (target.m_twoWaySsl)
    {
        target.m_clientCertFile = Utf8Value(in_configuration, DSKeys::ClientCert);
        target.m_clientKeyFile = Utf8Value(in_configuration, DSKeys::ClientPrivateKey);
        target.m_clientKeyPassword = Utf8Value(in_configuration, DSKeys::ClientPrivateKeyPWD);
    }
    target.m_proxy = target.m_settings.m_proxy;

    if (log != nullptr)
    {
        static const char* const transports[] = {"binary", "SASL", "HTTP"};
        const std::string where = target.m_zooKeeperDiscovery
                                      ? "the servers under " + target.m_zooKeeperNamespace + " on ZooKeeper " +
                                            target.m_zooKeeperEnsemble
                                      : target.GetAuthority();
        log->LogInfo(NS, CLS, "FromConfiguration", "Testing %s over %s%s, authentication mechanism %u, limit %d ms.",
                     where.c_str(), transports[static_cast<unsigned>(target.m_transport)],
                     target.m_ssl ? " with TLS" : "", target.m_authMech, target.m_timeoutMs);
    }
    return target;
}

std::string TEConnectionTarget::GetAuthority() const
{
    const bool ipv6 = m_host.find(':') != std::string::npos;
    return (ipv6 ? "[" + m_host + "]" : m_host) + ":" + std::to_string(m_port);
}

std::string TEConnectionTarget::GetRequestPath() const
{
    const std::string& path = m_settings.m_httpPath;
    return !path.empty() && path.front() == '/' ? path : "/" + path;
}

std::map<std::string, std::string> TEConnectionTarget::BuildHttpHeaders() const
{
    std::map<std::string, std::string> headers = m_settings.m_customHttpHeaders;
    headers["User-Agent"] = m_settings.m_userAgent;
    switch (m_authentication)
    {
        case Authentication::Plain:
            headers["Authorization"] = "Basic " + DriverSupport::DSBase64::Encode(m_user + ":" + m_secret);
            break;
        case Authentication::BearerToken:
            headers["Authorization"] = "Bearer " + m_secret;
            break;
        case Authentication::Kerberos:
            // A new Negotiate token per request (TEKerberosAuthenticator).
        case Authentication::None:
            break;
    }
    return headers;
}
}  // namespace Tarni::ThriftExtension
