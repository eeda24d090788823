#pragma once
// The connection test with ZooKeeper service discovery: lists the servers
// registered under the namespace, then tries them in random order until one
// opens a session, and tells which one answered.
#include <string>
#include <vector>

#include "core/ILogger.h"
#include "driversupport/DSTestStep.h"
#include "thrift/connectiontest/TEZooKeeperDiscovery.h"

namespace Tarni::DriverSupport
{
class DSCancellation;
}

namespace Tarni::ThriftExtension
{
class TEConnectionTarget;
class TEStepRecorder;

class TEZooKeeperConnector
{
public:
    /// Records a "discovery" step on io_steps (the servers found and tried);
    /// the steps of the attempt that succeeded follow it in io_stepList, the
    /// list io_steps records into. Throws TEException with the cause: the
    /// discovery's, or "TEZooKeeperNoServerAnswered" with each server's.
    static void OpenAndCloseSession(const TEConnectionTarget& in_target, TEStepRecorder& io_steps,
                                    std::vector<DriverSupport::DSTestStep>& io_stepList,
                                    DriverSupport::DSCancellation& io_cancellation, Support::ILogger* in_log);

    /// The target of one registered server: its host and port, and its
    /// registered transport where the configured one does not fit.
    static TEConnectionTarget TargetFor(const TEConnectionTarget& in_target,
                                        const TEZooKeeperDiscovery::Server& in_server);
};
}  // namespace Tarni::ThriftExtension
