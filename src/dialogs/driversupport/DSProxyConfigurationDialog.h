#pragma once
// The HTTP Proxy Options dialog (template 37086): whether the connection
// goes through an HTTP proxy, its host and port and the proxy's credentials,
// over a DSProxyConfiguration. Switched off, OK writes only the switch and
// keeps host, port and credentials for the next time.
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSProxyConfiguration.h"

namespace Tarni::DriverSupport
{
class DSProxyConfigurationDialog : public DSBaseDialog
{
public:
    /// Runs the dialog over the proxy configuration; true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, DSProxyConfiguration* in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// Stores the input map, centres the dialog, shows the product icon for
    /// the vendor "Tarni", reconciles the stored password and fills the
    /// controls; "Use Proxy" is checked unless the switch is exactly "0".
    static void Initialize(Platform::IDialogWindow* in_window, DSProxyConfiguration* in_configuration);
    /// From the controls: the four fields follow "Use Proxy"; OK needs host
    /// and port while it is checked; "Password Options..." also needs a DSN
    /// setup (configuration type 1 or 2).
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    /// Writes the switch, and while it is on host, port, user and password;
    /// warns when the password will not be saved.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::DriverSupport
