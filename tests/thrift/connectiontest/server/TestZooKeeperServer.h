#pragma once
// A ZooKeeper server for the discovery tests: Debian's server in standalone
// mode on 127.0.0.1 and a free port, in a temporary folder, with a small heap.
// It is ready when the "srvr" command reports its mode, and is stopped when
// the object goes (and killed with the test program if that dies first).
// In the Windows build the object stands for the server that CTest's fixture
// started on the host (test-zookeeper.sh), which outlives it.
#include <cstdint>
#include <filesystem>
#include <string>

#include <sys/types.h>

namespace Tarni::Testing
{
class TestZooKeeperServer
{
public:
    /// Starts the server; throws std::runtime_error when it does not come up.
    /// Check Unavailable() first.
    TestZooKeeperServer();
    ~TestZooKeeperServer();
    TestZooKeeperServer(const TestZooKeeperServer&) = delete;
    TestZooKeeperServer& operator=(const TestZooKeeperServer&) = delete;

    /// Why no server can be started here (no Java, no ZooKeeper); empty when
    /// one can.
    static std::string Unavailable();

    /// A port on 127.0.0.1 that nothing listens on (at the time of asking).
    static std::uint16_t ClosedPort();

    std::uint16_t Port() const { return m_port; }

    /// Creates the node in_path with in_data, and its missing parents.
    void Create(const std::string& in_path, const std::string& in_data = "");

private:
    std::filesystem::path m_folder;
    std::uint16_t m_port = 0;
    pid_t m_pid = -1;
};
}  // namespace Tarni::Testing
