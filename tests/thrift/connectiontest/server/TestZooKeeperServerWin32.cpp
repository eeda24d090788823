// The server of the Windows build's tests: a test program under Wine cannot
// start Java on the host, so CTest's fixture "thrift_zookeeper_server"
// (test-zookeeper.sh) starts it there before the tests and ends it after
// them; the folder TARNI_TEST_ZOOKEEPER names holds its port.
#include "thrift/connectiontest/server/TestZooKeeperServer.h"

#include <fstream>
#include <stdexcept>

#include <winsock2.h>

namespace Tarni::Testing
{
namespace
{
const std::filesystem::path& Folder()
{
    static const std::filesystem::path folder = TARNI_TEST_ZOOKEEPER;
    return folder;
}

std::string FirstLine(const std::filesystem::path& in_file)
{
    std::ifstream in(in_file);
    std::string line;
    std::getline(in, line);
    return line;
}
}  // namespace

std::string TestZooKeeperServer::Unavailable()
{
    if (std::filesystem::exists(Folder() / "port"))
    {
        return {};
    }
    if (std::filesystem::exists(Folder() / "unavailable"))
    {
        return FirstLine(Folder() / "unavailable");
    }
    return "no ZooKeeper server in " + Folder().string() + ": run the tests through ctest (the fixture " +
           "thrift_zookeeper_server starts it), or test-zookeeper.sh start with that folder";
}

std::uint16_t TestZooKeeperServer::ClosedPort()
{
    WSADATA data;
    ::WSAStartup(MAKEWORD(2, 2), &data);
    const SOCKET socket = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof(address);
    ::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address));
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    ::closesocket(socket);
    ::WSACleanup();
    return ntohs(address.sin_port);
}

TestZooKeeperServer::TestZooKeeperServer() : m_folder(Folder())
{
    const std::string port = FirstLine(m_folder / "port");
    if (port.empty() || port.find_first_not_of("0123456789") != std::string::npos || port.size() > 5)
    {
        throw std::runtime_error("no port in " + (m_folder / "port").string());
    }
    m_port = static_cast<std::uint16_t>(std::stoul(port));
}

// The fixture ends the server.
TestZooKeeperServer::~TestZooKeeperServer() = default;
}  // namespace Tarni::Testing
