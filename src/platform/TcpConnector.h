#pragma once
// Opens TCP connections with a time limit and tells apart why one failed
// (name not found, refused, no answer), which the socket libraries above
// report only as text.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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
        /// The address that accepted ("192.0.2.7:10000", "[::1]:443").
        std::string address;
    };

    /// One address of a resolved host, as the system's resolver gave it.
    struct Address
    {
        /// Numeric, with the port ("192.0.2.7:10000", "[::1]:443").
        std::string text;
        int family = 0;
        int socketType = 0;
        int protocol = 0;
        /// The socket address itself (a sockaddr of the family).
        std::vector<std::uint8_t> raw;
    };

    struct Resolution
    {
        Failure failure = Failure::Other;  ///< None, HostNotFound or Other
        std::string detail;
        std::vector<Address> addresses;
    };

    /// Asked between the waits of a connect (at least ten times a second):
    /// true stops the attempt, which then fails as Other.
    using StopRequested = std::function<bool()>;

    /// Looks up the host's addresses for a TCP connection to in_port.
    static Resolution Resolve(const std::string& in_host, std::uint16_t in_port);

    /// Connects to one address within in_timeoutMs (0: the system's limit).
    static Result ConnectTo(const Address& in_address, int in_timeoutMs, const StopRequested& in_stop = {});

    /// Ends both directions of a connected socket without closing it: a
    /// thread blocked on it (in another thread) returns at once.
    static void Shutdown(std::intptr_t in_socket);

    /// Resolves the host and connects to the first address that accepts,
    /// each attempt bounded by in_timeoutMs (0: the system's limit). The
    /// socket is returned in blocking mode. On Linux the first call ignores
    /// SIGPIPE (unless the program handles it), so that writing to a closed
    /// connection fails instead of ending the program.
    static Result Connect(const std::string& in_host, std::uint16_t in_port, int in_timeoutMs);

    /// Closes a socket returned by Connect.
    static void Close(std::intptr_t in_socket);
};
}  // namespace Tarni::Platform
