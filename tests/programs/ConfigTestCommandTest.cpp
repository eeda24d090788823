// tarni-spark-config test against the project's TCLIService server: the
// dialog's report on standard output, exit 0 / 1 / 2, nothing saved, and no
// secret taken from the command line.
#include <gtest/gtest.h>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include <nlohmann/json.hpp>
#include <thrift/transport/TServerSocket.h>

#include "common/TempDirectory.h"
#include "programs/ConfigCliFixture.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"

using namespace Tarni;
using Testing::TempDirectory;
using Testing::TestTCLIServer;

class TestCommand : public Testing::ConfigCliFixture<>
{
protected:
    // The steps of a --json report as "id:status ...".
    static std::string Steps(const nlohmann::json& in_report)
    {
        std::string steps;
        for (const auto& step : in_report.at("steps"))
        {
            steps += (steps.empty() ? "" : " ") + step.at("id").get<std::string>() + ":" +
                     step.at("status").get<std::string>();
        }
        return steps;
    }
};

// Against a SASL server that knows alice: the plain report, --verbose and
// --json; each failing case breaks one step and the list ends there.
TEST_F(TestCommand, PrintsTheReportAndTheStepsAndExitsWithTheOutcome)
{
    TestTCLIServer::Options options;
    options.mode = TestTCLIServer::Mode::Sasl;
    options.user = "alice";
    options.password = "pw-123";
    TestTCLIServer server(options);
    ASSERT_EQ(0, Run({"set", "AuthMech=3", "ThriftTransport=1", "UID=alice", "ConnectionTestTimeout=5"}))
        << m_err.str();
    ASSERT_EQ(0, Run({"set-secret", "PWD"}, "pw-123\n")) << m_err.str();
    const std::string before = TempDirectory::ReadFile(m_ini);

    // The driver-wide settings name no server: the command line does.
    const std::string host = "Host=127.0.0.1";
    const std::string port = "Port=" + std::to_string(server.Port());
    EXPECT_EQ(0, Run({"test", host, port})) << m_out.str() << m_err.str();
    EXPECT_EQ(m_out.str().rfind("SUCCESS! \n\nSuccessfully connected to data source!\nDriver Version: ", 0), 0u)
        << m_out.str();
    EXPECT_NE(m_out.str().find("\nBitness: 64-bit\n"), std::string::npos);
    EXPECT_NE(m_err.str().find("Connecting to 127.0.0.1:" + std::to_string(server.Port()) + "..."),
              std::string::npos);
    EXPECT_EQ(server.SessionsClosed(), 1);

    EXPECT_EQ(1, Run({"test", host, port, "UID=mallory"}));
    EXPECT_EQ(m_out.str().rfind("FAILED!\n\n127.0.0.1:" + std::to_string(server.Port()) +
                                    " refused the user name or password: Error validating the login",
                                0),
              0u)
        << m_out.str();

    EXPECT_EQ(2, Run({"test", port, "PWD=pw-123"}));
    EXPECT_NE(m_err.str().find("PWD is a secret"), std::string::npos);
    EXPECT_EQ(m_err.str().find("pw-123"), std::string::npos);
    EXPECT_EQ(2, Run({"test", "Port"}));

    EXPECT_EQ(0, Run({"test", "--verbose", host, port})) << m_out.str();
    const std::string text = m_out.str();
    EXPECT_EQ(text.rfind("SUCCESS! \n\nSuccessfully connected to data source!\n", 0), 0u) << text;
    const std::size_t steps = text.find("\nBitness: 64-bit\n\nSteps:\nName resolution - passed (");
    ASSERT_NE(steps, std::string::npos) << text;
    for (const char* line : {"\nTCP connection - passed (", "\nAuthentication - passed (",
                             "ms): SASL PLAIN as alice\n", "\nOpenSession - passed (",
                             "ms): protocol version 9\n", "\nServer version (GetInfo) - passed (",
                             "ms): Tarni Test Server 3.5.1\n", "\nCloseSession - passed ("})
    {
        EXPECT_NE(text.find(line, steps), std::string::npos) << line << "\n" << text;
    }
    EXPECT_EQ(text.find("pw-123"), std::string::npos);

    EXPECT_EQ(0, Run({"test", "--json", host, port})) << m_out.str() << m_err.str();
    const nlohmann::json success = nlohmann::json::parse(m_out.str());
    EXPECT_EQ(success.at("outcome"), "succeeded");
    EXPECT_EQ(success.at("error"), "");
    EXPECT_EQ(Steps(success), "resolve:passed connect:passed authentication:passed open-session:passed "
                              "server-info:passed close-session:passed");
    EXPECT_EQ(success.at("steps")[0].at("name"), "Name resolution");
    EXPECT_TRUE(success.at("steps")[0].at("durationMs").is_number_unsigned());
    EXPECT_EQ(success.at("steps")[4].at("detail"), "Tarni Test Server 3.5.1");
    EXPECT_EQ(success.at("driverVersion"), "2.7.5.1012");
    EXPECT_EQ(success.at("bitness"), "64-bit");
    EXPECT_EQ(m_err.str(), "") << "no Connecting... line in JSON mode";

    apache::thrift::transport::TServerSocket probe("127.0.0.1", 0);
    probe.listen();
    const std::string closedPort = "Port=" + std::to_string(probe.getPort());
    probe.close();
    struct Case
    {
        std::vector<std::string> changes;
        const char* steps;
    };
    const Case cases[] = {
        {{"Host=no-such-host.invalid", port}, "resolve:failed"},
        {{host, closedPort}, "resolve:passed connect:failed"},
        {{host, port, "SSL=1"}, "resolve:passed connect:passed tls:failed"},
        {{host, port, "UID=mallory"}, "resolve:passed connect:passed authentication:failed"},
    };
    for (const Case& c : cases)
    {
        std::vector<std::string> arguments{"--json", "test"};
        arguments.insert(arguments.end(), c.changes.begin(), c.changes.end());
        SCOPED_TRACE(c.changes[0] + " " + c.changes.back());
        EXPECT_EQ(1, Run(arguments));
        const nlohmann::json report = nlohmann::json::parse(m_out.str());
        EXPECT_EQ(report.at("outcome"), "failed");
        EXPECT_EQ(Steps(report), c.steps);
        EXPECT_EQ(report.at("steps").back().at("detail"), report.at("error"));
        EXPECT_NE(report.at("error").get<std::string>(), "");
        EXPECT_EQ(m_err.str(), "") << "a failed test answers with its outcome object alone";
    }
    // A real error still answers with the error object on standard error.
    EXPECT_EQ(2, Run({"--json", "test", "nonsense"}));
    EXPECT_EQ(m_out.str(), "");
    const nlohmann::json error = nlohmann::json::parse(m_err.str());
    EXPECT_EQ(error.at("exit"), 2);
    EXPECT_NE(error.at("error").get<std::string>().find("nonsense"), std::string::npos);
    // The changes of the command line were for the attempts only.
    EXPECT_EQ(TempDirectory::ReadFile(m_ini), before);
}

// The session step: the server takes bob's credentials but refuses his session.
TEST_F(TestCommand, AStepListForARefusedSession)
{
    TestTCLIServer::Options options;
    options.mode = TestTCLIServer::Mode::Binary;
    options.refusedUser = "bob";
    TestTCLIServer server(options);
    ASSERT_EQ(0, Run({"set", "AuthMech=2", "ThriftTransport=0", "UID=bob", "ConnectionTestTimeout=5"}));
    EXPECT_EQ(1, Run({"test", "--json", "Host=127.0.0.1", "Port=" + std::to_string(server.Port())}));
    const nlohmann::json report = nlohmann::json::parse(m_out.str());
    EXPECT_EQ(Steps(report), "resolve:passed connect:passed authentication:passed open-session:failed");
    EXPECT_NE(report.at("error").get<std::string>().find("may not open a session"), std::string::npos);
}

// Ctrl-C in a real process: the attempt against a server that never answers
// stops at once with the cancelled text and exit 1.
TEST_F(TestCommand, CtrlCCancelsTheTest)
{
    apache::thrift::transport::TServerSocket silent("127.0.0.1", 0);
    silent.listen();
    ASSERT_EQ(0, Run({"set", "AuthMech=3", "ThriftTransport=1", "UID=alice", "ConnectionTestTimeout=30"}));
    const std::string out = (m_dir / "out.txt").string();
    const std::string command = "exec '" + std::string(TARNI_CONFIG_CLI_EXE) + "' --ini '" + m_ini.string() +
                                "' test --verbose Host=127.0.0.1 Port=" + std::to_string(silent.getPort()) + " >'" +
                                out + "' 2>&1";
    const char* argv[] = {"/bin/sh", "-c", command.c_str(), nullptr};
    pid_t pid = 0;
    ASSERT_EQ(0, ::posix_spawn(&pid, "/bin/sh", nullptr, nullptr, const_cast<char* const*>(argv), environ));
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    const auto start = std::chrono::steady_clock::now();
    ::kill(pid, SIGINT);
    int status = 0;
    // A process that ignores the request is ended after 30 s, failing here.
    for (int i = 0; i < 300 && ::waitpid(pid, &status, WNOHANG) == 0; ++i)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    if (::waitpid(pid, &status, WNOHANG) == 0)
    {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, &status, 0);
        FAIL() << "the test command did not stop on SIGINT";
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    ASSERT_TRUE(WIFEXITED(status)) << "ended by a signal instead of cancelling";
    EXPECT_EQ(WEXITSTATUS(status), 1);
    std::ifstream file(out);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("FAILED!\n\nThe test was cancelled."), std::string::npos) << text;
    EXPECT_NE(text.find(" - failed ("), std::string::npos) << text;
}
