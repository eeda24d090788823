#include "thrift/connectiontest/TEZooKeeperConnector.h"

#include <algorithm>
#include <random>

#include "driversupport/DSCancellation.h"
#include "support/StringConverter.h"
#include "support/messages/DSIMessageManager.h"
#include "thrift/TEException.h"
#include "thrift/connectiontest/TEConnectionTarget.h"
#include "thrift/connectiontest/TEConnectionTester.h"
#include "thrift/connectiontest/TEStepRecorder.h"

namespace Tarni::ThriftExtension
{
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEZooKeeperConnector";
}  // namespace

TEConnectionTarget TEZooKeeperConnector::TargetFor(const TEConnectionTarget& in_target,
                                                   const TEZooKeeperDiscovery::Server& in_server)
{
    TEConnectionTarget target = in_target;
    target.m_host = in_server.host;
    target.m_port = in_server.port;
    if (in_server.transport == TETransportMode::HTTP)
    {
        target.m_transport = TETransportMode::HTTP;
        if (!in_server.httpPath.empty())
        {
            target.m_settings.m_httpPath = in_server.httpPath;
        }
    }
    else if (in_server.transport == TETransportMode::Binary && target.m_transport == TETransportMode::HTTP)
    {
        // A server in binary mode with authentication speaks SASL.
        target.m_transport = TETransportMode::SASL;
    }
    return target;
}

void TEZooKeeperConnector::OpenAndCloseSession(const TEConnectionTarget& in_target, TEStepRecorder& io_steps,
                                               std::vector<DriverSupport::DSTestStep>& io_stepList,
                                               DriverSupport::DSCancellation& io_cancellation,
                                               Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "OpenAndCloseSession");
    io_steps.Begin("discovery");
    std::vector<TEZooKeeperDiscovery::Server> servers = TEZooKeeperDiscovery::ListServers(
        in_target.m_zooKeeperEnsemble, in_target.m_zooKeeperNamespace, in_target.m_timeoutMs, io_cancellation, in_log);
    std::shuffle(servers.begin(), servers.end(), std::mt19937(std::random_device()()));

    std::string tried;
    for (const TEZooKeeperDiscovery::Server& server : servers)
    {
        if (io_cancellation.IsCancelled())
        {
            throw TEException(u"TETestCancelled", {});
        }
        const TEConnectionTarget target = TargetFor(in_target, server);
        std::vector<DriverSupport::DSTestStep> attempt;
        TEStepRecorder attemptSteps(attempt);
        try
        {
            TEConnectionTester::OpenAndCloseSession(target, attemptSteps, io_cancellation, in_log);
        }
        catch (const Support::ErrorException& e)
        {
            if (io_cancellation.IsCancelled())
            {
                throw;
            }
            const std::string reason = StringConverter::ToUtf8(Support::DSIMessageManager::GetDisplayText(e));
            if (in_log != nullptr)
            {
                in_log->LogWarning(NS, CLS, "OpenAndCloseSession", "The registered server %s failed: %s",
                                   target.GetAuthority().c_str(), reason.c_str());
            }
            tried += (tried.empty() ? "" : " ") + reason;
            continue;
        }
        if (in_log != nullptr)
        {
            in_log->LogInfo(NS, CLS, "OpenAndCloseSession", "The registered server %s answered.",
                            target.GetAuthority().c_str());
        }
        std::string detail = std::to_string(servers.size()) + " registered under " + in_target.m_zooKeeperNamespace +
                             " on " + in_target.m_zooKeeperEnsemble + "; " + target.GetAuthority() + " answered";
        if (!tried.empty())
        {
            detail += "; tried before: " + tried;
        }
        io_steps.Pass(detail);
        io_stepList.insert(io_stepList.end(), attempt.begin(), attempt.end());
        return;
    }
    throw TEException(u"TEZooKeeperNoServerAnswered",
                      {TEException::ToParameter(std::to_string(servers.size())),
                       TEException::ToParameter(in_target.m_zooKeeperNamespace), TEException::ToParameter(tried)});
}
}  // namespace Tarni::ThriftExtension
