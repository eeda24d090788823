// export and import of tarni-spark-config: a configuration with every kind
// of value survives the round trip into a fresh store except its secrets
// and logging settings, the file holds no secret, standard input and output
// stand in for "-", and a bad file changes nothing.
#include <gtest/gtest.h>

#include "driversupport/DSConfigurationFile.h"
#include "programs/ConfigCliFixture.h"

using namespace Tarni;
using SparkODBC::ConfigCommandLine;
using Testing::TempDirectory;

namespace
{
class CommandLineTransfer : public Testing::ConfigCliFixture<>
{
protected:
    /// `show` without the lines of secrets and logging settings.
    std::string ShownWithoutSecretsAndLogging(const std::filesystem::path& in_ini)
    {
        EXPECT_EQ(0, RunOnIni(in_ini, {"show"})) << m_err.str();
        std::istringstream lines(m_out.str());
        std::string kept;
        for (std::string line; std::getline(lines, line);)
        {
            if (line.find("=****") == std::string::npos && line.rfind("Log", 0) != 0)
            {
                kept += line + "\n";
            }
        }
        return kept;
    }

    std::filesystem::path m_fresh = m_dir / "fresh.ini";
};

const std::pair<const char*, const char*> SECRETS[] = {
    {"PWD", "Secret-pwd-1"},          {"ProxyPWD", "Secret-proxy-2"},     {"ClientPrivateKeyPWD", "Secret-key-3"},
    {"AOSS_PWD", "Secret-aoss-4"},    {"Auth_Client_Secret", "Secret-5"}, {"Auth_AccessToken", "Secret-token-6"},
    {"keyFilePassword", "Secret-dfi-7"}};
}  // namespace

TEST_F(CommandLineTransfer, EveryKindOfValueSurvivesTheRoundTripAndNoSecretReachesTheFile)
{
    ASSERT_EQ(0, Run({"set", "SSP_spark.sql.shuffle=200", "http.header.X-Trace=a=b", "HDFSUser=J\xC3\xBCrgen \xE6\x97\xA5",
                      "KrbRealm=  blanks  ", "Auth_Scope=", "HTTPPath=x=y=z", "UID=alice", "LogLevel=5",
                      "LogPath=/var/log/tarni", "LCaseSspKeyName=0"}))
        << m_err.str();
    for (const auto& [key, secret] : SECRETS)
    {
        ASSERT_EQ(0, Run({"set-secret", key}, std::string(secret) + "\n")) << key << m_err.str();
    }
    const auto file = m_dir / "backup.sdc";
    ASSERT_EQ(0, Run({"export", file.string()})) << m_err.str();
    const std::string exported = TempDirectory::ReadFile(file);
    for (const auto& [key, secret] : SECRETS)
    {
        EXPECT_EQ(exported.find(secret), std::string::npos) << key;
    }
    for (const char* absent : {"LogLevel", "LogPath", "Encrypted", "AES256_", "\r"})
    {
        EXPECT_EQ(exported.find(absent), std::string::npos) << absent;
    }
    EXPECT_NE(exported.find("\nSSP_spark.sql.shuffle=200\n"), std::string::npos) << exported;

    ASSERT_EQ(0, RunOnIni(m_fresh, {"import", file.string()})) << m_err.str();
    EXPECT_EQ(ShownWithoutSecretsAndLogging(m_fresh), ShownWithoutSecretsAndLogging(m_ini));
    ASSERT_EQ(0, RunOnIni(m_fresh, {"get", "LCaseSspKeyName"}));
    EXPECT_EQ(m_out.str(), "0\n");

    // The same through standard output and input.
    ASSERT_EQ(0, Run({"export", "-"}));
    EXPECT_EQ(m_out.str(), exported);
    std::filesystem::remove(m_fresh);
    ASSERT_EQ(0, RunOnIni(m_fresh, {"import", "-"}, exported)) << m_err.str();
    EXPECT_EQ(ShownWithoutSecretsAndLogging(m_fresh), ShownWithoutSecretsAndLogging(m_ini));
}

TEST_F(CommandLineTransfer, ImportReplacesTheConfigurationAndKeepsTheMachinesLoggingSettings)
{
    ASSERT_EQ(0, Run({"set", "SSP_old=1", "SocketTimeout=5", "LogLevel=3"}));
    ASSERT_EQ(0, Run({"import", "-"}, "SSP_new=2\r\nAuthMech=3\r\n"));
    const std::string ini = TempDirectory::ReadFile(m_ini);
    EXPECT_EQ(ini.find("SSP_old"), std::string::npos) << ini;
    EXPECT_NE(ini.find("SSP_new=2"), std::string::npos) << ini;
    EXPECT_NE(ini.find("SocketTimeout=60"), std::string::npos) << "back to its default\n" << ini;
    EXPECT_NE(ini.find("LogLevel=3"), std::string::npos) << ini;
    EXPECT_NE(ini.find("AuthMech=3"), std::string::npos) << ini;

    // An empty file: every setting back to its default, as in a store saved once with nothing changed.
    ASSERT_EQ(0, Run({"import", "-"}, ""));
    ASSERT_EQ(0, RunOnIni(m_fresh, {"set", "SocketTimeout=60"}));
    EXPECT_EQ(ShownWithoutSecretsAndLogging(m_ini), ShownWithoutSecretsAndLogging(m_fresh));
}

TEST_F(CommandLineTransfer, ABadFileIsNamedWithItsLineAndChangesNothing)
{
    ASSERT_EQ(0, Run({"set", "KrbRealm=R"}));
    const std::string before = TempDirectory::ReadFile(m_ini);
    const auto bad = m_dir / "bad.sdc";
    TempDirectory::WriteFile(bad, "Host=x\nKrbRealm=\xC0\xAF\n");
    EXPECT_EQ(1, Run({"import", bad.string()}));
    EXPECT_NE(m_err.str().find("bad.sdc"), std::string::npos) << m_err.str();
    EXPECT_EQ(1, Run({"import", "-"}, std::string("A=1\n\0B=2\n", 10)));
    EXPECT_EQ(1, Run({"import", "-"}, std::string(DriverSupport::DSConfigurationFile::MAX_FILE_BYTES + 1, 'x')));
    EXPECT_EQ(1, Run({"import", m_dir.Path().string()}));
    EXPECT_EQ(1, Run({"import", (m_dir / "absent.sdc").string()}));
    EXPECT_EQ(1, Run({"export", (m_dir / "absent" / "x.sdc").string()}));
    EXPECT_EQ(before, TempDirectory::ReadFile(m_ini));
    EXPECT_EQ(2, Run({"export"}));
    EXPECT_EQ(2, Run({"import", "a", "b"}));
}
