#pragma once
// The SASL transport with the GSSAPI mechanism (Kerberos): the same frames as
// PLAIN, with the Kerberos context's tokens as payloads until the context is
// established; then the server offers its security layers in a wrapped 4-byte
// message (layer bits, maximum buffer size) and the client chooses "no
// security layer" (TLS protects the connection where that is wanted).
#include <memory>

#include "thrift/connectiontest/TESaslClientTransport.h"

namespace Tarni::ThriftExtension
{
class TEKerberosAuthenticator;

class TEKerberosSaslTransport : public TESaslClientTransport
{
public:
    /// The SASL layer bit for "no security layer".
    static constexpr std::uint8_t NO_SECURITY_LAYER = 1;

    TEKerberosSaslTransport(std::shared_ptr<apache::thrift::transport::TTransport> in_transport,
                            std::shared_ptr<TEKerberosAuthenticator> in_authenticator);

    /// Negotiates GSSAPI. A failure of the user's ticket or of the service
    /// principal throws the authenticator's TEException; a refusal by the
    /// server throws TTransportException with the server's message
    /// (WasRefused()); a server that insists on a security layer throws
    /// TEException "TEKerberosSecurityLayer".
    void open() override;

    /// The client's answer to the server's security layer offer (before
    /// wrapping): "no security layer" and a zero buffer size. Throws
    /// TEException when the offer is malformed or lacks that layer.
    static std::string ChooseSecurityLayer(const std::string& in_offer, const std::string& in_service);

private:
    std::shared_ptr<TEKerberosAuthenticator> m_authenticator;
};
}  // namespace Tarni::ThriftExtension
