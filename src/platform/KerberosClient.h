#pragma once
// The client side of a Kerberos security context, through the system's
// Kerberos: GSSAPI (MIT) on Linux, SSPI on Windows. It uses the user's own
// credentials (the credential cache named by KRB5CCNAME, or the logon
// session on Windows), never a password. A failure is told apart by its
// cause (no ticket, expired ticket, unknown service, clock skew, realm not
// reachable), which the libraries report only as codes.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Tarni::Platform
{
class KerberosClient
{
public:
    enum class Mechanism
    {
        Kerberos,  ///< raw Kerberos tokens (SASL GSSAPI)
        Spnego,    ///< SPNEGO tokens (HTTP Negotiate)
    };

    enum class Failure
    {
        None,
        NoTicket,
        TicketExpired,
        UnknownServicePrincipal,
        /// No service ticket, for a reason the system does not tell (Wine):
        /// an unknown service, an unreachable KDC or clock skew.
        NoServiceTicket,
        ClockSkew,
        RealmUnreachable,
        Other,
    };

    using Bytes = std::vector<std::uint8_t>;

    /// A context for the service principal in_principal ("service/host@REALM",
    /// or "service/host" for the default realm). in_delegate asks for the
    /// user's ticket to be forwarded to the service.
    KerberosClient(Mechanism in_mechanism, std::string in_principal, bool in_delegate);
    ~KerberosClient();
    KerberosClient(const KerberosClient&) = delete;
    KerberosClient& operator=(const KerberosClient&) = delete;

    /// One round of the context's establishment: in_token is the server's
    /// last token (empty on the first call), out_token the one to send (may
    /// be empty once the context is established). False on a failure
    /// (GetFailure, GetDetail).
    bool Step(const Bytes& in_token, Bytes& out_token);
    bool IsEstablished() const;

    /// Message protection of an established context, without confidentiality
    /// (the SASL layer negotiation). False on a failure.
    bool Wrap(const Bytes& in_message, Bytes& out_token);
    bool Unwrap(const Bytes& in_token, Bytes& out_message);

    Failure GetFailure() const { return m_failure; }
    /// The library's text of the last failure.
    const std::string& GetDetail() const { return m_detail; }

    /// The user's principal, once known (after the first Step); empty when
    /// the system does not tell it.
    std::string GetClientPrincipal() const;

    /// "service/host@REALM" (without "@" when the realm is empty).
    static std::string PrincipalName(const std::string& in_service, const std::string& in_host,
                                     const std::string& in_realm);

    /// The host's canonical name: the name of its first address by reverse
    /// lookup, in lower case; the name as given when the lookup fails.
    static std::string CanonicalHostName(const std::string& in_host);

private:
    struct Context;

    void SetFailure(Failure in_failure, std::string in_detail);

    Mechanism m_mechanism;
    std::string m_principal;
    bool m_delegate;
    std::unique_ptr<Context> m_context;
    Failure m_failure = Failure::None;
    std::string m_detail;
};
}  // namespace Tarni::Platform
