// HTTP Proxy Options as a real Win32 dialog under Wine on a private X
// server, in the configuration run over Wine's registry: the run is modal on
// the test's thread while a second thread plays the user through window
// messages. Proxy Options -> Use Proxy, host, port, user, password, Current
// User Only -> OK -> OK stores host, port, user and only the protected
// password.
#include "ui/win32/GuiDriver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>

#include "driversupport/DSProductHelper.h"
#include "platform/SettingsStoreFactory.h"
#include "product/SOProductIdentity.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"
#include "ui/win32/Win32DialogHost.h"

using namespace Tarni;
using Tarni::DriverSupport::DSProductHelper;
using Tarni::Testing::GuiDriver;

namespace
{
const std::wstring PROXY_TITLE = L"HTTP Proxy Options";

/// In the Password Options dialog that the button opens: the scope, then OK.
void ChooseScope(HWND in_owner, int in_button, int in_scope)
{
    GuiDriver::PostClick(in_owner, in_button);
    HWND options = GuiDriver::WaitForDialog(L"Password Options", ::GetCurrentProcessId());
    ASSERT_NE(options, nullptr);
    GuiDriver::Click(options, in_scope);
    GuiDriver::Click(options, IDOK);
    ASSERT_TRUE(GuiDriver::WaitForClose(options));
}
}  // namespace

TEST(ProxyOptionsGuiTest, TheRunStoresHostPortUserAndOnlyTheProtectedPassword)
{
    SparkODBC::SOProductIdentity::Register();
    const Platform::DriverStoreLocation location = DSProductHelper::GetDriverStoreLocation();
    const std::wstring proxyHost =
        L"gui-" + std::to_wstring(std::chrono::steady_clock::now().time_since_epoch().count()) + L".corp";

    Platform::Win32DialogHost host;
    bool enabledWhileOff = true;
    bool okWithoutPort = true;
    const int result = GuiDriver::WhileModal(
        [&] {
            HWND main = GuiDriver::WaitForDialog(L"Tarni Spark ODBC Driver Configuration", ::GetCurrentProcessId());
            ASSERT_NE(main, nullptr);
            GuiDriver::PostClick(main, IDC_PROXY_OPTIONS);
            HWND dialog = GuiDriver::WaitForDialog(PROXY_TITLE, ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            if (GuiDriver::Checked(dialog, IDC_PROXY_USE))
            {
                GuiDriver::Click(dialog, IDC_PROXY_USE);  // left on by an earlier run in this prefix
            }
            enabledWhileOff = GuiDriver::Enabled(dialog, IDC_PROXY_HOST);
            GuiDriver::Click(dialog, IDC_PROXY_USE);
            GuiDriver::Type(dialog, IDC_PROXY_HOST, proxyHost);
            GuiDriver::Type(dialog, IDC_PROXY_PORT, L"");
            okWithoutPort = GuiDriver::Enabled(dialog, IDOK);
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
    EXPECT_FALSE(enabledWhileOff) << "the host field follows Use Proxy";
    EXPECT_FALSE(okWithoutPort) << "OK needs host and port while the proxy is on";

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
