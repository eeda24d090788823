#include "dialogs/driversupport/DSTestResultDialog.h"

#include <memory>

#include "dialogs/driversupport/DSTestRun.h"
#include "driversupport/DSProductHelper.h"
#include "resource.h"

namespace Tarni::DriverSupport
{
using namespace Platform;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSTestResultDialog";

const char16_t* const RUN_PROPERTY = u"TarniTestRun";
constexpr unsigned POLL_TIMER = 1;

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    auto* input = DSBaseDialog::GetInputMap<DSTestResultDialog::Input>(in_window);
    return input != nullptr && input->configuration != nullptr ? input->configuration->GetLog() : nullptr;
}

DSTestRun* RunOf(IDialogWindow* in_window)
{
    return static_cast<DSTestRun*>(in_window->GetProperty(RUN_PROPERTY));
}

// Takes the running attempt from the window; the caller owns it.
std::unique_ptr<DSTestRun> TakeRun(IDialogWindow* in_window)
{
    std::unique_ptr<DSTestRun> run(RunOf(in_window));
    in_window->SetProperty(RUN_PROPERTY, nullptr);
    if (run)
    {
        in_window->KillTimer(POLL_TIMER);
    }
    return run;
}

tarni_wstring Replace(tarni_wstring in_text, tarni_wstring_view in_marker, const tarni_wstring& in_value)
{
    const std::size_t at = in_text.find(in_marker);
    if (at != tarni_wstring::npos)
    {
        in_text.replace(at, in_marker.size(), in_value);
    }
    return in_text;
}
}  // namespace

bool DSTestResultDialog::Show(IDialogWindow* in_parent, Input* in_input)
{
    TARNI_LOG_ENTRY(in_input->configuration->GetLog(), NS, CLS, "Show");
    return RunModal(in_parent, IDD_TEST_RESULTS, &ActionProc, in_input) > 0;
}

std::intptr_t DSTestResultDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                             std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    switch (in_message)
    {
        case WM_DESTROY:
            // Closed while the attempt runs: stop it and wait for its thread.
            TakeRun(in_window);
            return 1;
        case WM_NCDESTROY:
            return 1;
        case WM_TIMER:
            // Not guarded: an error of the attempt goes to the caller (see Show).
            DoTimerAction(in_window);
            return 1;
        case WM_INITDIALOG:
            // Not guarded: an error of the attempt goes to the caller (see Show).
            Initialize(in_window, reinterpret_cast<Input*>(in_lParam));
            return 1;
        case WM_COMMAND:
            return RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction, &DoCancelAction);
        default:
            return 0;
    }
}

void DSTestResultDialog::Initialize(IDialogWindow* in_window, Input* in_input)
{
    StoreInputMap(in_window, in_input);
    TARNI_LOG_ENTRY(in_input->configuration->GetLog(), NS, CLS, "Initialize");
    CenterDialog(in_window);
    SetWaitCursor(LoadResourceString(IDS_TEST_CONNECTING));
    in_window->SetItemText(IDOK, LoadResourceString(IDS_CANCEL));
    in_window->SetProperty(RUN_PROPERTY, new DSTestRun(*in_input->tester, *in_input->configuration));
    in_window->SetTimer(POLL_TIMER, POLL_INTERVAL_MS);
}

void DSTestResultDialog::DoTimerAction(IDialogWindow* in_window)
{
    DSTestRun* running = RunOf(in_window);
    if (running == nullptr || !running->IsFinished())
    {
        return;
    }
    const std::unique_ptr<DSTestRun> run = TakeRun(in_window);
    const IConnectionTester::Outcome outcome = run->TakeOutcome();
    if (Support::ILogger* logger = LoggerOf(in_window))
    {
        const char* status = run->IsCancelled()                                               ? "was cancelled"
                             : outcome.status == IConnectionTester::Outcome::Status::Succeeded ? "succeeded"
                                                                                               : "failed";
        logger->LogInfo(NS, CLS, "DoTimerAction", "Connection test %s.", status);
    }
    const auto load = [](unsigned in_id) { return LoadResourceString(in_id); };
    // Set rather than appended: the field shows the report's first line.
    in_window->SetItemText(IDC_TEST_RESULTS_TEXT, FormatReport(outcome, load) + FormatSteps(outcome, load));
    in_window->SetItemText(IDOK, LoadResourceString(IDS_OK));
    in_window->EnableItem(IDOK, true);
    // The report is read from its start: the field takes the focus (which
    // selects its whole text) and then the caret goes to the start with
    // nothing selected, so the arrow keys scroll it and Enter still says OK.
    in_window->SetFocusItem(IDC_TEST_RESULTS_TEXT);
    in_window->EditSetSel(IDC_TEST_RESULTS_TEXT, 0, 0);
}

tarni_wstring DSTestResultDialog::FormatReport(const IConnectionTester::Outcome& in_outcome)
{
    return FormatReport(in_outcome, [](unsigned in_id) { return LoadResourceString(in_id); });
}

tarni_wstring DSTestResultDialog::FormatReport(const IConnectionTester::Outcome& in_outcome,
                                               const std::function<tarni_wstring(unsigned)>& in_loadString)
{
    tarni_wstring report;
    switch (in_outcome.status)
    {
        case IConnectionTester::Outcome::Status::Succeeded:
            report = in_loadString(IDS_TEST_SUCCEEDED);
            break;
        case IConnectionTester::Outcome::Status::Failed:
            report = in_loadString(IDS_TEST_FAILED) + in_outcome.errorText;
            break;
    }
    if (!in_outcome.odbcVersion.empty())
    {
        report += in_loadString(IDS_TEST_ODBC_VERSION) + in_outcome.odbcVersion;
    }
    report += in_loadString(IDS_TEST_DRIVER_VERSION) + DSProductHelper::GetProductIdentity().version;
    report += in_loadString(IDS_TEST_BITNESS);
    if (!in_outcome.locale.empty())
    {
        report += in_loadString(IDS_TEST_LOCALE) + in_outcome.locale;
    }
    return report;
}

void DSTestResultDialog::DoOkAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoOkAction");
    if (DSTestRun* run = RunOf(in_window))
    {
        // The button says Cancel while the attempt runs: stop it, and show
        // what it got to once it has stopped.
        run->Cancel();
        in_window->EnableItem(IDOK, false);
        SetWaitCursor(LoadResourceString(IDS_TEST_CANCELLING));
        return;
    }
    in_window->EndDialog(1);
}

void DSTestResultDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    // Escape or the close box: an attempt still running stops (its thread
    // ends within a second) before the dialog closes.
    TakeRun(in_window);
    in_window->EndDialog(0);
}

tarni_wstring DSTestResultDialog::FormatSteps(const IConnectionTester::Outcome& in_outcome,
                                              const std::function<tarni_wstring(unsigned)>& in_loadString)
{
    if (in_outcome.steps.empty())
    {
        return {};
    }
    tarni_wstring text = in_loadString(IDS_TEST_STEPS);
    const tarni_wstring format = in_loadString(IDS_TEST_STEP_LINE);
    for (const DSTestStep& step : in_outcome.steps)
    {
        tarni_wstring line = Replace(format, u"%1", in_loadString(StepNameId(step.id)));
        line = Replace(line, u"%2", in_loadString(StepStatusId(step.status)));
        const std::string ms = std::to_string(step.durationMs);
        line = Replace(line, u"%3", tarni_wstring(ms.begin(), ms.end()));
        if (!step.detail.empty())
        {
            line += u": " + step.detail;
        }
        text += line;
    }
    return text;
}

unsigned DSTestResultDialog::StepNameId(const std::string& in_stepId)
{
    static const std::pair<const char*, unsigned> NAMES[] = {
        {"settings", IDS_TEST_STEP_SETTINGS},
        {"resolve", IDS_TEST_STEP_RESOLVE},
        {"connect", IDS_TEST_STEP_CONNECT},
        {"tls", IDS_TEST_STEP_TLS},
        {"discovery", IDS_TEST_STEP_DISCOVERY},
        {"token", IDS_TEST_STEP_TOKEN},
        {"authentication", IDS_TEST_STEP_AUTHENTICATION},
        {"open-session", IDS_TEST_STEP_OPEN_SESSION},
        {"server-info", IDS_TEST_STEP_SERVER_INFO},
        {"close-session", IDS_TEST_STEP_CLOSE_SESSION},
    };
    for (const auto& [id, stringId] : NAMES)
    {
        if (in_stepId == id)
        {
            return stringId;
        }
    }
    return IDS_TEST_STEP_OTHER;
}

unsigned DSTestResultDialog::StepStatusId(DSTestStep::Status in_status)
{
    switch (in_status)
    {
        case DSTestStep::Status::Passed:
            return IDS_TEST_STEP_PASSED;
        case DSTestStep::Status::Failed:
            return IDS_TEST_STEP_FAILED;
        case DSTestStep::Status::Running:
            break;
    }
    return IDS_TEST_STEP_STOPPED;
}
}  // namespace Tarni::DriverSupport
