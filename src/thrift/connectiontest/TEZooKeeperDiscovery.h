#pragma once
// Finds the Thrift servers that registered themselves on a ZooKeeper ensemble
// under a namespace node: each child node is named
// "serverUri=host:port;version=...;sequence=..." and may hold the server's
// settings "hive.server2.thrift.bind.host=...;hive.server2.thrift.port=...;
// hive.server2.transport.mode=..." as its data, which win over the name.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/ILogger.h"
#include "thrift/TETransportMode.h"

namespace Tarni::DriverSupport
{
class DSCancellation;
}

namespace Tarni::ThriftExtension
{
class TEZooKeeperDiscovery
{
public:
    struct Server
    {
        /// The child node's name, for messages and the log.
        std::string node;
        std::string host;
        std::uint16_t port = 0;
        /// The transport the server registered ("binary" or "http"), when
        /// it did, and its HTTP path.
        std::optional<TETransportMode> transport;
        std::string httpPath;
    };

    /// The ensemble of a Host setting "host1:port1,host2:port2": spaces are
    /// dropped and an entry without a port gets in_defaultPort. Throws
    /// TEException "TEConnectionTestMissingSetting" for an empty list and
    /// "TEZooKeeperBadEnsemble" for an entry that is not host[:port].
    static std::string BuildEnsemble(const std::string& in_hosts, std::uint16_t in_defaultPort);

    /// The server a registration describes; none when neither the name nor
    /// the data give a host and a port.
    static std::optional<Server> ParseRegistration(const std::string& in_node, const std::string& in_data);

    /// The servers registered under in_namespace ("/name") on the ensemble,
    /// waiting at most in_timeoutMs for the ensemble and for each answer.
    /// Throws TEException "TEZooKeeperNotReachable", "TEZooKeeperNoServers",
    /// "TEZooKeeperError" or "TETestCancelled".
    static std::vector<Server> ListServers(const std::string& in_ensemble, const std::string& in_namespace,
                                           int in_timeoutMs, DriverSupport::DSCancellation& io_cancellation,
                                           Support::ILogger* in_log);
};
}  // namespace Tarni::ThriftExtension
