// The Test Results dialog on the scripted host: the attempt runs on a worker
// thread while the dialog stays open, the report is followed by the steps,
// and the button that says Cancel while the attempt runs stops it.
#include "dialogs/driversupport/DSTestResultDialog.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "dialogs/DialogTestSupport.h"
#include "driversupport/DSDSNConfiguration.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::DriverSupport;

namespace
{
// A tester that returns a given outcome, or (blocking) waits until the test
// is cancelled, as a test against a server that never answers does.
class FakeTester : public IConnectionTester
{
public:
    Outcome outcome;
    bool blocking = false;
    std::atomic<int> calls{0};
    std::atomic<bool> sawCancel{false};

    using IConnectionTester::TestConnection;
    Outcome TestConnection(const DSDSNConfiguration&, DSCancellation& io_cancellation) override
    {
        ++calls;
        if (!blocking)
        {
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
        Outcome stopped;
        stopped.status = Outcome::Status::Failed;
        stopped.errorText = u"The test was cancelled.";
        stopped.steps = {{"resolve", DSTestStep::Status::Passed, u"h: 192.0.2.1:10000", 1},
                         {"connect", DSTestStep::Status::Failed, u"The test was cancelled.", 300}};
        return stopped;
    }
};

class DSTestResultDialogTest : public Testing::DialogTest
{
protected:
    DSTestResultDialogTest() : m_configuration(u"TestDSN", 0, &m_logger) {}

    bool ShowWith(FakeTester& io_tester)
    {
        DSTestResultDialog::Input input{&m_configuration, &io_tester};
        return DSTestResultDialog::Show(nullptr, &input);
    }

    Testing::RecordingLogger m_logger;
    DSDSNConfiguration m_configuration;
};
}  // namespace

TEST_F(DSTestResultDialogTest, TheReportComesFirstAndTheStepsFollow)
{
    FakeTester tester;
    tester.outcome.status = IConnectionTester::Outcome::Status::Failed;
    tester.outcome.errorText = u"The TLS handshake failed.";
    tester.outcome.steps = {{"resolve", DSTestStep::Status::Passed, u"db: 10.0.0.5:443", 3},
                            {"connect", DSTestStep::Status::Passed, u"10.0.0.5:443", 12},
                            {"tls", DSTestStep::Status::Failed, u"The TLS handshake failed.", 40},
                            {"later", DSTestStep::Status::Running, u"", 0}};
    tarni_wstring report;
    tarni_wstring button;
    m_host.ExpectDialog(IDD_TEST_RESULTS, [&](ScriptedDialogWindow& w) {
        report = w.Text(IDC_TEST_RESULTS_TEXT);
        button = w.Text(IDOK);
        // The report is read from its start: focused, caret at 0, nothing selected.
        EXPECT_EQ(w.GetFocusItem(), IDC_TEST_RESULTS_TEXT);
        EXPECT_EQ(w.EditSelection(IDC_TEST_RESULTS_TEXT), (std::pair{0, 0}));
        w.Click(IDOK);
    });
    EXPECT_TRUE(ShowWith(tester));
    EXPECT_EQ(report, u"FAILED!\r\n\r\nThe TLS handshake failed.\r\nDriver Version: 2.7.5.1012\r\nBitness: 64-bit"
                      u"\r\n\r\nSteps:"
                      u"\r\nName resolution - passed (3 ms): db: 10.0.0.5:443"
                      u"\r\nTCP connection - passed (12 ms): 10.0.0.5:443"
                      u"\r\nTLS handshake - failed (40 ms): The TLS handshake failed."
                      u"\r\nTest - stopped (0 ms)");
    EXPECT_EQ(button, u"OK");
    EXPECT_EQ(m_host.GetWaitCursorCount(), 1);
}

TEST_F(DSTestResultDialogTest, TheButtonCancelsARunningTestAndThenShowsWhatItGotTo)
{
    FakeTester tester;
    tester.blocking = true;
    m_host.SetSettleTimers(false);
    m_host.ExpectDialog(IDD_TEST_RESULTS, [&](ScriptedDialogWindow& w) {
        // Running: the dialog answers, its button says Cancel, nothing shown yet.
        EXPECT_TRUE(w.HasTimers());
        EXPECT_EQ(w.Text(IDOK), u"Cancel");
        EXPECT_EQ(w.Text(IDC_TEST_RESULTS_TEXT), u"");
        EXPECT_FALSE(w.RunTimers([] { return false; }, std::chrono::milliseconds(300))) << "still running";
        const auto start = std::chrono::steady_clock::now();
        w.Click(IDOK);
        EXPECT_FALSE(w.IsEnded()) << "cancelling keeps the dialog open";
        EXPECT_FALSE(w.Enabled(IDOK));
        ASSERT_TRUE(w.RunTimers([&w] { return !w.HasTimers(); }, std::chrono::seconds(30)));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
        EXPECT_EQ(w.Text(IDC_TEST_RESULTS_TEXT).rfind(u"FAILED!\r\n\r\nThe test was cancelled.", 0), 0u);
        EXPECT_NE(w.Text(IDC_TEST_RESULTS_TEXT).find(u"\r\nTCP connection - failed (300 ms): The test was cancelled."),
                  tarni_wstring::npos);
        EXPECT_EQ(w.Text(IDOK), u"OK");
        EXPECT_TRUE(w.Enabled(IDOK));
        // The focus left the disabled button for the report, at its start.
        EXPECT_EQ(w.GetFocusItem(), IDC_TEST_RESULTS_TEXT);
        EXPECT_EQ(w.EditSelection(IDC_TEST_RESULTS_TEXT), (std::pair{0, 0}));
        w.Click(IDOK);
    });
    EXPECT_TRUE(ShowWith(tester));
    EXPECT_TRUE(tester.sawCancel);
    EXPECT_EQ(m_host.GetWaitCursorCount(), 2) << "Connecting..., then Cancelling...";
}

TEST_F(DSTestResultDialogTest, EscapeWhileRunningStopsTheTestAndCloses)
{
    FakeTester tester;
    tester.blocking = true;
    m_host.SetSettleTimers(false);
    m_host.ExpectDialog(IDD_TEST_RESULTS, [&](ScriptedDialogWindow& w) { w.PressEscape(); });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(ShowWith(tester));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_TRUE(tester.sawCancel);
}
