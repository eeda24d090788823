#pragma once
// Opens TCP connections with a time limit and tells apart why one failed
// (name not found, refused, no answer), which the socket libraries above
// report only as text.
#include <cstdint>
#include <string>

namespace Tarni::Platform
{
class TcpConnector
{
public:
    enum class Failure
    {
        None,
        HostNotFound,
        Refused,
        TimedOut,
        Unreachable,
        Other,
    };

    struct Result
    {
        Failure failure = Failure::Other;
        /// The connected socket (a file descriptor, or a SOCKET on Windows);
        /// the caller owns it. Meaningful only without a failure.
        std::intptr_t socket = -1;
        /// The system's text of the failure.
        std::string detail;
    };

    /// Resolves the host and connects to the first address that accepts,
    /// each attempt bounded by in_timeoutMs (0: the system's limit). The
    /// socket is returned in blocking mode. On Linux the first call ignores
    /// SIGPIPE (unless the program handles it), so that writing to a closed
    /// connection fails instead of ending the program.
    static Result Connect(const std::string& in_host, std::uint16_t in_port, int in_timeoutMs);

    /// Closes a socket returned by Connect.
    static void Close(std::intptr_t in_socket);

    /// Ends both directions of a connected socket, so that a send or receive
    /// that another thread waits in returns at once; the socket stays open.
    static void Shutdown(std::intptr_t in_socket);
};
}  // namespace Tarni::Platform
