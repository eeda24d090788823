// Password Options on the scripted host: the radio buttons show the scope of
// the credential, OK writes it back (neither checked: not saved), and Cancel,
// Escape and the close box change nothing.
#include "dialogs/driversupport/DSPasswordOptionsDialog.h"

#include "dialogs/DialogTestSupport.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::DriverSupport;

namespace
{
class DSPasswordOptionsDialogTest : public Testing::DialogTest
{
protected:
    DSPasswordOptionsDialogTest() : m_credentials(m_map, &m_logger, 2, DSUidPwdKeySet{u"UID", u"PWD", u"EncryptedPWD", u"", nullptr}) {}

    void SetScope(bool in_encrypt, bool in_allUsers)
    {
        m_credentials.SetEncryptPwd(in_encrypt);
        m_credentials.SetDPAPIEncryptForAllUsers(in_allUsers);
    }

    ConfigurationMap m_map;
    DSUidPwdConfiguration m_credentials;
};
}  // namespace

TEST_F(DSPasswordOptionsDialogTest, TheCheckedButtonShowsTheScopeAndNeitherMeansNotSaved)
{
    struct Case
    {
        bool encrypt;
        bool allUsers;
        bool currentChecked;
        bool allChecked;
    };
    const Case cases[] = {{true, false, true, false}, {true, true, false, true}, {false, true, false, false},
                          {false, false, false, false}};
    for (const auto& c : cases)
    {
        SetScope(c.encrypt, c.allUsers);
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [&](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.Checked(IDC_PWD_CURRENT_USER_ONLY), c.currentChecked);
            EXPECT_EQ(w.Checked(IDC_PWD_ALL_USERS), c.allChecked);
            EXPECT_EQ(w.GetProperty(u"InputMap"), &m_credentials);
            w.PressEscape();
        });
        EXPECT_FALSE(DSPasswordOptionsDialog::Show(nullptr, &m_credentials));
    }
}

TEST_F(DSPasswordOptionsDialogTest, OkWritesTheChosenScope)
{
    SetScope(false, false);
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_ALL_USERS);
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSPasswordOptionsDialog::Show(nullptr, &m_credentials));
    EXPECT_TRUE(m_credentials.IsEncryptPwd());
    EXPECT_TRUE(m_credentials.IsDPAPIEncryptForAllUsers());

    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_CURRENT_USER_ONLY);
        w.PressEnter();
    });
    EXPECT_TRUE(DSPasswordOptionsDialog::Show(nullptr, &m_credentials));
    EXPECT_TRUE(m_credentials.IsEncryptPwd());
    EXPECT_FALSE(m_credentials.IsDPAPIEncryptForAllUsers());
    EXPECT_TRUE(m_logger.Has(Support::LOG_TRACE, "Tarni::DriverSupport::DSPasswordOptionsDialog::DoOkAction",
                             "+++++ enter +++++"));
}

TEST_F(DSPasswordOptionsDialogTest, OkWithNeitherButtonCheckedTurnsEncryptionOffAndKeepsTheScope)
{
    SetScope(false, true);
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) { w.Click(IDOK); });
    EXPECT_TRUE(DSPasswordOptionsDialog::Show(nullptr, &m_credentials));
    EXPECT_FALSE(m_credentials.IsEncryptPwd());
    EXPECT_TRUE(m_credentials.IsDPAPIEncryptForAllUsers());
}

TEST_F(DSPasswordOptionsDialogTest, CancelEscapeAndTheCloseBoxChangeNothing)
{
    for (Testing::CloseAction close : Testing::CLOSERS)
    {
        SetScope(true, false);
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [close](ScriptedDialogWindow& w) {
            w.Click(IDC_PWD_ALL_USERS);
            close(w);
        });
        EXPECT_FALSE(DSPasswordOptionsDialog::Show(nullptr, &m_credentials));
        EXPECT_TRUE(m_credentials.IsEncryptPwd());
        EXPECT_FALSE(m_credentials.IsDPAPIEncryptForAllUsers());
    }
}
