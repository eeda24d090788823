#include "dialogs/driversupport/DSPasswordOptionsDialog.h"

#include "resource.h"

namespace Tarni::DriverSupport
{
using namespace Platform;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSPasswordOptionsDialog";

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    return DSBaseDialog::InputMapLog<DSUidPwdConfiguration>(in_window);
}
}  // namespace

bool DSPasswordOptionsDialog::Show(IDialogWindow* in_parent, DSUidPwdConfiguration* in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    return RunModal(in_parent, IDD_PASSWORD_OPTIONS, &ActionProc, in_configuration) != 0;
}

std::intptr_t DSPasswordOptionsDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                                  std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    const auto initialize = [&](DSUidPwdConfiguration* in_input) {
        Initialize(in_window, in_input);
    };
    if (const auto handled =
            RouteCommonMessages<DSUidPwdConfiguration>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    return RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction, &DoCancelAction);
}

void DSPasswordOptionsDialog::Initialize(IDialogWindow* in_window, DSUidPwdConfiguration* in_configuration)
{
    StoreInputMap(in_window, in_configuration);
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Initialize");
    CenterDialog(in_window);
    if (in_configuration->IsEncryptPwd())
    {
        const bool allUsers = in_configuration->IsDPAPIEncryptForAllUsers();
        in_window->CheckButton(IDC_PWD_ALL_USERS, allUsers);
        in_window->CheckButton(IDC_PWD_CURRENT_USER_ONLY, !allUsers);
    }
    // Not encrypted: neither button is checked. There is no third button:
    // the unchecked state is how "not saved" is shown.
}

void DSPasswordOptionsDialog::DoOkAction(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<DSUidPwdConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoOkAction");
    const bool currentUser = in_window->IsButtonChecked(IDC_PWD_CURRENT_USER_ONLY);
    const bool allUsers = in_window->IsButtonChecked(IDC_PWD_ALL_USERS);
    if (!currentUser && !allUsers)
    {
        configuration->SetEncryptPwd(false);
    }
    else
    {
        configuration->SetDPAPIEncryptForAllUsers(allUsers);
        configuration->SetEncryptPwd(true);
    }
    in_window->EndDialog(1);
}

void DSPasswordOptionsDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::DriverSupport
