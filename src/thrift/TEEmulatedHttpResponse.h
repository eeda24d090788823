#pragma once
#include <string>

namespace Tarni::ThriftExtension
{
/// What an HTTP retry emulation decides for one response being built: whether
/// the status line is replaced by an emulated one, and whether the request is
/// still sent to the server (its real reply is then discarded).
struct TEEmulatedHttpResponse
{
    bool m_isEmulated = false;
    bool m_sendToServer = false;
    /// "HTTP/1.1 <status> TEST" while emulated, else empty.
    std::string m_statusLine;
};
}  // namespace Tarni::ThriftExtension
