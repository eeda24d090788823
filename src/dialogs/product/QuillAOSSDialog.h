#pragma once
// The AOSS Options dialog (template 1137): how the driver authenticates at
// the AOSS status endpoint ("AOSS_AuthMech": "0" none, "3" user name and
// password), the AOSS credentials (saved only in protected form, under
// "AOSS_EncryptedPWD") with their Password Options, and the SSL Options of
// the endpoint (keys with the prefix "AOSS_"). Opened by "Service Discovery
// Options..." of the main dialog in AOSS mode.
#include "dialogs/framework/DSBaseDialog.h"
#include "product/QuillConfiguration.h"

namespace Tarni::SparkODBC
{
class QuillAOSSDialog
{
public:
    /// What the dialog works on, kept on the window as its "InputMap".
    struct State
    {
        QuillConfiguration* configuration = nullptr;
        /// Clear: the configuration is shown read-only (the combo is disabled).
        bool allowEditing = true;

        Support::ILogger* GetLog() const { return configuration != nullptr ? configuration->GetLog() : nullptr; }
    };

    /// The two entries of the authentication combo, in order.
    static constexpr tarni_wstring_view NO_AUTHENTICATION = u"No Authentication";
    static constexpr tarni_wstring_view USER_NAME_AND_PASSWORD = u"User Name and Password";

    /// Runs the dialog over the configuration; true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, QuillConfiguration* in_configuration, bool in_allowEditing);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, State* in_state);
    /// "User Name and Password": user name, password and Password Options
    /// enabled, OK only with both fields filled in; otherwise those three
    /// disabled and OK enabled.
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    /// "No Authentication": "AOSS_AuthMech" = "0", the credentials stay as
    /// stored. "User Name and Password": "3", and the two fields go into the
    /// AOSS credentials.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::SparkODBC
