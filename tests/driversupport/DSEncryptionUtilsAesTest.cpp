// The Linux method: AES-256-CTR + HMAC-SHA-256 with key material from the
// user's key file or the machine identity.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "SecretTestSupport.h"
#include "driversupport/DSEncryptionUtils.h"
#include "core/SupportException.h"
#include "support/crypto/LibCrypto.h"
#include "support/crypto/SecretCipher.h"

using Tarni::tarni_wstring;
using Tarni::DriverSupport::DSEncryptionUtils;
using Tarni::Platform::SecretScope;
using SecretTest::Caught;

namespace
{
class AesSecretTest : public ::testing::Test
{
protected:
    SecretTest::KeySources m_sources;
};

const char16_t* DecryptErrorKey(const tarni_wstring& in_stored)
{
    try
    {
        DSEncryptionUtils::Decrypt(in_stored, u"EncryptedPWD");
        return u"(recovered)";
    }
    catch (const Tarni::Support::ErrorException& e)
    {
        return e.GetMessageKey() == u"DSDecryptError" ? u"DSDecryptError" : u"(other error)";
    }
}
}  // namespace

TEST_F(AesSecretTest, UserScopeNeedsTheSameUsersKeyAndMachineScopeTheSameMachine)
{
    const tarni_wstring aliceOnly = DSEncryptionUtils::Encrypt(u"alice's", false, u"EncryptedPWD");
    const tarni_wstring machineWide = DSEncryptionUtils::Encrypt(u"everyone's", true, u"EncryptedPWD");
    EXPECT_TRUE(aliceOnly.starts_with(u"AES256_USER:"));
    EXPECT_TRUE(machineWide.starts_with(u"AES256_MACHINE:"));

    m_sources.Use("bob", "m1");
    DSEncryptionUtils::Encrypt(u"bob's own", false, u"EncryptedPWD");  // bob has a key file too
    EXPECT_EQ(tarni_wstring(u"DSDecryptError"), DecryptErrorKey(aliceOnly));
    EXPECT_EQ(u"everyone's", DSEncryptionUtils::Decrypt(machineWide, u"EncryptedPWD").value);

    m_sources.Use("alice", "m2");
    EXPECT_EQ(tarni_wstring(u"DSDecryptError"), DecryptErrorKey(machineWide));
    EXPECT_EQ(u"alice's", DSEncryptionUtils::Decrypt(aliceOnly, u"EncryptedPWD").value);

    // A user without a key file cannot hold anyone's user-scope secret, and
    // trying does not create a key file for them.
    m_sources.Use("carol", "m1");
    EXPECT_EQ(tarni_wstring(u"DSDecryptError"), DecryptErrorKey(aliceOnly));
    EXPECT_FALSE(std::filesystem::exists(m_sources.UserKeyFile("carol")));
}

TEST_F(AesSecretTest, EveryFlippedDigitTruncationOrRelabellingIsRefused)
{
    for (const bool allUsers : {false, true})
    {
        const tarni_wstring stored = DSEncryptionUtils::Encrypt(u"hunter2", allUsers, u"EncryptedPWD");
        const size_t body = stored.find(u':') + 1;
        for (size_t i = body; i < stored.size(); ++i)
        {
            tarni_wstring flipped = stored;
            flipped[i] = flipped[i] == u'0' ? u'8' : u'0';
            ASSERT_EQ(tarni_wstring(u"DSDecryptError"), DecryptErrorKey(flipped)) << "digit " << i;
        }
        EXPECT_EQ(tarni_wstring(u"DSDecryptError"), DecryptErrorKey(stored.substr(0, stored.size() - 2)));
        EXPECT_EQ(tarni_wstring(u"DSDecryptError"), DecryptErrorKey(stored.substr(0, body + 2)));
        const tarni_wstring relabelled =
            (allUsers ? u"AES256_USER:" : u"AES256_MACHINE:") + stored.substr(body);
        EXPECT_EQ(tarni_wstring(u"DSDecryptError"), DecryptErrorKey(relabelled));
        EXPECT_EQ(u"hunter2", DSEncryptionUtils::Decrypt(stored, u"EncryptedPWD").value);
    }
}

TEST_F(AesSecretTest, UserKeyFileIsCreatedOnceWithMode0600InAPrivateFolder)
{
    const auto keyFile = m_sources.UserKeyFile("alice");
    EXPECT_FALSE(std::filesystem::exists(keyFile));
    DSEncryptionUtils::Encrypt(u"x", true, u"EncryptedPWD");
    EXPECT_FALSE(std::filesystem::exists(keyFile)) << "the machine scope needs no user key";

    const tarni_wstring first = DSEncryptionUtils::Encrypt(u"x", false, u"EncryptedPWD");
    struct stat info = {};
    ASSERT_EQ(0, stat(keyFile.c_str(), &info));
    EXPECT_EQ(0600u, info.st_mode & 07777);
    EXPECT_EQ(32, info.st_size);
    struct stat folder = {};
    ASSERT_EQ(0, stat(keyFile.parent_path().c_str(), &folder));
    EXPECT_EQ(0700u, folder.st_mode & 07777);

    std::ifstream in(keyFile, std::ios::binary);
    const std::string key((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    DSEncryptionUtils::ResetKeyLocations();
    m_sources.Use("alice", "m1");  // a new protector: the file is read again, not replaced
    DSEncryptionUtils::Encrypt(u"y", false, u"EncryptedPWD");
    std::ifstream again(keyFile, std::ios::binary);
    EXPECT_EQ(key, std::string((std::istreambuf_iterator<char>(again)), std::istreambuf_iterator<char>()));
    EXPECT_EQ(u"x", DSEncryptionUtils::Decrypt(first, u"EncryptedPWD").value);
    for (const auto& entry : std::filesystem::directory_iterator(keyFile.parent_path()))
    {
        EXPECT_EQ(keyFile, entry.path()) << "left behind: " << entry.path();
    }
}

TEST_F(AesSecretTest, UnsafeOrMissingKeySourcesAreClearErrors)
{
    const tarni_wstring stored = DSEncryptionUtils::Encrypt(u"x", false, u"EncryptedPWD");
    const auto keyFile = m_sources.UserKeyFile("alice");

    chmod(keyFile.c_str(), 0644);
    auto error = Caught([&] { DSEncryptionUtils::Decrypt(stored, u"EncryptedPWD"); });
    EXPECT_EQ(u"DSSecretKeyFileErr", error.GetMessageKey());
    EXPECT_EQ(SecretTest::Wide(keyFile), error.GetParameters().at(0));
    chmod(keyFile.c_str(), 0600);

    SecretTest::WriteFile(keyFile, "short");
    error = Caught([&] { DSEncryptionUtils::Encrypt(u"x", false, u"EncryptedPWD"); });
    EXPECT_EQ(u"DSSecretKeyFileErr", error.GetMessageKey());

    auto locations = m_sources.Locations("alice", "m1");
    locations.machineIdentityFile = SecretTest::Wide(m_sources.Folder() / "no-machine-id");
    DSEncryptionUtils::SetKeyLocations(locations);
    error = Caught([&] { DSEncryptionUtils::Encrypt(u"x", true, u"EncryptedPWD"); });
    EXPECT_EQ(u"DSOpenSSLEncryptKeyMissingErr", error.GetMessageKey());
    EXPECT_EQ(locations.machineIdentityFile, error.GetParameters().at(0));

    using Tarni::Support::SecretCipher;
    EXPECT_EQ(u"DSOpenSSLEncryptKeyMissingErr",
              Caught([] { SecretCipher::Seal("p", "", "salt", "l"); }).GetMessageKey());
    EXPECT_EQ(u"DSOpenSSLEncryptSaltMissingErr",
              Caught([] { SecretCipher::Seal("p", "key", "", "l"); }).GetMessageKey());
    EXPECT_EQ(u"DSOpenSSLEncryptSaltMissingErr",
              Caught([] { SecretCipher::Open(std::string(64, 'x'), "key", "", "l"); }).GetMessageKey());
}

TEST_F(AesSecretTest, MissingLibcryptoIsTheLoadersErrorNamingTheLibrary)
{
    const tarni_wstring stored = DSEncryptionUtils::Encrypt(u"x", true, u"EncryptedPWD");
    Tarni::Support::LibCrypto::SetLibraryName(u"libcrypto-missing-for-test.so.3");
    const auto onSave = Caught([] { DSEncryptionUtils::Encrypt(u"x", true, u"EncryptedPWD"); });
    const auto onLoad = Caught([&] { DSEncryptionUtils::Decrypt(stored, u"EncryptedPWD"); });
    Tarni::Support::LibCrypto::SetLibraryName(u"");
    for (const auto& error : {onSave, onLoad})
    {
        EXPECT_EQ(u"CryptoLibraryLoadErr", error.GetMessageKey());
        EXPECT_EQ(u"libcrypto-missing-for-test.so.3", error.GetParameters().at(0));
    }
    EXPECT_EQ(u"x", DSEncryptionUtils::Decrypt(stored, u"EncryptedPWD").value);
}
