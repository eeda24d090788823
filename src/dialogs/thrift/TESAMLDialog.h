#pragma once
// The SAML Options dialog (template 8101) over the configuration: the
// authentication flow, which this program fixes on "browser" (shown, not
// changeable, not stored), "Ignore SQL_DRIVER_NOPROMPT"
// ("SSOIgnoreDriverNoPrompt") and "Enable Auth Cookie Caching"
// ("EnableSamlCookieCaching").
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSDSNConfiguration.h"

namespace Tarni::ThriftExtension
{
class TESAMLDialog : public DriverSupport::DSBaseDialog
{
public:
    /// Runs the dialog over the configuration; true after OK.
    bool Show(Platform::IDialogWindow* in_parent, DriverSupport::DSDSNConfiguration* in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, DriverSupport::DSDSNConfiguration* in_configuration);
    /// Stores the two switches as "1"/"0" and ends with 1.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::ThriftExtension
