// The server started by the test program itself, on Linux.
#include "thrift/connectiontest/server/TestZooKeeperServer.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Tarni::Testing
{
namespace
{
const char* const JAVA = "/usr/bin/java";
const char* const SERVER_JAR = "/usr/share/java/zookeeper.jar";

/// Sends a four-letter command to 127.0.0.1:in_port; the answer, or empty.
std::string FourLetters(std::uint16_t in_port, const std::string& in_command)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(in_port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::string answer;
    if (::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0 &&
        ::send(socket, in_command.data(), in_command.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(in_command.size()))
    {
        timeval limit{2, 0};
        ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
        char buffer[1024];
        for (ssize_t n; (n = ::recv(socket, buffer, sizeof(buffer), 0)) > 0;)
        {
            answer.append(buffer, static_cast<std::size_t>(n));
        }
    }
    ::close(socket);
    return answer;
}
}  // namespace

std::string TestZooKeeperServer::Unavailable()
{
    if (::access(JAVA, X_OK) != 0)
    {
        return std::string(JAVA) + " is missing (scripts/install-deps.sh installs the zookeeper package)";
    }
    if (::access(SERVER_JAR, R_OK) != 0)
    {
        return std::string(SERVER_JAR) + " is missing (scripts/install-deps.sh installs the zookeeper package)";
    }
    return {};
}

std::uint16_t TestZooKeeperServer::ClosedPort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    ::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof(address));
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    ::close(socket);
    return ntohs(address.sin_port);
}

TestZooKeeperServer::TestZooKeeperServer()
{
    m_folder = std::filesystem::temp_directory_path() /
               ("tarni-zookeeper-" + std::to_string(::getpid()) + "-" +
                std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    std::filesystem::create_directories(m_folder / "data");
    m_port = ClosedPort();
    const std::string config = (m_folder / "zoo.cfg").string();
    {
        std::ofstream out(config);
        out << "tickTime=500\nminSessionTimeout=1000\ndataDir=" << (m_folder / "data").string()
            << "\nclientPort=" << m_port << "\nclientPortAddress=127.0.0.1\nadmin.enableServer=false\n"
            << "4lw.commands.whitelist=srvr\n";
    }
    const std::string log = (m_folder / "server.log").string();
    const pid_t parent = ::getpid();
    m_pid = ::fork();
    if (m_pid == 0)
    {
        // The server goes with the test program, however that ends.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
        {
            ::_exit(1);
        }
        std::freopen(log.c_str(), "w", stdout);
        std::freopen(log.c_str(), "a", stderr);
        ::execl(JAVA, JAVA, "-Xmx128m", "-XX:+UseSerialGC", "-cp", SERVER_JAR,
                "org.apache.zookeeper.server.ZooKeeperServerMain", config.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    // "ruok" answers before the server serves; "srvr" names the mode then.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (FourLetters(m_port, "srvr").find("Mode:") == std::string::npos)
    {
        int status = 0;
        if (::waitpid(m_pid, &status, WNOHANG) == m_pid)
        {
            m_pid = -1;
            throw std::runtime_error("ZooKeeper ended at start; see " + log);
        }
        if (std::chrono::steady_clock::now() > deadline)
        {
            throw std::runtime_error("ZooKeeper did not start within 60 seconds; see " + log);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

TestZooKeeperServer::~TestZooKeeperServer()
{
    if (m_pid > 0)
    {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

}  // namespace Tarni::Testing
