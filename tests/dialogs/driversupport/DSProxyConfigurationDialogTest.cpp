// HTTP Proxy Options on the scripted host: what Initialize shows, which
// controls follow "Use Proxy", host and port, what OK writes (switched off:
// only the switch), Cancel, Escape and the close box changing nothing, and
// the Password Options dialog over the proxy's credential.
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

    void UseVendor(const std::string& in_vendor)
    {
        UseProductSettings(in_vendor.empty() ? "" : "vendor-name=" + in_vendor + "\n");
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

    ConfigurationMap m_map;
    DSProxyConfiguration m_proxy;
};
}  // namespace

TEST_F(DSProxyConfigurationDialogTest, InitializeShowsTheStoredProxyAndClosingChangesNothing)
{
    using Close = void (*)(ScriptedDialogWindow&);
    const struct
    {
        const char16_t* useProxy;
        bool checked;
        const char* vendor;
        unsigned icon;
        Close close;
    } cases[] = {
        {nullptr, true, "tarni", IDI_PRODUCT, [](ScriptedDialogWindow& w) { w.Click(IDCANCEL); }},
        {u"1", true, "Other", 0u, [](ScriptedDialogWindow& w) { w.PressEscape(); }},
        {u"0", false, "", 0u, [](ScriptedDialogWindow& w) { w.PressCloseBox(); }},
        {u"false", true, "Tarni", IDI_PRODUCT, [](ScriptedDialogWindow& w) { w.PressEscape(); }},
    };
    for (const auto& c : cases)
    {
        StoreProxy(c.useProxy);
        UseVendor(c.vendor);
        const ConfigurationMap before = m_map;
        m_host.ExpectDialog(IDD_PROXY_OPTIONS, [&](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.GetProperty(u"InputMap"), &m_proxy);
            EXPECT_EQ(w.GetIconId(), c.icon);
            EXPECT_EQ(w.Checked(IDC_PROXY_USE), c.checked) << "only the exact value 0 unchecks it";
            EXPECT_EQ(w.Text(IDC_PROXY_HOST), u"old-proxy");
            EXPECT_EQ(w.Text(IDC_PROXY_PORT), u"3128");
            EXPECT_EQ(w.Text(IDC_PROXY_USER), u"old-user");
            EXPECT_EQ(w.Text(IDC_PROXY_PASSWORD), u"old-pw");
            for (const int id : FIELDS)
            {
                EXPECT_EQ(w.Enabled(id), c.checked) << id;
            }
            w.Click(IDC_PROXY_USE);
            if (w.Checked(IDC_PROXY_USE))
            {
                w.Type(IDC_PROXY_HOST, u"other");
            }
            c.close(w);
        });
        EXPECT_FALSE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
        EXPECT_EQ(m_map, before);
    }
}

TEST_F(DSProxyConfigurationDialogTest, OkNeedsHostAndPortWhileOnAndOffKeepsTheRest)
{
    m_map.SetValue(u"UseProxy", u"0");
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PROXY_USE);
        EXPECT_TRUE(w.Enabled(IDC_PROXY_HOST));
        EXPECT_FALSE(w.Enabled(IDOK)) << "on, without host and port";
        w.Type(IDC_PROXY_HOST, u"proxy.corp");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.Type(IDC_PROXY_PORT, u"8080");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.Type(IDC_PROXY_HOST, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.Click(IDC_PROXY_USE);
        EXPECT_TRUE(w.Enabled(IDOK)) << "off, host and port do not matter";
        w.Click(IDC_PROXY_USE);
        w.Type(IDC_PROXY_HOST, u"proxy.corp");
        w.Type(IDC_PROXY_USER, u"alice");
        w.Type(IDC_PROXY_PASSWORD, u"s3cret");
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    const ConfigurationMap on{{u"UseProxy", u"1"}, {u"ProxyHost", u"proxy.corp"}, {u"ProxyPort", u"8080"},
                              {u"ProxyUID", u"alice"}, {u"ProxyPWD", u"s3cret"}};
    EXPECT_EQ(m_map, on);

    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_PROXY_HOST, u"changed-before-unchecking");
        w.Click(IDC_PROXY_USE);
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    ConfigurationMap off = on;
    off.SetValue(u"UseProxy", u"0");
    EXPECT_EQ(m_map, off);
}

TEST_F(DSProxyConfigurationDialogTest, PasswordOptionsForDsnSetupAndTheNotSavedBox)
{
    for (const unsigned type : {0u, 1u, 3u})
    {
        ConfigurationMap map;
        DSProxyConfiguration proxy(map, &m_logger, type);
        m_host.ExpectDialog(IDD_PROXY_OPTIONS, [type](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.Enabled(IDC_PROXY_PASSWORD_OPTIONS), type == 1) << type;
            w.Click(IDCANCEL);
        });
        DSProxyConfigurationDialog::Show(nullptr, &proxy);
    }

    // Over the proxy's credential; no scope chosen: announced at OK, not for an empty password.
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PROXY_PASSWORD_OPTIONS);
        w.Type(IDC_PROXY_HOST, u"proxy.corp");
        w.Type(IDC_PROXY_PORT, u"8080");
        w.Type(IDC_PROXY_PASSWORD, u"s3cret");
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [&](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_PROXY_OPTIONS));
        EXPECT_EQ(w.GetProperty(u"InputMap"), static_cast<DSUidPwdConfiguration*>(&m_proxy));
        w.CheckButton(IDC_PWD_CURRENT_USER_ONLY, false);
        w.CheckButton(IDC_PWD_ALL_USERS, false);
        w.Click(IDOK);
    });
    m_host.ExpectMessageBox(IDOK);
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    EXPECT_FALSE(m_proxy.IsEncryptPwd());
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    const auto& box = m_host.GetMessageBoxes().front();
    EXPECT_EQ(box.caption, u"Credentials Not Saved");
    EXPECT_EQ(box.ownerTemplate, static_cast<unsigned>(IDD_PROXY_OPTIONS));
    EXPECT_NE(box.text.find(u"The value of the ProxyPWD configuration is not being saved."), tarni_wstring::npos);
    EXPECT_NE(box.text.find(u"going to the Proxy Options dialog and selecting the Password Options button."),
              tarni_wstring::npos);

    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Type(IDC_PROXY_PASSWORD, u"");
        w.Click(IDOK);
    });
    EXPECT_TRUE(DSProxyConfigurationDialog::Show(nullptr, &m_proxy));
    EXPECT_EQ(m_host.GetMessageBoxes().size(), 1u);
}
