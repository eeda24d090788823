// The configuration run on the scripted host over the platform's real store:
// the DFI server type opens DFI Options (file, profile, key file password with
// its scope) and SAML Options from the main dialog, and OK stores the DFI keys
// with the key file password only in its protected form.
#include "programs/driver-config/SODriverConfigRun.h"

#include <gtest/gtest.h>

#include <fstream>

#include "programs/driver-config/DriverConfigRunFixture.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::SparkODBC::SODriverConfigRun;
using Tarni::Support::StringConverter;

namespace
{
class SODriverConfigRunDfiTest : public Testing::DriverConfigRunFixture
{
protected:
    void SetUp() override
    {
        std::ofstream(m_folder / "oci-config") << "[DEFAULT]\nregion=eu-frankfurt-1\n";
        // The registry outlives a test run: start without the keys checked here.
        auto store = Store();
        for (const auto& value : store->ReadAll())
        {
            for (const tarni_wstring_view key : {u"OCIConfigFile", u"OCIProfile", u"keyFilePassword",
                                                 u"EncryptedKeyFilePassword", u"EnableSamlCookieCaching"})
            {
                if (StringConverter::EqualsIgnoreCase(value.name, key))
                {
                    store->DeleteValue(value.name);
                }
            }
        }
    }

    const tarni_wstring m_configFile = StringConverter::FromUtf8((m_folder / "oci-config").string());
};
}  // namespace

TEST_F(SODriverConfigRunDfiTest, DfiAndSamlOptionsOpenForTheDfiServerTypeAndOkStoresTheirKeys)
{
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"SparkThriftServer (Spark 1.1 and later)");
        EXPECT_FALSE(w.Enabled(IDC_DFI_OPTIONS));
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        EXPECT_TRUE(w.Enabled(IDC_DFI_OPTIONS));
        w.Click(IDC_DFI_OPTIONS);
        EXPECT_TRUE(w.Enabled(IDC_SAML_OPTIONS));
        w.Click(IDC_SAML_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectOpenFile(m_configFile);
    m_host.ExpectDialog(IDD_DFI_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
        w.Click(IDC_DFI_BROWSE);
        w.Type(IDC_DFI_PROFILE, u"analytics");
        w.Type(IDC_DFI_KEY_FILE_PASSWORD, u"k3y-file-pass");
        w.Click(IDC_DFI_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_ALL_USERS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_SAML_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.SelectedText(IDC_SAML_AUTH_FLOW), u"browser");
        w.Click(IDC_SAML_COOKIE_CACHING);
        w.Click(IDOK);
    });
    EXPECT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);

    const auto stored = Stored();
    EXPECT_EQ(stored.at(u"SparkServerType"), u"4");
    EXPECT_EQ(stored.at(u"OCIConfigFile"), m_configFile);
    EXPECT_EQ(stored.at(u"OCIProfile"), u"analytics");
    EXPECT_EQ(stored.at(u"EnableSamlCookieCaching"), u"1");
    EXPECT_EQ(stored.count(u"keyFilePassword"), 0u) << "a plain key file password never reaches the store";
    ASSERT_EQ(stored.count(u"EncryptedKeyFilePassword"), 1u);
    EXPECT_FALSE(stored.at(u"EncryptedKeyFilePassword").empty());
    for (const auto& [name, value] : stored)
    {
        EXPECT_EQ(value.find(u"k3y-file-pass"), tarni_wstring::npos) << StringConverter::ToUtf8(name);
    }
}
