#include <gtest/gtest.h>

#include "common/TempDirectory.h"
#include "product/QuillConfiguration.h"
#include "programs/ConfigCliFixture.h"

using namespace Tarni;
using Testing::TempDirectory;

using CommandLine = Testing::ConfigCliFixture<>;

TEST_F(CommandLine, ShowOnAMissingFilePrintsTheDefaultsAndCreatesNothing)
{
    ASSERT_EQ(0, Run({"show"}));
    SparkODBC::QuillConfiguration config(u"", 2, nullptr);
    auto expected = config.GetDefaultDriverProperties();
    expected.SetValue(u"Driver", u"Tarni Spark ODBC Driver");
    std::string lines;
    for (const auto& [key, value] : expected)
    {
        lines += Support::StringConverter::ToUtf8(key) + "=" + Support::StringConverter::ToUtf8(value) + "\n";
    }
    EXPECT_EQ(lines, m_out.str());
    EXPECT_FALSE(std::filesystem::exists(m_ini));
}

TEST_F(CommandLine, SetThenGetRoundTripsWhatTheRegistryCouldHold)
{
    const std::vector<std::pair<std::string, std::string>> values = {
        {"KrbRealm", "  blanks at both ends  "}, {"HTTPPath", "a=b=c"}, {"HDFSUser", "J\xC3\xBCrgen \xE6\x97\xA5"},
        {"Auth_Scope", ""}, {"SSP_spark.sql.x", "1"}, {"http.header.X-Trace", ""}};
    std::vector<std::string> arguments{"set"};
    for (const auto& [key, value] : values)
    {
        arguments.push_back(key + "=" + value);
    }
    ASSERT_EQ(0, Run(arguments)) << m_err.str();
    for (const auto& [key, value] : values)
    {
        ASSERT_EQ(0, Run({"get", key})) << key;
        EXPECT_EQ(value + "\n", m_out.str()) << key;
    }
    ASSERT_EQ(0, Run({"show"}));
    EXPECT_NE(std::string::npos, m_out.str().find("\nKrbRealm=  blanks at both ends  \n"));
}

TEST_F(CommandLine, UnsetDropsPrefixedKeysAndRestoresDefaults)
{
    ASSERT_EQ(0, Run({"set", "SSP_a=1", "SocketTimeout=5"}));
    ASSERT_EQ(0, Run({"unset", "SSP_a", "SocketTimeout"}));
    EXPECT_EQ(1, Run({"get", "SSP_a"}));
    EXPECT_NE(std::string::npos, m_err.str().find("SSP_a"));
    ASSERT_EQ(0, Run({"get", "SocketTimeout"}));
    EXPECT_EQ("60\n", m_out.str());
    EXPECT_EQ(std::string::npos, TempDirectory::ReadFile(m_ini).find("SSP_a"));
}

TEST_F(CommandLine, ErrorsNameTheFileAndWriteNothing)
{
    const std::string original = "[Driver]\nKrbRealm=R\n[Other]\nbroken line\n";
    TempDirectory::WriteFile(m_ini, original);
    EXPECT_EQ(1, Run({"set", "KrbRealm=X"}));
    EXPECT_NE(std::string::npos, m_err.str().find("odbc.ini"));
    EXPECT_NE(std::string::npos, m_err.str().find("4"));
    EXPECT_EQ(original, TempDirectory::ReadFile(m_ini));

    TempDirectory::WriteFile(m_ini, "[Driver]\nKrbRealm=R\n");
    EXPECT_EQ(1, Run({"set", "KrbRealm=X", "HTTPPath=a\nb"}));
    EXPECT_NE(std::string::npos, m_err.str().find("HTTPPath"));
    EXPECT_EQ("[Driver]\nKrbRealm=R\n", TempDirectory::ReadFile(m_ini));
}

TEST_F(CommandLine, WrongCommandLinesAreUsageErrors)
{
    EXPECT_EQ(2, Run({}));
    EXPECT_EQ(2, Run({"frobnicate"}));
    EXPECT_EQ(2, Run({"set", "=x"}));
    EXPECT_EQ(2, Run({"set", "novalue"}));
    EXPECT_EQ(2, Run({"get"}));
    EXPECT_EQ(2, Run({"--bogus", "show"}));
    // The driver-wide settings do not keep a data source's host: refused, not "unchanged".
    EXPECT_EQ(2, Run({"set", "Host=spark.example.com"}));
    EXPECT_NE(std::string::npos, m_err.str().find("Host belongs to a data source")) << m_err.str();
    EXPECT_EQ(0, Run({"--help"}));
    EXPECT_NE(std::string::npos, m_out.str().find("Usage: tarni-spark-config"));
    EXPECT_FALSE(std::filesystem::exists(m_ini));
}
