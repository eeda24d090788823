#include "thrift/connectiontest/TESocketCancelGuard.h"

#include "driversupport/DSCancellation.h"
#include "platform/TcpConnector.h"

namespace Tarni::ThriftExtension
{
TESocketCancelGuard::TESocketCancelGuard(DriverSupport::DSCancellation& io_cancellation, std::intptr_t in_socket)
    : m_cancellation(io_cancellation),
      m_handler(io_cancellation.AddHandler([in_socket] { Platform::TcpConnector::Shutdown(in_socket); }))
{
}

TESocketCancelGuard::~TESocketCancelGuard()
{
    m_cancellation.RemoveHandler(m_handler);
}
}  // namespace Tarni::ThriftExtension
