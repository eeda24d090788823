// set-secret and the masking of secrets by show and get.
#include <gtest/gtest.h>

#include "programs/ConfigCliFixture.h"

using namespace Tarni;
using SparkODBC::ConfigCommandLine;

class CommandLineSecrets : public Testing::ConfigCliFixture<>
{
protected:
    std::string File() const { return Testing::TempDirectory::ReadFile(m_ini); }
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
