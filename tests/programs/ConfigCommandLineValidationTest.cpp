// What `set` and `unset` refuse before anything is written, what they warn
// about, and what a file written by hand may not hold.
#include <gtest/gtest.h>


#include "programs/ConfigCliFixture.h"

using namespace Tarni;
using SparkODBC::ConfigCommandLine;
using Testing::TempDirectory;

using CommandLineChecks = Testing::ConfigCliFixture<>;

TEST_F(CommandLineChecks, InvalidValuesAreRefusedNamingKeyValueAndWhatIsAcceptedAndNothingIsWritten)
{
    const std::string original = "; by hand\r\n[Driver]\r\nAuthMech = 3\r\nSSL=1\r\n";
    TempDirectory::WriteFile(m_ini, original);
    const struct
    {
        const char* setting;
        const char* accepted;  // a piece of what the message says is accepted
    } cases[] = {
        {"AuthMech=abc", "\"13\" (MapR SASL)"},
        {"AuthMech=14", "\"0\" (No Authentication)"},
        {"SSL=maybe", "\"1\" (on) or \"0\" (off)"},
        {"Min_TLS=9.9", "\"1.0\", \"1.1\", \"1.2\", \"unrestricted\""},
        {"SocketTimeout=-5", "from 0 to 4294967295"},
        {"SparkServerType=77", "\"4\" (DFI)"},
        {"LogLevel=abc", "\"6\" (LOG_TRACE)"},
        {"LogFileCount=99999999999999999999", "from 0 to 4294967295"},
        {"LogFileSize=4097", "from 0 to 4096"},
        {"ThriftTransport=3", "\"2\" (HTTP)"},
        {"ServiceDiscoveryMode=zookeeper", "\"ZooKeeper\""},
        {"WebHDFSPort=0", "from 1 to 65535"},
        {"SSP_=1", "needs a name after its prefix"},
        {"http.header.=x", "needs a name after its prefix"},
    };
    for (const auto& c : cases)
    {
        // Each refused value also stops the valid one given beside it.
        EXPECT_EQ(1, Run({"set", "KrbRealm=R", c.setting})) << c.setting;
        const std::string setting = c.setting;
        const std::string key = setting.substr(0, setting.find('='));
        const std::string value = setting.substr(setting.find('=') + 1);
        EXPECT_NE(std::string::npos, m_err.str().find(key)) << m_err.str();
        if (key.back() != '_' && key.back() != '.')  // an empty property name has no value to name
        {
            EXPECT_NE(std::string::npos, m_err.str().find("\"" + value + "\"")) << m_err.str();
        }
        EXPECT_NE(std::string::npos, m_err.str().find(c.accepted)) << m_err.str();
        EXPECT_EQ(original, TempDirectory::ReadFile(m_ini)) << c.setting;
    }
}

TEST_F(CommandLineChecks, ValidValuesAreStoredAndUnknownKeysOrWrappingSizesWarn)
{
    ASSERT_EQ(0, Run({"set", "AuthMech=13", "SSL=0", "Min_TLS=unrestricted", "SocketTimeout=0",
                      "ServiceDiscoveryMode=AOSS", "LogLevel=6", "LogFileCount=4294967295", "QueryTimeoutOverride=",
                      "SSP_spark.x=1"}))
        << m_err.str();
    EXPECT_EQ("", m_err.str());

    ASSERT_EQ(0, Run({"set", "MyDriverKnob=7", "LogFileSize=4096", "AnotherKnob="}));
    EXPECT_NE(std::string::npos, m_err.str().find("warning: stored as given, not checked: the configuration model "
                                                  "does not know MyDriverKnob, AnotherKnob"))
        << m_err.str();
    EXPECT_NE(std::string::npos, m_err.str().find("LogFileSize=4096 MB does not fit")) << m_err.str();
    EXPECT_NE(std::string::npos, m_err.str().find("stored as 0 bytes")) << m_err.str();
    const std::string file = TempDirectory::ReadFile(m_ini);
    EXPECT_NE(std::string::npos, file.find("\nMyDriverKnob=7\n"));
    EXPECT_NE(std::string::npos, file.find("\nLogFileSize=0\n"));
    EXPECT_NE(std::string::npos, file.find("\nAuthMech=13\n"));
}

TEST_F(CommandLineChecks, UnsetOfNamesThatAreNoSettingIsAnError)
{
    ASSERT_EQ(0, Run({"set", "SocketTimeout=5"}));
    const std::string before = TempDirectory::ReadFile(m_ini);
    for (const char* name : {"", "[Driver]", "SocketTimeout=5"})
    {
        EXPECT_EQ(2, Run({"unset", "SocketTimeout", name})) << name;
        EXPECT_NE(std::string::npos, m_err.str().find("unset")) << m_err.str();
        EXPECT_EQ(before, TempDirectory::ReadFile(m_ini)) << name;
    }
}

TEST_F(CommandLineChecks, AHandWrittenEmptyPropertyNameIsAnErrorNamingTheFile)
{
    const std::string original = "[Driver]\nSSP_ = 1\n";
    TempDirectory::WriteFile(m_ini, original);
    EXPECT_EQ(1, Run({"show"}));
    EXPECT_NE(std::string::npos, m_err.str().find("\"SSP_\""));
    EXPECT_NE(std::string::npos, m_err.str().find("odbc.ini"));
    EXPECT_EQ(1, Run({"set", "KrbRealm=R"}));
    EXPECT_EQ(original, TempDirectory::ReadFile(m_ini));
}
