#include "dialogs/thrift/TESAMLDialog.h"

#include "driversupport/ConfigurationKeys.h"
#include "resource.h"

namespace Tarni::ThriftExtension
{
using namespace Platform;
using DriverSupport::DSDSNConfiguration;
namespace Keys = DriverSupport::Keys;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TESAMLDialog";

// The flows the driver knows; this program only offers the first.
constexpr const char16_t* FLOW_BROWSER = u"browser";
constexpr const char16_t* FLOW_TOKEN = u"token";

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    return DriverSupport::DSBaseDialog::InputMapLog<DSDSNConfiguration>(in_window);
}
}  // namespace

bool TESAMLDialog::Show(IDialogWindow* in_parent, DSDSNConfiguration* in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    return RunModal(in_parent, IDD_SAML_OPTIONS, &ActionProc, in_configuration) != 0;
}

std::intptr_t TESAMLDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam,
                                       std::intptr_t in_lParam)
{
    const auto initialize = [&](DSDSNConfiguration* in_input) {
        Initialize(in_window, in_input);
    };
    if (const auto handled =
            RouteCommonMessages<DSDSNConfiguration>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    return RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction, &DoCancelAction);
}

void TESAMLDialog::Initialize(IDialogWindow* in_window, DSDSNConfiguration* in_configuration)
{
    StoreInputMap(in_window, in_configuration);
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Initialize");
    CenterDialog(in_window);
    AddComboString(in_window, IDC_SAML_AUTH_FLOW, FLOW_BROWSER);
    AddComboString(in_window, IDC_SAML_AUTH_FLOW, FLOW_TOKEN);
    in_window->ComboSetCurSel(IDC_SAML_AUTH_FLOW, 0);
    in_window->EnableItem(IDC_SAML_AUTH_FLOW, false);
    in_window->CheckButton(IDC_SAML_IGNORE_NOPROMPT,
                           in_configuration->GetValue(Keys::SSOIgnoreDriverNoPrompt) == u"1");
    in_window->CheckButton(IDC_SAML_COOKIE_CACHING,
                           in_configuration->GetValue(Keys::EnableSamlCookieCaching) == u"1");
}

void TESAMLDialog::DoOkAction(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<DSDSNConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoOkAction");
    configuration->SetValue(Keys::SSOIgnoreDriverNoPrompt,
                            in_window->IsButtonChecked(IDC_SAML_IGNORE_NOPROMPT) ? u"1" : u"0");
    configuration->SetValue(Keys::EnableSamlCookieCaching,
                            in_window->IsButtonChecked(IDC_SAML_COOKIE_CACHING) ? u"1" : u"0");
    in_window->EndDialog(1);
}

void TESAMLDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::ThriftExtension
