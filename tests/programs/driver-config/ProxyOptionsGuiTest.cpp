// HTTP Proxy Options as a real Win32 dialog under Wine on a private X
// server: the dialog runs modally on the test's thread while a second thread
// plays the user through window messages. On its own over a proxy
// configuration, and in the configuration run over Wine's registry, where
// Proxy Options -> Use Proxy, host, port, user, password, Current User Only
// -> OK -> OK stores host, port, user and only the protected password.
#include "ui/win32/GuiDriver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>

#include "dialogs/driversupport/DSProxyConfigurationDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "driversupport/DSProductHelper.h"
#include "platform/SettingsStoreFactory.h"
#include "product/SOProductIdentity.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"
#include "ui/win32/Win32DialogHost.h"

using namespace Tarni;
using namespace Tarni::DriverSupport;
using Tarni::Testing::GuiDriver;

namespace
{
const std::wstring PROXY_TITLE = L"HTTP Proxy Options";

/// Presses a button whose action opens a modal dialog: posted, so that the
/// user's thread is free to drive the dialog that opens.
void PressOpening(HWND in_dialog, int in_id)
{
    ::PostMessageW(in_dialog, WM_COMMAND, MAKEWPARAM(in_id, BN_CLICKED),
                   reinterpret_cast<LPARAM>(::GetDlgItem(in_dialog, in_id)));
}

/// In the Password Options dialog that the button opens: the scope, then OK.
void ChooseScope(HWND in_owner, int in_button, int in_scope)
{
    PressOpening(in_owner, in_button);
    HWND options = GuiDriver::WaitForDialog(L"Password Options", ::GetCurrentProcessId());
    ASSERT_NE(options, nullptr);
    GuiDriver::Click(options, in_scope);
    GuiDriver::Click(options, IDOK);
    ASSERT_TRUE(GuiDriver::WaitForClose(options));
}
}  // namespace

TEST(ProxyOptionsGuiTest, TheFieldsFollowUseProxyAndOkWaitsForHostAndPort)
{
    Platform::Win32DialogHost host;
    DSDialogModule::SetHost(&host);
    ConfigurationMap map{{u"UseProxy", u"0"}, {u"ProxyHost", u"old.corp"}, {u"ProxyPort", u"3128"}};
    DSProxyConfiguration proxy(map, nullptr, 2);
    proxy.SetEncryptPwd(false);

    std::map<std::string, bool> seen;
    const bool ok = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(PROXY_TITLE, ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            seen["unchecked at first"] = !GuiDriver::Checked(dialog, IDC_PROXY_USE);
            seen["host disabled while off"] = !GuiDriver::Enabled(dialog, IDC_PROXY_HOST);
            seen["password options disabled while off"] = !GuiDriver::Enabled(dialog, IDC_PROXY_PASSWORD_OPTIONS);
            GuiDriver::Click(dialog, IDC_PROXY_USE);
            seen["host enabled when on"] = GuiDriver::Enabled(dialog, IDC_PROXY_HOST);
            seen["kept host shown"] = GuiDriver::Text(dialog, IDC_PROXY_HOST) == L"old.corp";
            GuiDriver::Type(dialog, IDC_PROXY_HOST, L"");
            seen["OK disabled without host"] = !GuiDriver::Enabled(dialog, IDOK);
            GuiDriver::Type(dialog, IDC_PROXY_HOST, L"[2001:db8::7]");
            seen["OK enabled with host and port"] = GuiDriver::Enabled(dialog, IDOK);
            GuiDriver::Type(dialog, IDC_PROXY_USER, L"carol");
            GuiDriver::Type(dialog, IDC_PROXY_PASSWORD, L"gui-pw");
            ChooseScope(dialog, IDC_PROXY_PASSWORD_OPTIONS, IDC_PWD_ALL_USERS);
            GuiDriver::Click(dialog, IDOK);
            GuiDriver::WaitForClose(dialog);
        },
        [&] { return DSProxyConfigurationDialog::Show(nullptr, &proxy); });
    DSDialogModule::SetHost(nullptr);
    EXPECT_TRUE(ok);
    for (const auto& [what, held] : seen)
    {
        EXPECT_TRUE(held) << what;
    }
    EXPECT_EQ(seen.size(), 7u);
    EXPECT_EQ(map.GetValue(u"UseProxy"), u"1");
    EXPECT_EQ(map.GetValue(u"ProxyHost"), u"[2001:db8::7]");
    EXPECT_EQ(proxy.GetUid(), u"carol");
    EXPECT_EQ(proxy.GetPwd(), u"gui-pw");
    EXPECT_TRUE(proxy.IsEncryptPwd());
    EXPECT_TRUE(proxy.IsDPAPIEncryptForAllUsers());
}

TEST(ProxyOptionsGuiTest, TheRunStoresHostPortUserAndOnlyTheProtectedPassword)
{
    SparkODBC::SOProductIdentity::Register();
    const Platform::DriverStoreLocation location = DSProductHelper::GetDriverStoreLocation();
    const std::wstring proxyHost =
        L"gui-" + std::to_wstring(std::chrono::steady_clock::now().time_since_epoch().count()) + L".corp";

    Platform::Win32DialogHost host;
    const int result = GuiDriver::WhileModal(
        [&] {
            HWND main = GuiDriver::WaitForDialog(L"Tarni Spark ODBC Driver Configuration", ::GetCurrentProcessId());
            ASSERT_NE(main, nullptr);
            PressOpening(main, IDC_PROXY_OPTIONS);
            HWND dialog = GuiDriver::WaitForDialog(PROXY_TITLE, ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            if (GuiDriver::Checked(dialog, IDC_PROXY_USE))
            {
                GuiDriver::Click(dialog, IDC_PROXY_USE);  // left on by an earlier run in this prefix
            }
            GuiDriver::Click(dialog, IDC_PROXY_USE);
            GuiDriver::Type(dialog, IDC_PROXY_HOST, proxyHost);
            GuiDriver::Type(dialog, IDC_PROXY_PORT, L"8080");
            GuiDriver::Type(dialog, IDC_PROXY_USER, L"dave");
            GuiDriver::Type(dialog, IDC_PROXY_PASSWORD, L"gui-s3cret");
            ChooseScope(dialog, IDC_PROXY_PASSWORD_OPTIONS, IDC_PWD_CURRENT_USER_ONLY);
            GuiDriver::Click(dialog, IDOK);
            ASSERT_TRUE(GuiDriver::WaitForClose(dialog));
            GuiDriver::Click(main, IDOK);
            GuiDriver::WaitForClose(main);
        },
        [&] { return SparkODBC::SODriverConfigRun::Run(host, SparkODBC::SODriverConfigRun::Options()); });
    EXPECT_EQ(result, 1);

    std::map<tarni_wstring, tarni_wstring> stored;
    for (const auto& value : Platform::SettingsStoreFactory::OpenDriverStore(location)->ReadAll())
    {
        stored[value.name] = value.value;
    }
    EXPECT_EQ(stored[u"UseProxy"], u"1");
    EXPECT_EQ(std::wstring(stored[u"ProxyHost"].begin(), stored[u"ProxyHost"].end()), proxyHost);
    EXPECT_EQ(stored[u"ProxyPort"], u"8080");
    EXPECT_EQ(stored[u"ProxyUID"], u"dave");
    EXPECT_EQ(stored.count(u"ProxyPWD"), 0u) << "a plain password never reaches the registry";
    ASSERT_FALSE(stored[u"ProxyEncryptedPWD"].empty());
    EXPECT_EQ(stored[u"ProxyEncryptedPWD"].find(u"gui-s3cret"), tarni_wstring::npos);
}
