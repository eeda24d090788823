#pragma once
// The DFI Options dialog (template 8102): the OCI configuration file (with
// "Browse"), the OCI profile, the key file password with its "Password
// Options..." and "Ignore SQL_DRIVER_NOPROMPT", over a TEDFIConfiguration.
// The main dialog opens it by "DFI Options..." for the DFI server type.
#include "dialogs/framework/DSBaseDialog.h"
#include "thrift/TEDFIConfiguration.h"

namespace Tarni::ThriftExtension
{
class TEDFIDialog : public DriverSupport::DSBaseDialog
{
public:
    /// Runs the dialog over the configuration; true after OK.
    bool Show(Platform::IDialogWindow* in_parent, TEDFIConfiguration* in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// The open-file box; the field takes the chosen path only when it is
    /// an existing file.
    static void BrowseForConfigFile(Platform::IDialogWindow* in_window);
    static void Initialize(Platform::IDialogWindow* in_window, TEDFIConfiguration* in_configuration);
    /// Refuses a configuration file that does not exist (the dialog stays
    /// open with the input kept); else stores the three fields as typed and
    /// the check box as "1"/"0", warns when the typed password will not be
    /// saved, and ends with 1.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::ThriftExtension
