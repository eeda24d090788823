#pragma once
// What the connection test connects to and how: the server, the transport
// stack, the credentials, the TLS rules and the time limit, taken from a data
// source's configuration as it stands (the values on screen, not the stored
// ones). Settings this build cannot test are refused when the target is made.
#include <cstdint>
#include <map>
#include <string>

#include "driversupport/DSProxyDescription.h"
#include "thrift/TESettings.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;
}

namespace Tarni::ThriftExtension
{
class TEConnectionTarget
{
public:
    enum class Authentication
    {
        None,         ///< no credentials
        Plain,        ///< user name and password (SASL PLAIN or HTTP basic)
        BearerToken,  ///< an OAuth access token passed through (HTTP only)
        Kerberos,     ///< the user's Kerberos ticket (SASL GSSAPI, or HTTP Negotiate)
    };

    /// The target of a configuration. Throws TEException
    /// "TEConnectionTestUnsupported" for an authentication, flow or service
    /// discovery mode that cannot be tested here, "TEConnectionTestMissingSetting"
    /// when the host or the port is missing, and the connection settings'
    /// own errors for malformed values.
    static TEConnectionTarget FromConfiguration(const DriverSupport::DSDSNConfiguration& in_configuration);

    /// "host:port" for messages (an IPv6 address in brackets).
    std::string GetAuthority() const;

    /// The request headers of the HTTP transport: user agent, custom
    /// headers, session tag and authorisation. Secrets are only in the
    /// Authorization value.
    std::map<std::string, std::string> BuildHttpHeaders() const;

    /// The HTTP path as a request target: always begins with "/".
    std::string GetRequestPath() const;

    TESettings m_settings;
    std::string m_host;
    std::uint16_t m_port = 0;
    TETransportMode m_transport = TETransportMode::Binary;
    unsigned m_authMech = 0;
    Authentication m_authentication = Authentication::None;
    std::string m_user;
    /// Password, or the access token with BearerToken. Never logged.
    std::string m_secret;
    /// Every connect, read and write, in milliseconds.
    int m_timeoutMs = 0;

    // TLS.
    bool m_ssl = false;
    bool m_allowSelfSigned = false;
    bool m_allowHostNameMismatch = false;
    bool m_useSystemTrustStore = false;
    std::string m_trustedCertsFile;
    /// "1.0", "1.1", "1.2" or "unrestricted".
    std::string m_minTls = "1.2";
    bool m_twoWaySsl = false;
    std::string m_clientCertFile;
    std::string m_clientKeyFile;
    /// Never logged.
    std::string m_clientKeyPassword;

    // Kerberos: the parts of the service principal and the options.
    std::string m_krbServiceName;
    /// KrbHostFQDN as configured ("_HOST": the connection's host).
    std::string m_krbHostFqdn;
    std::string m_krbRealm;
    bool m_krbCanonicalize = false;
    bool m_krbDelegate = false;

    /// The HTTP proxy; empty for none.
    DriverSupport::DSProxyDescription m_proxy;

    /// With ZooKeeper service discovery the host and port come from the
    /// servers registered under the namespace node ("/name") on the ensemble
    /// ("host:port,host:port"); m_host and m_port are then empty.
    bool m_zooKeeperDiscovery = false;
    std::string m_zooKeeperEnsemble;
    std::string m_zooKeeperNamespace;

    /// OAuth 2.0 client credentials: the bearer token (m_secret) is fetched
    /// from the token end point with the client ID and secret first.
    bool m_clientCredentials = false;
    std::string m_tokenEndPoint;
    std::string m_clientId;
    /// Never logged.
    std::string m_clientSecret;
    std::string m_scope;
};
}  // namespace Tarni::ThriftExtension
