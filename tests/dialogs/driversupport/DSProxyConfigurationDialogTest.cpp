// HTTP Proxy Options on the scripted host: what Initialize shows, which
// controls follow "Use Proxy", host and port, what OK writes (switched off:
// only the switch), the Password Options dialog over the proxy's credential,
// and Cancel, Escape and the close box changing nothing.
#include "dialogs/driversupport/DSProxyConfigurationDialog.h"

#include "common/TempDirectory.h"
#include "dialogs/DialogTestSupport.h"
#include "driversupport/DSProductHelper.h"
#include "resource.h"
#include "support/StringConverter.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::DriverSupport;

namespace
{
const int FIELDS[] = {IDC_PROXY_HOST, IDC_PROXY_PORT, IDC_PROXY_USER, IDC_PROXY_PASSWORD};

class DSProxyConfigurationDialogTest : public Testing::DialogTest
{
protected:
    DSProxyConfigurationDialogTest() : m_proxy(m_map, &m_logger, 2) {}

    void TearDown() override
    {
        UseVendor("");
        DialogTest::TearDown();
    }

    void UseVendor(const std::string& in_vendor)
    {
        const auto path = m_dir / "SparkODBC.did";
        Testing::TempDirectory::WriteFile(path, in_vendor.empty() ? "" : "vendor-name=" + in_vendor + "\n");
        DSProductHelper::LoadProductSettings(Support::StringConverter::FromUtf8(path.string()));
    }

    void StoreProxy(const char16_t* in_useProxy)
    {
        m_map = ConfigurationMap{{u"ProxyHost", u"old-proxy"}, {u"ProxyPort", u"3128"}, {u"ProxyUID", u"old-user"},
                                 {u"ProxyPWD", u"old-pw"}};
        if (in_useProxy != nullptr)
        {
            m_map.SetValue(u"UseProxy", in_useProxy);
        }
    }

    Testing::TempDirectory m_dir;
    ConfigurationMap m_map;
    DSProxyConfiguration m_proxy;
};
}  // namespace

TEST_F(DSProxyConfigurationDialogTest, InitializeShowsTheStoredProxyAndOnlyZeroUnchecksIt)
{
    const struct
    {
        const char16_t* useProxy;
        bool checked;
    } cases[] = {{nullptr, true}, {u"1", true}, {u"0", false}, {u"false", true}};
    for (const auto& c : cases)
    {
        StoreProxy(c.useProxy);
        m_host.ExpectDialog(IDD_PROXY_OPTIONS, [&](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.GetTitle(), u"HTTP Proxy Options");
            EXPECT_EQ(w.GetProperty(u"InputMap"), &m_proxy);
            EXPECT_EQ(w.Checked(IDC_PROXY_USE), c.checked);
            EXPECT_EQ(w.Text(IDC_PROXY_HOST), u"old-proxy");
            EXPECT_EQ(w.Text(IDC_PROXY_PORT), u"3128");
            EXPECT_EQ(w.Text(IDC_PROXY_USER), u"old-user");
            EXPECT_EQ(w.Text(IDC_PROXY_PASSWORD), u"old-pw");
            for (const int id : FIELDS)
            {
                EXPECT_EQ(w.Enabled(id), c.checked) << id;
            }
            EXPECT_TRUE(w.Enabled(IDOK));
            w.PressEscape();
        });
        EXPECT_FALSE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    }
}

TEST_F(DSProxyConfigurationDialogTest, TheProductIconBelongsToTheVendorTarni)
{
    for (const auto& [vendor, icon] : {std::pair<std::string, unsigned>{"tarni", IDI_PRODUCT}, {"Other", 0u}, {"", 0u}})
    {
        UseVendor(vendor);
        m_host.ExpectDialog(IDD_PROXY_OPTIONS, [icon = icon](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.GetIconId(), icon);
            w.Click(IDCANCEL);
        });
        DSProxyConfigurationDialog::Show(nullptr, &m_proxy);
    }
}

TEST_F(DSProxyConfigurationDialogTest, OkNeedsHostAndPortWhileTheProxyIsOn)
{
    m_map.SetValue(u"UseProxy", u"0");
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_FALSE(w.Enabled(IDC_PROXY_PASSWORD_OPTIONS));
        w.Click(IDC_PROXY_USE);
        EXPECT_TRUE(w.Enabled(IDC_PROXY_HOST));
        EXPECT_TRUE(w.Enabled(IDC_PROXY_PASSWORD_OPTIONS));
        EXPECT_FALSE(w.Enabled(IDOK)) << "on, without host and port";
        w.Type(IDC_PROXY_HOST, u"proxy.corp");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.Type(IDC_PROXY_PORT, u"8080");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.Type(IDC_PROXY_HOST, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.Click(IDC_PROXY_USE);
        EXPECT_TRUE(w.Enabled(IDOK)) << "off, host and port do not matter";
        EXPECT_FALSE(w.Enabled(IDC_PROXY_PORT));
        w.Click(IDC_PROXY_USE);
        w.Type(IDC_PROXY_HOST, u"proxy.corp");
        w.Type(IDC_PROXY_USER, u"alice");
        w.Type(IDC_PROXY_PASSWORD, u"s3cret");
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    EXPECT_EQ(m_map.GetValue(u"UseProxy"), u"1");
    EXPECT_EQ(m_map.GetValue(u"ProxyHost"), u"proxy.corp");
    EXPECT_EQ(m_map.GetValue(u"ProxyPort"), u"8080");
    EXPECT_EQ(m_proxy.GetUid(), u"alice");
    EXPECT_EQ(m_proxy.GetPwd(), u"s3cret");
}

TEST_F(DSProxyConfigurationDialogTest, SwitchingOffWritesOnlyTheSwitchAndKeepsTheRest)
{
    StoreProxy(u"1");
    const ConfigurationMap before = m_map;
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_PROXY_HOST, u"changed-before-unchecking");
        w.Type(IDC_PROXY_PASSWORD, u"changed");
        w.Click(IDC_PROXY_USE);
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    ConfigurationMap expected = before;
    expected.SetValue(u"UseProxy", u"0");
    EXPECT_EQ(m_map, expected);
    EXPECT_TRUE(m_host.GetMessageBoxes().empty());
}

TEST_F(DSProxyConfigurationDialogTest, PasswordOptionsOnlyForDsnSetupAndOverTheProxyCredential)
{
    for (const unsigned type : {0u, 1u, 2u, 3u})
    {
        ConfigurationMap map{{u"UseProxy", u"1"}};
        DSProxyConfiguration proxy(map, &m_logger, type);
        m_host.ExpectDialog(IDD_PROXY_OPTIONS, [type](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.Enabled(IDC_PROXY_PASSWORD_OPTIONS), type == 1 || type == 2) << type;
            w.Click(IDCANCEL);
        });
        DSProxyConfigurationDialog::Show(nullptr, &proxy);
    }

    m_proxy.SetEncryptPwd(false);
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PROXY_PASSWORD_OPTIONS);
        w.Click(IDCANCEL);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [&](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_PROXY_OPTIONS));
        EXPECT_EQ(w.GetProperty(u"InputMap"), static_cast<DSUidPwdConfiguration*>(&m_proxy));
        w.Click(IDC_PWD_ALL_USERS);
        w.Click(IDOK);
    });
    DSProxyConfigurationDialog::Show(nullptr, &m_proxy);
    EXPECT_TRUE(m_proxy.IsEncryptPwd());
    EXPECT_TRUE(m_proxy.IsDPAPIEncryptForAllUsers());
}

TEST_F(DSProxyConfigurationDialogTest, APasswordThatWillNotBeSavedIsAnnouncedAtOk)
{
    m_proxy.SetEncryptPwd(false);
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_PROXY_HOST, u"proxy.corp");
        w.Type(IDC_PROXY_PORT, u"8080");
        w.Type(IDC_PROXY_PASSWORD, u"s3cret");
        w.Click(IDOK);
    });
    m_host.ExpectMessageBox(IDOK);
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    const auto& box = m_host.GetMessageBoxes().front();
    EXPECT_EQ(box.caption, u"Credentials Not Saved");
    EXPECT_EQ(box.ownerTemplate, static_cast<unsigned>(IDD_PROXY_OPTIONS));
    EXPECT_NE(box.text.find(u"The value of the ProxyPWD configuration is not being saved."), tarni_wstring::npos);
    EXPECT_NE(box.text.find(u"going to the Proxy Options dialog and selecting the Password Options button."),
              tarni_wstring::npos);

    // Without a password there is nothing to lose.
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_PROXY_PASSWORD, u"");
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    EXPECT_EQ(m_host.GetMessageBoxes().size(), 1u);
}

TEST_F(DSProxyConfigurationDialogTest, CancelEscapeAndTheCloseBoxChangeNothing)
{
    using Action = void (*)(ScriptedDialogWindow&);
    const Action closers[] = {[](ScriptedDialogWindow& w) { w.Click(IDCANCEL); },
                              [](ScriptedDialogWindow& w) { w.PressEscape(); },
                              [](ScriptedDialogWindow& w) { w.PressCloseBox(); }};
    StoreProxy(u"1");
    const ConfigurationMap before = m_map;
    for (Action close : closers)
    {
        m_host.ExpectDialog(IDD_PROXY_OPTIONS, [close](ScriptedDialogWindow& w) {
            w.Type(IDC_PROXY_HOST, u"other");
            w.Click(IDC_PROXY_USE);
            close(w);
        });
        EXPECT_FALSE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
        EXPECT_EQ(m_map, before);
    }
}
