#pragma once
// Ties a connected socket to a test's cancellation while the test waits on
// it: Cancel() from another thread shuts the socket down, so that a blocked
// read or write returns at once. The destructor unregisters before the
// socket is closed (so a later socket with the same number is never touched).
#include <cstddef>
#include <cstdint>

namespace Tarni::DriverSupport
{
class DSCancellation;
}

namespace Tarni::ThriftExtension
{
class TESocketCancelGuard
{
public:
    TESocketCancelGuard(DriverSupport::DSCancellation& io_cancellation, std::intptr_t in_socket);
    ~TESocketCancelGuard();
    TESocketCancelGuard(const TESocketCancelGuard&) = delete;
    TESocketCancelGuard& operator=(const TESocketCancelGuard&) = delete;

private:
    DriverSupport::DSCancellation& m_cancellation;
    std::size_t m_handler;
};
}  // namespace Tarni::ThriftExtension
