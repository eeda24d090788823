// tarni-spark-config test against the project's TCLIService server: the
// dialog's report on standard output, exit 0 / 1 / 2, nothing saved, and no
// secret taken from the command line.
#include <gtest/gtest.h>

#include <sstream>

#include "common/ProductSettingsFixture.h"
#include "common/TempDirectory.h"
#include "programs/config-cli/ConfigCommandLine.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"

using namespace Tarni;
using SparkODBC::ConfigCommandLine;
using Testing::TempDirectory;
using Testing::TestTCLIServer;

class TestCommand : public Testing::ProductSettingsFixture
{
protected:
    int Run(std::vector<std::string> in_arguments, const std::string& in_input = "")
    {
        std::vector<tarni_wstring> arguments{u"--ini", Support::StringConverter::FromUtf8(m_ini.string())};
        for (const auto& argument : in_arguments)
        {
            arguments.push_back(Support::StringConverter::FromUtf8(argument));
        }
        m_out.str("");
        m_err.str("");
        std::istringstream in(in_input);
        return ConfigCommandLine(in, m_out, m_err).Run(arguments);
    }
    std::filesystem::path m_ini = m_dir / "odbc.ini";
    std::ostringstream m_out;
    std::ostringstream m_err;
};

TEST_F(TestCommand, PrintsTheReportAndExitsWithTheOutcome)
{
    TestTCLIServer::Options options;
    options.mode = TestTCLIServer::Mode::Sasl;
    options.user = "alice";
    options.password = "pw-123";
    TestTCLIServer server(options);
    ASSERT_EQ(0, Run({"set", "AuthMech=3", "ThriftTransport=1", "UID=alice"})) << m_err.str();
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

    // The changes of the command line were for the attempts only.
    EXPECT_EQ(TempDirectory::ReadFile(m_ini), before);
}
