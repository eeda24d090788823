#pragma once
// Kerberos for the connection test: the service principal from the
// configuration (KrbServiceName/host@KrbRealm, the host from KrbHostFQDN or the
// connection's own host for "_HOST", canonicalised by reverse lookup when
// asked), the client contexts, the HTTP "Negotiate" header, and a failure of
// the user's ticket or of the service turned into a message that names the
// cause.
#include <memory>
#include <string>

#include "platform/KerberosClient.h"

namespace Tarni::Support
{
class ILogger;
}

namespace Tarni::ThriftExtension
{
class TEConnectionTarget;

class TEKerberosAuthenticator
{
public:
    /// Derives the service principal of the target (a reverse lookup of the
    /// host when the target canonicalises it).
    TEKerberosAuthenticator(const TEConnectionTarget& in_target, Support::ILogger* in_log);

    /// "service/host@REALM" (no "@REALM" when the realm is empty: the
    /// Kerberos configuration's default realm).
    const std::string& GetServicePrincipal() const { return m_principal; }

    /// The user's principal once a context has been started.
    const std::string& GetClientPrincipal() const { return m_clientPrincipal; }

    /// The authentication step's detail: "Kerberos (MECHANISM) as USER for
    /// SERVICE".
    std::string Describe(const std::string& in_mechanism) const;

    /// A new client context for the service.
    std::unique_ptr<Platform::KerberosClient> NewContext(Platform::KerberosClient::Mechanism in_mechanism) const;

    /// One round of in_context; a failure throws the TEException naming its
    /// cause.
    void Step(Platform::KerberosClient& io_context, const Platform::KerberosClient::Bytes& in_token,
              Platform::KerberosClient::Bytes& out_token);

    /// "Negotiate " and a new SPNEGO token for one HTTP request; the first
    /// call makes the token that PrepareNegotiate made, if any.
    std::string NextNegotiateHeader();

    /// Makes the first request's token now (so that a ticket failure belongs
    /// to the authentication step, not to the session's request).
    void PrepareNegotiate();

    /// Throws the TEException for the failure of in_context.
    [[noreturn]] void Fail(const Platform::KerberosClient& in_context) const;

private:
    std::string MakeNegotiateHeader();

    std::string m_principal;
    std::string m_realm;
    bool m_delegate = false;
    std::string m_clientPrincipal;
    std::string m_preparedHeader;
};
}  // namespace Tarni::ThriftExtension
