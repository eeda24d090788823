#pragma once
// A Thrift socket over a connection opened elsewhere that can hand the
// connection on: after an HTTP proxy's CONNECT the same connection carries
// TLS, and the plain socket must not close it.
#include <thrift/transport/TSocket.h>

namespace Tarni::ThriftExtension
{
class TEDetachableSocket : public apache::thrift::transport::TSocket
{
public:
    explicit TEDetachableSocket(THRIFT_SOCKET in_socket) : TSocket(in_socket) {}

    /// Gives up the connection without closing it.
    THRIFT_SOCKET Detach()
    {
        const THRIFT_SOCKET socket = socket_;
        socket_ = THRIFT_INVALID_SOCKET;
        return socket;
    }
};
}  // namespace Tarni::ThriftExtension
