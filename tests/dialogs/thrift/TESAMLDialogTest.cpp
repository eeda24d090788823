// SAML Options on the scripted host: the flow list always shows "browser"
// and cannot be changed, the two switches follow their keys, OK stores them
// (never the flow) and Cancel stores nothing.
#include "dialogs/thrift/TESAMLDialog.h"

#include "dialogs/DialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::ThriftExtension::TESAMLDialog;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
class TESAMLDialogTest : public Testing::DialogTest
{
protected:
    TESAMLDialogTest() : m_configuration(u"", 2, &m_logger) {}

    bool Show() { return TESAMLDialog().Show(nullptr, &m_configuration); }

    DriverSupport::DSDSNConfiguration m_configuration;
};
}  // namespace

TEST_F(TESAMLDialogTest, TheFlowIsBrowserAndFixedAndTheSwitchesFollowTheirKeys)
{
    const struct
    {
        const char16_t* ignoreNoPrompt;
        const char16_t* cookieCaching;
        bool ignoreChecked;
        bool cachingChecked;
    } cases[] = {{u"1", u"0", true, false}, {u"0", u"1", false, true}, {u"", u"yes", false, false}};
    for (const auto& c : cases)
    {
        m_configuration.SetValue(Keys::SSOIgnoreDriverNoPrompt, c.ignoreNoPrompt);
        m_configuration.SetValue(Keys::EnableSamlCookieCaching, c.cookieCaching);
        m_host.ExpectDialog(IDD_SAML_OPTIONS, [&](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.GetTitle(), u"SAML Options");
            EXPECT_EQ(w.Items(IDC_SAML_AUTH_FLOW), (std::vector<tarni_wstring>{u"browser", u"token"}));
            EXPECT_EQ(w.SelectedText(IDC_SAML_AUTH_FLOW), u"browser");
            EXPECT_FALSE(w.Enabled(IDC_SAML_AUTH_FLOW));
            EXPECT_EQ(w.Checked(IDC_SAML_IGNORE_NOPROMPT), c.ignoreChecked);
            EXPECT_EQ(w.Checked(IDC_SAML_COOKIE_CACHING), c.cachingChecked);
            w.PressEscape();
        });
        EXPECT_FALSE(Show());
    }
}

TEST_F(TESAMLDialogTest, OkStoresBothSwitchesAndNeverTheFlow)
{
    m_configuration.SetValue(Keys::SSOIgnoreDriverNoPrompt, u"1");
    m_host.ExpectDialog(IDD_SAML_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_SAML_IGNORE_NOPROMPT);
        w.Click(IDC_SAML_COOKIE_CACHING);
        w.Click(IDOK);
    });
    const auto keysBefore = m_configuration.GetMap().size();
    EXPECT_TRUE(Show());
    EXPECT_EQ(m_configuration.GetValue(Keys::SSOIgnoreDriverNoPrompt), u"0");
    EXPECT_EQ(m_configuration.GetValue(Keys::EnableSamlCookieCaching), u"1");
    EXPECT_EQ(m_configuration.GetMap().size(), keysBefore + 1) << "only the cookie switch is new";
}

TEST_F(TESAMLDialogTest, CancelChangesNothing)
{
    m_configuration.SetValue(Keys::EnableSamlCookieCaching, u"1");
    const auto before = m_configuration.GetMap();
    m_host.ExpectDialog(IDD_SAML_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_SAML_COOKIE_CACHING);
        w.Click(IDC_SAML_IGNORE_NOPROMPT);
        w.Click(IDCANCEL);
    });
    EXPECT_FALSE(Show());
    EXPECT_EQ(m_configuration.GetMap(), before);
}
