// The DSN dialog's Test as real Win32 dialogs (under Wine on a private X
// server) against the project's TCLIService server in this process: the
// values typed into the dialog reach the server, and the Test Results dialog
// shows the outcome.
#include "ui/win32/GuiDriver.h"

#include <future>

#include <gtest/gtest.h>

#include "dialogs/driversupport/DSTestResultDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"
#include "ui/win32/Win32DialogHost.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"

using namespace Tarni;
using Tarni::Testing::GuiDriver;
using Tarni::Testing::TestTCLIServer;

namespace
{
const std::wstring DSN_TITLE = L"Tarni Spark ODBC Driver DSN Setup";

class ConnectionTestWin32Test : public ::testing::Test
{
protected:
    ConnectionTestWin32Test() : m_configuration(u"", 2, nullptr) {}

    void SetUp() override
    {
        SparkODBC::SOProductIdentity::Register();
        m_configuration.LoadDefaults();
        DriverSupport::DSDialogModule::SetHost(&m_host);
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
    }
    void TearDown() override { DriverSupport::DSDialogModule::SetHost(nullptr); }

    /// Presses Test (posted: the results dialog runs modally inside the
    /// button's command) and returns the text the results dialog shows.
    static std::wstring PressTest(HWND in_dialog)
    {
        ::PostMessageW(in_dialog, WM_COMMAND, MAKEWPARAM(IDC_TEST, BN_CLICKED),
                       reinterpret_cast<LPARAM>(::GetDlgItem(in_dialog, IDC_TEST)));
        HWND results = GuiDriver::WaitForDialog(L"Test Results", ::GetCurrentProcessId(), std::chrono::seconds(40));
        if (results == nullptr)
        {
            return L"(no Test Results dialog)";
        }
        // The attempt runs on a worker thread: the report appears when it ends.
        for (int i = 0; i < 400 && GuiDriver::Text(results, IDC_TEST_RESULTS_TEXT).empty(); ++i)
        {
            ::Sleep(100);
        }
        std::wstring text = GuiDriver::Text(results, IDC_TEST_RESULTS_TEXT);
        GuiDriver::Click(results, IDOK);
        GuiDriver::WaitForClose(results);
        return text;
    }

    Platform::Win32DialogHost m_host;
    SparkODBC::QuillConfiguration m_configuration;
};

TEST_F(ConnectionTestWin32Test, TestReportsTheServersAnswer)
{
    TestTCLIServer::Options options;
    options.mode = TestTCLIServer::Mode::Sasl;
    options.user = "alice";
    options.password = "pw-Win32";
    TestTCLIServer server(options);

    std::wstring succeeded, refused;
    const auto result = GuiDriver::WhileModal(
        [&] {
            HWND d = GuiDriver::WaitForDialog(DSN_TITLE, ::GetCurrentProcessId(), std::chrono::seconds(20));
            ASSERT_NE(d, nullptr) << "the dialog never showed";
            GuiDriver::Type(d, IDC_DSN_NAME, L"Sales");
            GuiDriver::Type(d, IDC_HOSTS, L"127.0.0.1");
            GuiDriver::Type(d, IDC_PORT, std::to_wstring(server.Port()));
            GuiDriver::Select(d, IDC_AUTH_MECH, L"User Name and Password");
            GuiDriver::Select(d, IDC_THRIFT_TRANSPORT, L"SASL");
            GuiDriver::Type(d, IDC_USER_NAME, L"alice");
            GuiDriver::Type(d, IDC_PASSWORD, L"pw-Win32");
            succeeded = PressTest(d);
            GuiDriver::Type(d, IDC_PASSWORD, L"wrong-pw");
            refused = PressTest(d);
            GuiDriver::Click(d, IDCANCEL);
        },
        [&] {
            SparkODBC::QuillConfigurationDialog dialog(m_configuration, nullptr);
            return dialog.Show(nullptr, IDD_DSN_SETUP);
        });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(succeeded.rfind(L"SUCCESS! \r\n\r\nSuccessfully connected to data source!\r\nDriver Version: ", 0), 0u)
        << std::string(succeeded.begin(), succeeded.end());
    EXPECT_EQ(server.SessionsOpened(), 1);
    EXPECT_EQ(server.SessionsClosed(), 1);
    const std::wstring expected = L"FAILED!\r\n\r\n127.0.0.1:" + std::to_wstring(server.Port()) +
                                  L" refused the user name or password: Error validating the login";
    EXPECT_EQ(refused.rfind(expected, 0), 0u) << std::string(refused.begin(), refused.end());
    EXPECT_EQ(refused.find(L"wrong-pw"), std::wstring::npos);
}

// Holds the attempt open until the test has looked at the cursor.
class BlockingTester : public DriverSupport::IConnectionTester
{
public:
    using IConnectionTester::TestConnection;
    Outcome TestConnection(const DriverSupport::DSDSNConfiguration&, DriverSupport::DSCancellation&) override
    {
        m_running.set_value();
        m_release.get_future().wait();
        Outcome outcome;
        outcome.status = Outcome::Status::Succeeded;
        return outcome;
    }
    std::promise<void> m_running;
    std::promise<void> m_release;
};

TEST_F(ConnectionTestWin32Test, TheWaitCursorShowsWhileTheAttemptRuns)
{
    ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
    BlockingTester tester;
    DriverSupport::DSTestResultDialog::Input input{&m_configuration, &tester};
    HCURSOR whileRunning = nullptr;
    GuiDriver::WhileModal(
        [&] {
            const bool running =
                tester.m_running.get_future().wait_for(std::chrono::seconds(20)) == std::future_status::ready;
            HWND results = GuiDriver::WaitForDialog(L"Test Results", ::GetCurrentProcessId(), std::chrono::seconds(20));
            if (running && results != nullptr)
            {
                // The cursor is state of the dialog thread's input: share it to read it.
                const DWORD self = ::GetCurrentThreadId();
                const DWORD dialogThread = ::GetWindowThreadProcessId(results, nullptr);
                if (::AttachThreadInput(self, dialogThread, TRUE))
                {
                    whileRunning = ::GetCursor();
                    ::AttachThreadInput(self, dialogThread, FALSE);
                }
            }
            tester.m_release.set_value();
            if (results != nullptr)
            {
                for (int i = 0; i < 100 && GuiDriver::Text(results, IDC_TEST_RESULTS_TEXT).empty(); ++i)
                {
                    ::Sleep(100);
                }
                GuiDriver::Click(results, IDOK);
            }
        },
        [&] { return DriverSupport::DSTestResultDialog::Show(nullptr, &input); });
    EXPECT_EQ(whileRunning, ::LoadCursorW(nullptr, IDC_WAIT));
}
}  // namespace
