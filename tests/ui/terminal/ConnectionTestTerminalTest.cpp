// The DSN setup's Test button on the terminal host, driven through tmux as a
// user would, against the project's TCLIService server on 127.0.0.1: the
// Test Results dialog reports the opened session and its steps, a server
// that never answers shows "Connecting..." until the time limit names the
// cause, and the dialog's Cancel stops such a test at once.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>

#include <thrift/transport/TServerSocket.h>

#include "TmuxSession.h"
#include "common/TempDirectory.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"

namespace Tarni::Testing
{
namespace
{
class ConnectionTestTerminal : public ::testing::Test
{
protected:
    // The DSN setup dialog over the settings, with the focus on Test.
    void StartOn(std::uint16_t in_port, const std::string& in_timeout)
    {
        m_session = std::make_unique<TmuxSession>(
            m_folder.string(), "HOME=\"$PWD\" '" + std::string(TARNI_GALLERY_EXE) +
                                   "' 1093 Host=127.0.0.1 Port=" + std::to_string(in_port) +
                                   " AuthMech=3 ThriftTransport=1 UID=alice PWD=pw-42 ServiceDiscoveryMode=0"
                                   " ConnectionTestTimeout=" +
                                   in_timeout + "\necho RUN-DONE\nsleep 600\n");
        ASSERT_TRUE(m_session->WaitForText("DSN Setup")) << m_session->Screen();
        ASSERT_TRUE(m_session->FocusStatus(" Test")) << m_session->Screen();
    }

    TempDirectory m_dir;
    const std::filesystem::path m_folder = m_dir.Path();
    std::unique_ptr<TmuxSession> m_session;  // ends before the folder goes
};

TEST_F(ConnectionTestTerminal, TestOpensASessionAndShowsTheReport)
{
    TestTCLIServer::Options options;
    options.mode = TestTCLIServer::Mode::Sasl;
    options.user = "alice";
    options.password = "pw-42";
    TestTCLIServer server(options);
    StartOn(server.Port(), "5");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Successfully connected to data source!")) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("SUCCESS!"), std::string::npos);
    EXPECT_NE(m_session->Screen().find("Bitness: 64-bit"), std::string::npos);
    EXPECT_NE(m_session->Screen().find("Steps:"), std::string::npos) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("Name resolution - passed ("), std::string::npos) << m_session->Screen();
    // The report has the focus with its caret at the start: the cursor
    // stands on the report's first line.
    const std::string screen = m_session->Screen();
    const int firstLine = static_cast<int>(std::count(screen.begin(), screen.begin() + screen.find("SUCCESS!"), '\n'));
    EXPECT_EQ(m_session->CursorRow(), firstLine) << screen;
    EXPECT_EQ(server.SessionsClosed(), 1);
    m_session->Key("Enter");  // OK of Test Results
    m_session->Key("Escape");
    EXPECT_TRUE(m_session->WaitForText("RUN-DONE")) << m_session->Screen();
}

TEST_F(ConnectionTestTerminal, ASilentServerShowsConnectingThenTheTimeout)
{
    apache::thrift::transport::TServerSocket silent("127.0.0.1", 0);
    silent.listen();
    StartOn(static_cast<std::uint16_t>(silent.getPort()), "3");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Connecting...")) << m_session->Screen();
    ASSERT_TRUE(m_session->WaitForText("accepted the connection but did not answer within 3")) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("FAILED!"), std::string::npos);
}
TEST_F(ConnectionTestTerminal, CancelStopsATestThatWaitsForTheServer)
{
    apache::thrift::transport::TServerSocket silent("127.0.0.1", 0);
    silent.listen();
    StartOn(static_cast<std::uint16_t>(silent.getPort()), "30");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Connecting...")) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("Cancel"), std::string::npos) << m_session->Screen();
    const auto start = std::chrono::steady_clock::now();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("The test was cancelled.")) << m_session->Screen();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_NE(m_session->Screen().find("FAILED!"), std::string::npos);
    EXPECT_EQ(m_session->Screen().find("Connecting..."), std::string::npos) << "the activity line has gone";
    m_session->Key("Enter");  // OK
    m_session->Key("Escape");
    EXPECT_TRUE(m_session->WaitForText("RUN-DONE")) << m_session->Screen();
}
}  // namespace
}  // namespace Tarni::Testing
