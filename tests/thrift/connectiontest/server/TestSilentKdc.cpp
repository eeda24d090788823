#include "thrift/connectiontest/server/TestSilentKdc.h"

#include <stdexcept>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Tarni::Testing
{
namespace
{
sockaddr_in Loopback(std::uint16_t in_port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(in_port);
    return address;
}
}  // namespace

TestSilentKdc::TestSilentKdc()
{
    // The UDP port first, then TCP on the same number (retried when it is
    // taken for TCP).
    for (int attempt = 0; attempt < 20 && m_port == 0; ++attempt)
    {
        m_udp = ::socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address = Loopback(0);
        socklen_t length = sizeof address;
        ::bind(m_udp, reinterpret_cast<sockaddr*>(&address), sizeof address);
        ::getsockname(m_udp, reinterpret_cast<sockaddr*>(&address), &length);
        m_tcp = ::socket(AF_INET, SOCK_STREAM, 0);
        const int yes = 1;
        ::setsockopt(m_tcp, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        if (::bind(m_tcp, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && ::listen(m_tcp, 16) == 0)
        {
            m_port = ntohs(address.sin_port);
            break;
        }
        ::close(m_tcp);
        ::close(m_udp);
    }
    if (m_port == 0 || ::pipe(m_wake) != 0)
    {
        throw std::runtime_error("no port for the silent KDC");
    }
    m_thread = std::thread([this] { Serve(); });
}

TestSilentKdc::~TestSilentKdc()
{
    Stop();
}

void TestSilentKdc::Stop()
{
    if (!m_thread.joinable())
    {
        return;
    }
    const char wake = 0;
    (void)::write(m_wake[1], &wake, 1);
    m_thread.join();
    for (int* fd : {&m_tcp, &m_udp, &m_wake[0], &m_wake[1]})
    {
        ::close(*fd);
        *fd = -1;
    }
}

void TestSilentKdc::Serve()
{
    std::vector<pollfd> fds = {{m_wake[0], POLLIN, 0}, {m_tcp, POLLIN, 0}, {m_udp, POLLIN, 0}};
    for (;;)
    {
        if (::poll(fds.data(), fds.size(), -1) < 0)
        {
            continue;
        }
        if (fds[0].revents != 0)
        {
            break;
        }
        if (fds[1].revents != 0)
        {
            const int client = ::accept(m_tcp, nullptr, nullptr);
            if (client >= 0)
            {
                ++m_tcpConnections;
                fds.push_back({client, POLLIN, 0});
            }
        }
        if (fds[2].revents != 0)
        {
            char datagram[4096];
            if (::recv(m_udp, datagram, sizeof datagram, 0) >= 0)
            {
                ++m_udpDatagrams;
            }
        }
        for (std::size_t i = 3; i < fds.size();)
        {
            // Read and drop; a connection the client closed is closed too.
            char data[4096];
            if (fds[i].revents != 0 && ::recv(fds[i].fd, data, sizeof data, 0) <= 0)
            {
                ::close(fds[i].fd);
                fds.erase(fds.begin() + static_cast<std::ptrdiff_t>(i));
                continue;
            }
            ++i;
        }
    }
    for (std::size_t i = 3; i < fds.size(); ++i)
    {
        ::close(fds[i].fd);
    }
}
}  // namespace Tarni::Testing
