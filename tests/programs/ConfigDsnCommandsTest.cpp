#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "common/OdbcInstallerFixture.h"
#include "platform/OdbcInstaller.h"
#include "product/SODataSourceConfiguration.h"
#include "product/SODataSourceSession.h"
#include "programs/ConfigCliFixture.h"

using namespace Tarni;
using Testing::TempDirectory;

namespace
{
/// The lines of one section of an INI text, as written.
std::string Section(const std::string& in_text, const std::string& in_name)
{
    const size_t start = in_text.find("[" + in_name + "]\n");
    if (start == std::string::npos)
    {
        return {};
    }
    const size_t body = start + in_name.size() + 3;
    const size_t end = in_text.find("\n[", body);
    return in_text.substr(body, end == std::string::npos ? std::string::npos : end + 1 - body);
}
}  // namespace

// The data sources' store and SPARKINI hold the settings: no --ini.
class DsnCommands : public Testing::ConfigCliFixture<Testing::OdbcInstallerFixture>
{
protected:
    void SetUp() override
    {
        ConfigCliFixture::SetUp();
        m_ini.clear();
    }
};

TEST_F(DsnCommands, AddSetAndShowStoreOnlyWhatDiffersAndKeepOtherSections)
{
    const std::string other = "[Other]\nDriver=Someone Else\nHost=h\nFoo=bar\n\n";
    TempDirectory::WriteFile(UserIni(), other);
    TempDirectory::WriteFile(DriverIni(), "[Driver]\nKrbRealm=EXAMPLE.COM\nHTTPPath=cliservice\n");

    ASSERT_EQ(0, Run({"dsn", "add", "Sales", "Host=spark.example.com", "Port=10001"})) << m_err.str();
    ASSERT_EQ(0, Run({"--dsn", "Sales", "set", "DESCRIPTION=Sales data", "HTTPPath=sales", "KrbRealm=EXAMPLE.COM",
                      "SSP_spark.sql.x=1", "http.header.X-Trace=on", "MyOwnKey= spaced"}))
        << m_err.str();

    const std::string ini = Read(UserIni());
    EXPECT_NE(std::string::npos, ini.find(other)) << ini;
    const std::string sales = Section(ini, "Sales");
    EXPECT_NE(std::string::npos, sales.find("Driver=Tarni Spark ODBC Driver\n")) << sales;
    EXPECT_NE(std::string::npos, sales.find("Host=spark.example.com\n")) << sales;
    EXPECT_NE(std::string::npos, sales.find("Port=10001\n")) << sales;
    EXPECT_NE(std::string::npos, sales.find("DESCRIPTION=Sales data\n")) << sales;
    EXPECT_NE(std::string::npos, sales.find("HTTPPath=sales\n")) << sales;
    EXPECT_NE(std::string::npos, sales.find("SSP_spark.sql.x=1\n")) << sales;
    EXPECT_NE(std::string::npos, sales.find("http.header.X-Trace=on\n")) << sales;
    EXPECT_NE(std::string::npos, sales.find("MyOwnKey=")) << sales;
    // Inherited values (driver-wide or defaults) are not copied into the data source.
    EXPECT_EQ(std::string::npos, sales.find("KrbRealm")) << sales;
    EXPECT_EQ(std::string::npos, sales.find("ThriftTransport")) << sales;
    EXPECT_EQ(std::string::npos, sales.find("LCaseSspKeyName")) << sales;

    ASSERT_EQ(0, Run({"--dsn", "sales", "get", "KrbRealm"}));
    EXPECT_EQ("EXAMPLE.COM\n", m_out.str());
    ASSERT_EQ(0, Run({"--dsn", "Sales", "show"}));
    EXPECT_NE(std::string::npos, m_out.str().find("HTTPPath=sales\n"));
    EXPECT_NE(std::string::npos, m_out.str().find("SSP_spark.sql.x=1\n"));

    ASSERT_EQ(0, Run({"dsn", "list"}));
    EXPECT_EQ("Other\tSomeone Else\nSales\tTarni Spark ODBC Driver\n", m_out.str());
}

TEST_F(DsnCommands, UnsetReturnsToTheInheritedValueAndRemovesTheEntry)
{
    TempDirectory::WriteFile(DriverIni(), "[Driver]\nHTTPPath=cliservice\n");
    ASSERT_EQ(0, Run({"dsn", "add", "D1", "Host=h", "HTTPPath=mine", "SSP_a=1", "Unknown=u"})) << m_err.str();
    ASSERT_EQ(0, Run({"--dsn", "D1", "unset", "HTTPPath", "SSP_a", "Unknown"})) << m_err.str();
    const std::string d1 = Section(Read(UserIni()), "D1");
    EXPECT_EQ(std::string::npos, d1.find("HTTPPath")) << d1;
    EXPECT_EQ(std::string::npos, d1.find("SSP_a")) << d1;
    EXPECT_EQ(std::string::npos, d1.find("Unknown")) << d1;
    EXPECT_NE(std::string::npos, d1.find("Host=h")) << d1;
    ASSERT_EQ(0, Run({"--dsn", "D1", "get", "HTTPPath"}));
    EXPECT_EQ("cliservice\n", m_out.str());
    EXPECT_EQ(1, Run({"--dsn", "D1", "get", "SSP_a"}));
}

TEST_F(DsnCommands, SecretsAreStoredOnlyProtectedAndNeverShown)
{
    ASSERT_EQ(0, Run({"dsn", "add", "S", "Host=h", "UID=alice"})) << m_err.str();
    EXPECT_EQ(2, Run({"--dsn", "S", "set", "PWD=plain"}));
    ASSERT_EQ(0, Run({"--dsn", "S", "set-secret", "PWD"}, "s3cr3t-value\n")) << m_err.str();
    ASSERT_EQ(0, Run({"--dsn", "S", "set", "Port=10005"})) << m_err.str();
    const std::string ini = Read(UserIni());
    EXPECT_EQ(std::string::npos, ini.find("s3cr3t-value")) << ini;
    EXPECT_EQ(std::string::npos, ini.find("\nPWD=")) << ini;
    EXPECT_NE(std::string::npos, ini.find("\nEncryptedPWD=")) << ini;
    ASSERT_EQ(0, Run({"--dsn", "S", "get", "PWD"}));
    EXPECT_EQ("****\n", m_out.str());
    ASSERT_EQ(0, Run({"--dsn", "S", "export", "-"}));
    EXPECT_EQ(std::string::npos, m_out.str().find("PWD")) << m_out.str();

    // The secret survives a load and a save of other values: it is recovered, not lost.
    SparkODBC::SODataSourceSession session(u"", false);
    SparkODBC::SODataSourceConfiguration config(u"S", false, nullptr);
    config.Load(tarni_wstring_view(u"S"));
    EXPECT_EQ(u"s3cr3t-value", config.GetCredentials().GetPwd());
}

TEST_F(DsnCommands, ExportImportRoundTripsEveryKindOfValue)
{
    ASSERT_EQ(0, Run({"dsn", "add", "A", "Host=h1,h2", "Port=443", "DESCRIPTION=J\xC3\xBCrgen's", "ThriftTransport=2",
                      "http.header.X-A=1", "Anything=a=b"}))
        << m_err.str();
    const auto file = m_dir / "a.sdc";
    ASSERT_EQ(0, Run({"--dsn", "A", "export", file.string()})) << m_err.str();
    ASSERT_EQ(0, Run({"dsn", "add", "B"})) << m_err.str();
    ASSERT_EQ(0, Run({"--dsn", "B", "import", file.string()})) << m_err.str();
    // The same entries; a save writes only what changes, so not in the same order.
    const auto lines = [](std::string in_section) {
        std::multiset<std::string> entries;
        std::istringstream stream(in_section);
        for (std::string line; std::getline(stream, line);) entries.insert(line);
        return entries;
    };
    const std::string b = Section(Read(UserIni()), "B");
    EXPECT_EQ(lines(Section(Read(UserIni()), "A")), lines(b));
    EXPECT_NE(std::string::npos, b.find("Anything=a=b\n")) << b;
}

TEST_F(DsnCommands, BadNamesAndMissingDataSourcesAreRefusedWithoutWriting)
{
    TempDirectory::WriteFile(UserIni(), "[Keep]\nDriver=x\n");
    EXPECT_EQ(1, Run({"dsn", "add", "a@b"}));
    EXPECT_NE(std::string::npos, m_err.str().find("Data Source Name value cannot contain any of the following characters"))
        << m_err.str();
    EXPECT_EQ(1, Run({"dsn", "add", std::string(33, 'n')}));
    EXPECT_NE(std::string::npos, m_err.str().find("longer than 32 characters")) << m_err.str();
    EXPECT_EQ(0, Run({"dsn", "add", std::string(32, 'n')})) << m_err.str();
    EXPECT_EQ(1, Run({"--dsn", "Nope", "show"}));
    EXPECT_NE(std::string::npos, m_err.str().find("no data source named \"Nope\" among the user")) << m_err.str();
    EXPECT_EQ(1, Run({"dsn", "add", "Keep"}));
    EXPECT_EQ(1, Run({"dsn", "remove", "Nope"}));
    EXPECT_EQ(2, Run({"--dsn", "Keep", "set", "Driver=other"}));
    EXPECT_EQ(2, Run({"--system", "show"}));
    EXPECT_EQ(1, Run({"dsn", "add", "Bad", "Port=notanumber"}));
    EXPECT_EQ("Driver=x\n", Section(Read(UserIni()), "Keep").substr(0, 9));
    EXPECT_EQ(std::string::npos, Read(UserIni()).find("[Bad]"));
}

TEST_F(DsnCommands, SystemDataSourcesLiveInTheSystemFileAndRemoveClearsThem)
{
    ASSERT_EQ(0, Run({"dsn", "add", "--system", "Shared", "Host=h"})) << m_err.str();
    EXPECT_NE(std::string::npos, Read(SystemIni()).find("[Shared]"));
    EXPECT_EQ(std::string::npos, Read(UserIni()).find("[Shared]"));
    EXPECT_EQ(1, Run({"--dsn", "Shared", "show"}));
    ASSERT_EQ(0, Run({"--dsn", "Shared", "--system", "set-secret", "PWD"}, "pw\n")) << m_err.str();
    // A system data source's secret is protected for every user of the machine.
    EXPECT_NE(std::string::npos, Read(SystemIni()).find("EncryptedPWD=")) << Read(SystemIni());
    ASSERT_EQ(0, Run({"dsn", "remove", "--system", "Shared"})) << m_err.str();
    EXPECT_EQ(std::string::npos, Read(SystemIni()).find("Shared"));
    // The installer's mode is back where it was.
    EXPECT_NE(Platform::OdbcInstaller::CONFIG_MODE_SYSTEM_DSN, Platform::OdbcInstaller::GetConfigMode());
}

TEST_F(DsnCommands, ARenameWritesTheNewDataSourceAndRemovesTheOldOne)
{
    ASSERT_EQ(0, Run({"dsn", "add", "Old", "Host=h", "HTTPPath=p", "Extra=e"})) << m_err.str();
    {
        SparkODBC::SODataSourceSession session(u"", false);
        SparkODBC::SODataSourceConfiguration config(u"Old", false, nullptr);
        config.Load(tarni_wstring_view(u"Old"));
        config.SetDsnName(u"New");
        config.SaveDataSource();
    }
    const std::string ini = Read(UserIni());
    EXPECT_EQ(std::string::npos, ini.find("[Old]")) << ini;
    const std::string renamed = Section(ini, "New");
    EXPECT_NE(std::string::npos, renamed.find("HTTPPath=p\n")) << renamed;
    EXPECT_NE(std::string::npos, renamed.find("Extra=e\n")) << renamed;
}

TEST_F(DsnCommands, NamesAndValuesBeyondAsciiAreStoredAsUtf8AndReadBackUnchanged)
{
    const std::string name = "Donn\xC3\xA9" "es";
    const std::string value = "J\xC3\xBCrgen \xE2\x82\xAC \xF0\x9F\x93\x8A";
    ASSERT_EQ(0, Run({"dsn", "add", name, "Host=h"})) << m_err.str();
    ASSERT_EQ(0, Run({"--dsn", name, "set", "DESCRIPTION=" + value})) << m_err.str();

    // The file holds the UTF-8 bytes, as another program reading odbc.ini expects.
    const std::string section = Section(Read(UserIni()), name);
    EXPECT_NE(std::string::npos, section.find("DESCRIPTION=" + value + "\n")) << section;

    ASSERT_EQ(0, Run({"--dsn", name, "get", "DESCRIPTION"})) << m_err.str();
    EXPECT_EQ(value + "\n", m_out.str());
    ASSERT_EQ(0, Run({"dsn", "list"}));
    EXPECT_EQ(name + "\tTarni Spark ODBC Driver\n", m_out.str());
    // Read back unchanged, the same value is no change.
    ASSERT_EQ(0, Run({"--dsn", name, "set", "DESCRIPTION=" + value})) << m_err.str();
    EXPECT_EQ("unchanged\n", m_out.str());
}
