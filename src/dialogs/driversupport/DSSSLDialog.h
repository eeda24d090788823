#pragma once
// The SSL Options dialog in its two variants: template 19136 for owners
// without two-way SSL (the AOSS status endpoint) and template 1091, which
// adds "Two-way SSL" with the client certificate, the client private key
// and its password. Both edit a DSSSLConfiguration through its accessors;
// OK writes every value, also those of disabled controls.
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSSSLConfiguration.h"

namespace Tarni::DriverSupport
{
class DSSSLDialog : public DSBaseDialog
{
public:
    /// What the dialog works on, kept on the window as its "InputMap".
    struct State
    {
        DSSSLConfiguration* configuration = nullptr;
        /// The owner lets the user switch SSL (clear: "Enable SSL" disabled).
        bool mayChangeSsl = true;
        /// The user clicked "Enable SSL" while the dialog was open.
        bool sslToggled = false;

        Support::ILogger* GetLog() const { return configuration != nullptr ? configuration->GetLog() : nullptr; }
    };

    /// Runs the variant the configuration asks for (1091 with two-way SSL
    /// support, else 19136); true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, DSSSLConfiguration* in_configuration,
                     bool in_mayChangeSsl);
    /// The template of the configuration's variant.
    static unsigned TemplateOf(const DSSSLConfiguration& in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, State* in_state);
    /// With SSL on: the certificate checks and the TLS list; the trusted
    /// certificates file unless the system trust store is used; revocation
    /// checks only with the system trust store and without self-signed
    /// certificates; the client certificate, key and password only with
    /// two-way SSL on.
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);

    /// A switch value into a check box: "1"/"0" in any case; empty leaves it
    /// unchecked; anything else leaves it unchecked with the warning
    /// "Connection string contains invalid data type: %s." naming the key.
    static void ReadSwitchIntoCheckBox(Platform::IDialogWindow* in_window, int in_id, tarni_wstring_view in_value,
                                       tarni_wstring_view in_key, Support::ILogger* in_logger);
};
}  // namespace Tarni::DriverSupport
