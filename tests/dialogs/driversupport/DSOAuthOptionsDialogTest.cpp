// OAuth Options on the scripted host: each flow enables exactly the fields it
// uses; OK stores every field; a bad end point, redirect or number is refused
// with a box naming it while the dialog stays open and the configuration
// keeps its values; "Encryption Options..." sets the scope of both secrets;
// "SSL Options..." opens over the end points' own (prefixed) SSL settings.
#include "dialogs/driversupport/DSOAuthOptionsDialog.h"

#include "dialogs/DialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::DriverSupport;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
const std::pair<int, DSOAuthConfiguration::Field> FIELDS[] = {
    {IDC_OAUTH_ACCESS_TOKEN, DSOAuthConfiguration::FIELD_ACCESS_TOKEN},
    {IDC_OAUTH_CLIENT_ID, DSOAuthConfiguration::FIELD_CLIENT_ID},
    {IDC_OAUTH_CLIENT_SECRET, DSOAuthConfiguration::FIELD_CLIENT_SECRET},
    {IDC_OAUTH_AUTH_END_POINT, DSOAuthConfiguration::FIELD_AUTHORIZATION_END_POINT},
    {IDC_OAUTH_TOKEN_END_POINT, DSOAuthConfiguration::FIELD_TOKEN_END_POINT},
    {IDC_OAUTH_SCOPE, DSOAuthConfiguration::FIELD_SCOPE},
    {IDC_OAUTH_CODE_CHALLENGE, DSOAuthConfiguration::FIELD_CODE_CHALLENGE_METHOD},
    {IDC_OAUTH_REDIRECT, DSOAuthConfiguration::FIELD_REDIRECT},
    {IDC_OAUTH_WEB_SERVER_TIMEOUT, DSOAuthConfiguration::FIELD_WEB_SERVER_TIMEOUT},
    {IDC_OAUTH_WINDOW_WIDTH, DSOAuthConfiguration::FIELD_WINDOW_SIZE},
    {IDC_OAUTH_WINDOW_HEIGHT, DSOAuthConfiguration::FIELD_WINDOW_SIZE},
    {IDC_OAUTH_TOKEN_CACHE, DSOAuthConfiguration::FIELD_TOKEN_CACHE},
};


class DSOAuthOptionsDialogTest : public Testing::DialogTest
{
protected:
    DSOAuthOptionsDialogTest()
        : m_secret(m_map, &m_logger, 2, {u"Auth_Client_ID", u"Auth_Client_Secret", u"Auth_Encrypted_Client_Secret", u""}),
          m_token(m_map, &m_logger, 2, {u"", u"Auth_AccessToken", u"Auth_Encrypted_Access_Token", u""}),
          m_oauth(m_map, &m_logger, 2, m_secret, m_token)
    {
    }

    DSOAuthConfiguration& OAuth() { return m_oauth; }
    bool Show() { return DSOAuthOptionsDialog::Show(nullptr, &OAuth()); }
    tarni_wstring Get(tarni_wstring_view in_key) const { return m_map.GetValue(in_key); }

    ConfigurationMap m_map;
    DSUidPwdConfiguration m_secret;
    DSUidPwdConfiguration m_token;
    DSOAuthConfiguration m_oauth;
};
}  // namespace

TEST_F(DSOAuthOptionsDialogTest, EachFlowEnablesTheFieldsItUses)
{
    m_map.SetValue(Keys::Auth_Flow, u"9");
    m_host.ExpectDialog(IDD_OAUTH_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.Items(IDC_OAUTH_FLOW), DSOAuthConfiguration::FlowNames());
        EXPECT_EQ(w.Selection(IDC_OAUTH_FLOW), -1) << "an unknown stored flow selects nothing";
        for (const auto& [id, field] : FIELDS)
        {
            EXPECT_FALSE(w.Enabled(id)) << id;
        }
        const std::vector<std::vector<int>> used = {
            {IDC_OAUTH_ACCESS_TOKEN},
            {IDC_OAUTH_CLIENT_ID, IDC_OAUTH_CLIENT_SECRET, IDC_OAUTH_TOKEN_END_POINT, IDC_OAUTH_SCOPE,
             IDC_OAUTH_TOKEN_CACHE},
            {IDC_OAUTH_CLIENT_ID, IDC_OAUTH_CLIENT_SECRET, IDC_OAUTH_AUTH_END_POINT, IDC_OAUTH_TOKEN_END_POINT,
             IDC_OAUTH_SCOPE, IDC_OAUTH_CODE_CHALLENGE, IDC_OAUTH_REDIRECT, IDC_OAUTH_WEB_SERVER_TIMEOUT,
             IDC_OAUTH_WINDOW_WIDTH, IDC_OAUTH_WINDOW_HEIGHT, IDC_OAUTH_TOKEN_CACHE}};
        for (std::size_t flow = 0; flow < used.size(); ++flow)
        {
            w.SelectCombo(IDC_OAUTH_FLOW, DSOAuthConfiguration::FlowNames()[flow]);
            for (const auto& [id, field] : FIELDS)
            {
                const bool expected = std::find(used[flow].begin(), used[flow].end(), id) != used[flow].end();
                EXPECT_EQ(w.Enabled(id), expected) << "flow " << flow << ", control " << id;
            }
            EXPECT_TRUE(w.Enabled(IDC_OAUTH_IGNORE_NOPROMPT));
            EXPECT_TRUE(w.Enabled(IDC_OAUTH_ENCRYPTION_OPTIONS));
            EXPECT_TRUE(w.Enabled(IDC_OAUTH_SSL_OPTIONS)) << "SSL Options serves every flow";
        }
        w.Click(IDCANCEL);
    });
    EXPECT_FALSE(Show());
    EXPECT_EQ(Get(Keys::Auth_Flow), u"9");
}

TEST_F(DSOAuthOptionsDialogTest, ShowsTheStoredValuesAndOkStoresEveryField)
{
    m_map.SetValue(Keys::Auth_Flow, u"2");
    m_map.SetValue(Keys::OAuth2CodeChallengeMethod, u"PLAIN");
    m_map.SetValue(Keys::Auth_AccessToken, u"kept-token");
    m_map.SetValue(Keys::OAuth2EnableTokenCache, u"1");
    m_host.ExpectDialog(IDD_OAUTH_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetTitle(), u"OAuth Options");
        EXPECT_EQ(w.SelectedText(IDC_OAUTH_FLOW), u"Browser Based Authorization Code");
        EXPECT_EQ(w.SelectedText(IDC_OAUTH_CODE_CHALLENGE), u"plain");
        EXPECT_EQ(w.Text(IDC_OAUTH_ACCESS_TOKEN), u"kept-token");
        EXPECT_TRUE(w.Checked(IDC_OAUTH_TOKEN_CACHE));
        w.Type(IDC_OAUTH_CLIENT_ID, u"app-id");
        w.Type(IDC_OAUTH_CLIENT_SECRET, u"");
        w.Type(IDC_OAUTH_AUTH_END_POINT, u"https://login.example.com/authorize");
        w.Type(IDC_OAUTH_TOKEN_END_POINT, u"https://login.example.com/token");
        w.Type(IDC_OAUTH_SCOPE, u"sql offline_access");
        w.SelectCombo(IDC_OAUTH_CODE_CHALLENGE, u"S256");
        w.Type(IDC_OAUTH_REDIRECT, u"8050");
        w.Type(IDC_OAUTH_WEB_SERVER_TIMEOUT, u"120");
        w.Type(IDC_OAUTH_WINDOW_WIDTH, u"800");
        w.Type(IDC_OAUTH_WINDOW_HEIGHT, u"600");
        w.Click(IDC_OAUTH_TOKEN_CACHE);
        w.Click(IDC_OAUTH_IGNORE_NOPROMPT);
        w.Click(IDOK);
    });
    EXPECT_TRUE(Show());
    const std::pair<tarni_wstring_view, tarni_wstring_view> expected[] = {
        {Keys::Auth_Flow, u"2"},
        {Keys::Auth_Client_ID, u"app-id"},
        {Keys::Auth_Client_Secret, u""},
        {Keys::Auth_AccessToken, u"kept-token"},
        {Keys::OAuth2AuthorizationEndPoint, u"https://login.example.com/authorize"},
        {Keys::OAuth2TokenEndPoint, u"https://login.example.com/token"},
        {Keys::Auth_Scope, u"sql offline_access"},
        {Keys::OAuth2CodeChallengeMethod, u"S256"},
        {Keys::Auth_BaseRedirectUri, u"8050"},
        {Keys::OAuthWebserverTimeout, u"120"},
        {Keys::Auth_WindowWidth, u"800"},
        {Keys::Auth_WindowHeight, u"600"},
        {Keys::OAuth2EnableTokenCache, u"0"},
        {Keys::OAuthIgnoreDriverNoPrompt, u"1"},
    };
    for (const auto& [key, value] : expected)
    {
        EXPECT_EQ(Get(key), value) << Support::StringConverter::ToUtf8(key);
    }
    EXPECT_TRUE(m_host.GetMessageBoxes().empty()) << "an empty optional secret needs no warning";
}

TEST_F(DSOAuthOptionsDialogTest, BadInputIsRefusedWithTheDialogKeptOpenAndNothingStored)
{
    const struct
    {
        Platform::ScriptedDialogHost::DialogScript type;
        const char16_t* key;
        const char16_t* value;
    } cases[] = {
        {[](ScriptedDialogWindow& w) { w.Type(IDC_OAUTH_TOKEN_END_POINT, u"login.example.com/token"); },
         u"DSOAuthEndPointErr", u"Token End Point, login.example.com/token"},
        {[](ScriptedDialogWindow& w) { w.Type(IDC_OAUTH_TOKEN_END_POINT, u"http://login.example.com/token"); },
         u"DSOAuthPlainHttpErr", u"Token End Point, http://login.example.com/token"},
        {[](ScriptedDialogWindow& w) { w.Type(IDC_OAUTH_AUTH_END_POINT, u"https://"); }, u"DSOAuthEndPointErr",
         u"Authorization End Point, https://"},
        {[](ScriptedDialogWindow& w) { w.Type(IDC_OAUTH_REDIRECT, u"70000"); }, u"DSOAuthRedirectPortErr",
         u"Redirect Port or URI, 70000"},
        {[](ScriptedDialogWindow& w) { w.Type(IDC_OAUTH_WEB_SERVER_TIMEOUT, u"2m"); }, u"DSOAuthNumberErr",
         u"Web Server Timeout, 2m"},
        {[](ScriptedDialogWindow& w) { w.Type(IDC_OAUTH_WINDOW_HEIGHT, u"-1"); }, u"DSOAuthNumberErr",
         u"Browser Window Height, -1"},
    };
    for (const auto& c : cases)
    {
        m_map.clear();
        m_map.SetValue(Keys::Auth_Flow, u"2");
        const auto before = m_map;
        const auto boxes = m_host.GetMessageBoxes().size();
        m_host.ExpectMessageBox(IDOK);
        m_host.ExpectDialog(IDD_OAUTH_OPTIONS, [&](ScriptedDialogWindow& w) {
            w.Type(IDC_OAUTH_CLIENT_ID, u"typed");
            c.type(w);
            w.Click(IDOK);
            EXPECT_FALSE(w.IsEnded());
            EXPECT_EQ(w.Text(IDC_OAUTH_CLIENT_ID), u"typed");
            w.Click(IDCANCEL);
        });
        EXPECT_FALSE(Show());
        EXPECT_EQ(m_map, before);
        ASSERT_EQ(m_host.GetMessageBoxes().size(), boxes + 1);
        EXPECT_EQ(m_host.GetMessageBoxes().back().caption, u"DSN Configuration Error");
        EXPECT_EQ(m_host.GetMessageBoxes().back().text, tarni_wstring(c.key) + u": " + c.value);
    }
}

TEST_F(DSOAuthOptionsDialogTest, FieldsOfOtherFlowsAreNotChecked)
{
    m_map.SetValue(Keys::Auth_Flow, u"0");
    m_map.SetValue(Keys::OAuth2AuthorizationEndPoint, u"not a url");
    m_host.ExpectDialog(IDD_OAUTH_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_OAUTH_ACCESS_TOKEN, u"eyJ.token");
        w.Click(IDOK);
    });
    OAuth().GetAccessTokenCredential().SetEncryptPwd(true);
    EXPECT_TRUE(Show());
    EXPECT_EQ(Get(Keys::Auth_AccessToken), u"eyJ.token");
    EXPECT_EQ(Get(Keys::OAuth2AuthorizationEndPoint), u"not a url");
}

TEST_F(DSOAuthOptionsDialogTest, EncryptionOptionsSetTheScopeOfBothSecrets)
{
    OAuth().GetClientSecretCredential().SetEncryptPwd(false);
    OAuth().GetAccessTokenCredential().SetEncryptPwd(false);
    m_map.SetValue(Keys::Auth_Flow, u"1");
    m_host.ExpectDialog(IDD_OAUTH_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_OAUTH_ENCRYPTION_OPTIONS);
        w.Type(IDC_OAUTH_CLIENT_SECRET, u"s3cret");
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_FALSE(w.Checked(IDC_PWD_CURRENT_USER_ONLY));
        EXPECT_FALSE(w.Checked(IDC_PWD_ALL_USERS));
        w.Click(IDC_PWD_ALL_USERS);
        w.Click(IDOK);
    });
    EXPECT_TRUE(Show());
    for (DSUidPwdConfiguration* secret : {&OAuth().GetClientSecretCredential(), &OAuth().GetAccessTokenCredential()})
    {
        EXPECT_TRUE(secret->IsEncryptPwd());
        EXPECT_TRUE(secret->IsDPAPIEncryptForAllUsers());
    }
    EXPECT_TRUE(m_host.GetMessageBoxes().empty());
}

TEST_F(DSOAuthOptionsDialogTest, AnUnencryptedSecretOfTheFlowIsAnnounced)
{
    OAuth().GetAccessTokenCredential().SetEncryptPwd(false);
    m_map.SetValue(Keys::Auth_Flow, u"0");
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectDialog(IDD_OAUTH_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_OAUTH_ACCESS_TOKEN, u"tok");
        w.Click(IDOK);
    });
    EXPECT_TRUE(Show());
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    EXPECT_EQ(m_host.GetMessageBoxes().front().caption, u"Credentials Not Saved");
    EXPECT_NE(m_host.GetMessageBoxes().front().text.find(
                  u"going to the OAuth Options dialog and selecting the Encryption Options button."),
              tarni_wstring::npos);
}

TEST_F(DSOAuthOptionsDialogTest, SslOptionsOpenOverTheEndPointsOwnSettings)
{
    m_host.ExpectDialog(IDD_OAUTH_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_TRUE(w.Enabled(IDC_OAUTH_SSL_OPTIONS));
        w.Click(IDC_OAUTH_SSL_OPTIONS);
        w.Click(IDCANCEL);
    });
    m_host.ExpectDialog(IDD_SSL_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_OAUTH_OPTIONS));
        if (!w.Checked(IDC_SSL_ENABLE)) w.Click(IDC_SSL_ENABLE);
        w.Type(IDC_SSL_TRUSTED_CERTS, u"/etc/idp-ca.pem");
        w.Click(IDOK);
    });
    EXPECT_FALSE(Show());
    EXPECT_EQ(Get(u"OAuth_TrustedCerts"), u"/etc/idp-ca.pem");
    EXPECT_EQ(Get(Keys::TrustedCerts), u"") << "the driver's own SSL settings are not touched";
}
