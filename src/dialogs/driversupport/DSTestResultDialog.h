#pragma once
// The Test Results dialog (template 133) of the DSN setup: shows the wait
// cursor, attempts a connection with the data source's configuration on a
// worker thread and reports the outcome in its read-only multi-line field,
// followed by the ODBC version, the driver version, the bitness, the locale
// and the steps of the attempt. While the attempt runs its button says
// Cancel and stops it; Escape stops it and closes the dialog.
#include <functional>

#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/IConnectionTester.h"

namespace Tarni::DriverSupport
{
class DSTestResultDialog : public DSBaseDialog
{
public:
    /// The input map: the configuration to connect with and who connects.
    struct Input
    {
        DSDSNConfiguration* configuration = nullptr;
        IConnectionTester* tester = nullptr;  ///< required
    };

    /// Runs the dialog; true after OK. An ErrorException of the attempt (or
    /// of the wait cursor) is not shown here: it ends the dialog and reaches
    /// the caller, which restores what it changed for the test before the
    /// error is reported.
    static bool Show(Platform::IDialogWindow* in_parent, Input* in_input);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, Input* in_input);
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
    /// The poll of the running attempt: shows its report once it finished.
    static void DoTimerAction(Platform::IDialogWindow* in_window);

    /// How often the dialog looks whether the attempt finished.
    static constexpr unsigned POLL_INTERVAL_MS = 100;

    /// The report of an outcome: string 1095 (success) or 1094 and the error
    /// (failure); then the ODBC
    /// version, the driver version, the bitness and the locale lines. A line
    /// whose value the tester could not tell is left out.
    static tarni_wstring FormatReport(const IConnectionTester::Outcome& in_outcome);
    /// The same report with the strings taken from in_loadString (the
    /// command line has no dialog host to load them).
    static tarni_wstring FormatReport(const IConnectionTester::Outcome& in_outcome,
                                      const std::function<tarni_wstring(unsigned)>& in_loadString);

    /// The steps of an outcome, one line each after a heading (string 1106):
    /// name, outcome, time and what the step found. Empty without steps.
    static tarni_wstring FormatSteps(const IConnectionTester::Outcome& in_outcome,
                                     const std::function<tarni_wstring(unsigned)>& in_loadString);

    /// The string id of a step's shown name (IDS_TEST_STEP_OTHER for an id
    /// it does not know).
    static unsigned StepNameId(const std::string& in_stepId);
    /// The string id of a step's outcome word.
    static unsigned StepStatusId(DSTestStep::Status in_status);
};
}  // namespace Tarni::DriverSupport
