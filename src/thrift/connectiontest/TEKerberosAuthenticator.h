#pragma once
// Kerberos for the connection test: the service principal from the
// configuration (KrbServiceName/host@KrbRealm, the host from KrbHostFQDN or the
// connection's own host for "_HOST", canonicalised by reverse lookup when
// asked), the client contexts, the HTTP "Negotiate" header, and a failure of
// the user's ticket or of the service turned into a message that names the
// cause. The waits inside the Kerberos library (the KDC, the reverse lookup)
// are bounded by the test's limit and end at once when the test is cancelled.
#include <memory>
#include <string>

#include "platform/KerberosClient.h"

namespace Tarni::Support
{
class ILogger;
}

namespace Tarni::DriverSupport
{
class DSCancellation;
}

namespace Tarni::ThriftExtension
{
class TEConnectionTarget;

class TEKerberosAuthenticator
{
public:
    /// Takes the target's Kerberos settings; the service principal is
    /// derived with the first context (a reverse lookup of the host when the
    /// target canonicalises it), within the authentication step.
    /// io_cancellation must outlive the authenticator.
    TEKerberosAuthenticator(const TEConnectionTarget& in_target, DriverSupport::DSCancellation& io_cancellation,
                            Support::ILogger* in_log);

    /// "service/host@REALM" (no "@REALM" when the realm is empty: the
    /// Kerberos configuration's default realm); empty before the first
    /// context.
    const std::string& GetServicePrincipal() const { return m_principal; }

    /// The user's principal once a context has been started.
    const std::string& GetClientPrincipal() const { return m_clientPrincipal; }

    /// The authentication step's detail: "Kerberos (MECHANISM) as USER for
    /// SERVICE".
    std::string Describe(const std::string& in_mechanism) const;

    /// A new client context for the service. It is shared with the worker
    /// that runs its rounds, which may outlive a test that gave up on it.
    std::shared_ptr<Platform::KerberosClient> NewContext(Platform::KerberosClient::Mechanism in_mechanism);

    /// One round of in_context, within the test's limit; a failure throws the
    /// TEException naming its cause, the limit TEKerberosTimeout and a cancel
    /// TETestCancelled. After a throw in_context must not be used again.
    void Step(const std::shared_ptr<Platform::KerberosClient>& in_context,
              const Platform::KerberosClient::Bytes& in_token, Platform::KerberosClient::Bytes& out_token);

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
    void DerivePrincipal();
    std::string CanonicalHostName(const std::string& in_host);

    std::string m_serviceName;
    std::string m_host;
    bool m_canonicalize = false;
    int m_timeoutMs = 0;
    DriverSupport::DSCancellation& m_cancellation;
    Support::ILogger* m_log;
    std::string m_principal;
    std::string m_realm;
    bool m_delegate = false;
    std::string m_clientPrincipal;
    std::string m_preparedHeader;
};
}  // namespace Tarni::ThriftExtension
