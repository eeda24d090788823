#include "dialogs/driversupport/DSOAuthOptionsDialog.h"

#include "dialogs/driversupport/DSSSLDialog.h"

#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/framework/DSDialogMessageBoxHost.h"
#include "driversupport/ConfigurationKeys.h"
#include "resource.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using namespace Platform;
using Support::StringConverter;
using Flow = DSOAuthConfiguration::Flow;
using Field = DSOAuthConfiguration::Field;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSOAuthOptionsDialog";

const tarni_wstring_view CODE_CHALLENGE_METHODS[] = {u"S256", u"plain"};

/// The text fields, the key each edits and the field of the flow table it belongs to.
struct TextBinding
{
    int id;
    tarni_wstring_view key;
    Field field;
};
const TextBinding TEXT_FIELDS[] = {
    {IDC_OAUTH_AUTH_END_POINT, Keys::OAuth2AuthorizationEndPoint, DSOAuthConfiguration::FIELD_AUTHORIZATION_END_POINT},
    {IDC_OAUTH_TOKEN_END_POINT, Keys::OAuth2TokenEndPoint, DSOAuthConfiguration::FIELD_TOKEN_END_POINT},
    {IDC_OAUTH_SCOPE, Keys::Auth_Scope, DSOAuthConfiguration::FIELD_SCOPE},
    {IDC_OAUTH_REDIRECT, Keys::Auth_BaseRedirectUri, DSOAuthConfiguration::FIELD_REDIRECT},
    {IDC_OAUTH_WEB_SERVER_TIMEOUT, Keys::OAuthWebserverTimeout, DSOAuthConfiguration::FIELD_WEB_SERVER_TIMEOUT},
    {IDC_OAUTH_WINDOW_WIDTH, Keys::Auth_WindowWidth, DSOAuthConfiguration::FIELD_WINDOW_SIZE},
    {IDC_OAUTH_WINDOW_HEIGHT, Keys::Auth_WindowHeight, DSOAuthConfiguration::FIELD_WINDOW_SIZE},
};

/// Every control that a flow may or may not take, with its field.
const std::pair<int, Field> FLOW_CONTROLS[] = {
    {IDC_OAUTH_ACCESS_TOKEN, DSOAuthConfiguration::FIELD_ACCESS_TOKEN},
    {IDC_OAUTH_CLIENT_ID, DSOAuthConfiguration::FIELD_CLIENT_ID},
    {IDC_OAUTH_CLIENT_SECRET, DSOAuthConfiguration::FIELD_CLIENT_SECRET},
    {IDC_OAUTH_AUTH_END_POINT, DSOAuthConfiguration::FIELD_AUTHORIZATION_END_POINT},
    {IDC_OAUTH_TOKEN_END_POINT, DSOAuthConfiguration::FIELD_TOKEN_END_POINT},
    {IDC_OAUTH_SCOPE, DSOAuthConfiguration::FIELD_SCOPE},
    {IDC_OAUTH_CODE_CHALLENGE, DSOAuthConfiguration::FIELD_CODE_CHALLENGE_METHOD},
    {IDC_OAUTH_REDIRECT, DSOAuthConfiguration::FIELD_REDIRECT},
    {IDC_OAUTH_WEB_SERVER_TIMEOUT, DSOAuthConfiguration::FIELD_WEB_SERVER_TIMEOUT},
    {IDC_OAUTH_WINDOW_WIDTH, DSOAuthConfiguration::FIELD_WINDOW_SIZE},
    {IDC_OAUTH_WINDOW_HEIGHT, DSOAuthConfiguration::FIELD_WINDOW_SIZE},
    {IDC_OAUTH_TOKEN_CACHE, DSOAuthConfiguration::FIELD_TOKEN_CACHE},
};

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    return DSBaseDialog::InputMapLog<DSOAuthConfiguration>(in_window);
}

/// The flow selected in the list; nothing when none is.
std::optional<unsigned> SelectedFlow(IDialogWindow* in_window)
{
    const int index = in_window->ComboGetCurSel(IDC_OAUTH_FLOW);
    if (index < 0)
    {
        return std::nullopt;
    }
    return static_cast<unsigned>(index);
}
}  // namespace

bool DSOAuthOptionsDialog::Show(IDialogWindow* in_parent, DSOAuthConfiguration* in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    return RunModal(in_parent, IDD_OAUTH_OPTIONS, &ActionProc, in_configuration) != 0;
}

std::intptr_t DSOAuthOptionsDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                               std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    const auto initialize = [&](DSOAuthConfiguration* in_input) {
        Initialize(in_window, in_input);
        CheckEnableButtons(in_window);
    };
    if (const auto handled =
            RouteCommonMessages<DSOAuthConfiguration>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    switch (LowWord(in_wParam))
    {
        case IDC_OAUTH_FLOW:
            if (HighWord(in_wParam) != CBN_SELCHANGE)
            {
                return 0;
            }
            GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] { CheckEnableButtons(in_window); });
            return 1;
        case IDC_OAUTH_ENCRYPTION_OPTIONS:
            GuardAction(in_window, LoggerOf(in_window), NS, CLS,
                        [&] { DoEncryptionOptionsAction(in_window); });
            return 1;
        case IDC_OAUTH_SSL_OPTIONS:
            GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] { DoSSLOptionsAction(in_window); });
            return 1;
        default:
            return RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction,
                                 &DoCancelAction);
    }
}

void DSOAuthOptionsDialog::Initialize(IDialogWindow* in_window, DSOAuthConfiguration* in_configuration)
{
    StoreInputMap(in_window, in_configuration);
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Initialize");
    CenterDialog(in_window);

    for (const tarni_wstring& name : DSOAuthConfiguration::FlowNames())
    {
        AddComboString(in_window, IDC_OAUTH_FLOW, name);
    }
    // A stored flow the list does not know selects nothing: the user must choose.
    const std::optional<unsigned> flow = in_configuration->GetFlow();
    if (flow && *flow < DSOAuthConfiguration::FlowNames().size())
    {
        in_window->ComboSetCurSel(IDC_OAUTH_FLOW, static_cast<int>(*flow));
    }

    SetDlgItemString(in_window, IDC_OAUTH_ACCESS_TOKEN, in_configuration->GetAccessToken());
    SetDlgItemString(in_window, IDC_OAUTH_CLIENT_ID, in_configuration->GetClientId());
    SetDlgItemString(in_window, IDC_OAUTH_CLIENT_SECRET, in_configuration->GetClientSecret());
    for (const TextBinding& binding : TEXT_FIELDS)
    {
        SetDlgItemString(in_window, binding.id, in_configuration->Get(binding.key));
    }

    for (const tarni_wstring_view method : CODE_CHALLENGE_METHODS)
    {
        AddComboString(in_window, IDC_OAUTH_CODE_CHALLENGE, method);
    }
    // The stronger method unless another one is stored.
    const tarni_wstring storedMethod = in_configuration->Get(Keys::OAuth2CodeChallengeMethod);
    int methodIndex = 0;
    for (int i = 0; i < static_cast<int>(std::size(CODE_CHALLENGE_METHODS)); ++i)
    {
        if (StringConverter::EqualsIgnoreCase(storedMethod, CODE_CHALLENGE_METHODS[i]))
        {
            methodIndex = i;
        }
    }
    in_window->ComboSetCurSel(IDC_OAUTH_CODE_CHALLENGE, methodIndex);

    in_window->CheckButton(IDC_OAUTH_TOKEN_CACHE, in_configuration->Get(Keys::OAuth2EnableTokenCache) == u"1");
    in_window->CheckButton(IDC_OAUTH_IGNORE_NOPROMPT,
                           in_configuration->Get(Keys::OAuthIgnoreDriverNoPrompt) == u"1");
}

void DSOAuthOptionsDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    const std::optional<unsigned> flow = SelectedFlow(in_window);
    for (const auto& [id, field] : FLOW_CONTROLS)
    {
        in_window->EnableItem(id, flow && DSOAuthConfiguration::FlowUses(*flow, field));
    }
    in_window->EnableItem(IDC_OAUTH_SSL_OPTIONS, true);
}

void DSOAuthOptionsDialog::DoOkAction(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<DSOAuthConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoOkAction");
    const std::optional<unsigned> flow = SelectedFlow(in_window);
    const auto uses = [&](Field in_field) { return flow && DSOAuthConfiguration::FlowUses(*flow, in_field); };
    const auto text = [&](int in_id) { return GetDlgItemString(in_window, in_id); };

    // Everything is checked before anything is stored: a refused value
    // leaves the configuration as it was and the dialog open.
    if (uses(DSOAuthConfiguration::FIELD_AUTHORIZATION_END_POINT))
    {
        DSOAuthConfiguration::CheckEndPoint(u"Authorization End Point", text(IDC_OAUTH_AUTH_END_POINT));
    }
    if (uses(DSOAuthConfiguration::FIELD_TOKEN_END_POINT))
    {
        DSOAuthConfiguration::CheckEndPoint(u"Token End Point", text(IDC_OAUTH_TOKEN_END_POINT));
    }
    if (uses(DSOAuthConfiguration::FIELD_REDIRECT))
    {
        DSOAuthConfiguration::CheckRedirect(u"Redirect Port or URI", text(IDC_OAUTH_REDIRECT));
    }
    if (uses(DSOAuthConfiguration::FIELD_WEB_SERVER_TIMEOUT))
    {
        DSOAuthConfiguration::CheckNumber(u"Web Server Timeout", text(IDC_OAUTH_WEB_SERVER_TIMEOUT));
    }
    if (uses(DSOAuthConfiguration::FIELD_WINDOW_SIZE))
    {
        DSOAuthConfiguration::CheckNumber(u"Browser Window Width", text(IDC_OAUTH_WINDOW_WIDTH));
        DSOAuthConfiguration::CheckNumber(u"Browser Window Height", text(IDC_OAUTH_WINDOW_HEIGHT));
    }

    if (flow)
    {
        configuration->SetFlow(*flow);
    }
    // Fields of other flows keep what they hold, so switching back loses nothing.
    configuration->SetAccessToken(text(IDC_OAUTH_ACCESS_TOKEN));
    configuration->SetClientId(text(IDC_OAUTH_CLIENT_ID));
    configuration->SetClientSecret(text(IDC_OAUTH_CLIENT_SECRET));
    for (const TextBinding& binding : TEXT_FIELDS)
    {
        configuration->Set(binding.key, text(binding.id));
    }
    const int method = in_window->ComboGetCurSel(IDC_OAUTH_CODE_CHALLENGE);
    if (method >= 0)
    {
        configuration->Set(Keys::OAuth2CodeChallengeMethod, CODE_CHALLENGE_METHODS[method]);
    }
    configuration->Set(Keys::OAuth2EnableTokenCache, in_window->IsButtonChecked(IDC_OAUTH_TOKEN_CACHE) ? u"1" : u"0");
    configuration->Set(Keys::OAuthIgnoreDriverNoPrompt,
                       in_window->IsButtonChecked(IDC_OAUTH_IGNORE_NOPROMPT) ? u"1" : u"0");

    // The secret of the chosen flow is dropped on save unless it is encrypted: say so now.
    DSDialogMessageBoxHost boxes(*in_window);
    if (uses(DSOAuthConfiguration::FIELD_ACCESS_TOKEN))
    {
        configuration->GetAccessTokenCredential().ShowPwdNotSavedInfoMsg(boxes);
    }
    else if (uses(DSOAuthConfiguration::FIELD_CLIENT_SECRET))
    {
        configuration->GetClientSecretCredential().ShowPwdNotSavedInfoMsg(boxes);
    }
    in_window->EndDialog(1);
}

void DSOAuthOptionsDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}

void DSOAuthOptionsDialog::DoEncryptionOptionsAction(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<DSOAuthConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoEncryptionOptionsAction");
    if (DSPasswordOptionsDialog::Show(in_window, &configuration->GetClientSecretCredential()))
    {
        configuration->ShareEncryptionOptions();
    }
}
void DSOAuthOptionsDialog::DoSSLOptionsAction(IDialogWindow* in_window)
{
    auto* configuration = GetInputMap<DSOAuthConfiguration>(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoSSLOptionsAction");
    // The identity provider's end points: the one-way variant over their own
    // "OAuth_" settings; SSL itself may be switched.
    DSSSLDialog::Show(in_window, &configuration->GetSSLConfiguration(), true);
}
}  // namespace Tarni::DriverSupport
