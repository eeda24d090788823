#include "platform/TcpConnector.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Tarni::Platform
{
namespace
{
TcpConnector::Failure FailureOf(int in_errno)
{
    switch (in_errno)
    {
        case ECONNREFUSED:
            return TcpConnector::Failure::Refused;
        case ETIMEDOUT:
            return TcpConnector::Failure::TimedOut;
        case ENETUNREACH:
        case EHOSTUNREACH:
            return TcpConnector::Failure::Unreachable;
        default:
            return TcpConnector::Failure::Other;
    }
}

// One address: a non-blocking connect waited for with poll, so that the
// limit holds whatever the system's own connect timeout is.
TcpConnector::Result ConnectOne(const addrinfo& in_address, int in_timeoutMs)
{
    TcpConnector::Result result;
    const int fd = ::socket(in_address.ai_family, in_address.ai_socktype | SOCK_CLOEXEC, in_address.ai_protocol);
    if (fd < 0)
    {
        result.failure = FailureOf(errno);
        result.detail = std::strerror(errno);
        return result;
    }
    const int flags = ::fcntl(fd, F_GETFL, 0);
    ::fcntl(fd, F_SETFL, flags | O_NONBLOCK);
    int error = 0;
    if (::connect(fd, in_address.ai_addr, in_address.ai_addrlen) != 0)
    {
        error = errno;
        if (error == EINPROGRESS)
        {
            pollfd waiter{fd, POLLOUT, 0};
            int ready;
            do
            {
                ready = ::poll(&waiter, 1, in_timeoutMs > 0 ? in_timeoutMs : -1);
            } while (ready < 0 && errno == EINTR);
            if (ready == 0)
            {
                error = ETIMEDOUT;
            }
            else if (ready < 0)
            {
                error = errno;
            }
            else
            {
                socklen_t length = sizeof(error);
                if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0)
                {
                    error = errno;
                }
            }
        }
    }
    if (error != 0)
    {
        ::close(fd);
        result.failure = FailureOf(error);
        result.detail = std::strerror(error);
        return result;
    }
    ::fcntl(fd, F_SETFL, flags);
    result.failure = TcpConnector::Failure::None;
    result.socket = fd;
    return result;
}
}  // namespace

TcpConnector::Result TcpConnector::Connect(const std::string& in_host, std::uint16_t in_port, int in_timeoutMs)
{
    // The TLS library writes to the socket with write(): a peer that closed
    // the connection must be an error of that write, not SIGPIPE ending the
    // program. A handler the program installed itself is left alone.
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction current {};
        if (::sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        {
            std::signal(SIGPIPE, SIG_IGN);
        }
    });
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* addresses = nullptr;
    const std::string service = std::to_string(in_port);
    const int resolved = ::getaddrinfo(in_host.c_str(), service.c_str(), &hints, &addresses);
    if (resolved != 0)
    {
        Result result;
        result.failure = resolved == EAI_NONAME || resolved == EAI_FAIL || resolved == EAI_NODATA
                             ? Failure::HostNotFound
                             : Failure::Other;
        result.detail = resolved == EAI_SYSTEM ? std::strerror(errno) : ::gai_strerror(resolved);
        return result;
    }
    Result result;
    for (const addrinfo* address = addresses; address != nullptr; address = address->ai_next)
    {
        result = ConnectOne(*address, in_timeoutMs);
        if (result.failure == Failure::None)
        {
            break;
        }
    }
    ::freeaddrinfo(addresses);
    return result;
}

void TcpConnector::Close(std::intptr_t in_socket)
{
    if (in_socket >= 0)
    {
        ::close(static_cast<int>(in_socket));
    }
}

void TcpConnector::Shutdown(std::intptr_t in_socket)
{
    if (in_socket >= 0)
    {
        ::shutdown(static_cast<int>(in_socket), SHUT_RDWR);
    }
}
}  // namespace Tarni::Platform
