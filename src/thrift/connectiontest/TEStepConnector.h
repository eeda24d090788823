#pragma once
// The first two steps of a connection test: name resolution (every address
// the resolver gives) and the TCP connect (the address that accepted), each
// recorded as a step. A cancelled test stops the connect within a tenth of a
// second; a failure throws the TEException that names its cause.
#include <cstdint>
#include <string>

namespace Tarni::DriverSupport
{
class DSCancellation;
}

namespace Tarni::ThriftExtension
{
class TEStepRecorder;

class TEStepConnector
{
public:
    /// Resolves in_host and connects to the first address that accepts, each
    /// attempt bounded by in_timeoutMs. in_authority names the server (or
    /// the proxy, with in_isProxy) in the messages. Returns the connected
    /// socket, which the caller owns.
    static std::intptr_t Connect(const std::string& in_host, std::uint16_t in_port, const std::string& in_authority,
                                 int in_timeoutMs, bool in_isProxy, TEStepRecorder& io_steps,
                                 DriverSupport::DSCancellation& io_cancellation);
};
}  // namespace Tarni::ThriftExtension
