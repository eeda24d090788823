// AOSS Options on the scripted host: the stored mechanism and credentials
// are shown, the fields and OK follow the combo, OK writes the mechanism and
// (only with "User Name and Password") the credentials, and the two option
// buttons open Password Options and the endpoint's own SSL Options.
#include "dialogs/product/QuillAOSSDialog.h"

#include "dialogs/DialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "product/QuillConfiguration.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
using Window = ScriptedDialogWindow;

namespace
{
class QuillAOSSDialogTest : public Testing::DialogTest
{
protected:
    QuillAOSSDialogTest() : m_configuration(u"", 2, &m_logger) {}

    bool Run(ScriptedDialogHost::DialogScript in_script, bool in_allowEditing = true)
    {
        m_host.ExpectDialog(IDD_AOSS_OPTIONS, std::move(in_script));
        return QuillAOSSDialog::Show(nullptr, &m_configuration, in_allowEditing);
    }
    tarni_wstring Get(tarni_wstring_view in_key) const { return m_configuration.GetValue(in_key); }

    QuillConfiguration m_configuration;
};
}  // namespace

TEST_F(QuillAOSSDialogTest, TheFieldsAndOkFollowTheMechanism)
{
    m_configuration.SetValue(u"AOSS_AuthMech", u"0");
    EXPECT_FALSE(Run([](Window& w) {
        EXPECT_EQ(w.GetTitle(), u"AOSS Options");
        EXPECT_EQ(w.Items(IDC_AOSS_AUTH_MECH),
                  (std::vector<tarni_wstring>{u"No Authentication", u"User Name and Password"}));
        EXPECT_EQ(w.SelectedText(IDC_AOSS_AUTH_MECH), u"No Authentication");
        EXPECT_TRUE(w.Enabled(IDC_AOSS_AUTH_MECH));
        EXPECT_FALSE(w.Enabled(IDC_AOSS_USER_NAME));
        EXPECT_FALSE(w.Enabled(IDC_AOSS_PASSWORD));
        EXPECT_FALSE(w.Enabled(IDC_AOSS_PASSWORD_OPTIONS));
        EXPECT_TRUE(w.Enabled(IDC_AOSS_SSL_OPTIONS));
        EXPECT_TRUE(w.Enabled(IDOK));
        w.SelectCombo(IDC_AOSS_AUTH_MECH, u"User Name and Password");
        EXPECT_TRUE(w.Enabled(IDC_AOSS_USER_NAME));
        EXPECT_TRUE(w.Enabled(IDC_AOSS_PASSWORD_OPTIONS));
        EXPECT_FALSE(w.Enabled(IDOK)) << "no user name, no password";
        w.Type(IDC_AOSS_USER_NAME, u"watcher");
        EXPECT_FALSE(w.Enabled(IDOK)) << "an empty password keeps OK disabled";
        w.Type(IDC_AOSS_PASSWORD, u"pw");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.Type(IDC_AOSS_USER_NAME, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.PressEscape();
    }));
    EXPECT_EQ(Get(u"AOSS_AuthMech"), u"0");
    EXPECT_EQ(Get(u"AOSS_UID"), u"") << "Escape writes nothing";
}

TEST_F(QuillAOSSDialogTest, OkStoresTheMechanismAndOnlyWithUserNameAndPasswordTheCredentials)
{
    m_configuration.GetAOSSCredentials().SetEncryptPwd(true);
    EXPECT_TRUE(Run([](Window& w) {
        w.SelectCombo(IDC_AOSS_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_AOSS_USER_NAME, u"watcher");
        w.Type(IDC_AOSS_PASSWORD, u"s3cret");
        w.Click(IDOK);
    }));
    EXPECT_EQ(Get(u"AOSS_AuthMech"), u"3");
    EXPECT_EQ(m_configuration.GetAOSSCredentials().GetUid(), u"watcher");
    EXPECT_EQ(m_configuration.GetAOSSCredentials().GetPwd(), u"s3cret");
    EXPECT_TRUE(m_host.GetMessageBoxes().empty()) << "an encrypted password needs no warning";

    EXPECT_TRUE(Run([](Window& w) {
        EXPECT_EQ(w.SelectedText(IDC_AOSS_AUTH_MECH), u"User Name and Password");
        EXPECT_EQ(w.Text(IDC_AOSS_USER_NAME), u"watcher");
        EXPECT_EQ(w.Text(IDC_AOSS_PASSWORD), u"s3cret");
        w.Type(IDC_AOSS_USER_NAME, u"other");
        w.SelectCombo(IDC_AOSS_AUTH_MECH, u"No Authentication");
        w.Click(IDOK);
    }));
    EXPECT_EQ(Get(u"AOSS_AuthMech"), u"0");
    EXPECT_EQ(Get(u"AOSS_UID"), u"watcher") << "left as stored";
}

TEST_F(QuillAOSSDialogTest, AnUnencryptedPasswordIsAnnouncedAsNotSaved)
{
    m_host.ExpectMessageBox(IDOK);
    Run([this](Window& w) {
        w.SelectCombo(IDC_AOSS_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_AOSS_USER_NAME, u"watcher");
        w.Type(IDC_AOSS_PASSWORD, u"s3cret");
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](Window& p) {
            EXPECT_EQ(p.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_AOSS_OPTIONS));
            p.CheckButton(IDC_PWD_CURRENT_USER_ONLY, false);
            p.CheckButton(IDC_PWD_ALL_USERS, false);
            p.Click(IDOK);
        });
        w.Click(IDC_AOSS_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    const auto& box = m_host.GetMessageBoxes()[0];
    EXPECT_EQ(box.caption, u"Credentials Not Saved");
    EXPECT_NE(box.text.find(u"The value of the AOSS_PWD configuration"), tarni_wstring::npos);
    EXPECT_NE(box.text.find(u"AOSS Options dialog"), tarni_wstring::npos);
}

TEST_F(QuillAOSSDialogTest, SslOptionsEditTheEndpointsOwnKeys)
{
    m_configuration.LoadDefaults();
    m_configuration.SetValue(u"SSL", u"1");
    Run([this](Window& w) {
        m_host.ExpectDialog(IDD_SSL_OPTIONS, [](Window& s) {
            EXPECT_FALSE(s.Checked(IDC_SSL_ENABLE));
            EXPECT_FALSE(s.Visible(IDC_SSL_MIN_TLS));
            s.Click(IDC_SSL_ENABLE);
            s.Click(IDC_SSL_ALLOW_HOST_MISMATCH);
            s.Click(IDOK);
        });
        w.Click(IDC_AOSS_SSL_OPTIONS);
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(Get(u"AOSS_SSL"), u"1");
    EXPECT_EQ(Get(u"AOSS_AllowHostNameCNMismatch"), u"1");
    EXPECT_EQ(Get(u"AllowHostNameCNMismatch"), u"0") << "the driver's own SSL settings stay";
}

