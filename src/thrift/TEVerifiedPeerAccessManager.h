#pragma once
// Thrift's check of the server's name after the TLS handshake. The test's
// TLS context has OpenSSL check the name during the handshake already, with
// the host-name mismatch switch and the reason of a refusal; this check then
// accepts the peer that OpenSSL accepted.
#include <string>

#include <thrift/transport/TSSLSocket.h>

namespace Tarni::ThriftExtension
{
class TEVerifiedPeerAccessManager : public apache::thrift::transport::AccessManager
{
public:
    Decision verify(const sockaddr_storage&) noexcept override { return ALLOW; }
    Decision verify(const std::string&, const char*, int) noexcept override { return ALLOW; }
    Decision verify(const sockaddr_storage&, const char*, int) noexcept override { return ALLOW; }
};
}  // namespace Tarni::ThriftExtension
