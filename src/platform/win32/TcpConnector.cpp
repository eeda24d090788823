#include "platform/TcpConnector.h"

#include <algorithm>
#include <chrono>
#include <mutex>

#include <winsock2.h>
#include <ws2tcpip.h>
#include <windows.h>

namespace Tarni::Platform
{
namespace
{
// Winsock is started once per process, before the first connection; it stays
// started until the process ends (the Thrift socket layer above relies on it).
void StartWinsock()
{
    static std::once_flag once;
    std::call_once(once, [] {
        WSADATA data{};
        ::WSAStartup(MAKEWORD(2, 2), &data);
    });
}

std::string ErrorText(int in_code)
{
    char* buffer = nullptr;
    const DWORD length = ::FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(in_code), 0, reinterpret_cast<char*>(&buffer), 0, nullptr);
    std::string text = length > 0 && buffer != nullptr ? std::string(buffer, length) : "Unknown error";
    if (buffer != nullptr)
    {
        ::LocalFree(buffer);
    }
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ' || text.back() == '.'))
    {
        text.pop_back();
    }
    return text;
}

TcpConnector::Failure FailureOf(int in_code)
{
    switch (in_code)
    {
        case WSAECONNREFUSED:
            return TcpConnector::Failure::Refused;
        case WSAETIMEDOUT:
            return TcpConnector::Failure::TimedOut;
        case WSAENETUNREACH:
        case WSAEHOSTUNREACH:
            return TcpConnector::Failure::Unreachable;
        default:
            return TcpConnector::Failure::Other;
    }
}

// Waits for the non-blocking connect in slices of 100 ms so that a stop
// request is seen quickly. Returns 0 or the Winsock error of the failure.
int WaitForConnect(SOCKET in_socket, int in_timeoutMs, const TcpConnector::StopRequested& in_stop)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(in_timeoutMs);
    for (;;)
    {
        if (in_stop && in_stop())
        {
            return WSAEINTR;
        }
        long long slice = 100;
        if (in_timeoutMs > 0)
        {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                                  deadline - std::chrono::steady_clock::now())
                                  .count();
            if (left <= 0)
            {
                return WSAETIMEDOUT;
            }
            slice = std::min<long long>(left, slice);
        }
        fd_set writable;
        fd_set failed;
        FD_ZERO(&writable);
        FD_ZERO(&failed);
        FD_SET(in_socket, &writable);
        FD_SET(in_socket, &failed);
        timeval limit{0, static_cast<long>(slice * 1000)};
        const int ready = ::select(0, nullptr, &writable, &failed, &limit);
        if (ready == SOCKET_ERROR)
        {
            return ::WSAGetLastError();
        }
        if (ready > 0)
        {
            int error = 0;
            int length = sizeof(error);
            if (::getsockopt(in_socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) != 0)
            {
                error = ::WSAGetLastError();
            }
            return error;
        }
    }
}

std::string AddressText(const sockaddr* in_address, std::size_t in_length)
{
    char host[NI_MAXHOST] = "";
    char service[NI_MAXSERV] = "";
    if (::getnameinfo(in_address, static_cast<socklen_t>(in_length), host, sizeof(host), service, sizeof(service),
                      NI_NUMERICHOST | NI_NUMERICSERV) != 0)
    {
        return "?";
    }
    const std::string text(host);
    return (text.find(':') != std::string::npos ? "[" + text + "]" : text) + ":" + service;
}
}  // namespace

TcpConnector::Resolution TcpConnector::Resolve(const std::string& in_host, std::uint16_t in_port)
{
    StartWinsock();
    Resolution resolution;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* addresses = nullptr;
    const std::string service = std::to_string(in_port);
    const int resolved = ::getaddrinfo(in_host.c_str(), service.c_str(), &hints, &addresses);
    if (resolved != 0)
    {
        resolution.failure = resolved == WSAHOST_NOT_FOUND || resolved == WSANO_DATA ? Failure::HostNotFound
                                                                                     : Failure::Other;
        resolution.detail = ErrorText(resolved);
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
    StartWinsock();
    Result result;
    result.address = in_address.text;
    SOCKET socket = ::socket(in_address.family, in_address.socketType, in_address.protocol);
    if (socket == INVALID_SOCKET)
    {
        const int code = ::WSAGetLastError();
        result.failure = FailureOf(code);
        result.detail = ErrorText(code);
        return result;
    }
    u_long nonBlocking = 1;
    ::ioctlsocket(socket, FIONBIO, &nonBlocking);
    int error = 0;
    if (::connect(socket, reinterpret_cast<const sockaddr*>(in_address.raw.data()),
                  static_cast<int>(in_address.raw.size())) != 0)
    {
        error = ::WSAGetLastError();
        if (error == WSAEWOULDBLOCK)
        {
            error = WaitForConnect(socket, in_timeoutMs, in_stop);
        }
    }
    if (error != 0)
    {
        ::closesocket(socket);
        result.failure = FailureOf(error);
        result.detail = ErrorText(error);
        return result;
    }
    u_long blocking = 0;
    ::ioctlsocket(socket, FIONBIO, &blocking);
    result.failure = Failure::None;
    result.socket = static_cast<std::intptr_t>(socket);
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
    if (in_socket != static_cast<std::intptr_t>(INVALID_SOCKET) && in_socket >= 0)
    {
        ::shutdown(static_cast<SOCKET>(in_socket), SD_BOTH);
        // A blocking recv or send in another thread is not woken by shutdown
        // alone on every Windows version; cancelling its I/O ends it.
        ::CancelIoEx(reinterpret_cast<HANDLE>(in_socket), nullptr);
    }
}

void TcpConnector::Close(std::intptr_t in_socket)
{
    if (in_socket != static_cast<std::intptr_t>(INVALID_SOCKET) && in_socket >= 0)
    {
        ::closesocket(static_cast<SOCKET>(in_socket));
    }
}
}  // namespace Tarni::Platform
