#pragma once
// The TLS side of the connection test: an OpenSSL context set up from the
// connection's SSL options (trusted certificates file or system store,
// self-signed and host-name switches, minimum TLS version, client
// certificate and key), and TLS sockets over connections already open.
#include <memory>
#include <string>

#include <thrift/transport/TSSLSocket.h>

namespace Tarni::ThriftExtension
{
class TEConnectionTarget;

class TETlsSocketFactory : public apache::thrift::transport::TSSLSocketFactory
{
public:
    /// Throws TEException "TETlsSetupError" for an unreadable certificate,
    /// key or trust file.
    explicit TETlsSocketFactory(const TEConnectionTarget& in_target);
    ~TETlsSocketFactory() override;

    /// A TLS client socket over the connected socket in_socket (which it then
    /// owns), verifying the server as in_host.
    std::shared_ptr<apache::thrift::transport::TSSLSocket> Wrap(THRIFT_SOCKET in_socket, const std::string& in_host);

    /// Why the last certificate check of this thread refused the server
    /// ("unable to get local issuer certificate", "hostname mismatch"...);
    /// empty when none did.
    static std::string LastVerifyFailure();

    /// What the last completed handshake of this thread agreed on: protocol
    /// version, cipher, the server certificate's subject and issuer and the
    /// verification result; empty when no handshake completed.
    static std::string LastHandshake();

    /// The OpenSSL protocol version constant of a minimum TLS setting ("1.0",
    /// "1.1", "1.2"; 0 for "unrestricted" and anything else).
    static int MinimumProtocol(const std::string& in_minTls);

protected:
    void getPassword(std::string& out_password, int in_size) override;

private:
    static int VerifyCallback(int in_preverified, X509_STORE_CTX* in_context);
    static void InfoCallback(const SSL* in_ssl, int in_where, int in_result);
    void LoadTrust(const TEConnectionTarget& in_target);

    std::string m_keyPassword;
    bool m_checksHostName = true;
};
}  // namespace Tarni::ThriftExtension
