// set-secret and the masking of secrets by show and get.
#include <gtest/gtest.h>

#include <sstream>

#include "common/ProductSettingsFixture.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "programs/config-cli/ConfigCommandLine.h"

using namespace Tarni;
using SparkODBC::ConfigCommandLine;

class CommandLineSecrets : public Testing::ProductSettingsFixture
{
protected:
    void TearDown() override
    {
        DriverSupport::DSUidPwdConfiguration::SetEncryptionOptionsEnabled(false);
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
        ProductSettingsFixture::TearDown();
    }
    int Run(std::vector<std::string> in_arguments, const std::string& in_input = "")
    {
        std::vector<tarni_wstring> arguments{u"--ini", Support::StringConverter::FromUtf8(m_ini.string())};
        for (const auto& argument : in_arguments) arguments.push_back(Support::StringConverter::FromUtf8(argument));
        m_out.str("");
        m_err.str("");
        std::istringstream in(in_input);
        Support::TarniSettingReader::Reset();
        return ConfigCommandLine(in, m_out, m_err).Run(arguments);
    }
    std::string File() const { return Testing::TempDirectory::ReadFile(m_ini); }

    std::filesystem::path m_ini = m_dir / "odbc.ini";
    std::ostringstream m_out;
    std::ostringstream m_err;
};

TEST_F(CommandLineSecrets, SetSecretReadsStandardInputAndSavesOnlyTheProtectedForm)
{
    ASSERT_EQ(0, Run({"set-secret", "ProxyPWD", "--scope", "machine"}, "pr0xy S3cr3t\r\n")) << m_err.str();
    ASSERT_EQ(0, Run({"set-secret", "pwd"}, "dsn S3cr3t")) << m_err.str();  // no line end, key in any case
    const std::string file = File();
    EXPECT_EQ(std::string::npos, file.find("S3cr3t"));
    EXPECT_NE(std::string::npos, file.find("\nProxyEncryptedPWD=AES256_MACHINE:"));
    EXPECT_NE(std::string::npos, file.find("\nEncryptedPWD=AES256_USER:"));

    ASSERT_EQ(0, Run({"show"}));
    EXPECT_NE(std::string::npos, m_out.str().find("\nProxyPWD=****\n"));
    EXPECT_NE(std::string::npos, m_out.str().find("\nPWD=****\n"));
    EXPECT_EQ(std::string::npos, m_out.str().find("S3cr3t"));
    ASSERT_EQ(0, Run({"get", "PWD"}));
    EXPECT_EQ("****\n", m_out.str());

    // The ordinary set keeps the secrets as they are; unset removes one.
    ASSERT_EQ(0, Run({"set", "SocketTimeout=5"}));
    ASSERT_EQ(0, Run({"unset", "PWD"}));
    EXPECT_EQ(std::string::npos, File().find("EncryptedPWD=AES256_USER:"));
    EXPECT_NE(std::string::npos, File().find("\nProxyEncryptedPWD=AES256_MACHINE:"));
}

TEST_F(CommandLineSecrets, SecretsAreRefusedOnTheCommandLineAndBadRequestsWriteNothing)
{
    EXPECT_EQ(ConfigCommandLine::RESULT_USAGE, Run({"set", "SocketTimeout=5", "Auth_Client_Secret=abc"}));
    EXPECT_NE(std::string::npos, m_err.str().find("set-secret Auth_Client_Secret"));
    EXPECT_EQ(std::string::npos, m_err.str().find("abc"));
    EXPECT_EQ(ConfigCommandLine::RESULT_USAGE, Run({"set-secret", "KrbRealm"}, "x\n"));
    EXPECT_EQ(ConfigCommandLine::RESULT_USAGE, Run({"set-secret", "PWD", "--scope", "world"}, "x\n"));
    EXPECT_EQ(ConfigCommandLine::RESULT_USAGE, Run({"set-secret", "PWD", "hunter2"}, "x\n"));
    EXPECT_EQ(ConfigCommandLine::RESULT_USAGE, Run({"set-secret"}, "x\n"));
    EXPECT_EQ(ConfigCommandLine::RESULT_FAILURE, Run({"set-secret", "PWD"}, ""));
    EXPECT_NE(std::string::npos, m_err.str().find("no secret on standard input"));
    EXPECT_FALSE(std::filesystem::exists(m_ini));
}
