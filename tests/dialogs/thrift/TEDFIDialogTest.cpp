// DFI Options on the scripted host: the fields show the configuration and OK
// stores them; "Browse" fills the config-file field only with an existing
// file; a config file that does not exist is refused with the dialog kept
// open; "Password Options..." edits the same configuration's scope.
#include "dialogs/thrift/TEDFIDialog.h"

#include <filesystem>
#include <fstream>

#include "common/TempDirectory.h"
#include "dialogs/DialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "resource.h"
#include "support/StringConverter.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::ThriftExtension::TEDFIConfiguration;
using Tarni::ThriftExtension::TEDFIDialog;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
class TEDFIDialogTest : public Testing::DialogTest
{
protected:
    TEDFIDialogTest() : m_configuration(m_map, &m_logger, 2)
    {
        m_existing = Support::StringConverter::FromUtf8((m_dir / "oci-config").string());
        std::ofstream(m_dir / "oci-config") << "[DEFAULT]\n";
    }

    bool Show() { return TEDFIDialog().Show(nullptr, &m_configuration); }
    tarni_wstring Get(tarni_wstring_view in_key) const { return m_map.GetValue(in_key); }

    DriverSupport::ConfigurationMap m_map;
    TEDFIConfiguration m_configuration;
    tarni_wstring m_existing;
};
}  // namespace

TEST_F(TEDFIDialogTest, ShowsTheKeysAndOkStoresWhatWasTyped)
{
    m_map.SetValue(Keys::OCIConfigFile, m_existing);
    m_map.SetValue(Keys::OCIProfile, u"DEFAULT");
    m_map.SetValue(Keys::keyFilePassword, u"old-pass");
    m_map.SetValue(Keys::OCIIgnoreDriverNoPrompt, u"1");
    m_configuration.SetEncryptPwd(true);
    m_host.ExpectDialog(IDD_DFI_OPTIONS, [&](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetTitle(), u"DFI Options");
        EXPECT_EQ(w.Text(IDC_DFI_CONFIG_FILE), m_existing);
        EXPECT_EQ(w.Text(IDC_DFI_PROFILE), u"DEFAULT");
        EXPECT_EQ(w.Text(IDC_DFI_KEY_FILE_PASSWORD), u"old-pass");
        EXPECT_TRUE(w.Checked(IDC_DFI_IGNORE_NOPROMPT));
        w.Type(IDC_DFI_PROFILE, u" analytics ");
        w.Type(IDC_DFI_KEY_FILE_PASSWORD, u"new-pass");
        w.Click(IDC_DFI_IGNORE_NOPROMPT);
        w.Click(IDOK);
    });
    EXPECT_TRUE(Show());
    EXPECT_EQ(Get(Keys::OCIConfigFile), m_existing);
    EXPECT_EQ(Get(Keys::OCIProfile), u" analytics ") << "stored as typed";
    EXPECT_EQ(Get(Keys::keyFilePassword), u"new-pass");
    EXPECT_EQ(Get(Keys::OCIIgnoreDriverNoPrompt), u"0");
    EXPECT_TRUE(m_host.GetMessageBoxes().empty()) << "an encrypted password needs no warning";
}

TEST_F(TEDFIDialogTest, BrowseFillsTheFieldOnlyWithAnExistingFile)
{
    const tarni_wstring missing = Support::StringConverter::FromUtf8((m_dir / "no-such-file").string());
    const tarni_wstring folder = Support::StringConverter::FromUtf8(m_dir.Path().string());
    m_host.ExpectOpenFile(missing);
    m_host.ExpectOpenFile(folder);
    m_host.ExpectOpenFile(std::nullopt);
    m_host.ExpectOpenFile(m_existing);
    m_host.ExpectDialog(IDD_DFI_OPTIONS, [&](ScriptedDialogWindow& w) {
        w.Type(IDC_DFI_CONFIG_FILE, u"");
        w.Click(IDC_DFI_BROWSE);
        EXPECT_EQ(w.Text(IDC_DFI_CONFIG_FILE), u"") << "a file that does not exist";
        w.Click(IDC_DFI_BROWSE);
        EXPECT_EQ(w.Text(IDC_DFI_CONFIG_FILE), u"") << "a folder";
        w.Click(IDC_DFI_BROWSE);
        EXPECT_EQ(w.Text(IDC_DFI_CONFIG_FILE), u"") << "the chooser was cancelled";
        w.Click(IDC_DFI_BROWSE);
        EXPECT_EQ(w.Text(IDC_DFI_CONFIG_FILE), m_existing);
        w.Click(IDOK);
    });
    EXPECT_TRUE(Show());
    EXPECT_EQ(Get(Keys::OCIConfigFile), m_existing);
    ASSERT_EQ(m_host.GetFileChoosers().size(), 4u);
    EXPECT_EQ(m_host.GetFileChoosers().front().flags, static_cast<std::uint32_t>(OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST));
}

TEST_F(TEDFIDialogTest, AConfigFileThatDoesNotExistIsRefusedAndTheInputKept)
{
    const tarni_wstring missing = Support::StringConverter::FromUtf8((m_dir / "typo-config").string());
    m_map.SetValue(Keys::OCIProfile, u"before");
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectDialog(IDD_DFI_OPTIONS, [&](ScriptedDialogWindow& w) {
        w.Type(IDC_DFI_CONFIG_FILE, missing);
        w.Type(IDC_DFI_PROFILE, u"after");
        w.Click(IDOK);
        EXPECT_FALSE(w.IsEnded());
        EXPECT_EQ(w.Text(IDC_DFI_CONFIG_FILE), missing);
        EXPECT_EQ(w.Text(IDC_DFI_PROFILE), u"after");
        w.Type(IDC_DFI_CONFIG_FILE, u"");
        w.Click(IDOK);
    });
    EXPECT_TRUE(Show());
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    const auto& box = m_host.GetMessageBoxes().front();
    EXPECT_EQ(box.caption, u"DSN Configuration Error");
    EXPECT_NE(box.text.find(u"TEDFIConfigFileMissingErr"), tarni_wstring::npos);
    EXPECT_NE(box.text.find(missing), tarni_wstring::npos) << "the box names the path";
    EXPECT_EQ(Get(Keys::OCIConfigFile), u"") << "empty means the driver's default file";
    EXPECT_EQ(Get(Keys::OCIProfile), u"after");
}

TEST_F(TEDFIDialogTest, PasswordOptionsEditsTheScopeAndAnUnsavedPasswordIsAnnounced)
{
    TEDFIConfiguration& dfi = m_configuration;
    dfi.SetEncryptPwd(true);
    dfi.SetDPAPIEncryptForAllUsers(false);
    m_host.ExpectDialog(IDD_DFI_OPTIONS, [&](ScriptedDialogWindow& w) {
        w.Click(IDC_DFI_PASSWORD_OPTIONS);
        w.Type(IDC_DFI_KEY_FILE_PASSWORD, u"p4ss");
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [&](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetProperty(u"InputMap"), static_cast<DriverSupport::DSUidPwdConfiguration*>(&dfi));
        w.CheckButton(IDC_PWD_CURRENT_USER_ONLY, false);
        w.CheckButton(IDC_PWD_ALL_USERS, false);
        w.Click(IDOK);
    });
    m_host.ExpectMessageBox(IDOK);
    EXPECT_TRUE(Show());
    EXPECT_FALSE(dfi.IsEncryptPwd());
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    EXPECT_EQ(m_host.GetMessageBoxes().front().caption, u"Credentials Not Saved");
    EXPECT_EQ(m_host.GetMessageBoxes().front().text,
              u"The value of the keyFilePassword configuration is not being saved. To save an encrypted version of "
              u"the keyFilePassword configuration value, you must select one of the encryption options. You can "
              u"access the encryption options by going to the DFI Options and selecting the Password Options "
              u"button.");
}

TEST_F(TEDFIDialogTest, CancelEscapeAndTheCloseBoxChangeNothing)
{
    m_map.SetValue(Keys::OCIProfile, u"keep");
    const auto before = m_map;
    for (Testing::CloseAction close : Testing::CLOSERS)
    {
        m_host.ExpectDialog(IDD_DFI_OPTIONS, [close](ScriptedDialogWindow& w) {
            w.Type(IDC_DFI_PROFILE, u"changed");
            w.Type(IDC_DFI_KEY_FILE_PASSWORD, u"changed");
            w.Click(IDC_DFI_IGNORE_NOPROMPT);
            close(w);
        });
        EXPECT_FALSE(Show());
        EXPECT_EQ(m_map, before);
    }
}
