// Kerberos in the connection test against a throw-away MIT realm: the user's
// ticket opens a session over SASL GSSAPI and over HTTP Negotiate, and a
// missing or expired ticket, an unknown service and an unknown realm each
// fail at the authentication step with their own cause; so do a KDC that
// cannot be reached, a KDC whose clock differs and a server that refuses the
// ticket. A KDC that never answers is given up on at the test's limit or on
// a cancel.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>

#include "common/RecordingLogger.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSDSNConfiguration.h"
#include "support/StringConverter.h"
#include "thrift/TEException.h"
#include "driversupport/DSCancellation.h"
#include "thrift/connectiontest/TEBoundedCall.h"
#include "thrift/connectiontest/TEConnectionTester.h"
#include "thrift/connectiontest/TEKerberosSaslTransport.h"
#include "thrift/connectiontest/TestKdc.h"
#include "thrift/connectiontest/server/TestSilentKdc.h"
#include "thrift/connectiontest/TestOutcome.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"

namespace
{
using Tarni::DriverSupport::DSCancellation;
using Tarni::DriverSupport::DSDSNConfiguration;
using Tarni::DriverSupport::DSTestStep;
using Tarni::DriverSupport::IConnectionTester;
using Tarni::Support::StringConverter;
using Tarni::Testing::RecordingLogger;
using Tarni::Testing::TestKdc;
using Tarni::Testing::TestSilentKdc;
using Tarni::Testing::TestTCLIServer;
using Tarni::Testing::TestOutcome::Steps;
using Tarni::Testing::TestOutcome::Text;
using Tarni::ThriftExtension::TEBoundedCall;
using Tarni::ThriftExtension::TEConnectionTester;
using Tarni::ThriftExtension::TEException;
using Tarni::ThriftExtension::TEKerberosSaslTransport;
namespace Keys = Tarni::DriverSupport::Keys;
using Status = IConnectionTester::Outcome::Status;

class KerberosTest : public ::testing::Test
{
protected:
    KerberosTest() : m_configuration(u"TestDSN", 0, &m_log) {}

    static void SetUpTestSuite()
    {
        if (TestKdc::MissingPrograms().empty())
        {
            s_kdc = std::make_unique<TestKdc>("spark/localhost");
        }
    }
    static void TearDownTestSuite() { s_kdc.reset(); }

    void SetUp() override
    {
        if (!s_kdc)
        {
            GTEST_SKIP() << TestKdc::MissingPrograms();
        }
        // A fresh cache with the ticket-granting ticket only: each test's
        // first context asks the KDC for its service ticket.
        s_kdc->PointAtOwnKdc();
        s_kdc->Kinit();
    }

    void Set(std::u16string_view in_key, const std::string& in_value)
    {
        m_configuration.SetValue(in_key, StringConverter::FromUtf8(in_value));
    }

    // Kerberos to the test server as the service spark/localhost.
    void Target(std::uint16_t in_port, const std::string& in_transport)
    {
        Set(Keys::Host, "127.0.0.1");
        Set(Keys::Port, std::to_string(in_port));
        Set(Keys::ThriftTransport, in_transport);
        Set(Keys::AuthMech, "1");
        Set(Keys::KrbServiceName, "spark");
        Set(Keys::KrbHostFQDN, "localhost");
        Set(Keys::KrbRealm, TestKdc::REALM);
        Set(Keys::ServicePrincipalCanonicalization, "0");
        Set(Keys::ConnectionTestTimeout, "5");
    }

    IConnectionTester::Outcome Run() { return TEConnectionTester().TestConnection(m_configuration); }
    IConnectionTester::Outcome Run(DSCancellation& io_cancellation)
    {
        return TEConnectionTester().TestConnection(m_configuration, io_cancellation);
    }

    static std::string Detail(const IConnectionTester::Outcome& in_outcome, const std::string& in_id)
    {
        for (const DSTestStep& step : in_outcome.steps)
        {
            if (step.id == in_id)
            {
                return StringConverter::ToUtf8(step.detail);
            }
        }
        return "(no step " + in_id + ")";
    }

    static TestTCLIServer::Options Server(TestTCLIServer::Mode in_mode)
    {
        TestTCLIServer::Options options;
        options.mode = in_mode;
        options.keytab = s_kdc->Keytab();
        return options;
    }

    static std::unique_ptr<TestKdc> s_kdc;
    RecordingLogger m_log;
    DSDSNConfiguration m_configuration;
};

std::unique_ptr<TestKdc> KerberosTest::s_kdc;

TEST_F(KerberosTest, TicketOpensASessionOverSaslAndHttp)
{
    const std::string user = std::string(TestKdc::USER) + "@" + TestKdc::REALM;
    const std::string service = std::string("spark/localhost@") + TestKdc::REALM;
    {
        SCOPED_TRACE("SASL GSSAPI");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
        Target(server.Port(), "1");
        const auto outcome = Run();
        ASSERT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:passed open-session:passed server-info:passed "
                                  "close-session:passed");
        EXPECT_EQ(Detail(outcome, "authentication"), "Kerberos (SASL GSSAPI) as " + user + " for " + service);
        EXPECT_EQ(server.LastKerberosClient(), user);
        EXPECT_FALSE(server.LastKerberosDelegated());
        EXPECT_EQ(server.SessionsClosed(), 1);
    }
    {
        // Each request carries a token of its own: the close is accepted too.
        SCOPED_TRACE("HTTP Negotiate");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Http));
        Target(server.Port(), "2");
        Set(Keys::HTTPPath, "cliservice");
        const auto outcome = Run();
        ASSERT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
        EXPECT_EQ(Detail(outcome, "authentication"), "Kerberos (HTTP Negotiate) as " + user + " for " + service);
        EXPECT_EQ(server.LastKerberosClient(), user);
        EXPECT_EQ(server.SessionsClosed(), 1);
    }
    {
        // "Kerberos over HTTP" goes over HTTP whatever the transport says.
        SCOPED_TRACE("mechanism 9");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Http));
        Target(server.Port(), "0");
        Set(Keys::AuthMech, "9");
        Set(Keys::HTTPPath, "cliservice");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    }
}

TEST_F(KerberosTest, HostIsCanonicalisedAndTheTicketDelegatedWhenAsked)
{
    TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
    Target(server.Port(), "1");
    // 127.0.0.1 is "localhost" by reverse lookup.
    Set(Keys::KrbHostFQDN, "_HOST");
    Set(Keys::ServicePrincipalCanonicalization, "1");
    Set(Keys::DelegateKrbCreds, "1");
    const auto outcome = Run();
    ASSERT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    EXPECT_TRUE(server.LastKerberosDelegated());

    // Without canonicalisation the principal is spark/127.0.0.1, unknown.
    Set(Keys::ServicePrincipalCanonicalization, "0");
    const auto uncanonical = Run();
    EXPECT_EQ(uncanonical.status, Status::Failed);
    EXPECT_NE(Text(uncanonical).find("does not know the service principal spark/127.0.0.1@TARNI.TEST"),
              std::string::npos)
        << Text(uncanonical);
}

TEST_F(KerberosTest, EachFailureNamesItsCauseAtTheAuthenticationStep)
{
    TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
    {
        SCOPED_TRACE("wrong service name");
        Target(server.Port(), "1");
        Set(Keys::KrbServiceName, "hive");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("does not know the service principal hive/localhost@TARNI.TEST"),
                  std::string::npos)
            << Text(outcome);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
    }
    {
        // The realm knows the service, but the server has not its keys.
        SCOPED_TRACE("server without the service's keys");
        s_kdc->AddServiceWithoutKeytab("impala/localhost");
        Target(server.Port(), "1");
        Set(Keys::KrbServiceName, "impala");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("127.0.0.1:" + std::to_string(server.Port()) +
                                     " refused the Kerberos authentication: GSS initiate failed"),
                  std::string::npos)
            << Text(outcome);
    }
    {
        SCOPED_TRACE("wrong realm");
        Target(server.Port(), "1");
        Set(Keys::KrbRealm, "ELSEWHERE.TEST");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("The Kerberos realm ELSEWHERE.TEST is not known to the realm of alice@TARNI.TEST"),
                  std::string::npos)
            << Text(outcome);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
    }
    {
        SCOPED_TRACE("no ticket, over HTTP");
        s_kdc->Kdestroy();
        TestTCLIServer http(Server(TestTCLIServer::Mode::Http));
        Target(http.Port(), "2");
        Set(Keys::HTTPPath, "cliservice");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("There is no Kerberos ticket"), std::string::npos) << Text(outcome);
        EXPECT_NE(Text(outcome).find("kinit"), std::string::npos) << Text(outcome);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
        EXPECT_EQ(http.SessionsOpened(), 0);
    }
    {
        SCOPED_TRACE("expired ticket");
        s_kdc->Kinit("2s");
        std::this_thread::sleep_for(std::chrono::milliseconds(2500));
        Target(server.Port(), "1");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("The Kerberos ticket has expired"), std::string::npos) << Text(outcome);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
    }
    EXPECT_EQ(server.SessionsOpened(), 0);
}

TEST_F(KerberosTest, AKdcThatCannotBeReachedOrNeverAnswersFailsWithinTheLimitOrOnCancel)
{
    TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
    const std::string realmOf = "of the realm of spark/localhost@TARNI.TEST";
    {
        SCOPED_TRACE("closed port");
        TestSilentKdc closed;
        closed.Stop();
        s_kdc->PointAt("127.0.0.1:" + std::to_string(closed.Port()));
        Target(server.Port(), "1");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("No Kerberos server (KDC) " + realmOf + " could be reached"), std::string::npos)
            << Text(outcome);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
    }
    TestSilentKdc silent;
    for (const auto first : {TestKdc::Transport::TcpFirst, TestKdc::Transport::UdpFirst})
    {
        // Over TCP the library waits ten seconds before it tries UDP; UDP
        // first, it tries TCP a second later; it would go on for half a
        // minute.
        const bool tcpFirst = first == TestKdc::Transport::TcpFirst;
        SCOPED_TRACE(tcpFirst ? "silent KDC, TCP first" : "silent KDC, UDP first");
        s_kdc->PointAt("127.0.0.1:" + std::to_string(silent.Port()), first);
        const int tcpBefore = silent.TcpConnections();
        const int udpBefore = silent.UdpDatagrams();
        Target(server.Port(), "1");
        Set(Keys::ConnectionTestTimeout, "2");
        const auto start = std::chrono::steady_clock::now();
        const auto outcome = Run();
        const auto elapsed = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("Authentication did not finish within 2 seconds"), std::string::npos)
            << Text(outcome);
        EXPECT_NE(Text(outcome).find("no Kerberos server (KDC) " + realmOf + " answered"), std::string::npos)
            << Text(outcome);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
        EXPECT_GE(elapsed, std::chrono::seconds(2));
        EXPECT_LT(elapsed, std::chrono::milliseconds(3500));
        EXPECT_EQ(silent.TcpConnections(), tcpBefore + 1);
        EXPECT_EQ(silent.UdpDatagrams() > udpBefore, !tcpFirst);
    }
    {
        // The limit is 30 s: a cancel that does not work fails.
        SCOPED_TRACE("cancel");
        Target(server.Port(), "1");
        Set(Keys::ConnectionTestTimeout, "30");
        const int before = silent.TcpConnections();
        DSCancellation cancellation;
        std::chrono::steady_clock::time_point cancelledAt;
        std::thread canceller([&] {
            const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(5);
            while (silent.TcpConnections() == before && std::chrono::steady_clock::now() < limit)
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            cancelledAt = std::chrono::steady_clock::now();
            cancellation.Cancel();
        });
        const auto outcome = Run(cancellation);
        const auto returnedAt = std::chrono::steady_clock::now();
        canceller.join();
        EXPECT_GT(silent.TcpConnections(), before);
        EXPECT_LT(returnedAt - cancelledAt, std::chrono::seconds(1));
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_EQ(Text(outcome), "The test was cancelled.");
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
    }
    // The calls left waiting end on their own once the KDC is gone.
    EXPECT_EQ(TEBoundedCall::AbandonedCalls(), 3);
    silent.Stop();
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(15);
    while (TEBoundedCall::AbandonedCalls() > 0 && std::chrono::steady_clock::now() < limit)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_EQ(TEBoundedCall::AbandonedCalls(), 0);
}

TEST_F(KerberosTest, AKdcWhoseClockDiffersIsNamedAsTheCause)
{
    if (!TestKdc::MissingFaketime().empty())
    {
        GTEST_SKIP() << TestKdc::MissingFaketime();
    }
    // The user's ticket comes from the realm's own KDC; the service ticket is
    // asked of a second KDC of the realm whose clock is 20 minutes ahead.
    s_kdc->PointAt("127.0.0.1:" + std::to_string(s_kdc->StartShiftedKdc("+20m")));
    TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
    Target(server.Port(), "1");
    const auto outcome = Run();
    EXPECT_EQ(outcome.status, Status::Failed);
    EXPECT_NE(Text(outcome).find("The clocks of this computer and of the Kerberos server differ too much"),
              std::string::npos)
        << Text(outcome);
    EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
}

TEST_F(KerberosTest, AServerWithAnOutdatedKeyRefusesTheTicketWithHttp401)
{
    // The realm has changed the service's key; the server's keytab holds the
    // version before.
    TestTCLIServer::Options options = Server(TestTCLIServer::Mode::Http);
    options.keytab = s_kdc->StaleKeytab("thrift/localhost");
    TestTCLIServer server(options);
    Target(server.Port(), "2");
    Set(Keys::KrbServiceName, "thrift");
    Set(Keys::HTTPPath, "cliservice");
    const auto outcome = Run();
    EXPECT_EQ(outcome.status, Status::Failed);
    EXPECT_NE(Text(outcome).find("127.0.0.1:" + std::to_string(server.Port()) +
                                 " refused the Kerberos authentication: HTTP 401"),
              std::string::npos)
        << Text(outcome);
    // The ticket is made in the authentication step; the server sees it
    // with the first request.
    EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:passed open-session:failed");
    EXPECT_EQ(server.SessionsOpened(), 0);
}

TEST_F(KerberosTest, BinaryTransportIsRefusedBeforeConnecting)
{
    Target(1, "0");
    const auto outcome = Run();
    EXPECT_EQ(outcome.status, Status::Failed);
    EXPECT_NE(Text(outcome).find("needs the SASL or the HTTP transport"), std::string::npos) << Text(outcome);
}

TEST(KerberosSecurityLayer, OnlyNoSecurityLayerIsChosen)
{
    // Offer: layer bits, then the server's maximum buffer size.
    EXPECT_EQ(TEKerberosSaslTransport::ChooseSecurityLayer(std::string("\x07\x00\x10\x00", 4), "s"),
              std::string("\x01\x00\x00\x00", 4));
    // Integrity or confidentiality only: the test cannot speak them.
    EXPECT_THROW(TEKerberosSaslTransport::ChooseSecurityLayer(std::string("\x06\x00\x10\x00", 4), "s"),
                 TEException);
    EXPECT_THROW(TEKerberosSaslTransport::ChooseSecurityLayer(std::string("\x01\x00", 2), "s"), TEException);
}
}  // namespace
