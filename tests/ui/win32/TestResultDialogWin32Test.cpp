// The Test Results dialog as a real Win32 dialog under Wine on a private X
// server, with a tester double: the attempt runs on a worker thread while the
// dialog stays responsive, the report is followed by the steps, and the
// button (labelled Cancel while the attempt runs) stops the attempt.
#include "ui/win32/GuiDriver.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "dialogs/driversupport/DSTestResultDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "driversupport/DSDSNConfiguration.h"
#include "resource.h"
#include "ui/win32/Win32DialogHost.h"

using namespace Tarni;
using Tarni::DriverSupport::DSCancellation;
using Tarni::DriverSupport::DSDSNConfiguration;
using Tarni::DriverSupport::DSTestResultDialog;
using Tarni::DriverSupport::DSTestStep;
using Tarni::DriverSupport::IConnectionTester;
using Tarni::Testing::GuiDriver;

namespace
{
// Succeeds with three steps, or (blocking) waits until it is cancelled.
class FakeTester : public IConnectionTester
{
public:
    bool blocking = false;
    std::atomic<bool> sawCancel{false};

    using IConnectionTester::TestConnection;
    Outcome TestConnection(const DSDSNConfiguration&, DSCancellation& io_cancellation) override
    {
        Outcome outcome;
        if (!blocking)
        {
            outcome.status = Outcome::Status::Succeeded;
            outcome.steps = {{"resolve", DSTestStep::Status::Passed, u"db: 10.0.0.5:10000", 2},
                             {"connect", DSTestStep::Status::Passed, u"10.0.0.5:10000", 5},
                             {"open-session", DSTestStep::Status::Passed, u"protocol version 9", 31}};
            return outcome;
        }
        std::mutex lock;
        std::condition_variable woken;
        bool cancelled = false;
        const std::size_t handler = io_cancellation.AddHandler([&] {
            const std::lock_guard<std::mutex> guard(lock);
            cancelled = true;
            woken.notify_all();
        });
        {
            std::unique_lock<std::mutex> guard(lock);
            woken.wait_for(guard, std::chrono::seconds(30), [&] { return cancelled; });
        }
        io_cancellation.RemoveHandler(handler);
        sawCancel = cancelled;
        outcome.status = Outcome::Status::Failed;
        outcome.errorText = u"The test was cancelled.";
        outcome.steps = {{"connect", DSTestStep::Status::Failed, u"The test was cancelled.", 400}};
        return outcome;
    }
};

// Where the dialog's thread has its keyboard focus, once the report is in
// the field: whether the field has it, and the field's selection.
struct ReportFocus
{
    bool fieldFocused = false;
    DWORD selectionStart = 1;
    DWORD selectionEnd = 1;
};

ReportFocus WaitForReportFocus(HWND in_dialog)
{
    HWND field = ::GetDlgItem(in_dialog, IDC_TEST_RESULTS_TEXT);
    ReportFocus focus;
    for (int i = 0; i < 100 && !focus.fieldFocused; ++i)
    {
        GUITHREADINFO info{};
        info.cbSize = sizeof(info);
        focus.fieldFocused = ::GetGUIThreadInfo(::GetWindowThreadProcessId(in_dialog, nullptr), &info) != FALSE &&
                             info.hwndFocus == field;
        if (!focus.fieldFocused)
        {
            ::Sleep(30);
        }
    }
    ::SendMessageW(field, EM_GETSEL, reinterpret_cast<WPARAM>(&focus.selectionStart),
                   reinterpret_cast<LPARAM>(&focus.selectionEnd));
    return focus;
}

class TestResultDialogWin32 : public ::testing::Test
{
protected:
    void SetUp() override { DriverSupport::DSDialogModule::SetHost(&m_host); }
    void TearDown() override { DriverSupport::DSDialogModule::SetHost(nullptr); }

    Platform::Win32DialogHost m_host;
    DSDSNConfiguration m_configuration{u"TestDSN", 0, nullptr};
};
}  // namespace

TEST_F(TestResultDialogWin32, TheStepsFollowTheReport)
{
    FakeTester tester;
    DSTestResultDialog::Input input{&m_configuration, &tester};
    std::wstring report;
    std::wstring button;
    ReportFocus focus;
    const bool result = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(L"Test Results", ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            for (int i = 0; i < 300 && GuiDriver::Text(dialog, IDC_TEST_RESULTS_TEXT).empty(); ++i)
            {
                ::Sleep(100);
            }
            report = GuiDriver::Text(dialog, IDC_TEST_RESULTS_TEXT);
            focus = WaitForReportFocus(dialog);
            button = GuiDriver::Text(dialog, IDOK);
            GuiDriver::Click(dialog, IDOK);
            GuiDriver::WaitForClose(dialog);
        },
        [&] { return DSTestResultDialog::Show(nullptr, &input); });
    EXPECT_TRUE(result);
    EXPECT_EQ(report.rfind(L"SUCCESS! \r\n\r\nSuccessfully connected to data source!\r\n", 0), 0u);
    EXPECT_NE(report.find(L"\r\nBitness: 64-bit\r\n\r\nSteps:\r\nName resolution - passed (2 ms): db: 10.0.0.5:10000"
                          L"\r\nTCP connection - passed (5 ms): 10.0.0.5:10000"
                          L"\r\nOpenSession - passed (31 ms): protocol version 9"),
              std::wstring::npos);
    EXPECT_EQ(button, L"OK");
    // The report is read from its start: the caret there and nothing selected.
    EXPECT_TRUE(focus.fieldFocused);
    EXPECT_EQ(focus.selectionStart, 0u);
    EXPECT_EQ(focus.selectionEnd, 0u);
}

TEST_F(TestResultDialogWin32, TheButtonSaysCancelAndStopsTheRunningTest)
{
    FakeTester tester;
    tester.blocking = true;
    DSTestResultDialog::Input input{&m_configuration, &tester};
    std::wstring labelWhileRunning;
    std::wstring report;
    ReportFocus focus;
    std::chrono::steady_clock::duration stopped{};
    const bool result = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(L"Test Results", ::GetCurrentProcessId());
            ASSERT_NE(dialog, nullptr);
            ::Sleep(300);
            labelWhileRunning = GuiDriver::Text(dialog, IDOK);
            const auto start = std::chrono::steady_clock::now();
            GuiDriver::Click(dialog, IDOK);
            for (int i = 0; i < 300 && GuiDriver::Text(dialog, IDC_TEST_RESULTS_TEXT).empty(); ++i)
            {
                ::Sleep(50);
            }
            stopped = std::chrono::steady_clock::now() - start;
            report = GuiDriver::Text(dialog, IDC_TEST_RESULTS_TEXT);
            focus = WaitForReportFocus(dialog);
            GuiDriver::Click(dialog, IDOK);
            GuiDriver::WaitForClose(dialog);
        },
        [&] { return DSTestResultDialog::Show(nullptr, &input); });
    EXPECT_TRUE(result);
    EXPECT_EQ(labelWhileRunning, L"Cancel");
    EXPECT_TRUE(tester.sawCancel);
    EXPECT_LT(stopped, std::chrono::seconds(3));
    EXPECT_EQ(report.rfind(L"FAILED!\r\n\r\nThe test was cancelled.", 0), 0u);
    EXPECT_NE(report.find(L"\r\nTCP connection - failed (400 ms): The test was cancelled."), std::wstring::npos);
    // The focus left the disabled button for the report, at its start.
    EXPECT_TRUE(focus.fieldFocused);
    EXPECT_EQ(focus.selectionStart, 0u);
    EXPECT_EQ(focus.selectionEnd, 0u);
}
