#include "dialogs/thrift/TEDFIDialog.h"

#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/framework/DSDialogMessageBoxHost.h"
#include "resource.h"

namespace Tarni::ThriftExtension
{
using namespace Platform;
using DriverSupport::DSBaseDialog;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEDFIDialog";

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    return DSBaseDialog::InputMapLog<TEDFIConfiguration>(in_window);
}
}  // namespace

bool TEDFIDialog::Show(IDialogWindow* in_parent, TEDFIConfiguration* in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    return RunModal(in_parent, IDD_DFI_OPTIONS, &ActionProc, in_configuration) != 0;
}

std::intptr_t TEDFIDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam,
                                      std::intptr_t in_lParam)
{
    const auto initialize = [&](TEDFIConfiguration* in_input) {
        Initialize(in_window, in_input);
    };
    if (const auto handled =
            RouteCommonMessages<TEDFIConfiguration>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    switch (LowWord(in_wParam))
    {
        case IDC_DFI_BROWSE:
            GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] { BrowseForConfigFile(in_window); });
            return 1;
        case IDC_DFI_PASSWORD_OPTIONS:
            GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] {
                DriverSupport::DSPasswordOptionsDialog::Show(in_window,
                                                             GetInputMap<TEDFIConfiguration>(in_window));
            });
            return 1;
        default:
            return RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction,
                                 &DoCancelAction);
    }
}

void TEDFIDialog::BrowseForConfigFile(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "BrowseForConfigFile");
    const tarni_wstring before = GetDlgItemString(in_window, IDC_DFI_CONFIG_FILE);
    BrowseForFile(in_window, IDC_DFI_CONFIG_FILE);
    // The open-file box asks for an existing file; a chooser that let
    // anything else through does not get to fill the field.
    const tarni_wstring chosen = GetDlgItemString(in_window, IDC_DFI_CONFIG_FILE);
    if (chosen != before && !TEDFIConfiguration::IsExistingFile(chosen))
    {
        SetDlgItemString(in_window, IDC_DFI_CONFIG_FILE, before);
    }
}

void TEDFIDialog::Initialize(IDialogWindow* in_window, TEDFIConfiguration* in_configuration)
{
    StoreInputMap(in_window, in_configuration);
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Initialize");
    CenterDialog(in_window);
    SetDlgItemString(in_window, IDC_DFI_CONFIG_FILE, in_configuration->GetOCIConfigFile());
    SetDlgItemString(in_window, IDC_DFI_PROFILE, in_configuration->GetOCIProfile());
    SetDlgItemString(in_window, IDC_DFI_KEY_FILE_PASSWORD, in_configuration->GetKeyFilePassword());
    in_window->CheckButton(IDC_DFI_IGNORE_NOPROMPT, in_configuration->GetIgnoreSQLDriverNoPrompt());
}

void TEDFIDialog::DoOkAction(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<TEDFIConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoOkAction");
    const tarni_wstring configFile = GetDlgItemString(in_window, IDC_DFI_CONFIG_FILE);
    // Checked before anything is stored, so a refused file changes nothing.
    TEDFIConfiguration::CheckConfigFile(configFile);
    configuration->SetOCIConfigFile(configFile);
    configuration->SetOCIProfile(GetDlgItemString(in_window, IDC_DFI_PROFILE));
    configuration->SetKeyFilePassword(GetDlgItemString(in_window, IDC_DFI_KEY_FILE_PASSWORD));
    configuration->SetIgnoreSQLDriverNoPrompt(in_window->IsButtonChecked(IDC_DFI_IGNORE_NOPROMPT));
    DriverSupport::DSDialogMessageBoxHost boxes(*in_window);
    configuration->ShowPwdNotSavedInfoMsg(boxes);
    in_window->EndDialog(1);
}

void TEDFIDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::ThriftExtension
