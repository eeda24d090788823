#include "dialogs/driversupport/DSTestResultDialog.h"

#include "driversupport/DSProductHelper.h"
#include "driversupport/DSUnavailableConnectionTester.h"
#include "resource.h"

namespace Tarni::DriverSupport
{
using namespace Platform;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSTestResultDialog";

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    auto* input = DSBaseDialog::GetInputMap<DSTestResultDialog::Input>(in_window);
    return input != nullptr && input->configuration != nullptr ? input->configuration->GetLog() : nullptr;
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
        case WM_NCDESTROY:
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
    IConnectionTester& tester =
        in_input->tester != nullptr ? *in_input->tester : DSUnavailableConnectionTester::Instance();
    const IConnectionTester::Outcome outcome = tester.TestConnection(*in_input->configuration);
    if (Support::ILogger* logger = in_input->configuration->GetLog())
    {
        const char* status = outcome.status == IConnectionTester::Outcome::Status::Succeeded ? "succeeded"
                             : outcome.status == IConnectionTester::Outcome::Status::Failed  ? "failed"
                                                                                             : "is not available";
        logger->LogInfo(NS, CLS, "Initialize", "Connection test %s.", status);
    }
    AppendEditText(in_window, IDC_TEST_RESULTS_TEXT, FormatReport(outcome));
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
        case IConnectionTester::Outcome::Status::Unavailable:
            report = in_loadString(IDS_TEST_NOT_AVAILABLE);
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
    in_window->EndDialog(1);
}

void DSTestResultDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::DriverSupport
