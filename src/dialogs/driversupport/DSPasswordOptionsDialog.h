#pragma once
// The Password Options dialog (template 19144): in which scope the
// credential of a DSUidPwdConfiguration is saved encrypted, or, with neither
// radio button checked, that it is not saved at all.
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSUidPwdConfiguration.h"

namespace Tarni::DriverSupport
{
class DSPasswordOptionsDialog : public DSBaseDialog
{
public:
    /// Runs the dialog over the credential configuration; true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, DSUidPwdConfiguration* in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// Stores the input map and shows its scope: "All Users of this Machine"
    /// or "Current User Only" when the password is encrypted, neither when not.
    static void Initialize(Platform::IDialogWindow* in_window, DSUidPwdConfiguration* in_configuration);
    /// Neither radio checked: not encrypted (not saved); else the scope.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::DriverSupport
