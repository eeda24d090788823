#include "platform/TcpConnector.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
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

// Waits for the non-blocking connect in slices of 100 ms so that a stop
// request is seen quickly, and the limit holds whatever the system's own
// connect timeout is. Returns 0 or the errno of the failure.
int WaitForConnect(int in_fd, int in_timeoutMs, const TcpConnector::StopRequested& in_stop)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(in_timeoutMs);
    for (;;)
    {
        if (in_stop && in_stop())
        {
            return ECANCELED;
        }
        int slice = 100;
        if (in_timeoutMs > 0)
        {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                                  deadline - std::chrono::steady_clock::now())
                                  .count();
            if (left <= 0)
            {
                return ETIMEDOUT;
            }
            slice = static_cast<int>(std::min<long long>(left, slice));
        }
        pollfd waiter{in_fd, POLLOUT, 0};
        const int ready = ::poll(&waiter, 1, slice);
        if (ready < 0 && errno != EINTR)
        {
            return errno;
        }
        if (ready > 0)
        {
            int error = 0;
            socklen_t length = sizeof(error);
            if (::getsockopt(in_fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0)
            {
                error = errno;
            }
            return error;
        }
    }
}

std::string AddressText(const sockaddr* in_address, socklen_t in_length)
{
    char host[NI_MAXHOST] = "";
    char service[NI_MAXSERV] = "";
    if (::getnameinfo(in_address, in_length, host, sizeof(host), service, sizeof(service),
                      NI_NUMERICHOST | NI_NUMERICSERV) != 0)
    {
        return "?";
    }
    const std::string text(host);
    return (text.find(':') != std::string::npos ? "[" + text + "]" : text) + ":" + service;
}

void IgnoreSigpipe()
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
}
}  // namespace

TcpConnector::Resolution TcpConnector::Resolve(const std::string& in_host, std::uint16_t in_port)
{
    Resolution resolution;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* addresses = nullptr;
    const std::string service = std::to_string(in_port);
    const int resolved = ::getaddrinfo(in_host.c_str(), service.c_str(), &hints, &addresses);
    if (resolved != 0)
    {
        resolution.failure = resolved == EAI_NONAME || resolved == EAI_FAIL || resolved == EAI_NODATA
                                 ? Failure::HostNotFound
                                 : Failure::Other;
        resolution.detail = resolved == EAI_SYSTEM ? std::strerror(errno) : ::gai_strerror(resolved);
        return resolution;
    }
    for (const addrinfo* entry = addresses; entry != nullptr; entry = entry->ai_next)
    {
        Address address;
        address.text = AddressText(entry->ai_addr, entry->ai_addrlen);
        address.family = entry->ai_family;
        address.socketType = entry->ai_socktype;
        address.protocol = entry->ai_protocol;
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(entry->ai_addr);
        address.raw.assign(bytes, bytes + entry->ai_addrlen);
        resolution.addresses.push_back(std::move(address));
    }
    ::freeaddrinfo(addresses);
    resolution.failure = Failure::None;
    return resolution;
}

TcpConnector::Result TcpConnector::ConnectTo(const Address& in_address, int in_timeoutMs, const StopRequested& in_stop)
{
    IgnoreSigpipe();
    Result result;
    result.address = in_address.text;
    const int fd = ::socket(in_address.family, in_address.socketType | SOCK_CLOEXEC, in_address.protocol);
    if (fd < 0)
    {
        result.failure = FailureOf(errno);
        result.detail = std::strerror(errno);
        return result;
    }
    const int flags = ::fcntl(fd, F_GETFL, 0);
    ::fcntl(fd, F_SETFL, flags | O_NONBLOCK);
    int error = 0;
    if (::connect(fd, reinterpret_cast<const sockaddr*>(in_address.raw.data()),
                  static_cast<socklen_t>(in_address.raw.size())) != 0)
    {
        error = errno == EINPROGRESS ? WaitForConnect(fd, in_timeoutMs, in_stop) : errno;
    }
    if (error != 0)
    {
        ::close(fd);
        result.failure = FailureOf(error);
        result.detail = std::strerror(error);
        return result;
    }
    ::fcntl(fd, F_SETFL, flags);
    result.failure = Failure::None;
    result.socket = fd;
    return result;
}

TcpConnector::Result TcpConnector::Connect(const std::string& in_host, std::uint16_t in_port, int in_timeoutMs)
{
    const Resolution resolution = Resolve(in_host, in_port);
    Result result;
    if (resolution.failure != Failure::None)
    {
        result.failure = resolution.failure;
        result.detail = resolution.detail;
        return result;
    }
    for (const Address& address : resolution.addresses)
    {
        result = ConnectTo(address, in_timeoutMs);
        if (result.failure == Failure::None)
        {
            break;
        }
    }
    return result;
}

void TcpConnector::Shutdown(std::intptr_t in_socket)
{
    if (in_socket >= 0)
    {
        ::shutdown(static_cast<int>(in_socket), SHUT_RDWR);
    }
}

void TcpConnector::Close(std::intptr_t in_socket)
{
    if (in_socket >= 0)
    {
        ::close(static_cast<int>(in_socket));
    }
}
}  // namespace Tarni::Platform
