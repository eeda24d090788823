// The DSN setup with "OAuth Options..." over the driver-wide configuration and
// an in-memory store: for each flow, OK refuses what is missing with the
// "OAuth2.0 Credentials Required" box and, once the OAuth Options dialog has
// the values, saves; the store then holds the flow's secret only in its
// protected form.
#include <gtest/gtest.h>

#include "common/MemorySettingsStore.h"
#include "common/SecretKeySources.h"
#include "dialogs/DialogTestSupport.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "product/QDCConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"
#include "support/TarniSettingReader.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::DriverSupport::DSUidPwdConfiguration;

namespace
{
class QuillConfigurationDialogOAuthTest : public Testing::DialogTest
{
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        SparkODBC::SOProductIdentity::Register();
        DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
        Support::TarniSettingReader::Reset();
        Support::TarniSettingReader::SetStore(&m_store);
    }
    void TearDown() override
    {
        Support::TarniSettingReader::SetStore(nullptr);
        Support::TarniSettingReader::Reset();
        DialogTest::TearDown();
    }

    tarni_wstring Stored(tarni_wstring_view in_key) const
    {
        for (const auto& value : m_store.values)
        {
            if (value.name == in_key) return value.value;
        }
        return u"<absent>";
    }

    Testing::SecretKeySources m_keys;
    Testing::MemorySettingsStore m_store;
    DriverSupport::DSServerSidePropertyGroup m_ssp;
    DriverSupport::DSPrefixedPropertyGroup m_headers{"http.header."};
};
}  // namespace

TEST_F(QuillConfigurationDialogOAuthTest, EachFlowRefusesWhatIsMissingAndSavesItsSecretProtected)
{
    const struct
    {
        const char16_t* flow;
        int field;             ///< the value the first try leaves out (0: nothing needed)
        const char16_t* text;  ///< the box of the first try
        const char16_t* plainKey;
        const char16_t* protectedKey;
    } cases[] = {
        {u"Token Passthrough", IDC_OAUTH_ACCESS_TOKEN,
         u"Access token is required. Please select \"OAuth Options...\" and enter a value for \"Access Token\".",
         u"Auth_AccessToken", u"Auth_Encrypted_Access_Token"},
        {u"Client Credentials", IDC_OAUTH_CLIENT_SECRET,
         u"Authorization URL and Client Credential are required. Please select \"OAuth Options...\" and enter a "
         u"value for \"Authorization URL\", \"Client ID\" and \"Client Secret\".",
         u"Auth_Client_Secret", u"Auth_Encrypted_Client_Secret"},
        {u"Browser Based Authorization Code", 0, nullptr, u"Auth_Client_Secret", u"Auth_Encrypted_Client_Secret"},
    };
    for (const auto& c : cases)
    {
        m_store.values.clear();
        SparkODBC::QDCConfiguration configuration(m_ssp, m_headers, &m_logger, m_store);
        configuration.Load();
        SparkODBC::QuillConfigurationDialog dialog(configuration, &m_logger);
        dialog.SetSaveAction([&](IDialogWindow*) { configuration.Save(); });

        // Fills the flow's fields; in_leaveOut stays empty.
        const auto fill = [&c](int in_leaveOut) {
            return [&c, in_leaveOut](ScriptedDialogWindow& w) {
                w.SelectCombo(IDC_OAUTH_FLOW, c.flow);
                const std::pair<int, const char16_t*> values[] = {
                    {IDC_OAUTH_ACCESS_TOKEN, u"eyJ.access-token"},
                    {IDC_OAUTH_CLIENT_ID, u"app-id"},
                    {IDC_OAUTH_CLIENT_SECRET, u"client-s3cret"},
                    {IDC_OAUTH_TOKEN_END_POINT, u"https://login.example.com/token"}};
                for (const auto& [id, value] : values)
                {
                    if (w.Enabled(id) && id != in_leaveOut) w.Type(id, value);
                }
                w.Click(IDC_OAUTH_ENCRYPTION_OPTIONS);
                w.Click(IDOK);
            };
        };
        m_host.ExpectDialog(IDD_DSN_SETUP, [&](ScriptedDialogWindow& w) {
            w.Type(IDC_DSN_NAME, u"Sales");
            w.Type(IDC_HOSTS, u"spark.example.com");
            w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
            w.Click(IDC_OAUTH_OPTIONS);
            w.Click(IDOK);
            if (c.text != nullptr)
            {
                EXPECT_FALSE(w.IsEnded());
                w.Click(IDC_OAUTH_OPTIONS);
                w.Click(IDOK);
            }
            EXPECT_TRUE(w.IsEnded());
        });
        m_host.ExpectDialog(IDD_OAUTH_OPTIONS, fill(c.field));
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
            w.Click(IDC_PWD_ALL_USERS);
            w.Click(IDOK);
        });
        const auto boxes = m_host.GetMessageBoxes().size();
        if (c.text != nullptr)
        {
            m_host.ExpectMessageBox(IDOK);
            m_host.ExpectDialog(IDD_OAUTH_OPTIONS, fill(0));
            m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) { w.Click(IDOK); });
        }
        EXPECT_EQ(dialog.Show(nullptr, IDD_DSN_SETUP), 1);

        const auto& shown = m_host.GetMessageBoxes();
        ASSERT_EQ(shown.size(), boxes + (c.text != nullptr ? 1 : 0));
        if (c.text != nullptr)
        {
            EXPECT_EQ(shown.back().caption, u"OAuth2.0 Credentials Required");
            EXPECT_EQ(shown.back().text, c.text);
        }
        EXPECT_EQ(Stored(u"AuthMech"), u"11");
        EXPECT_EQ(Stored(u"Auth_Flow"), tarni_wstring(1, static_cast<char16_t>(u'0' + (&c - cases))));
        EXPECT_EQ(Stored(c.plainKey), u"<absent>");
        const tarni_wstring protectedValue = Stored(c.protectedKey);
        EXPECT_NE(protectedValue, u"<absent>");
        EXPECT_EQ(protectedValue.find(u"s3cret"), tarni_wstring::npos);
        for (const auto& value : m_store.values)
        {
            EXPECT_EQ(value.value.find(u"client-s3cret"), tarni_wstring::npos) << Support::StringConverter::ToUtf8(value.name);
            EXPECT_EQ(value.value.find(u"eyJ.access-token"), tarni_wstring::npos) << Support::StringConverter::ToUtf8(value.name);
        }
    }
}
