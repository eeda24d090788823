// The OAuth 2.0 client-credentials flow of the connection test: the token end
// point's URL and answer are read right, a token from the test's own HTTPS
// end point opens the session as a bearer token, and a wrong secret fails at
// the token step with the end point's own error, the secret nowhere.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include <thrift/transport/TServerSocket.h>

#include "common/RecordingLogger.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSCancellation.h"
#include "driversupport/DSDSNConfiguration.h"
#include "support/StringConverter.h"
#include "support/messages/DSIMessageManager.h"
#include "thrift/TEException.h"
#include "thrift/connectiontest/TEConnectionTester.h"
#include "thrift/connectiontest/TEOAuthTokenRequest.h"
#include "thrift/connectiontest/TestCertificates.h"
#include "thrift/connectiontest/TestOutcome.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"
#include "thrift/connectiontest/server/TestTokenEndPoint.h"

namespace
{
using Tarni::DriverSupport::DSDSNConfiguration;
using Tarni::DriverSupport::IConnectionTester;
using Tarni::Support::StringConverter;
using Tarni::Testing::RecordingLogger;
using Tarni::Testing::TestTCLIServer;
using Tarni::Testing::TestOutcome::Steps;
using Tarni::Testing::TestOutcome::Text;
using Tarni::Testing::TestTokenEndPoint;
using Tarni::ThriftExtension::TEConnectionTester;
using Tarni::ThriftExtension::TEException;
using Tarni::ThriftExtension::TEOAuthTokenRequest;
namespace Keys = Tarni::DriverSupport::Keys;
using Status = IConnectionTester::Outcome::Status;

const std::string CLIENT_SECRET = "cl1ent:s&cret";
const std::string TOKEN = "eyJ0ZXN0In0.granted-token";

const std::filesystem::path& Certificates()
{
    return Tarni::Testing::TestCertificates::Folder();
}

std::string KeyOf(const std::string& in_url)
{
    try
    {
        TEOAuthTokenRequest::ParseEndPoint(in_url);
    }
    catch (const TEException& e)
    {
        return StringConverter::ToUtf8(e.GetMessageKey());
    }
    return "accepted";
}

TEST(TEOAuthTokenRequest, ReadsTheEndPointUrl)
{
    const auto endPoint = TEOAuthTokenRequest::ParseEndPoint("HTTPS://login.example.com/oauth2/v2.0/token?x=1#frag");
    EXPECT_EQ(endPoint.host, "login.example.com");
    EXPECT_EQ(endPoint.port, 443);
    EXPECT_EQ(endPoint.path, "/oauth2/v2.0/token?x=1");
    const auto v6 = TEOAuthTokenRequest::ParseEndPoint("https://[::1]:8443");
    EXPECT_EQ(v6.host, "::1");
    EXPECT_EQ(v6.port, 8443);
    EXPECT_EQ(v6.path, "/");

    // The secret would travel unprotected, or the URL is not one.
    for (const char* url : {"http://idp/token", "idp/token", "https://", "https://idp:0/t", "https://idp:70000/t",
                            "https://user:pw@idp/t", "https://idp:12a/t", "https://[::1/t"})
    {
        EXPECT_EQ(KeyOf(url), "TEOAuthTokenEndPointInvalid") << url;
    }
}

TEST(TEOAuthTokenRequest, ReadsStringMembersOfTheOutermostObject)
{
    const std::string json = R"({"nested":{"access_token":"inner"},"list":["access_token","x"],)"
                             R"( "error_description" : "a \"quoted\" \\ line\nwith \u00e9 \u20ac",)"
                             R"("expires_in":3600,"access_token":"outer"})";
    EXPECT_EQ(TEOAuthTokenRequest::JsonString(json, "access_token"), "outer");
    EXPECT_EQ(TEOAuthTokenRequest::JsonString(json, "error_description"),
              "a \"quoted\" \\ line\nwith \xC3\xA9 \xE2\x82\xAC");
    EXPECT_EQ(TEOAuthTokenRequest::JsonString(json, "expires_in"), "");
    EXPECT_EQ(TEOAuthTokenRequest::JsonString(json, "nested"), "");
    EXPECT_EQ(TEOAuthTokenRequest::JsonString(json, "missing"), "");
    EXPECT_EQ(TEOAuthTokenRequest::JsonString(R"({"access_token":"cut)", "access_token"), "");
    EXPECT_EQ(TEOAuthTokenRequest::JsonString("not json", "access_token"), "");
}

class ClientCredentialsTest : public ::testing::Test
{
protected:
    ClientCredentialsTest()
        : m_configuration(u"TestDSN", 0, &m_log),
          m_endPoint(TestTokenEndPoint::Options{"spark-client", CLIENT_SECRET, TOKEN,
                                                (Certificates() / "server.pem").string(),
                                                (Certificates() / "server.key").string()}),
          m_server(ServerOptions())
    {
        Set(Keys::Host, "127.0.0.1");
        Set(Keys::Port, std::to_string(m_server.Port()));
        Set(Keys::ThriftTransport, "2");
        Set(Keys::HTTPPath, "cliservice");
        Set(Keys::AuthMech, "11");
        Set(Keys::Auth_Flow, "1");
        Set(Keys::OAuth2TokenEndPoint, "https://localhost:" + std::to_string(m_endPoint.Port()) + "/oauth2/token");
        Set(Keys::Auth_Client_ID, "spark-client");
        Set(Keys::Auth_Client_Secret, CLIENT_SECRET);
        Set(Keys::Auth_Scope, "sql all");
        Set(Keys::TrustedCerts, (Certificates() / "ca.pem").string());
        Set(Keys::ConnectionTestTimeout, "5");
    }

    static TestTCLIServer::Options ServerOptions()
    {
        TestTCLIServer::Options options;
        options.mode = TestTCLIServer::Mode::Http;
        options.bearerToken = TOKEN;
        return options;
    }

    void Set(std::u16string_view in_key, const std::string& in_value)
    {
        m_configuration.SetValue(in_key, StringConverter::FromUtf8(in_value));
    }

    IConnectionTester::Outcome Run()
    {
        const auto outcome = TEConnectionTester().TestConnection(m_configuration);
        std::string everything = StringConverter::ToUtf8(outcome.errorText);
        for (const auto& step : outcome.steps)
        {
            everything += "\n" + StringConverter::ToUtf8(step.detail);
        }
        for (const auto& record : m_log.records)
        {
            everything += "\n" + record.text;
        }
        EXPECT_EQ(everything.find(CLIENT_SECRET), std::string::npos) << everything;
        EXPECT_EQ(everything.find(TOKEN), std::string::npos) << everything;
        return outcome;
    }

    RecordingLogger m_log;
    DSDSNConfiguration m_configuration;
    TestTokenEndPoint m_endPoint;
    TestTCLIServer m_server;
};

TEST_F(ClientCredentialsTest, OpensTheSessionWithTheGrantedToken)
{
    const auto outcome = Run();
    ASSERT_EQ(outcome.status, Status::Succeeded) << StringConverter::ToUtf8(outcome.errorText);
    EXPECT_EQ(Steps(outcome), "token:passed resolve:passed connect:passed authentication:passed open-session:passed "
                              "server-info:passed close-session:passed");
    EXPECT_EQ(m_server.LastHeaders()["authorization"], "Bearer " + TOKEN);
    EXPECT_EQ(m_endPoint.LastBody(), "grant_type=client_credentials&scope=sql+all");
}

TEST_F(ClientCredentialsTest, FailsAtTheTokenStepWithTheEndPointsAnswer)
{
    {
        SCOPED_TRACE("wrong secret");
        Set(Keys::Auth_Client_Secret, "not-the-secret");
        const auto outcome = Run();
        const std::string text = StringConverter::ToUtf8(outcome.errorText);
        EXPECT_EQ(outcome.status, Status::Failed);
        EXPECT_NE(text.find("HTTP 401 Unauthorized: invalid_client: Client authentication failed \"(bad secret)\""),
                  std::string::npos)
            << text;
        EXPECT_EQ(Steps(outcome), "token:failed");
        EXPECT_EQ(m_server.SessionsOpened(), 0);
    }
    {
        SCOPED_TRACE("end point certificate not trusted");
        Set(Keys::Auth_Client_Secret, CLIENT_SECRET);
        Set(Keys::TrustedCerts, (Certificates() / "stranger-ca.pem").string());
        const auto outcome = Run();
        const std::string text = StringConverter::ToUtf8(outcome.errorText);
        EXPECT_NE(text.find("The certificate of localhost:" + std::to_string(m_endPoint.Port())), std::string::npos)
            << text;
        EXPECT_EQ(Steps(outcome), "token:failed");
    }
    {
        SCOPED_TRACE("plain http end point");
        Set(Keys::OAuth2TokenEndPoint, "http://localhost:" + std::to_string(m_endPoint.Port()) + "/oauth2/token");
        const auto outcome = Run();
        EXPECT_NE(StringConverter::ToUtf8(outcome.errorText).find("is not an https:// URL"), std::string::npos);
    }
}

TEST_F(ClientCredentialsTest, ACancelEndsTheWaitForASilentEndPoint)
{
    // Accepts the connection and never answers the TLS handshake.
    apache::thrift::transport::TServerSocket silent("127.0.0.1", 0);
    silent.listen();
    Set(Keys::OAuth2TokenEndPoint, "https://127.0.0.1:" + std::to_string(silent.getPort()) + "/token");
    Set(Keys::ConnectionTestTimeout, "30");
    Tarni::DriverSupport::DSCancellation cancellation;
    std::thread canceller([&cancellation] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        cancellation.Cancel();
    });
    const auto started = std::chrono::steady_clock::now();
    const auto outcome = TEConnectionTester().TestConnection(m_configuration, cancellation);
    canceller.join();
    EXPECT_EQ(StringConverter::ToUtf8(outcome.errorText), "The test was cancelled.");
    EXPECT_EQ(Steps(outcome), "token:failed");
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
}

TEST_F(ClientCredentialsTest, TheBrowserFlowAndMissingSettingsAnswerAtOnce)
{
    Set(Keys::Auth_Flow, "2");
    std::string text = StringConverter::ToUtf8(Run().errorText);
    EXPECT_NE(text.find("opens a browser; not tested here"), std::string::npos) << text;

    Set(Keys::Auth_Flow, "1");
    Set(Keys::Auth_Client_ID, "");
    text = StringConverter::ToUtf8(Run().errorText);
    EXPECT_NE(text.find("the setting Auth_Client_ID is empty"), std::string::npos) << text;
}
}  // namespace
