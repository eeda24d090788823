#pragma once
// The accepting side of Kerberos for the test server: a GSSAPI acceptor
// context with the service's keytab, for SASL GSSAPI (raw Kerberos tokens)
// and HTTP Negotiate (SPNEGO).
#include <string>

namespace Tarni::Testing
{
class TestKerberosAcceptor
{
public:
    /// in_keytab: the service's keys (a file name).
    explicit TestKerberosAcceptor(const std::string& in_keytab);
    ~TestKerberosAcceptor();
    TestKerberosAcceptor(const TestKerberosAcceptor&) = delete;
    TestKerberosAcceptor& operator=(const TestKerberosAcceptor&) = delete;

    /// Takes the client's token; out_token is the answer (may be empty).
    /// False with out_error on a failure.
    bool Accept(const std::string& in_token, std::string& out_token, std::string& out_error);
    bool IsEstablished() const { return m_established; }

    bool Wrap(const std::string& in_message, std::string& out_token);
    bool Unwrap(const std::string& in_token, std::string& out_message);

    /// The client's principal and whether it delegated its ticket, once
    /// established.
    const std::string& ClientPrincipal() const { return m_client; }
    bool Delegated() const { return m_delegated; }

private:
    void* m_credential = nullptr;
    void* m_context = nullptr;
    bool m_established = false;
    std::string m_client;
    bool m_delegated = false;
};
}  // namespace Tarni::Testing
