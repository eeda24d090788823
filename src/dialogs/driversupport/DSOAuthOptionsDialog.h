#pragma once
// The OAuth Options dialog (template 146) over a DSOAuthConfiguration: the
// authentication flow and the values it takes (the fields a flow does not
// use are disabled), the token cache and no-prompt switches, "Encryption
// Options..." for the two secrets and "SSL Options..." for the end points.
// The DSN setup opens it by "OAuth Options...".
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSOAuthConfiguration.h"

namespace Tarni::DriverSupport
{
class DSOAuthOptionsDialog : public DSBaseDialog
{
public:
    /// Runs the dialog over the configuration; true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, DSOAuthConfiguration* in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, DSOAuthConfiguration* in_configuration);
    /// Enables the fields of the selected flow (none when no flow is selected).
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    /// Checks the end points, redirect and numbers the selected flow uses (a
    /// refused value leaves the dialog open and the configuration as it
    /// was), then stores every field and ends with 1.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
    /// Password Options over the client secret; the access token shares the choice.
    static void DoEncryptionOptionsAction(Platform::IDialogWindow* in_window);
    /// SSL Options over the end points' own SSL settings.
    static void DoSSLOptionsAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::DriverSupport
