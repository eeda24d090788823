// The proxy flow of the configuration run on the scripted host over the
// platform's real store (the INI file on Linux, Wine's registry under the
// mingw build): Proxy Options -> Use Proxy, host, port, user, password,
// Password Options "Current User Only" -> OK -> OK stores host, port, user
// and only the protected password, which the next run shows again.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>

#include "driversupport/DSProductHelper.h"
#include "platform/ProcessEnvironment.h"
#include "platform/SettingsStoreFactory.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"
#include "support/StringConverter.h"
#include "ui/DialogConstants.h"
#include "ui/scripted/ScriptedDialogHost.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::DriverSupport::DSProductHelper;
using Tarni::SparkODBC::SODriverConfigRun;
using Tarni::Support::StringConverter;

namespace
{
class ProxyOptionsRunTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
        m_folder = std::filesystem::temp_directory_path() / ("tarni-proxy-run-" + std::to_string(stamp));
        std::filesystem::create_directories(m_folder);
        m_options.iniPath = StringConverter::FromUtf8((m_folder / "odbc.ini").string());
        // The current user's key of the protected values lives under the test's folder.
        m_savedConfigHome = ProcessEnvironment::GetVariable(u"XDG_CONFIG_HOME");
        ProcessEnvironment::SetVariable(u"XDG_CONFIG_HOME", StringConverter::FromUtf8(m_folder.string()));
        m_host = u"proxy-" + StringConverter::FromAscii(std::to_string(stamp)) + u".corp";
    }

    void TearDown() override
    {
        ProcessEnvironment::SetVariable(u"XDG_CONFIG_HOME", m_savedConfigHome);
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    std::map<tarni_wstring, tarni_wstring> Stored() const
    {
        auto store = SettingsStoreFactory::OpenDriverStore(DSProductHelper::GetDriverStoreLocation(m_options.iniPath));
        std::map<tarni_wstring, tarni_wstring> values;
        for (const auto& value : store->ReadAll())
        {
            values[value.name] = value.value;
        }
        return values;
    }

    std::filesystem::path m_folder;
    std::optional<tarni_wstring> m_savedConfigHome;
    SODriverConfigRun::Options m_options;
    ScriptedDialogHost m_dialogs;
    tarni_wstring m_host;
};
}  // namespace

TEST_F(ProxyOptionsRunTest, TheProxyIsStoredWithOnlyItsProtectedPasswordAndShownAgain)
{
    m_dialogs.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PROXY_OPTIONS);
        w.Click(IDOK);
    });
    m_dialogs.ExpectDialog(IDD_PROXY_OPTIONS, [&](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
        if (w.Checked(IDC_PROXY_USE))
        {
            w.Click(IDC_PROXY_USE);  // a store left by an earlier run under Wine
        }
        w.Click(IDC_PROXY_USE);
        w.Type(IDC_PROXY_HOST, m_host);
        w.Type(IDC_PROXY_PORT, u"3128");
        w.Type(IDC_PROXY_USER, u"alice");
        w.Type(IDC_PROXY_PASSWORD, u"pr0xy-s3cret");
        w.Click(IDC_PROXY_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    m_dialogs.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_CURRENT_USER_ONLY);
        w.Click(IDOK);
    });
    ASSERT_EQ(SODriverConfigRun::Run(m_dialogs, m_options), 1);
    EXPECT_TRUE(m_dialogs.GetMessageBoxes().empty());

    const auto stored = Stored();
    EXPECT_EQ(stored.at(u"UseProxy"), u"1");
    EXPECT_EQ(stored.at(u"ProxyHost"), m_host);
    EXPECT_EQ(stored.at(u"ProxyPort"), u"3128");
    EXPECT_EQ(stored.at(u"ProxyUID"), u"alice");
    EXPECT_EQ(stored.count(u"ProxyPWD"), 0u) << "a plain password never reaches the store";
    ASSERT_EQ(stored.count(u"ProxyEncryptedPWD"), 1u);
    EXPECT_EQ(stored.at(u"ProxyEncryptedPWD").find(u"pr0xy-s3cret"), tarni_wstring::npos);

    // The next run recovers the password and shows the scope it was saved in;
    // switching the proxy off keeps everything else.
    m_dialogs.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PROXY_OPTIONS);
        w.Click(IDOK);
    });
    m_dialogs.ExpectDialog(IDD_PROXY_OPTIONS, [&](ScriptedDialogWindow& w) {
        EXPECT_TRUE(w.Checked(IDC_PROXY_USE));
        EXPECT_EQ(w.Text(IDC_PROXY_HOST), m_host);
        EXPECT_EQ(w.Text(IDC_PROXY_PASSWORD), u"pr0xy-s3cret");
        w.Click(IDC_PROXY_PASSWORD_OPTIONS);
        w.Click(IDC_PROXY_USE);
        w.Click(IDOK);
    });
    m_dialogs.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_TRUE(w.Checked(IDC_PWD_CURRENT_USER_ONLY));
        w.Click(IDCANCEL);
    });
    ASSERT_EQ(SODriverConfigRun::Run(m_dialogs, m_options), 1);
    const auto after = Stored();
    EXPECT_EQ(after.at(u"UseProxy"), u"0");
    EXPECT_EQ(after.at(u"ProxyHost"), m_host);
    EXPECT_EQ(after.at(u"ProxyUID"), u"alice");
    EXPECT_EQ(after.count(u"ProxyEncryptedPWD"), 1u);
    EXPECT_EQ(after.count(u"ProxyPWD"), 0u);
}
