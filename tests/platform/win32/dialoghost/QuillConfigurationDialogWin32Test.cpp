// The main configuration dialog as real Win32 dialogs (run under Wine with a
// virtual X display): the dialog runs modally on the test's thread while a
// second thread plays the user through the messages the controls send when
// they are used, and reads what the window shows.
// First: it brings <windows.h> without the A/W macros that share names with the host's operations.
#include "platform/win32/dialoghost/Win32DialogHost.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "dialogs/DSDialogModule.h"
#include "dialogs/QuillConfigurationDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::SparkODBC;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
std::wstring W(const char16_t* in_text) { return std::wstring(reinterpret_cast<const wchar_t*>(in_text)); }

// The user: finds the dialog on the test's thread and works its controls.
class User
{
public:
    explicit User(DWORD in_dialogThread) : m_thread(in_dialogThread) {}

    /// Waits for a visible dialog of the thread with the title; null after ten seconds.
    HWND WaitForDialog(const std::wstring& in_title)
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (std::chrono::steady_clock::now() < deadline)
        {
            Search search{in_title, nullptr};
            ::EnumThreadWindows(m_thread, &User::Match, reinterpret_cast<LPARAM>(&search));
            if (search.found != nullptr)
            {
                return search.found;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return nullptr;
    }

    /// Picks an entry of a combo box as a click in its list does: the
    /// selection changes and the dialog gets CBN_SELCHANGE.
    static bool Select(HWND in_dialog, int in_id, const std::wstring& in_text)
    {
        HWND combo = ::GetDlgItem(in_dialog, in_id);
        const LRESULT index = ::SendMessageW(combo, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                             reinterpret_cast<LPARAM>(in_text.c_str()));
        if (index == CB_ERR)
        {
            return false;
        }
        ::SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        ::SendMessageW(in_dialog, WM_COMMAND, MAKEWPARAM(in_id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
        return true;
    }

    /// Replaces the text of an edit control; the control itself notifies the dialog.
    static void Type(HWND in_dialog, int in_id, const std::wstring& in_text)
    {
        ::SetWindowTextW(::GetDlgItem(in_dialog, in_id), in_text.c_str());
    }

    static std::wstring Selected(HWND in_dialog, int in_id)
    {
        HWND combo = ::GetDlgItem(in_dialog, in_id);
        const LRESULT index = ::SendMessageW(combo, CB_GETCURSEL, 0, 0);
        if (index == CB_ERR)
        {
            return {};
        }
        wchar_t text[256] = {};
        ::SendMessageW(combo, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text));
        return text;
    }

    static std::wstring Text(HWND in_window, int in_id)
    {
        wchar_t text[1024] = {};
        ::GetDlgItemTextW(in_window, in_id, text, 1024);
        return text;
    }

    static bool Enabled(HWND in_dialog, int in_id) { return ::IsWindowEnabled(::GetDlgItem(in_dialog, in_id)) != 0; }

    /// Presses a push button (posted, as the button's own click is).
    static void Press(HWND in_window, int in_id)
    {
        ::PostMessageW(in_window, WM_COMMAND, MAKEWPARAM(in_id, BN_CLICKED),
                       reinterpret_cast<LPARAM>(::GetDlgItem(in_window, in_id)));
    }

private:
    struct Search
    {
        std::wstring title;
        HWND found;
    };

    static BOOL CALLBACK Match(HWND in_window, LPARAM in_search)
    {
        auto* search = reinterpret_cast<Search*>(in_search);
        wchar_t title[256] = {};
        ::GetWindowTextW(in_window, title, 256);
        if (::IsWindowVisible(in_window) && search->title == title)
        {
            search->found = in_window;
            return FALSE;
        }
        return TRUE;
    }

    DWORD m_thread;
};

class QuillConfigurationDialogWin32Test : public ::testing::Test
{
protected:
    QuillConfigurationDialogWin32Test() : m_configuration(u"", 2, nullptr) {}

    void SetUp() override
    {
        SOProductIdentity::Register();
        m_configuration.LoadDefaults();
        DriverSupport::DSDialogModule::SetHost(&m_host);
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
    }
    void TearDown() override { DriverSupport::DSDialogModule::SetHost(nullptr); }

    /// Runs the dialog of the template while the script plays the user on a
    /// second thread; the script must end the dialog (it is cancelled when
    /// the script returns without doing so). Returns the dialog's result.
    std::intptr_t Run(unsigned in_templateId, const std::wstring& in_title,
                      const std::function<void(User&, HWND)>& in_script)
    {
        const DWORD dialogThread = ::GetCurrentThreadId();
        std::atomic<bool> found{false};
        std::thread user([&] {
            User player(dialogThread);
            HWND dialog = player.WaitForDialog(in_title);
            if (dialog == nullptr)
            {
                return;
            }
            found = true;
            in_script(player, dialog);
            if (::IsWindow(dialog))
            {
                User::Press(dialog, IDCANCEL);
            }
        });
        QuillConfigurationDialog dialog(m_configuration, nullptr);
        const std::intptr_t result = dialog.Show(nullptr, in_templateId);
        user.join();
        EXPECT_TRUE(found) << "the dialog never showed";
        return result;
    }

    Platform::Win32DialogHost m_host;
    QuillConfiguration m_configuration;
};

const std::wstring DRIVER_TITLE = L"Tarni Spark ODBC Driver Configuration";

TEST_F(QuillConfigurationDialogWin32Test, SwitchingToDfiAndBackRestoresMechanismAndTransport)
{
    m_configuration.SetValue(Keys::AuthMech, u"1");
    m_configuration.SetValue(Keys::ThriftTransport, u"2");
    std::wstring inDfi[3], back[3];
    bool mechanismEnabledInDfi = true;
    const auto result = Run(IDD_DRIVER_CONFIG, DRIVER_TITLE, [&](User&, HWND d) {
        User::Select(d, IDC_SERVER_TYPE, L"DFI");
        inDfi[0] = User::Selected(d, IDC_AUTH_MECH);
        inDfi[1] = User::Selected(d, IDC_THRIFT_TRANSPORT);
        inDfi[2] = User::Selected(d, IDC_SERVICE_DISCOVERY_MODE);
        mechanismEnabledInDfi = User::Enabled(d, IDC_AUTH_MECH);
        User::Select(d, IDC_SERVER_TYPE, L"SparkThriftServer (Spark 1.1 and later)");
        back[0] = User::Selected(d, IDC_AUTH_MECH);
        back[1] = User::Selected(d, IDC_THRIFT_TRANSPORT);
        back[2] = User::Selected(d, IDC_SERVICE_DISCOVERY_MODE);
        User::Press(d, IDOK);
    });
    EXPECT_EQ(inDfi[0], W(u"User Name and Password"));
    EXPECT_EQ(inDfi[1], W(u"HTTP"));
    EXPECT_EQ(inDfi[2], W(u"No Service Discovery"));
    EXPECT_FALSE(mechanismEnabledInDfi);
    EXPECT_EQ(back[0], W(u"Kerberos"));
    EXPECT_EQ(back[1], W(u"HTTP"));
    EXPECT_EQ(result, 1);
    EXPECT_EQ(m_configuration.GetValue(Keys::SparkServerType), u"3");
    EXPECT_EQ(m_configuration.GetValue(Keys::AuthMech), u"1");
    EXPECT_EQ(m_configuration.GetValue(Keys::ThriftTransport), u"2");
}

TEST_F(QuillConfigurationDialogWin32Test, KerberosWithAnEmptyServiceNameDisablesOk)
{
    bool okBefore = false, okWithoutServiceName = true, okAgain = false, serviceNameEnabled = false;
    const auto result = Run(IDD_DRIVER_CONFIG, DRIVER_TITLE, [&](User&, HWND d) {
        User::Select(d, IDC_AUTH_MECH, L"Kerberos");
        okBefore = User::Enabled(d, IDOK);
        serviceNameEnabled = User::Enabled(d, IDC_KRB_SERVICE_NAME);
        User::Type(d, IDC_KRB_SERVICE_NAME, L"");
        okWithoutServiceName = User::Enabled(d, IDOK);
        User::Type(d, IDC_KRB_SERVICE_NAME, L"hive");
        okAgain = User::Enabled(d, IDOK);
        User::Press(d, IDCANCEL);
    });
    EXPECT_TRUE(okBefore);
    EXPECT_TRUE(serviceNameEnabled);
    EXPECT_FALSE(okWithoutServiceName);
    EXPECT_TRUE(okAgain);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(m_configuration.GetValue(Keys::KrbServiceName), u"spark") << "Cancel writes no text";
}

TEST_F(QuillConfigurationDialogWin32Test, ADsnNameWithAnAtSignIsRefusedInAMessageBox)
{
    std::wstring boxText;
    bool stillOpen = false;
    const auto result = Run(IDD_DSN_SETUP, L"Tarni Spark ODBC Driver DSN Setup", [&](User& u, HWND d) {
        User::Type(d, IDC_DSN_NAME, L"sales@east");
        User::Type(d, IDC_HOSTS, L"spark.example.com");
        User::Press(d, IDOK);
        if (HWND box = u.WaitForDialog(L"Invalid Data Source Name"))
        {
            boxText = User::Text(box, 0xFFFF);  // the text of a message box
            User::Press(box, IDOK);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        stillOpen = ::IsWindowVisible(d) != 0;
        User::Type(d, IDC_DSN_NAME, L"sales-east");
        User::Press(d, IDOK);
    });
    EXPECT_EQ(boxText,
              W(u"Data Source Name value cannot contain any of the following characters: []{}(),;?*=!@\\"));
    EXPECT_TRUE(stillOpen);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(m_configuration.GetDsnName(), u"sales-east");
}
}  // namespace
