// Every secret of the driver-wide configuration is saved only in protected
// form into the platform's real store (the INI file on Linux, the registry
// under Wine) and recovered on load with its scope.
#include <gtest/gtest.h>

#include <memory>

#include "common/ProductSettingsFixture.h"
#include "common/RecordingLogger.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "driversupport/DSEncryptionUtils.h"
#include "platform/ProcessEnvironment.h"
#include "platform/SecretProtector.h"
#include "platform/SettingsStoreFactory.h"
#include "product/QDCConfiguration.h"
#include "support/crypto/SecretCipherSealer.h"
#include "support/crypto/LibCrypto.h"

using namespace Tarni;
using DriverSupport::DSUidPwdConfiguration;

namespace
{
struct Secret
{
    const char16_t* plainKey;
    const char16_t* protectedKey;
    tarni_wstring value;
    bool allUsers;
};

const std::vector<Secret> SECRETS = {
    {u"PWD", u"EncryptedPWD", u"dsn-p\u00e4ss", false},
    {u"ProxyPWD", u"ProxyEncryptedPWD", u"proxy-pass-\u20ac", true},
    {u"ClientPrivateKeyPWD", u"EncryptedClientPrivateKeyPWD", u"client-key-pass", false},
    {u"Auth_Client_Secret", u"Auth_Encrypted_Client_Secret", u"oauth-client-secret", true},
    {u"Auth_AccessToken", u"Auth_Encrypted_Access_Token", u"eyJhbGciOi.access.token", false},
    {u"AOSS_PWD", u"AOSS_EncryptedPWD", u"aoss-pass", true},
    {u"keyFilePassword", u"EncryptedKeyFilePassword", u"dfi-key-file-pass", false},
};

std::string Utf16Bytes(tarni_wstring_view in_text)
{
    std::string bytes;
    for (const char16_t unit : in_text)
    {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

class DriverSecrets : public Testing::ProductSettingsFixture
{
protected:
    void SetUp() override
    {
        ProductSettingsFixture::SetUp();
        DSUidPwdConfiguration::SetEncryptionOptionsEnabled(true);
        DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
        m_location.iniPath = Support::StringConverter::FromUtf8((m_dir / "odbc-driver.ini").string());
        // A key of its own per test: CTest runs tests in parallel processes.
        m_location.registryPath =
            u"SOFTWARE\\Tarni Test\\DriverSecrets\\" +
            Support::StringConverter::FromUtf8(::testing::UnitTest::GetInstance()->current_test_info()->name());
        m_store = Platform::SettingsStoreFactory::OpenDriverStore(m_location);
        Clear();
    }
    void TearDown() override
    {
        Clear();
        DSUidPwdConfiguration::SetEncryptionOptionsEnabled(false);
        DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
        Support::LibCrypto::SetLibraryName(u"");
        ProductSettingsFixture::TearDown();
    }
    void Clear()
    {
        for (const auto& value : m_store->ReadAll()) m_store->DeleteValue(value.name);
    }
    std::unique_ptr<SparkODBC::QDCConfiguration> Load()
    {
        Support::TarniSettingReader::Reset();
        Support::TarniSettingReader::SetStore(m_store.get());
        auto config = std::make_unique<SparkODBC::QDCConfiguration>(m_ssp, m_headers, &m_log, *m_store);
        config->Load();
        return config;
    }
    /// Everything the store holds, as its bytes: the INI file itself, or the
    /// registry's value names and data as the UTF-16 text they are stored as.
    std::string StoreBytes() const
    {
        if (Platform::ProcessEnvironment::UsesIniStore())
        {
            return Testing::TempDirectory::ReadFile(m_dir / "odbc-driver.ini");
        }
        std::string bytes;
        for (const auto& value : m_store->ReadAll()) bytes += Utf16Bytes(value.name + u"=" + value.value + u'\0');
        return bytes;
    }
    std::string Stored(tarni_wstring_view in_key) const
    {
        for (const auto& value : m_store->ReadAll())
            if (Support::StringConverter::EqualsIgnoreCase(value.name, in_key))
                return Support::StringConverter::ToUtf8(value.value);
        return "<absent>";
    }
    /// Sets every secret of the table with its scope and saves.
    void SaveAllSecrets()
    {
        auto config = Load();
        for (const Secret& secret : SECRETS)
        {
            DSUidPwdConfiguration* credential = config->FindCredentialBySecretKey(secret.plainKey);
            ASSERT_NE(nullptr, credential) << Support::StringConverter::ToUtf8(secret.plainKey);
            credential->SetPwd(secret.value);
            credential->SetEncryptPwd(true);
            credential->SetDPAPIEncryptForAllUsers(secret.allUsers);
        }
        config->Save();
    }

    Platform::DriverStoreLocation m_location;
    std::unique_ptr<Platform::ISettingsStore> m_store;
    Testing::RecordingLogger m_log;
    DriverSupport::DSServerSidePropertyGroup m_ssp;
    DriverSupport::DSPrefixedPropertyGroup m_headers{"http.header."};
};
}  // namespace

TEST_F(DriverSecrets, NoPlainSecretReachesTheStoreAndLoadRecoversEachWithItsScope)
{
    SaveAllSecrets();
    const std::string bytes = StoreBytes();
    for (const Secret& secret : SECRETS)
    {
        const std::string utf8 = Support::StringConverter::ToUtf8(secret.value);
        EXPECT_EQ(std::string::npos, bytes.find(utf8)) << utf8;
        EXPECT_EQ(std::string::npos, bytes.find(Utf16Bytes(secret.value))) << utf8;
        EXPECT_EQ("<absent>", Stored(secret.plainKey));
        EXPECT_TRUE(DriverSupport::DSEncryptionUtils::HasProtectedForm(
            Support::StringConverter::FromUtf8(Stored(secret.protectedKey))));
    }
    for (const auto& record : m_log.records)
    {
        for (const Secret& secret : SECRETS)
            EXPECT_EQ(std::string::npos, record.text.find(Support::StringConverter::ToUtf8(secret.value)));
    }

    auto config = Load();
    for (const Secret& secret : SECRETS)
    {
        const DSUidPwdConfiguration* credential = config->FindCredentialBySecretKey(secret.plainKey);
        EXPECT_EQ(secret.value, credential->GetPwd());
        EXPECT_TRUE(credential->IsEncryptPwd());
        EXPECT_EQ(secret.allUsers, credential->IsDPAPIEncryptForAllUsers());
        EXPECT_FALSE(config->GetMap().Contains(secret.protectedKey));
    }

    // Saving again without changes keeps every secret recoverable.
    config->Save();
    auto again = Load();
    for (const Secret& secret : SECRETS)
        EXPECT_EQ(secret.value, again->FindCredentialBySecretKey(secret.plainKey)->GetPwd());
}

TEST_F(DriverSecrets, NoScopeChosenRemovesBothKeysFromTheStore)
{
    SaveAllSecrets();
    m_store->WriteValue(u"PWD", u"typed by hand");  // a stray plain value goes too
    auto config = Load();
    config->GetCredentials().SetEncryptPwd(false);
    config->GetProxyConfiguration().SetEncryptPwd(false);
    config->Save();
    for (const char16_t* key : {u"PWD", u"EncryptedPWD", u"ProxyPWD", u"ProxyEncryptedPWD"})
        EXPECT_EQ("<absent>", Stored(key)) << Support::StringConverter::ToUtf8(key);
    EXPECT_NE("<absent>", Stored(u"AOSS_EncryptedPWD"));
    EXPECT_EQ(std::string::npos, StoreBytes().find("typed by hand"));
}

TEST_F(DriverSecrets, AnAlteredStoredValueIsReportedAndTheStoreStaysAsItWas)
{
    SaveAllSecrets();
    std::string stored = Stored(u"ProxyEncryptedPWD");
    stored[stored.size() - 3] = stored[stored.size() - 3] == '0' ? '1' : '0';
    m_store->WriteValue(u"ProxyEncryptedPWD", Support::StringConverter::FromUtf8(stored));
    const std::string before = StoreBytes();

    auto config = Load();
    const auto errors = config->GetSecretRecoveryErrors();
    ASSERT_EQ(1u, errors.size());
    EXPECT_EQ(u"DSDecryptError", errors[0].GetMessageKey());
    EXPECT_EQ(u"ProxyEncryptedPWD", errors[0].GetParameters().at(1));
    EXPECT_EQ(before, StoreBytes());

    // The other settings can still be edited; the damaged value is written back as it was.
    config->SetSetting(u"SocketTimeout", u"99");
    config->Save();
    EXPECT_EQ(stored, Stored(u"ProxyEncryptedPWD"));
}

TEST_F(DriverSecrets, AMissingCryptoLibraryFailsTheSaveBeforeAnythingIsWritten)
{
    if (Platform::SecretProtector::Create({}, Tarni::Support::SecretCipherSealer::Instance())->GetMethod() != Platform::SecretMethod::Aes256Ctr)
    {
        GTEST_SKIP() << "this platform protects secrets without libcrypto";
    }
    SaveAllSecrets();
    const std::string before = StoreBytes();
    auto config = Load();
    config->SetSetting(u"SocketTimeout", u"99");
    config->GetCredentials().SetPwd(u"new password");
    Support::LibCrypto::SetLibraryName(u"libcrypto-missing-for-test.so.3");
    try
    {
        config->Save();
        FAIL() << "saved without the library";
    }
    catch (const Support::ErrorException& e)
    {
        EXPECT_EQ(u"CryptoLibraryLoadErr", e.GetMessageKey());
        EXPECT_EQ(u"libcrypto-missing-for-test.so.3", e.GetParameters().at(0));
    }
    EXPECT_EQ(before, StoreBytes());
}

TEST_F(DriverSecrets, ASaveOfWhatIsStoredWritesNothingAndAChangedSecretOnlyItsOwnKey)
{
    SaveAllSecrets();
    const std::string stored = StoreBytes();
    const std::string untouched = Stored(u"AOSS_EncryptedPWD");
    // Loaded, recovered and protected again: every secret is the one stored.
    auto config = Load();
    EXPECT_TRUE(config->PlanSave().empty());
    EXPECT_TRUE(config->Save().empty());
    EXPECT_EQ(stored, StoreBytes());

    config = Load();
    config->FindCredentialBySecretKey(u"PWD")->SetPwd(u"another");
    config->FindCredentialBySecretKey(u"ProxyPWD")->SetDPAPIEncryptForAllUsers(false);
    const auto planned = config->PlanSave();
    EXPECT_EQ(stored, StoreBytes());
    const auto changes = config->Save();
    ASSERT_EQ(2u, changes.size());
    ASSERT_EQ(planned.size(), changes.size());
    EXPECT_EQ(u"EncryptedPWD", changes[0].name);
    EXPECT_EQ(u"ProxyEncryptedPWD", changes[1].name);
    EXPECT_EQ(planned[1].name, changes[1].name);
    EXPECT_EQ(untouched, Stored(u"AOSS_EncryptedPWD"));
    config = Load();
    EXPECT_EQ(u"another", config->FindCredentialBySecretKey(u"PWD")->GetPwd());
    EXPECT_FALSE(config->FindCredentialBySecretKey(u"ProxyPWD")->IsDPAPIEncryptForAllUsers());
}
