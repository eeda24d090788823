// ZooKeeper service discovery in the connection test: registrations and host
// lists are read right, and against a real ZooKeeper server the test gets
// through the live server when a dead one is registered too, and says what is
// wrong for an empty namespace and an ensemble that does not answer.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

#include "common/RecordingLogger.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSCancellation.h"
#include "driversupport/DSDSNConfiguration.h"
#include "support/StringConverter.h"
#include "thrift/TEException.h"
#include "thrift/connectiontest/TEConnectionTarget.h"
#include "thrift/connectiontest/TEConnectionTester.h"
#include "thrift/connectiontest/TEZooKeeperConnector.h"
#include "thrift/connectiontest/TEZooKeeperDiscovery.h"
#include "thrift/connectiontest/TestOutcome.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"
#include "thrift/connectiontest/server/TestZooKeeperServer.h"

namespace
{
using Tarni::DriverSupport::DSDSNConfiguration;
using Tarni::DriverSupport::IConnectionTester;
using Tarni::Support::StringConverter;
using Tarni::Testing::RecordingLogger;
using Tarni::Testing::TestTCLIServer;
using Tarni::Testing::TestOutcome::Steps;
using Tarni::Testing::TestOutcome::Text;
using Tarni::Testing::TestZooKeeperServer;
using Tarni::ThriftExtension::TEConnectionTarget;
using Tarni::ThriftExtension::TEConnectionTester;
using Tarni::ThriftExtension::TEException;
using Tarni::ThriftExtension::TETransportMode;
using Tarni::ThriftExtension::TEZooKeeperConnector;
using Tarni::ThriftExtension::TEZooKeeperDiscovery;
namespace Keys = Tarni::DriverSupport::Keys;
using Status = IConnectionTester::Outcome::Status;

TEST(TEZooKeeperDiscovery, ReadsARegistrationTheDataWinning)
{
    auto server = TEZooKeeperDiscovery::ParseRegistration("serverUri=node1.example:10000;version=3.1.3;sequence=0000000007", "");
    ASSERT_TRUE(server);
    EXPECT_EQ(server->host, "node1.example");
    EXPECT_EQ(server->port, 10000);
    EXPECT_FALSE(server->transport);

    server = TEZooKeeperDiscovery::ParseRegistration(
        "serverUri=stale:1;version=3.1.3;sequence=0000000001",
        "hive.server2.thrift.bind.host=node2.example;hive.server2.thrift.port=10001;hive.server2.transport.mode=binary");
    ASSERT_TRUE(server);
    EXPECT_EQ(server->host, "node2.example");
    EXPECT_EQ(server->port, 10001);
    EXPECT_EQ(server->transport, TETransportMode::Binary);

    // In HTTP mode the HTTP port and path are the ones that serve.
    server = TEZooKeeperDiscovery::ParseRegistration(
        "serverUri=[fd00::5]:10001;version=3.1.3;sequence=0000000002",
        "hive.server2.thrift.port=10000;hive.server2.transport.mode=http;hive.server2.thrift.http.port=10002;"
        "hive.server2.thrift.http.path=gateway");
    ASSERT_TRUE(server);
    EXPECT_EQ(server->host, "fd00::5");
    EXPECT_EQ(server->port, 10002);
    EXPECT_EQ(server->transport, TETransportMode::HTTP);
    EXPECT_EQ(server->httpPath, "gateway");

    for (const char* node : {"leader", "serverUri=node:;sequence=1", "serverUri=node:99999", "serverUri=:10000"})
    {
        EXPECT_FALSE(TEZooKeeperDiscovery::ParseRegistration(node, "")) << node;
    }
}

std::string EnsembleKey(const std::string& in_hosts)
{
    try
    {
        return TEZooKeeperDiscovery::BuildEnsemble(in_hosts, 2181);
    }
    catch (const TEException& e)
    {
        return StringConverter::ToUtf8(e.GetMessageKey());
    }
}

TEST(TEZooKeeperDiscovery, BuildsTheEnsembleFromTheHostList)
{
    EXPECT_EQ(EnsembleKey(" zk1:2182 , zk2,[::1]:2183,fd00::7 "), "zk1:2182,zk2:2181,[::1]:2183,[fd00::7]:2181");
    EXPECT_EQ(EnsembleKey("zk1:x"), "TEZooKeeperBadEnsemble");
    EXPECT_EQ(EnsembleKey("zk1:2181,zk 2:2181"), "TEZooKeeperBadEnsemble");
    EXPECT_EQ(EnsembleKey("zk1/chroot:2181"), "TEZooKeeperBadEnsemble");
    EXPECT_EQ(EnsembleKey(" , "), "TEConnectionTestMissingSetting");
}

TEST(TEZooKeeperConnector, KeepsTheConfiguredTransportUnlessTheServerSaysOtherwise)
{
    TEConnectionTarget target;
    target.m_transport = TETransportMode::HTTP;
    TEZooKeeperDiscovery::Server server{"n", "h", 1, TETransportMode::Binary, ""};
    EXPECT_EQ(TEZooKeeperConnector::TargetFor(target, server).m_transport, TETransportMode::SASL);
    target.m_transport = TETransportMode::Binary;
    EXPECT_EQ(TEZooKeeperConnector::TargetFor(target, server).m_transport, TETransportMode::Binary);
    server.transport = TETransportMode::HTTP;
    server.httpPath = "gateway";
    const TEConnectionTarget http = TEZooKeeperConnector::TargetFor(target, server);
    EXPECT_EQ(http.m_transport, TETransportMode::HTTP);
    EXPECT_EQ(http.GetRequestPath(), "/gateway");
    EXPECT_EQ(http.GetAuthority(), "h:1");
}

class ZooKeeperDiscoveryTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const std::string missing = TestZooKeeperServer::Unavailable();
        if (missing.empty())
        {
            s_zooKeeper = std::make_unique<TestZooKeeperServer>();
        }
        else
        {
            std::printf("ZooKeeper discovery tests skipped: %s\n", missing.c_str());
        }
    }
    static void TearDownTestSuite() { s_zooKeeper.reset(); }

    void SetUp() override
    {
        if (!s_zooKeeper)
        {
            GTEST_SKIP() << TestZooKeeperServer::Unavailable();
        }
        Set(Keys::Host, "127.0.0.1:" + std::to_string(s_zooKeeper->Port()));
        Set(Keys::ServiceDiscoveryMode, "ZooKeeper");
        Set(Keys::ThriftTransport, "1");
        Set(Keys::AuthMech, "3");
        Set(Keys::UID, "alice");
        Set(Keys::PWD, "pw");
        Set(Keys::ConnectionTestTimeout, "3");
    }

    ZooKeeperDiscoveryTest() : m_configuration(u"TestDSN", 0, &m_log) {}

    void Set(std::u16string_view in_key, const std::string& in_value)
    {
        m_configuration.SetValue(in_key, StringConverter::FromUtf8(in_value));
    }

    /// in_name made unique to this run: under Wine one server outlives the
    /// test processes (and a test that is run again).
    static std::string Fresh(const std::string& in_name)
    {
        return in_name + "-" + std::to_string(std::chrono::system_clock::now().time_since_epoch().count());
    }

    static std::unique_ptr<TestZooKeeperServer> s_zooKeeper;
    RecordingLogger m_log;
    DSDSNConfiguration m_configuration;
};

std::unique_ptr<TestZooKeeperServer> ZooKeeperDiscoveryTest::s_zooKeeper;

TEST_F(ZooKeeperDiscoveryTest, OpensTheSessionThroughTheLiveServer)
{
    TestTCLIServer::Options options;
    options.mode = TestTCLIServer::Mode::Sasl;
    options.user = "alice";
    options.password = "pw";
    TestTCLIServer live(options);
    const std::string dead = "127.0.0.1:" + std::to_string(TestZooKeeperServer::ClosedPort());
    const std::string liveAuthority = "127.0.0.1:" + std::to_string(live.Port());
    const std::string ns = Fresh("spark");
    s_zooKeeper->Create("/" + ns + "/serverUri=" + dead + ";version=3.4.1;sequence=0000000000");
    // The live one's name is stale: its data tells where it serves.
    s_zooKeeper->Create("/" + ns + "/serverUri=127.0.0.1:1;version=3.4.1;sequence=0000000001",
                        "hive.server2.thrift.bind.host=127.0.0.1;hive.server2.thrift.port=" +
                            std::to_string(live.Port()) + ";hive.server2.transport.mode=binary");
    Set(Keys::ZKNamespace, ns);
    // Random order: repeated, both orders come up (1 in 2^6 that one does not).
    for (int attempt = 0; attempt < 6; ++attempt)
    {
        const auto outcome = TEConnectionTester().TestConnection(m_configuration);
        ASSERT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
        EXPECT_EQ(Steps(outcome), "discovery:passed resolve:passed connect:passed authentication:passed open-session:passed "
                                  "server-info:passed close-session:passed");
        const std::string discovery = StringConverter::ToUtf8(outcome.steps.front().detail);
        EXPECT_NE(discovery.find("2 registered under /" + ns + " on 127.0.0.1:" + std::to_string(s_zooKeeper->Port()) +
                                 "; " + liveAuthority + " answered"),
                  std::string::npos)
            << discovery;
        // The connect step names the address that answered.
        EXPECT_EQ(StringConverter::ToUtf8(outcome.steps[2].detail), liveAuthority);
    }
    EXPECT_EQ(live.SessionsOpened(), 6);
}

TEST_F(ZooKeeperDiscoveryTest, SaysWhenNoRegisteredServerAnswers)
{
    const std::string dead = "127.0.0.1:" + std::to_string(TestZooKeeperServer::ClosedPort());
    const std::string ns = "/" + Fresh("dead");
    s_zooKeeper->Create(ns + "/serverUri=" + dead + ";version=3.4.1;sequence=0000000000");
    Set(Keys::ZKNamespace, ns);
    const auto outcome = TEConnectionTester().TestConnection(m_configuration);
    EXPECT_EQ(Text(outcome), "None of the 1 servers registered under " + ns + " opened a session. " + dead +
                                 " refused the connection. Check the Host and Port settings and that the server is "
                                 "running.");
    EXPECT_EQ(Steps(outcome), "discovery:failed");
}

TEST_F(ZooKeeperDiscoveryTest, NamesAnEmptyOrMissingNamespace)
{
    const std::string empty = Fresh("empty");
    s_zooKeeper->Create("/" + empty);
    const std::string ensemble = "127.0.0.1:" + std::to_string(s_zooKeeper->Port());
    for (const std::string& name : {empty, Fresh("never-created")})
    {
        Set(Keys::ZKNamespace, name);
        const auto outcome = TEConnectionTester().TestConnection(m_configuration);
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("ZooKeeper " + ensemble + " has no servers registered under /" + name + "."),
                  std::string::npos)
            << Text(outcome);
        EXPECT_EQ(Steps(outcome), "discovery:failed");
    }
}

TEST_F(ZooKeeperDiscoveryTest, GivesUpOnAClosedPortWithinTheLimit)
{
    const std::string ensemble = "127.0.0.1:" + std::to_string(TestZooKeeperServer::ClosedPort());
    Set(Keys::Host, ensemble);
    Set(Keys::ZKNamespace, "spark");
    Set(Keys::ConnectionTestTimeout, "2");
    const auto started = std::chrono::steady_clock::now();
    const auto outcome = TEConnectionTester().TestConnection(m_configuration);
    const auto took = std::chrono::steady_clock::now() - started;
    EXPECT_EQ(Text(outcome).rfind("ZooKeeper not reachable: no server of the ensemble " + ensemble +
                                      " answered within 2 seconds",
                                  0),
              0u)
        << Text(outcome);
    EXPECT_LT(took, std::chrono::milliseconds(3500));
    EXPECT_GE(took, std::chrono::milliseconds(1900));
}

TEST_F(ZooKeeperDiscoveryTest, StopsWaitingWhenCancelled)
{
    Set(Keys::Host, "127.0.0.1:" + std::to_string(TestZooKeeperServer::ClosedPort()));
    Set(Keys::ZKNamespace, "spark");
    Set(Keys::ConnectionTestTimeout, "30");
    Tarni::DriverSupport::DSCancellation cancellation;
    std::thread canceller([&cancellation] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        cancellation.Cancel();
    });
    const auto started = std::chrono::steady_clock::now();
    const auto outcome = TEConnectionTester().TestConnection(m_configuration, cancellation);
    canceller.join();
    EXPECT_EQ(Text(outcome), "The test was cancelled.");
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}
}  // namespace
