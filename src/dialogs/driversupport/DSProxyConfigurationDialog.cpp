#include "dialogs/driversupport/DSProxyConfigurationDialog.h"

#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/framework/DSDialogMessageBoxHost.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/ProductSettingKeys.h"
#include "resource.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using namespace Platform;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSProxyConfigurationDialog";

const int PROXY_FIELDS[] = {IDC_PROXY_HOST, IDC_PROXY_PORT, IDC_PROXY_USER, IDC_PROXY_PASSWORD};

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    return DSBaseDialog::InputMapLog<DSProxyConfiguration>(in_window);
}
}  // namespace

bool DSProxyConfigurationDialog::Show(IDialogWindow* in_parent, DSProxyConfiguration* in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    return RunModal(in_parent, IDD_PROXY_OPTIONS, &ActionProc, in_configuration) != 0;
}

std::intptr_t DSProxyConfigurationDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                                     std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    const auto initialize = [&](DSProxyConfiguration* in_input) {
        Initialize(in_window, in_input);
        CheckEnableButtons(in_window);
    };
    if (const auto handled =
            RouteCommonMessages<DSProxyConfiguration>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    const int id = static_cast<int>(LowWord(in_wParam));
    const unsigned code = HighWord(in_wParam);
    if (id == IDC_PROXY_USE || ((id == IDC_PROXY_HOST || id == IDC_PROXY_PORT) && code == EN_CHANGE))
    {
        GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] { CheckEnableButtons(in_window); });
        return 1;
    }
    if (id == IDC_PROXY_PASSWORD_OPTIONS)
    {
        GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] {
            DSPasswordOptionsDialog::Show(in_window, GetInputMap<DSProxyConfiguration>(in_window));
            CheckEnableButtons(in_window);
        });
        return 1;
    }
    return RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction, &DoCancelAction);
}

void DSProxyConfigurationDialog::Initialize(IDialogWindow* in_window, DSProxyConfiguration* in_configuration)
{
    StoreInputMap(in_window, in_configuration);
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Initialize");
    CenterDialog(in_window);
    if (Support::StringConverter::EqualsIgnoreCase(DSProductHelper::GetSetting(ProductSettingKeys::VendorName),
                                                   u"Tarni"))
    {
        in_window->SetIcon(IDI_PRODUCT);
    }
    in_configuration->InitializeAfterLoad();
    in_window->CheckButton(IDC_PROXY_USE, in_configuration->IsUseProxy());
    SetDlgItemString(in_window, IDC_PROXY_HOST, in_configuration->GetProxyHost());
    SetDlgItemString(in_window, IDC_PROXY_PORT, in_configuration->GetProxyPort());
    SetDlgItemString(in_window, IDC_PROXY_USER, in_configuration->GetUid());
    SetDlgItemString(in_window, IDC_PROXY_PASSWORD, in_configuration->GetPwd());
}

void DSProxyConfigurationDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<DSProxyConfiguration>(in_window);
    const bool on = in_window->IsButtonChecked(IDC_PROXY_USE);
    for (const int id : PROXY_FIELDS)
    {
        in_window->EnableItem(id, on);
    }
    const bool complete =
        !GetDlgItemString(in_window, IDC_PROXY_HOST).empty() && !GetDlgItemString(in_window, IDC_PROXY_PORT).empty();
    in_window->EnableItem(IDOK, !on || complete);
    const unsigned type = configuration->GetConfigType();
    in_window->EnableItem(IDC_PROXY_PASSWORD_OPTIONS, on && (type == 1 || type == 2));
}

void DSProxyConfigurationDialog::DoOkAction(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<DSProxyConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoOkAction");
    const bool on = in_window->IsButtonChecked(IDC_PROXY_USE);
    configuration->SetUseProxy(on);
    if (on)
    {
        configuration->SetProxyHost(GetDlgItemString(in_window, IDC_PROXY_HOST));
        configuration->SetProxyPort(GetDlgItemString(in_window, IDC_PROXY_PORT));
        configuration->SetUid(GetDlgItemString(in_window, IDC_PROXY_USER));
        configuration->SetPwd(GetDlgItemString(in_window, IDC_PROXY_PASSWORD));
        DSDialogMessageBoxHost boxes(*in_window);
        configuration->ShowPwdNotSavedInfoMsg(boxes);
    }
    in_window->EndDialog(1);
}

void DSProxyConfigurationDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::DriverSupport
