#include <gtest/gtest.h>

#include <memory>

#include "SecretTestSupport.h"
#include "common/RecordingLogger.h"
#include "driversupport/DSEncryptionUtils.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "platform/DynamicLibrary.h"
#include "platform/OdbcInstaller.h"
#include "platform/SystemLibraryNames.h"

using namespace Tarni;
using DriverSupport::ConfigurationMap;
using DriverSupport::DSEncryptionUtils;
using DriverSupport::DSUidPwdConfiguration;
using DriverSupport::DSUidPwdKeySet;

namespace
{
struct RecordingMessageBoxes : DriverSupport::DSMessageBoxHost
{
    struct Box
    {
        tarni_wstring text, caption;
        std::uint32_t style;
    };
    std::vector<Box> shown;
    int ShowMessageBox(tarni_wstring_view in_text, tarni_wstring_view in_caption, std::uint32_t in_style) override
    {
        shown.push_back({tarni_wstring(in_text), tarni_wstring(in_caption), in_style});
        return 1;
    }
};

const DSUidPwdKeySet DSN_KEYS{u"UID", u"PWD", u"EncryptedPWD", u""};
const DSUidPwdKeySet AOSS_KEYS{u"UID", u"PWD", u"EncryptedPWD", u"AOSS_"};

class CredentialModel : public ::testing::Test
{
protected:
    void TearDown() override
    {
        DSUidPwdConfiguration::SetEncryptionOptionsEnabled(false);
        DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
        Platform::OdbcInstaller::SetLibraryName(u"");
    }
    std::unique_ptr<DSUidPwdConfiguration> Make(unsigned in_type, const DSUidPwdKeySet& in_keys = DSN_KEYS)
    {
        return std::make_unique<DSUidPwdConfiguration>(m_map, &m_log, in_type, in_keys);
    }
    /// SQLSetConfigMode of the installer library the model reads; false when
    /// the machine has no installer library.
    static bool SetInstallerMode(unsigned short in_mode)
    {
        static const auto library = Platform::DynamicLibrary::TryOpen(Platform::SystemLibraryNames::OdbcInstallerLibrary());
        if (library == nullptr) return false;
        const auto setMode = library->FindFunction<int (*)(unsigned short)>("SQLSetConfigMode");
        return setMode != nullptr && setMode(in_mode) != 0;
    }

    Testing::SecretKeySources m_sources;
    ConfigurationMap m_map;
    Testing::RecordingLogger m_log;
};
}  // namespace

TEST_F(CredentialModel, EncryptionDefaultFollowsTheSwitchTheTypeAndTheInstallerMode)
{
    for (const unsigned type : {0u, 1u, 2u, 7u})
    {
        EXPECT_TRUE(Make(type)->IsEncryptPwd()) << "switch off, type " << type;
    }
    DSUidPwdConfiguration::SetEncryptionOptionsEnabled(true);
    EXPECT_FALSE(Make(0)->IsEncryptPwd());
    EXPECT_FALSE(Make(7)->IsEncryptPwd());
    EXPECT_EQ(u"Connection dialog", Make(0)->GetParentDlgName());
    EXPECT_EQ(u"DSN Setup dialog", Make(2)->GetParentDlgName());
    EXPECT_EQ(u"Password Options button", Make(2)->GetPasswordOptionsButtonName());

    Platform::OdbcInstaller::SetLibraryName(u"libodbcinst-missing-for-test.so.2");
    EXPECT_FALSE(Make(1)->IsEncryptPwd()) << "a missing installer counts as not user-DSN mode";
    Platform::OdbcInstaller::SetLibraryName(u"");

    if (!SetInstallerMode(Platform::OdbcInstaller::CONFIG_MODE_USER_DSN)) GTEST_SKIP() << "no ODBC installer library";
    EXPECT_TRUE(Make(1)->IsEncryptPwd());
    EXPECT_TRUE(Make(2)->IsEncryptPwd());
    SetInstallerMode(Platform::OdbcInstaller::CONFIG_MODE_SYSTEM_DSN);
    EXPECT_FALSE(Make(2)->IsEncryptPwd()) << "system-DSN context: the user must pick a scope";
    SetInstallerMode(Platform::OdbcInstaller::CONFIG_MODE_BOTH_DSN);
}

TEST_F(CredentialModel, AfterLoadPlainWinsAndAnEncryptedValueAloneIsRecoveredWithItsScope)
{
    // Both keys: the plain one wins and nothing changes until the save.
    m_map = {{u"PWD", u"plain"}, {u"EncryptedPWD", u"garbage that is never read"}};
    auto both = Make(2);
    both->InitializeAfterLoad();
    EXPECT_TRUE(m_log.Contains(Support::LOG_INFO,
                               "The PWD attribute exists. Since PWD connection attribute takes precedence over "
                               "EncryptedPWD the EncryptedPWD attribute will not be read."));
    EXPECT_EQ(u"garbage that is never read", m_map.GetValue(u"EncryptedPWD"));
    both->SetEncryptPwd(true);
    both->FinalizeBeforeSave();
    EXPECT_EQ(u"plain", DSEncryptionUtils::Decrypt(m_map.GetValue(u"EncryptedPWD"), u"EncryptedPWD").value);

    // Only the protected key, with the AOSS prefix: recovered in its scope.
    m_map = {{u"AOSS_EncryptedPWD", DSEncryptionUtils::Encrypt(u"aoss", true, u"AOSS_EncryptedPWD")}};
    auto aoss = Make(2, AOSS_KEYS);
    aoss->SetEncryptPwd(false);
    aoss->InitializeAfterLoad();
    EXPECT_EQ(ConfigurationMap({{u"AOSS_PWD", u"aoss"}}), m_map);
    EXPECT_TRUE(aoss->IsEncryptPwd());
    EXPECT_TRUE(aoss->IsDPAPIEncryptForAllUsers());

    m_map.clear();
    Make(2)->InitializeAfterLoad();
    EXPECT_TRUE(m_log.Contains(Support::LOG_INFO, "The EncryptedPWD attribute does not exist."));
}

TEST_F(CredentialModel, AValueThatCannotBeRecoveredIsReportedAndKeptAsStored)
{
    tarni_wstring stored = DSEncryptionUtils::Encrypt(u"pw", false, u"EncryptedPWD");
    stored.back() = stored.back() == u'0' ? u'1' : u'0';
    stored.pop_back();  // odd length as well
    m_map = {{u"EncryptedPWD", stored}};
    auto credential = Make(2);
    credential->SetEncryptPwd(false);
    credential->InitializeAfterLoad();
    ASSERT_TRUE(credential->GetRecoveryError().has_value());
    EXPECT_EQ(u"DSDecryptError", credential->GetRecoveryError()->GetMessageKey());
    EXPECT_EQ(ConfigurationMap({{u"EncryptedPWD", stored}}), m_map);
    // Kept as stored: the next save writes the protected value back
    // unchanged, also after a dialog wrote its untouched, empty field.
    EXPECT_TRUE(credential->IsEncryptPwd());
    credential->SetPwd(u"");
    credential->FinalizeBeforeSave();
    EXPECT_EQ(ConfigurationMap({{u"EncryptedPWD", stored}}), m_map);
    EXPECT_TRUE(m_log.HasFragment("could not be recovered and is saved as it was stored"));

    // A typed secret replaces it, and from then on an empty one is empty.
    credential->SetPwd(u"new");
    EXPECT_FALSE(credential->GetRecoveryError().has_value());
    credential->FinalizeBeforeSave();
    EXPECT_NE(stored, m_map.GetValue(u"EncryptedPWD"));
    EXPECT_EQ(u"new", DSEncryptionUtils::Decrypt(m_map.GetValue(u"EncryptedPWD"), u"EncryptedPWD").value);
}

TEST_F(CredentialModel, FinalizeProtectsDropsOrKeepsAsTheFlagsAndSwitchSay)
{
    // Empty password, keep on: an empty protected value and no plain one.
    m_map = {{u"PWD", u""}};
    Make(2)->FinalizeBeforeSave();
    EXPECT_EQ(ConfigurationMap({{u"EncryptedPWD", u""}}), m_map);

    // Neither scope chosen: the protected key goes, and with the switch on
    // the plain one too.
    DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
    m_map = {{u"PWD", u"x"}, {u"EncryptedPWD", u"old"}};
    auto off = Make(1);
    off->SetEncryptPwd(false);
    off->FinalizeBeforeSave();
    EXPECT_TRUE(m_map.empty());

    // Switch off (the Test action): without encryption the plain key stays.
    DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
    m_map = {{u"PWD", u"x"}};
    off->FinalizeBeforeSave();
    EXPECT_EQ(ConfigurationMap({{u"PWD", u"x"}}), m_map);

    // A connection-dialog credential is not persisted by this step at all.
    m_map = {{u"PWD", u"x"}, {u"EncryptedPWD", u"old"}};
    Make(0)->FinalizeBeforeSave();
    EXPECT_EQ(2u, m_map.size());

    // Machine scope chosen: the protected value says so.
    m_map = {{u"PWD", u"x"}};
    auto machine = Make(2);
    machine->SetDPAPIEncryptForAllUsers(true);
    machine->FinalizeBeforeSave();
    EXPECT_EQ(Platform::SecretScope::AllUsers,
              DSEncryptionUtils::Decrypt(m_map.GetValue(u"EncryptedPWD"), u"EncryptedPWD").scope);
    EXPECT_FALSE(m_map.Contains(u"PWD"));
}

TEST_F(CredentialModel, CredentialsNotSavedBoxOnlyWhenThePasswordWillBeDropped)
{
    RecordingMessageBoxes boxes;
    auto aoss = Make(2, AOSS_KEYS);
    aoss->SetParentDlgName(u"AOSS Options dialog");
    aoss->ShowPwdNotSavedInfoMsg(boxes);
    EXPECT_TRUE(boxes.shown.empty()) << "encryption is on";

    aoss->SetEncryptPwd(false);
    aoss->ShowPwdNotSavedInfoMsg(boxes);
    ASSERT_EQ(1u, boxes.shown.size());
    EXPECT_EQ(u"Credentials Not Saved", boxes.shown[0].caption);
    EXPECT_EQ(0x30u, boxes.shown[0].style);
    EXPECT_EQ(u"The value of the AOSS_PWD configuration is not being saved. To save an encrypted version of the "
              u"AOSS_PWD configuration value, you must select one of the encryption options. You can access the "
              u"encryption options by going to the AOSS Options dialog and selecting the Password Options button.",
              boxes.shown[0].text);

    aoss->SetPwdOptional();
    aoss->ShowPwdNotSavedInfoMsg(boxes);
    m_map.SetValue(u"AOSS_PWD", u"");
    aoss->ShowPwdNotSavedInfoMsg(boxes);
    EXPECT_EQ(1u, boxes.shown.size()) << "an optional, empty password is not worth a warning";
    m_map.SetValue(u"AOSS_PWD", u"x");
    aoss->ShowPwdNotSavedInfoMsg(boxes);
    EXPECT_EQ(2u, boxes.shown.size());

    auto connection = Make(0);
    connection->SetEncryptPwd(false);
    connection->ShowPwdNotSavedInfoMsg(boxes);
    EXPECT_EQ(2u, boxes.shown.size()) << "the connection dialog saves nothing";
}

TEST_F(CredentialModel, GetPwdFallsBackToTheLinkedKeySetOnlyWhenThePlainKeyIsAbsent)
{
    const DSUidPwdKeySet synonyms{u"ProxyUsername", u"ProxyPassword", u"", u""};
    DSUidPwdKeySet keys{u"ProxyUID", u"ProxyPWD", u"ProxyEncryptedPWD", u""};
    keys.fallback = &synonyms;
    auto proxy = Make(2, keys);
    EXPECT_EQ(u"", proxy->GetPwd());
    m_map.SetValue(u"ProxyPassword", u"from synonym");
    EXPECT_EQ(u"from synonym", proxy->GetPwd());
    proxy->SetPwd(u"");
    EXPECT_EQ(u"", proxy->GetPwd()) << "a present, empty plain key wins";
    EXPECT_EQ(u"", Make(2)->GetPwd());
}
