#include "dialogs/product/QuillAOSSDialog.h"

#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/driversupport/DSSSLDialog.h"
#include "dialogs/framework/DSDialogMessageBoxHost.h"
#include "driversupport/ConfigurationKeys.h"
#include "resource.h"

namespace Tarni::SparkODBC
{
using namespace Platform;
using DriverSupport::DSBaseDialog;
namespace Keys = DriverSupport::Keys;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillAOSSDialog";

QuillAOSSDialog::State* StateOf(IDialogWindow* in_window)
{
    return DSBaseDialog::GetInputMap<QuillAOSSDialog::State>(in_window);
}

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    const auto* state = StateOf(in_window);
    return state != nullptr ? state->GetLog() : nullptr;
}

bool UserNameAndPasswordSelected(IDialogWindow* in_window)
{
    return DSBaseDialog::GetDlgItemString(in_window, IDC_AOSS_AUTH_MECH) == QuillAOSSDialog::USER_NAME_AND_PASSWORD;
}
}  // namespace

bool QuillAOSSDialog::Show(IDialogWindow* in_parent, QuillConfiguration* in_configuration, bool in_allowEditing)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    State state;
    state.configuration = in_configuration;
    state.allowEditing = in_allowEditing;
    return DSBaseDialog::RunModal(in_parent, IDD_AOSS_OPTIONS, &ActionProc, &state) != 0;
}

std::intptr_t QuillAOSSDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                          std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    const auto initialize = [&](State* in_input) {
        Initialize(in_window, in_input);
    };
    if (const auto handled =
            DSBaseDialog::RouteCommonMessages<State>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    const int id = static_cast<int>(LowWord(in_wParam));
    const unsigned code = HighWord(in_wParam);
    switch (id)
    {
        case IDC_AOSS_AUTH_MECH:
        case IDC_AOSS_USER_NAME:
        case IDC_AOSS_PASSWORD:
            if (code == EN_UPDATE || code == CBN_SELCHANGE)
            {
                DSBaseDialog::GuardAction(in_window, LoggerOf(in_window), NS, CLS,
                                          [&] { CheckEnableButtons(in_window); });
            }
            return 1;
        case IDC_AOSS_PASSWORD_OPTIONS:
            DSBaseDialog::GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] {
                DriverSupport::DSPasswordOptionsDialog::Show(in_window,
                                                             &StateOf(in_window)->configuration->GetAOSSCredentials());
            });
            return 1;
        case IDC_AOSS_SSL_OPTIONS:
            DSBaseDialog::GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] {
                DriverSupport::DSSSLDialog::Show(in_window, &StateOf(in_window)->configuration->GetAOSSSSLConfiguration(),
                                                 StateOf(in_window)->allowEditing);
            });
            return 1;
        default:
            return DSBaseDialog::RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction,
                                               &DoCancelAction);
    }
}

void QuillAOSSDialog::Initialize(IDialogWindow* in_window, State* in_state)
{
    DSBaseDialog::StoreInputMap(in_window, in_state);
    QuillConfiguration& configuration = *in_state->configuration;
    TARNI_LOG_ENTRY(configuration.GetLog(), NS, CLS, "Initialize");
    DSBaseDialog::CenterDialog(in_window);
    DriverSupport::DSUidPwdConfiguration& credentials = configuration.GetAOSSCredentials();
    DSBaseDialog::SetDlgItemString(in_window, IDC_AOSS_USER_NAME, credentials.GetUid());
    DSBaseDialog::SetDlgItemString(in_window, IDC_AOSS_PASSWORD, credentials.GetPwd());
    DSBaseDialog::AddComboString(in_window, IDC_AOSS_AUTH_MECH, NO_AUTHENTICATION);
    DSBaseDialog::AddComboString(in_window, IDC_AOSS_AUTH_MECH, USER_NAME_AND_PASSWORD);
    in_window->ComboSetCurSel(IDC_AOSS_AUTH_MECH, configuration.GetValue(Keys::AOSS_AuthMech) == u"3" ? 1 : 0);
    CheckEnableButtons(in_window);
}

void QuillAOSSDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    const State* state = StateOf(in_window);
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "CheckEnableButtons");
    in_window->EnableItem(IDC_AOSS_AUTH_MECH, state->allowEditing);
    const bool credentials = UserNameAndPasswordSelected(in_window);
    for (const int id : {IDC_AOSS_USER_NAME, IDC_AOSS_PASSWORD, IDC_AOSS_PASSWORD_OPTIONS})
    {
        in_window->EnableItem(id, credentials);
    }
    in_window->EnableItem(IDOK, !credentials || (!DSBaseDialog::GetDlgItemString(in_window, IDC_AOSS_USER_NAME).empty() &&
                                                 !DSBaseDialog::GetDlgItemString(in_window, IDC_AOSS_PASSWORD).empty()));
}

void QuillAOSSDialog::DoOkAction(IDialogWindow* in_window)
{
    QuillConfiguration& configuration = *StateOf(in_window)->configuration;
    TARNI_LOG_ENTRY(configuration.GetLog(), NS, CLS, "DoOkAction");
    const tarni_wstring mechanism = DSBaseDialog::GetDlgItemString(in_window, IDC_AOSS_AUTH_MECH);
    if (mechanism == NO_AUTHENTICATION)
    {
        configuration.SetValue(Keys::AOSS_AuthMech, u"0");
    }
    else if (mechanism == USER_NAME_AND_PASSWORD)
    {
        configuration.SetValue(Keys::AOSS_AuthMech, u"3");
        DriverSupport::DSUidPwdConfiguration& credentials = configuration.GetAOSSCredentials();
        credentials.SetUid(DSBaseDialog::GetDlgItemString(in_window, IDC_AOSS_USER_NAME));
        credentials.SetPwd(DSBaseDialog::GetDlgItemString(in_window, IDC_AOSS_PASSWORD));
        DriverSupport::DSDialogMessageBoxHost boxes(*in_window);
        credentials.ShowPwdNotSavedInfoMsg(boxes);
    }
    in_window->EndDialog(1);
}

void QuillAOSSDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::SparkODBC
