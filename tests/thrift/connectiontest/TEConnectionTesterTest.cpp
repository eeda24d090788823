// The connection test against the project's own TCLIService server on
// 127.0.0.1: a session opens over each transport with the right settings, and
// each wrong setting fails with its own reason, within the time limit and
// without any secret in the result or the log.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include <thrift/transport/TServerSocket.h>
#include <thrift/transport/TSocket.h>

#include <thread>

#include "common/RecordingLogger.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSBase64.h"
#include "driversupport/DSDSNConfiguration.h"
#include "support/StringConverter.h"
#include "thrift/connectiontest/TEConnectionTester.h"
#include "thrift/connectiontest/TEHttpClientTransport.h"
#include "thrift/connectiontest/TESaslClientTransport.h"
#include "thrift/connectiontest/TestCertificates.h"
#include "thrift/connectiontest/TestOutcome.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"

namespace
{
using Tarni::DriverSupport::DSDSNConfiguration;
using Tarni::DriverSupport::IConnectionTester;
using Tarni::Support::StringConverter;
using Tarni::Testing::RecordingLogger;
using Tarni::Testing::TestTCLIServer;
using Tarni::Testing::TestOutcome::Steps;
using Tarni::Testing::TestOutcome::Text;
using Tarni::ThriftExtension::TEConnectionTester;
using Tarni::ThriftExtension::TEHttpClientTransport;
using Tarni::ThriftExtension::TESaslClientTransport;
namespace Keys = Tarni::DriverSupport::Keys;
using Status = IConnectionTester::Outcome::Status;

const std::string PASSWORD = "S3cret-pw!";

std::string Cert(const std::string& in_name)
{
    return Tarni::Testing::TestCertificates::File(in_name);
}

// An HTTP proxy that opens one CONNECT tunnel and relays it, remembering the
// request line and the proxy credentials it was given.
class TunnelProxy
{
public:
    TunnelProxy() : m_listener("127.0.0.1", 0)
    {
        m_listener.listen();
        m_thread = std::thread([this] {
            try
            {
                Serve();
            }
            catch (const std::exception&)
            {
            }
        });
    }
    ~TunnelProxy()
    {
        m_listener.interrupt();
        m_thread.join();
    }
    std::uint16_t Port() { return static_cast<std::uint16_t>(m_listener.getPort()); }

    std::string m_requestLine;
    std::string m_authorization;

private:
    using Transport = apache::thrift::transport::TTransport;

    static std::string ReadLine(Transport& io_from)
    {
        std::string line;
        for (std::uint8_t byte = 0; io_from.readAll(&byte, 1), byte != '\n';)
        {
            if (byte != '\r')
            {
                line.push_back(static_cast<char>(byte));
            }
        }
        return line;
    }

    static void Relay(const std::shared_ptr<Transport>& io_from, const std::shared_ptr<Transport>& io_to)
    {
        std::uint8_t buffer[4096];
        try
        {
            for (std::uint32_t n; (n = io_from->read(buffer, sizeof(buffer))) > 0;)
            {
                io_to->write(buffer, n);
                io_to->flush();
            }
        }
        catch (const std::exception&)
        {
        }
        io_to->close();
    }

    void Serve()
    {
        std::shared_ptr<Transport> client = m_listener.accept();
        m_requestLine = ReadLine(*client);
        for (std::string line = ReadLine(*client); !line.empty(); line = ReadLine(*client))
        {
            if (line.rfind("Proxy-Authorization: ", 0) == 0)
            {
                m_authorization = line.substr(21);
            }
        }
        const std::string authority = m_requestLine.substr(8, m_requestLine.find(' ', 8) - 8);
        const std::size_t colon = authority.rfind(':');
        auto upstream = std::make_shared<apache::thrift::transport::TSocket>(authority.substr(0, colon),
                                                                             std::stoi(authority.substr(colon + 1)));
        upstream->open();
        const std::string established = "HTTP/1.1 200 Connection established\r\n\r\n";
        client->write(reinterpret_cast<const std::uint8_t*>(established.data()),
                      static_cast<std::uint32_t>(established.size()));
        client->flush();
        std::thread back([&] { Relay(upstream, client); });
        Relay(client, upstream);
        back.join();
    }

    apache::thrift::transport::TServerSocket m_listener;
    std::thread m_thread;
};

class ConnectionTest : public ::testing::Test
{
protected:
    ConnectionTest() : m_configuration(u"TestDSN", 0, &m_log) {}

    void Set(std::u16string_view in_key, const std::string& in_value)
    {
        m_configuration.SetValue(in_key, StringConverter::FromUtf8(in_value));
    }

    // Settings for the server: transport, mechanism, user and password.
    void Target(std::uint16_t in_port, const std::string& in_transport, const std::string& in_mech)
    {
        Set(Keys::Host, "127.0.0.1");
        Set(Keys::Port, std::to_string(in_port));
        Set(Keys::ThriftTransport, in_transport);
        Set(Keys::AuthMech, in_mech);
        Set(Keys::UID, "alice");
        Set(Keys::PWD, PASSWORD);
        Set(Keys::ConnectionTestTimeout, "5");
    }

    void UseTls(const std::string& in_trusted)
    {
        Set(Keys::SSL, "1");
        Set(Keys::TrustedCerts, in_trusted);
    }

    IConnectionTester::Outcome Run()
    {
        Tarni::DriverSupport::DSCancellation never;
        return Run(never);
    }

    IConnectionTester::Outcome Run(Tarni::DriverSupport::DSCancellation& io_cancellation)
    {
        const auto outcome = TEConnectionTester().TestConnection(m_configuration, io_cancellation);
        const std::string text = StringConverter::ToUtf8(outcome.errorText);
        EXPECT_EQ(text.find(PASSWORD), std::string::npos) << text;
        for (const auto& record : m_log.records)
        {
            EXPECT_EQ(record.text.find(PASSWORD), std::string::npos) << record.text;
        }
        return outcome;
    }

    static TestTCLIServer::Options Server(TestTCLIServer::Mode in_mode, const std::string& in_certificate = "")
    {
        TestTCLIServer::Options options;
        options.mode = in_mode;
        options.user = "alice";
        options.password = PASSWORD;
        if (!in_certificate.empty())
        {
            options.certificateFile = Cert(in_certificate + ".pem");
            options.keyFile = Cert(in_certificate + ".key");
        }
        return options;
    }

    RecordingLogger m_log;
    DSDSNConfiguration m_configuration;
};

TEST_F(ConnectionTest, OpensAndClosesASessionOverEachTransport)
{
    {
        SCOPED_TRACE("binary, credentials in the request");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Binary));
        Target(server.Port(), "0", "3");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
        EXPECT_EQ(server.SessionsOpened(), 1);
        EXPECT_EQ(server.SessionsClosed(), 1);
    }
    {
        SCOPED_TRACE("SASL PLAIN");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
        Target(server.Port(), "1", "3");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
        EXPECT_EQ(server.SessionsClosed(), 1);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:passed open-session:passed "
                                  "server-info:passed close-session:passed");
    }
    {
        SCOPED_TRACE("SASL PLAIN over TLS");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl, "server"));
        Target(server.Port(), "1", "3");
        UseTls(Cert("ca.pem"));
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    }
}

TEST_F(ConnectionTest, HttpCarriesPathHeadersAndCredentials)
{
    TestTCLIServer server(Server(TestTCLIServer::Mode::Http));
    Target(server.Port(), "2", "3");
    Set(Keys::HTTPPath, "cliservice");
    Set(u"http.header.X-Team", "analytics");
    const auto outcome = Run();
    ASSERT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    auto headers = server.LastHeaders();
    EXPECT_EQ(headers["x-team"], "analytics");
    EXPECT_EQ(headers["x-thriftserver-session-tag"].size(), 36u);
    EXPECT_NE(headers["user-agent"].find("Thrift/0.9.0 (C++/THttpClient)"), std::string::npos)
        << headers["user-agent"];
    EXPECT_EQ(headers["authorization"].rfind("Basic ", 0), 0u);
    EXPECT_EQ(server.SessionsClosed(), 1);
}

TEST_F(ConnectionTest, HttpsAndTokenPassThrough)
{
    auto options = Server(TestTCLIServer::Mode::Http, "server");
    options.user.clear();
    options.bearerToken = "token-123";
    TestTCLIServer server(options);
    Target(server.Port(), "2", "11");
    Set(Keys::HTTPPath, "/cliservice");
    Set(Keys::Auth_Flow, "0");
    Set(Keys::Auth_AccessToken, "token-123");
    UseTls(Cert("ca.pem"));
    const auto outcome = Run();
    ASSERT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    EXPECT_EQ(server.LastHeaders()["authorization"], "Bearer token-123");
}

TEST_F(ConnectionTest, HttpsGoesThroughTheProxysTunnel)
{
    TestTCLIServer server(Server(TestTCLIServer::Mode::Http, "server"));
    TunnelProxy proxy;
    Target(server.Port(), "2", "3");
    Set(Keys::HTTPPath, "cliservice");
    UseTls(Cert("ca.pem"));
    Set(Keys::UseProxy, "1");
    Set(Keys::ProxyHost, "127.0.0.1");
    Set(Keys::ProxyPort, std::to_string(proxy.Port()));
    Set(Keys::ProxyUID, "relay");
    Set(Keys::ProxyPWD, "relay-pw");
    const auto outcome = Run();
    EXPECT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    EXPECT_EQ(proxy.m_requestLine, "CONNECT 127.0.0.1:" + std::to_string(server.Port()) + " HTTP/1.1");
    EXPECT_EQ(proxy.m_authorization, "Basic " + Tarni::DriverSupport::DSBase64::Encode("relay:relay-pw"));
    EXPECT_EQ(server.SessionsClosed(), 1);
}

TEST_F(ConnectionTest, RefusedCredentialsNameTheServersReason)
{
    {
        SCOPED_TRACE("SASL");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
        Target(server.Port(), "1", "3");
        Set(Keys::PWD, "wrong");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:failed");
        EXPECT_EQ(outcome.steps.back().detail, outcome.errorText);
        EXPECT_NE(Text(outcome).find("refused the user name or password: Error validating the login"),
                  std::string::npos)
            << Text(outcome);
    }
    {
        SCOPED_TRACE("HTTP");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Http));
        Target(server.Port(), "2", "3");
        Set(Keys::HTTPPath, "cliservice");
        Set(Keys::PWD, "wrong");
        const auto outcome = Run();
        EXPECT_NE(Text(outcome).find("HTTP 401 Unauthorized"), std::string::npos) << Text(outcome);
    }
    {
        SCOPED_TRACE("OpenSession refused with a status");
        auto options = Server(TestTCLIServer::Mode::Sasl);
        options.user = "bob";
        options.refusedUser = "bob";
        TestTCLIServer server(options);
        Target(server.Port(), "1", "3");
        Set(Keys::UID, "bob");
        const auto outcome = Run();
        EXPECT_NE(Text(outcome).find("did not open a session: User bob may not open a session (SQL state 08004)"),
                  std::string::npos)
            << Text(outcome);
    }
}

TEST_F(ConnectionTest, WrongPathAndWrongPortAreNamed)
{
    {
        TestTCLIServer server(Server(TestTCLIServer::Mode::Http));
        Target(server.Port(), "2", "3");
        Set(Keys::HTTPPath, "nothing-here");
        const auto outcome = Run();
        EXPECT_NE(Text(outcome).find("HTTP 404 Not Found for the path \"/nothing-here\""), std::string::npos)
            << Text(outcome);
    }
    std::uint16_t freePort;
    {
        // A port that was free a moment ago: nobody listens there now.
        apache::thrift::transport::TServerSocket probe("127.0.0.1", 0);
        probe.listen();
        freePort = static_cast<std::uint16_t>(probe.getPort());
        probe.close();
    }
    Target(freePort, "1", "3");
    const auto outcome = Run();
    EXPECT_NE(Text(outcome).find("127.0.0.1:" + std::to_string(freePort) + " refused the connection"),
              std::string::npos)
        << Text(outcome);
}

TEST_F(ConnectionTest, ASilentServerTimesOutWithinTheLimit)
{
    // Listens (the system completes the connection) but never answers.
    apache::thrift::transport::TServerSocket silent("127.0.0.1", 0);
    silent.listen();
    Target(static_cast<std::uint16_t>(silent.getPort()), "1", "3");
    Set(Keys::ConnectionTestTimeout, "1");
    const auto start = std::chrono::steady_clock::now();
    const auto outcome = Run();
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_LT(elapsed, std::chrono::seconds(4));
    EXPECT_NE(Text(outcome).find("did not answer within 1 seconds"), std::string::npos) << Text(outcome);
}

TEST_F(ConnectionTest, CertificatesAreJudgedByTheSslOptions)
{
    struct Case
    {
        const char* name;
        const char* certificate;
        std::vector<std::pair<std::u16string_view, std::string>> settings;
        const char* expected;  // nullptr: success
    };
    const Case cases[] = {
        {"unknown CA", "stranger", {}, "was not accepted: unable to get local issuer certificate"},
        {"host-name mismatch", "wrong-host", {}, "was not accepted: IP address mismatch"},
        {"host-name mismatch allowed", "wrong-host", {{Keys::AllowHostNameCNMismatch, "1"}}, nullptr},
        {"self-signed", "self", {}, "was not accepted: self-signed certificate"},
        {"self-signed allowed", "self", {{Keys::AllowSelfSignedServerCert, "1"}}, nullptr},
    };
    for (const Case& c : cases)
    {
        SCOPED_TRACE(c.name);
        TestTCLIServer server(Server(TestTCLIServer::Mode::Http, c.certificate));
        Target(server.Port(), "2", "3");
        Set(Keys::HTTPPath, "cliservice");
        UseTls(Cert("ca.pem"));
        Set(Keys::AllowHostNameCNMismatch, "0");
        Set(Keys::AllowSelfSignedServerCert, "0");
        for (const auto& [key, value] : c.settings)
        {
            Set(key, value);
        }
        const auto outcome = Run();
        if (c.expected == nullptr)
        {
            EXPECT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
        }
        else
        {
            EXPECT_NE(Text(outcome).find(c.expected), std::string::npos) << Text(outcome);
        }
    }
}

TEST_F(ConnectionTest, TrustComesFromTheFileOrTheSystemStore)
{
    TestTCLIServer server(Server(TestTCLIServer::Mode::Binary, "server"));
    {
        SCOPED_TRACE("the system store, which does not know the throw-away CA, wins over the file");
        Target(server.Port(), "0", "3");
        UseTls(Cert("ca.pem"));
        Set(Keys::UseSystemTrustStore, "1");
        const auto outcome = Run();
        EXPECT_NE(Text(outcome).find("was not accepted: unable to get local issuer certificate"), std::string::npos)
            << Text(outcome);
    }
    {
        SCOPED_TRACE("an unreadable file is named");
        Target(server.Port(), "0", "3");
        UseTls(Cert("no-such-file.pem"));
        Set(Keys::UseSystemTrustStore, "0");
        const auto outcome = Run();
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(Text(outcome).find("no-such-file.pem\" (TrustedCerts) cannot be read"), std::string::npos)
            << Text(outcome);
    }
}

TEST_F(ConnectionTest, TlsBelowTheMinimumIsRefused)
{
    auto options = Server(TestTCLIServer::Mode::Binary, "server");
    options.maxTls = "1.1";
    TestTCLIServer server(options);
    Target(server.Port(), "0", "3");
    UseTls(Cert("ca.pem"));
    Set(Keys::Min_TLS, "1.2");
    const auto outcome = Run();
    EXPECT_EQ(outcome.status, Status::Failed);
    EXPECT_NE(Text(outcome).find("The TLS handshake with 127.0.0.1:" + std::to_string(server.Port()) + " failed"),
              std::string::npos)
        << Text(outcome);
}

TEST_F(ConnectionTest, SettingsThatCannotBeTestedSaySo)
{
    Target(1, "1", "13");
    EXPECT_NE(Text(Run()).find("cannot test a connection that uses the authentication mechanism 13"),
              std::string::npos);
    Target(1, "2", "11");
    Set(Keys::Auth_Flow, "2");
    EXPECT_NE(Text(Run()).find("which opens a browser; not tested here"), std::string::npos);
    Target(1, "1", "3");
    Set(Keys::ServiceDiscoveryMode, "AOSS");
    EXPECT_NE(Text(Run()).find("service discovery through AOSS"), std::string::npos);
    Set(Keys::ServiceDiscoveryMode, "0");
    Set(Keys::Host, "");
    const auto outcome = Run();
    EXPECT_NE(Text(outcome).find("the setting Host is empty"), std::string::npos);
    // Refused before anything was tried: a step of its own names the settings.
    EXPECT_EQ(Steps(outcome), "settings:failed");
}

TEST(ConnectionTransportParts, PlainResponseAndHttpStatusLine)
{
    EXPECT_EQ(TESaslClientTransport::PlainResponse("u", "p"), std::string("\0u\0p", 4));
    int status = 0;
    std::string reason;
    ASSERT_TRUE(TEHttpClientTransport::ParseStatusLine("HTTP/1.1 503 Service Unavailable", status, reason));
    EXPECT_EQ(status, 503);
    EXPECT_EQ(reason, "Service Unavailable");
    EXPECT_FALSE(TEHttpClientTransport::ParseStatusLine("SSH-2.0-OpenSSH", status, reason));
    EXPECT_FALSE(TEHttpClientTransport::ParseStatusLine("HTTP/1.1 2x0 OK", status, reason));
}
}  // namespace

// The step list: what each step found on success, and where a failure stops
// the list (the failed step carries the reason, the steps before it stay).
TEST_F(ConnectionTest, StepsOfASuccessOverTls)
{
    TestTCLIServer server(Server(TestTCLIServer::Mode::Http, "server"));
    Target(server.Port(), "2", "3");
    Set(Keys::HTTPPath, "cliservice");
    UseTls(Cert("ca.pem"));
    const auto outcome = Run();
    ASSERT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed tls:passed authentication:passed open-session:passed "
                              "server-info:passed close-session:passed");
    auto detail = [&outcome](std::size_t in_index) { return StringConverter::ToUtf8(outcome.steps[in_index].detail); };
    const std::string address = "127.0.0.1:" + std::to_string(server.Port());
    EXPECT_EQ(detail(0), "127.0.0.1: " + address);
    EXPECT_EQ(detail(1), address);
    EXPECT_NE(detail(2).find("TLSv1."), std::string::npos) << detail(2);
    EXPECT_NE(detail(2).find("server certificate CN=server,O=Tarni connection test, issued by CN=Test CA"),
              std::string::npos)
        << detail(2);
    EXPECT_NE(detail(2).find("; verified"), std::string::npos) << detail(2);
    EXPECT_EQ(detail(3), "HTTP Basic as alice");
    EXPECT_EQ(detail(4), "protocol version 9");
    EXPECT_EQ(detail(5), "Tarni Test Server 3.5.1");
}

TEST_F(ConnectionTest, AFailureNamesItsStepAndKeepsTheOnesBefore)
{
    {
        SCOPED_TRACE("resolution");
        Target(10000, "1", "3");
        Set(Keys::Host, "no-such-host.invalid");
        const auto outcome = Run();
        EXPECT_EQ(Steps(outcome), "resolve:failed");
        EXPECT_EQ(outcome.steps.back().detail, outcome.errorText);
    }
    {
        SCOPED_TRACE("connect");
        apache::thrift::transport::TServerSocket probe("127.0.0.1", 0);
        probe.listen();
        const auto freePort = static_cast<std::uint16_t>(probe.getPort());
        probe.close();
        Target(freePort, "1", "3");
        EXPECT_EQ(Steps(Run()), "resolve:passed connect:failed");
    }
    {
        SCOPED_TRACE("authentication");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl));
        Target(server.Port(), "1", "3");
        Set(Keys::UID, "mallory");
        EXPECT_EQ(Steps(Run()), "resolve:passed connect:passed authentication:failed");
    }
    {
        SCOPED_TRACE("session");
        auto options = Server(TestTCLIServer::Mode::Sasl);
        options.refusedUser = "alice";
        TestTCLIServer server(options);
        Target(server.Port(), "1", "3");
        const auto outcome = Run();
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed authentication:passed open-session:failed");
        EXPECT_NE(StringConverter::ToUtf8(outcome.steps.back().detail).find("may not open a session"),
                  std::string::npos);
    }
    {
        SCOPED_TRACE("TLS");
        TestTCLIServer server(Server(TestTCLIServer::Mode::Sasl, "stranger"));
        Target(server.Port(), "1", "3");
        UseTls(Cert("ca.pem"));
        const auto outcome = Run();
        EXPECT_EQ(Steps(outcome), "resolve:passed connect:passed tls:failed");
        EXPECT_NE(StringConverter::ToUtf8(outcome.steps.back().detail).find("unable to get local issuer"),
                  std::string::npos);
    }
}

TEST_F(ConnectionTest, AServerThatRefusesGetInfoStillPasses)
{
    auto options = Server(TestTCLIServer::Mode::Binary);
    options.refuseGetInfo = true;
    TestTCLIServer server(options);
    Target(server.Port(), "0", "3");
    const auto outcome = Run();
    EXPECT_EQ(outcome.status, Status::Succeeded) << Text(outcome);
    ASSERT_GE(outcome.steps.size(), 2u);
    const auto& info = outcome.steps[outcome.steps.size() - 2];
    EXPECT_EQ(info.id, "server-info");
    EXPECT_EQ(StringConverter::ToUtf8(info.detail), "version unknown: GetInfo is not allowed here");
    EXPECT_EQ(server.SessionsClosed(), 1);
}

// Cancel from another thread, while the test waits for a server that accepts
// and never answers (the limit is 30 s: a cancel that does not work fails).
TEST_F(ConnectionTest, CancelStopsAWaitingTestWithinASecond)
{
    apache::thrift::transport::TServerSocket silent("127.0.0.1", 0);
    silent.listen();
    for (const char* transport : {"0", "1", "2"})
    {
        SCOPED_TRACE(transport);
        Target(static_cast<std::uint16_t>(silent.getPort()), transport, "3");
        Set(Keys::ConnectionTestTimeout, "30");
        Tarni::DriverSupport::DSCancellation cancellation;
        std::thread canceller([&cancellation] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            cancellation.Cancel();
        });
        const auto start = std::chrono::steady_clock::now();
        const auto outcome = Run(cancellation);
        const auto elapsed = std::chrono::steady_clock::now() - start;
        canceller.join();
        EXPECT_LT(elapsed, std::chrono::seconds(3));
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_EQ(Text(outcome), "The test was cancelled.");
        ASSERT_FALSE(outcome.steps.empty());
        EXPECT_EQ(outcome.steps.back().status, Tarni::DriverSupport::DSTestStep::Status::Failed);
    }
}
