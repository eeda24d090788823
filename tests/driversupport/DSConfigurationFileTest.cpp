// The configuration file of import and export: what the reader accepts and
// refuses (with the file and line), what an export leaves out, and that a
// failed write leaves the target as it was.
#include "driversupport/DSConfigurationFile.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <signal.h>
#include <sys/resource.h>
#endif

#include "common/TempDirectory.h"
#include "core/ErrorException.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSDSNConfiguration.h"
#include "support/StringConverter.h"

using namespace Tarni;
using Tarni::DriverSupport::ConfigurationMap;
using Tarni::DriverSupport::DSConfigurationFile;
using Tarni::Support::ErrorException;
using Tarni::Support::StringConverter;
using Tarni::Testing::TempDirectory;
namespace Keys = Tarni::DriverSupport::Keys;
using namespace std::string_literals;

namespace
{
/// The error of parsing the bytes: "key(parameters...)"; empty when accepted.
std::string ParseError(const std::string& in_bytes)
{
    try
    {
        DSConfigurationFile::Parse(in_bytes, u"in.sdc");
    }
    catch (const ErrorException& e)
    {
        return e.what();
    }
    return "";
}

tarni_wstring Wide(const std::filesystem::path& in_path) { return StringConverter::FromUtf8(in_path.string()); }
}  // namespace

TEST(DSConfigurationFileParse, TakesKeyValueLinesWithTheirOwnRules)
{
    const ConfigurationMap values = DSConfigurationFile::Parse(
        "\xEF\xBB\xBFHost=a=b\r\nnot a setting\n\nKrbRealm=  blanks kept  \r\nEmpty=\nhost=later wins\n"
        "HDFSUser=J\xC3\xBCrgen\nLast=no line end",
        u"in.sdc");
    EXPECT_EQ(values.size(), 5u);
    EXPECT_EQ(values.GetValue(u"Host"), u"later wins");
    EXPECT_EQ(values.GetValue(u"KrbRealm"), u"  blanks kept  ");
    EXPECT_TRUE(values.Contains(u"Empty"));
    EXPECT_EQ(values.GetValue(u"HDFSUser"), u"J\u00FCrgen");
    EXPECT_EQ(values.GetValue(u"Last"), u"no line end");

    EXPECT_EQ(DSConfigurationFile::Parse("Host=a=b\n", u"in.sdc").GetValue(u"Host"), u"a=b");
    EXPECT_TRUE(DSConfigurationFile::Parse("", u"in.sdc").empty());
    EXPECT_TRUE(DSConfigurationFile::Parse("\xEF\xBB\xBF", u"in.sdc").empty());
}

TEST(DSConfigurationFileParse, RefusesWhatNoStoreCanHoldNamingTheFileAndLine)
{
    EXPECT_EQ(ParseError("A=1\nB=x\0y\n"s), "DSConfigFileNulErr(in.sdc, 2)");
    EXPECT_EQ(ParseError("A=1\nB=2\nC=\xC3(\n"), "DSConfigFileEncodingErr(in.sdc, 3)");
    EXPECT_EQ(ParseError("A=1\rB=2\n"), "DSConfigFileLineEndErr(in.sdc, 1)");
    EXPECT_EQ(ParseError("A=1\n=orphan\n"), "DSConfigFileKeyErr(in.sdc, 2, )");
    for (const char* key : {" Host", "Host ", "\tHost", "[Driver]x", ";x", "#x", "\xEF\xBB\xBFx"})
    {
        EXPECT_NE(ParseError("\xEF\xBB\xBF" + std::string(key) + "=1\n"), "") << key;
    }
    EXPECT_EQ(ParseError(std::string(DSConfigurationFile::MAX_KEY_CHARS, 'k') + "=1\n"), "");
    EXPECT_NE(ParseError(std::string(DSConfigurationFile::MAX_KEY_CHARS + 1, 'k') + "=1\n"), "");
    EXPECT_EQ(ParseError(std::string(DSConfigurationFile::MAX_FILE_BYTES + 1, '\n')),
              "DSConfigFileSizeErr(in.sdc, 1048576)");
    EXPECT_EQ(ParseError(std::string(DSConfigurationFile::MAX_FILE_BYTES, '\n')), "");
}

TEST(DSConfigurationFileFormat, WritesKeyValueLinesInMapOrderAndRefusesWhatALineCannotCarry)
{
    ConfigurationMap map;
    map.SetValue(u"b", u"2=3");
    map.SetValue(u"A", u"");
    map.SetValue(u"\u00C4rger", u"\u65E5");
    EXPECT_EQ(DSConfigurationFile::Format(map), "A=\nb=2=3\n\xC3\x84rger=\xE6\x97\xA5\n");
    for (const tarni_wstring& value : {tarni_wstring(u"a\nb"), tarni_wstring(u"a\rb"), tarni_wstring(u"a\0b", 3)})
    {
        ConfigurationMap bad{{u"Key", value}};
        EXPECT_THROW(DSConfigurationFile::Format(bad), ErrorException);
    }
    EXPECT_THROW(DSConfigurationFile::Format(ConfigurationMap{{u"a=b", u"1"}}), ErrorException);
}

class DSConfigurationFileExport : public ::testing::Test
{
protected:
    DSConfigurationFileExport() : m_configuration(u"", 2, nullptr) {}

    TempDirectory m_dir;
    DriverSupport::DSDSNConfiguration m_configuration;
};

TEST_F(DSConfigurationFileExport, LeavesOutTheLoggingSettingsAndEverySecret)
{
    const tarni_wstring protectedValue = u"DPAPI_MACHINE:0A0B0C";
    for (const tarni_wstring_view key : {Keys::LogLevel, Keys::LogPath, Keys::LogNamespace, Keys::LogFileCount,
                                         Keys::LogFileSize, Keys::PWD, Keys::EncryptedPWD, Keys::ProxyPWD, Keys::ProxyEncryptedPWD,
                                         Keys::ClientPrivateKeyPWD, Keys::EncryptedClientPrivateKeyPWD, Keys::Auth_Client_Secret, Keys::Auth_AccessToken,
                                         Keys::keyFilePassword, tarni_wstring_view(u"AOSS_PWD"), tarni_wstring_view(u"AOSS_ClientPrivateKeyPWD")})
    {
        m_configuration.SetValue(key, u"secret-or-machine-value");
    }
    m_configuration.SetValue(u"SomeOtherKey", protectedValue);
    m_configuration.SetValue(Keys::Host, u"spark.example.com");
    m_configuration.SetValue(u"UID", u"alice");
    const ConfigurationMap exported = DSConfigurationFile::GetExportMap(m_configuration);
    EXPECT_EQ(exported, (ConfigurationMap{{u"Host", u"spark.example.com"}, {u"UID", u"alice"}}));

    const auto path = m_dir / "backup.sdc";
    DSConfigurationFile::Export(m_configuration, Wide(path));
    EXPECT_EQ(TempDirectory::ReadFile(path), "Host=spark.example.com\nUID=alice\n");
    EXPECT_EQ(DSConfigurationFile::Read(Wide(path)), exported);
}

TEST_F(DSConfigurationFileExport, AFailedWriteLeavesTheTargetAsItWasAndNoTemporaryFile)
{
    m_configuration.SetValue(Keys::Host, std::u16string(200000, u'h'));
    const auto target = m_dir / "backup.sdc";
    TempDirectory::WriteFile(target, "Host=old\n");
    const auto entries = [this] {
        return std::distance(std::filesystem::directory_iterator(m_dir.Path()), std::filesystem::directory_iterator());
    };

    // A folder in place of the file, and a folder that is a file.
    std::filesystem::create_directory(m_dir / "folder.sdc");
    EXPECT_THROW(DSConfigurationFile::Export(m_configuration, Wide(m_dir / "folder.sdc")), ErrorException);
    EXPECT_THROW(DSConfigurationFile::Export(m_configuration, Wide(target / "inside.sdc")), ErrorException);
#ifndef _WIN32
    // A full disk: the file size limit makes the write fail half way.
    struct rlimit previous {};
    getrlimit(RLIMIT_FSIZE, &previous);
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = previous;
    small.rlim_cur = 4096;
    setrlimit(RLIMIT_FSIZE, &small);
    try
    {
        DSConfigurationFile::Export(m_configuration, Wide(target));
        ADD_FAILURE() << "the write beyond the limit succeeded";
    }
    catch (const ErrorException& e)
    {
        EXPECT_EQ(e.GetMessageKey(), u"DSConfigFileWriteErr");
        EXPECT_EQ(e.GetParameters().at(0), Wide(target));
    }
    setrlimit(RLIMIT_FSIZE, &previous);
    signal(SIGXFSZ, handler);
#endif
    EXPECT_EQ(TempDirectory::ReadFile(target), "Host=old\n");
    EXPECT_EQ(entries(), 2) << "only the target and the folder";
}

TEST_F(DSConfigurationFileExport, ReadNamesAFolderAndAMissingFile)
{
    try
    {
        DSConfigurationFile::Read(Wide(m_dir.Path()));
        ADD_FAILURE();
    }
    catch (const ErrorException& e)
    {
        EXPECT_EQ(e.GetMessageKey(), u"DSConfigFileFolderErr");
    }
    try
    {
        DSConfigurationFile::Read(Wide(m_dir / "absent.sdc"));
        ADD_FAILURE();
    }
    catch (const ErrorException& e)
    {
        EXPECT_EQ(e.GetMessageKey(), u"DSConfigFileReadErr");
        EXPECT_EQ(e.GetParameters().at(0), Wide(m_dir / "absent.sdc"));
    }
}

TEST_F(DSConfigurationFileExport, ImportReturnsUnnamedKeysToTheirDefaultsAndKeepsTheLoggingSettings)
{
    m_configuration.LoadDefaults();
    const ConfigurationMap defaults = m_configuration.GetMap();
    m_configuration.SetValue(u"AllowSelfSignedServerCert", u"changed");
    m_configuration.SetValue(u"NotADefault", u"x");
    m_configuration.SetValue(Keys::LogLevel, u"5");
    m_configuration.SetValue(Keys::LogPath, u"/var/log/tarni");

    DSConfigurationFile::Import(m_configuration, DSConfigurationFile::Parse("LogPath=/tmp\nHost=a=b\n", u"in.sdc"));
    ConfigurationMap expected = defaults;
    expected.SetValue(Keys::Host, u"a=b");
    expected.SetValue(Keys::LogLevel, u"5");
    expected.SetValue(Keys::LogPath, u"/tmp");
    EXPECT_EQ(m_configuration.GetMap(), expected);

    DSConfigurationFile::Import(m_configuration, {});
    expected.Remove(Keys::Host);
    EXPECT_EQ(m_configuration.GetMap(), expected);
}
