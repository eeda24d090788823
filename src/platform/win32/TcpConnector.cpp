#include "platform/TcpConnector.h"

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

TcpConnector::Result ConnectOne(const addrinfo& in_address, int in_timeoutMs)
{
    TcpConnector::Result result;
    SOCKET socket = ::socket(in_address.ai_family, in_address.ai_socktype, in_address.ai_protocol);
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
    if (::connect(socket, in_address.ai_addr, static_cast<int>(in_address.ai_addrlen)) != 0)
    {
        error = ::WSAGetLastError();
        if (error == WSAEWOULDBLOCK)
        {
            fd_set writable;
            fd_set failed;
            FD_ZERO(&writable);
            FD_ZERO(&failed);
            FD_SET(socket, &writable);
            FD_SET(socket, &failed);
            timeval limit{in_timeoutMs / 1000, (in_timeoutMs % 1000) * 1000};
            const int ready = ::select(0, nullptr, &writable, &failed, in_timeoutMs > 0 ? &limit : nullptr);
            if (ready == 0)
            {
                error = WSAETIMEDOUT;
            }
            else if (ready == SOCKET_ERROR)
            {
                error = ::WSAGetLastError();
            }
            else
            {
                int length = sizeof(error);
                error = 0;
                if (::getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) != 0)
                {
                    error = ::WSAGetLastError();
                }
            }
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
    result.failure = TcpConnector::Failure::None;
    result.socket = static_cast<std::intptr_t>(socket);
    return result;
}
}  // namespace

TcpConnector::Result TcpConnector::Connect(const std::string& in_host, std::uint16_t in_port, int in_timeoutMs)
{
    StartWinsock();
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    addrinfo* addresses = nullptr;
    const std::string service = std::to_string(in_port);
    const int resolved = ::getaddrinfo(in_host.c_str(), service.c_str(), &hints, &addresses);
    if (resolved != 0)
    {
        Result result;
        result.failure = resolved == WSAHOST_NOT_FOUND || resolved == WSANO_DATA ? Failure::HostNotFound
                                                                                 : Failure::Other;
        result.detail = ErrorText(resolved);
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
    if (in_socket != static_cast<std::intptr_t>(INVALID_SOCKET) && in_socket >= 0)
    {
        ::closesocket(static_cast<SOCKET>(in_socket));
    }
}

void TcpConnector::Shutdown(std::intptr_t in_socket)
{
    if (in_socket != static_cast<std::intptr_t>(INVALID_SOCKET) && in_socket >= 0)
    {
        ::shutdown(static_cast<SOCKET>(in_socket), SD_BOTH);
    }
}
}  // namespace Tarni::Platform
