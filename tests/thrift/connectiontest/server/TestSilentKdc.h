#pragma once
// A KDC that never answers: on one port of 127.0.0.1 it accepts TCP
// connections and receives UDP datagrams, reads what arrives and says
// nothing, the way a KDC behind a firewall that drops replies, or a hung
// one, looks to a client. Stop() closes everything, after which clients get
// refusals at once.
#include <atomic>
#include <cstdint>
#include <thread>

namespace Tarni::Testing
{
class TestSilentKdc
{
public:
    TestSilentKdc();
    ~TestSilentKdc();
    TestSilentKdc(const TestSilentKdc&) = delete;
    TestSilentKdc& operator=(const TestSilentKdc&) = delete;

    std::uint16_t Port() const { return m_port; }
    int TcpConnections() const { return m_tcpConnections.load(); }
    int UdpDatagrams() const { return m_udpDatagrams.load(); }

    void Stop();

private:
    void Serve();

    int m_tcp = -1;
    int m_udp = -1;
    int m_wake[2] = {-1, -1};
    std::uint16_t m_port = 0;
    std::atomic<int> m_tcpConnections{0};
    std::atomic<int> m_udpDatagrams{0};
    std::thread m_thread;
};
}  // namespace Tarni::Testing
