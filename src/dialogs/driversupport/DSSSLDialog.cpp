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

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSSSLDialog";

DSSSLDialog::State* StateOf(IDialogWindow* in_window) { return DSBaseDialog::GetInputMap<DSSSLDialog::State>(in_window); }

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    const auto* state = StateOf(in_window);
    return state != nullptr ? state->GetLog() : nullptr;
}

tarni_wstring Switch(bool in_on) { return in_on ? u"1" : u"0"; }
}  // namespace

unsigned DSSSLDialog::TemplateOf(const DSSSLConfiguration& in_configuration)
{
    return in_configuration.IsTwoWaySSLSupported() ? IDD_SSL_OPTIONS_TWO_WAY : IDD_SSL_OPTIONS;
}

bool DSSSLDialog::Show(IDialogWindow* in_parent, DSSSLConfiguration* in_configuration, bool in_mayChangeSsl)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    State state;
    state.configuration = in_configuration;
    state.mayChangeSsl = in_mayChangeSsl;
    return RunModal(in_parent, TemplateOf(*in_configuration), &ActionProc, &state) != 0;
}

std::intptr_t DSSSLDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam,
                                      std::intptr_t in_lParam)
{
    const auto initialize = [&](State* in_input) {
        Initialize(in_window, in_input);
    };
    if (const auto handled = RouteCommonMessages<State>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    const int id = static_cast<int>(LowWord(in_wParam));
    if (HighWord(in_wParam) != BN_CLICKED)
    {
        // Edits and the list decide no enabled state.
        return id == IDOK || id == IDCANCEL ? RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS,
                                                            &DoOkAction, &DoCancelAction)
                                            : 0;
    }
    std::intptr_t handled = 1;
    GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] {
        switch (id)
        {
            case IDC_SSL_ENABLE:
                StateOf(in_window)->sslToggled = true;
                CheckEnableButtons(in_window);
                break;
            case IDC_SSL_ALLOW_SELF_SIGNED:
            case IDC_SSL_USE_SYSTEM_TRUST_STORE:
            case IDC_SSL_TWO_WAY:
                CheckEnableButtons(in_window);
                break;
            case IDC_SSL_BROWSE_TRUSTED_CERTS:
                BrowseForFile(in_window, IDC_SSL_TRUSTED_CERTS);
                break;
            case IDC_SSL_BROWSE_CLIENT_CERT:
                BrowseForFile(in_window, IDC_SSL_CLIENT_CERT);
                break;
            case IDC_SSL_BROWSE_CLIENT_KEY:
                BrowseForFile(in_window, IDC_SSL_CLIENT_KEY);
                break;
            case IDC_SSL_PASSWORD_OPTIONS:
                DSPasswordOptionsDialog::Show(in_window, &StateOf(in_window)->configuration->GetClientKeyCredentials());
                break;
            case IDOK:
                DoOkAction(in_window);
                break;
            case IDCANCEL:
                DoCancelAction(in_window);
                break;
            default:
                handled = 0;
                break;
        }
    });
    return handled;
}

void DSSSLDialog::ReadSwitchIntoCheckBox(IDialogWindow* in_window, int in_id, tarni_wstring_view in_value,
                                         tarni_wstring_view in_key, Support::ILogger* in_logger)
{
    if (StringConverter::EqualsIgnoreCase(in_value, u"1") || StringConverter::EqualsIgnoreCase(in_value, u"0"))
    {
        in_window->CheckButton(in_id, in_value == u"1");
        return;
    }
    in_window->CheckButton(in_id, false);
    if (!in_value.empty() && in_logger != nullptr)
    {
        in_logger->LogWarning(NS, CLS, "Initialize", "Connection string contains invalid data type: %s.",
                              StringConverter::ToUtf8(in_key).c_str());
    }
}

void DSSSLDialog::Initialize(IDialogWindow* in_window, State* in_state)
{
    StoreInputMap(in_window, in_state);
    DSSSLConfiguration& ssl = *in_state->configuration;
    Support::ILogger* logger = ssl.GetLog();
    TARNI_LOG_ENTRY(logger, NS, CLS, "Initialize");
    CenterDialog(in_window);
    const tarni_wstring& prefix = ssl.GetPrefix();
    const auto readSwitch = [&](int in_id, const tarni_wstring& in_value, tarni_wstring_view in_name) {
        ReadSwitchIntoCheckBox(in_window, in_id, in_value, prefix + tarni_wstring(in_name), logger);
    };

    readSwitch(IDC_SSL_ENABLE, ssl.GetSsl(), Keys::SSL);
    in_window->EnableItem(IDC_SSL_ENABLE, in_state->mayChangeSsl);
    if (ssl.IsForcedSSL())
    {
        in_window->CheckButton(IDC_SSL_ENABLE, true);
        in_window->EnableItem(IDC_SSL_ENABLE, false);
    }
    readSwitch(IDC_SSL_ALLOW_HOST_MISMATCH, ssl.GetAllowHostNameCNMismatch(), Keys::AllowHostNameCNMismatch);
    readSwitch(IDC_SSL_ALLOW_SELF_SIGNED, ssl.GetAllowSelfSignedServerCert(), Keys::AllowSelfSignedServerCert);
    readSwitch(IDC_SSL_USE_SYSTEM_TRUST_STORE, ssl.GetUseSystemTrustStore(), Keys::UseSystemTrustStore);
    readSwitch(IDC_SSL_CHECK_REVOCATION, ssl.GetCheckCertRevocation(), Keys::CheckCertRevocation);
    SetDlgItemString(in_window, IDC_SSL_TRUSTED_CERTS, ssl.GetTrustedCerts());
    ssl.WarnIfTrustedCertsMissing();

    if (ssl.IsEnableMinTlsDlgElement())
    {
        const bool unrestrictedPermitted = DSSSLConfiguration::IsUnrestrictedTlsPermitted();
        for (const auto version : {DSSSLConfiguration::TLS_1_0, DSSSLConfiguration::TLS_1_1, DSSSLConfiguration::TLS_1_2})
        {
            AddComboString(in_window, IDC_SSL_MIN_TLS, DSSSLConfiguration::MinTlsText(version));
        }
        if (unrestrictedPermitted)
        {
            AddComboString(in_window, IDC_SSL_MIN_TLS, DSSSLConfiguration::MinTlsText(DSSSLConfiguration::TLS_UNRESTRICTED));
        }
        const auto fallback = DSSSLConfiguration::GetDefaultMinTls();
        auto version = DSSSLConfiguration::ParseMinTls(ssl.GetMinTlsVer(), fallback);
        if (version == DSSSLConfiguration::TLS_UNRESTRICTED && !unrestrictedPermitted)
        {
            version = fallback;
        }
        const tarni_wstring stored = ssl.GetMinTlsVer();
        if (logger != nullptr && !stored.empty() &&
            !StringConverter::EqualsIgnoreCase(stored, DSSSLConfiguration::MinTlsText(version)))
        {
            logger->LogWarning(NS, CLS, "Initialize", "%s \"%s\" is not offered; showing \"%s\".",
                               StringConverter::ToUtf8(prefix + tarni_wstring(Keys::Min_TLS)).c_str(),
                               StringConverter::ToUtf8(stored).c_str(),
                               StringConverter::ToUtf8(DSSSLConfiguration::MinTlsText(version)).c_str());
        }
        in_window->ComboSetCurSel(IDC_SSL_MIN_TLS, static_cast<int>(version));
    }
    else
    {
        in_window->ShowItem(IDC_SSL_MIN_TLS, false);
        in_window->ShowItem(IDC_SSL_MIN_TLS_LABEL, false);
    }

    if (in_window->HasItem(IDC_SSL_TWO_WAY))
    {
        readSwitch(IDC_SSL_TWO_WAY, ssl.GetTwoWaySSL(), Keys::TwoWaySSL);
        SetDlgItemString(in_window, IDC_SSL_CLIENT_CERT, ssl.GetClientCert());
        SetDlgItemString(in_window, IDC_SSL_CLIENT_KEY, ssl.GetClientPrivateKeyFile());
        SetDlgItemString(in_window, IDC_SSL_CLIENT_KEY_PASSWORD, ssl.GetClientPrivateKeyPassword());
    }
    CheckEnableButtons(in_window);
}

void DSSSLDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "CheckEnableButtons");
    const bool ssl = in_window->IsButtonChecked(IDC_SSL_ENABLE);
    const bool selfSigned = in_window->IsButtonChecked(IDC_SSL_ALLOW_SELF_SIGNED);
    const bool systemStore = in_window->IsButtonChecked(IDC_SSL_USE_SYSTEM_TRUST_STORE);
    for (const int id : {IDC_SSL_ALLOW_HOST_MISMATCH, IDC_SSL_ALLOW_SELF_SIGNED, IDC_SSL_USE_SYSTEM_TRUST_STORE,
                         IDC_SSL_MIN_TLS})
    {
        in_window->EnableItem(id, ssl);
    }
    in_window->EnableItem(IDC_SSL_TRUSTED_CERTS, ssl && !systemStore);
    in_window->EnableItem(IDC_SSL_BROWSE_TRUSTED_CERTS, ssl && !systemStore);
    in_window->EnableItem(IDC_SSL_CHECK_REVOCATION, ssl && !selfSigned && systemStore);
    if (in_window->HasItem(IDC_SSL_TWO_WAY))
    {
        const bool twoWay = ssl && in_window->IsButtonChecked(IDC_SSL_TWO_WAY);
        in_window->EnableItem(IDC_SSL_TWO_WAY, ssl);
        for (const int id : {IDC_SSL_CLIENT_CERT, IDC_SSL_BROWSE_CLIENT_CERT, IDC_SSL_CLIENT_KEY,
                             IDC_SSL_BROWSE_CLIENT_KEY, IDC_SSL_CLIENT_KEY_PASSWORD, IDC_SSL_PASSWORD_OPTIONS})
        {
            in_window->EnableItem(id, twoWay);
        }
    }
}

void DSSSLDialog::DoOkAction(IDialogWindow* in_window)
{
    State* state = StateOf(in_window);
    DSSSLConfiguration& ssl = *state->configuration;
    TARNI_LOG_ENTRY(ssl.GetLog(), NS, CLS, "DoOkAction");
    const auto checked = [in_window](int in_id) { return Switch(in_window->IsButtonChecked(in_id)); };
    ssl.SetSsl(checked(IDC_SSL_ENABLE), state->sslToggled);
    ssl.SetAllowHostNameCNMismatch(checked(IDC_SSL_ALLOW_HOST_MISMATCH));
    ssl.SetAllowSelfSignedServerCert(checked(IDC_SSL_ALLOW_SELF_SIGNED));
    ssl.SetTrustedCerts(GetDlgItemString(in_window, IDC_SSL_TRUSTED_CERTS));
    ssl.SetUseSystemTrustStore(checked(IDC_SSL_USE_SYSTEM_TRUST_STORE));
    ssl.SetCheckCertRevocation(checked(IDC_SSL_CHECK_REVOCATION));
    if (ssl.IsEnableMinTlsDlgElement())
    {
        const int selected = in_window->ComboGetCurSel(IDC_SSL_MIN_TLS);
        if (selected >= 0)
        {
            ssl.SetMinTlsVer(in_window->ComboGetItemText(IDC_SSL_MIN_TLS, selected));
        }
    }
    if (in_window->HasItem(IDC_SSL_TWO_WAY))
    {
        ssl.SetTwoWaySSL(checked(IDC_SSL_TWO_WAY));
        ssl.SetClientCert(GetDlgItemString(in_window, IDC_SSL_CLIENT_CERT));
        ssl.SetClientPrivateKeyFile(GetDlgItemString(in_window, IDC_SSL_CLIENT_KEY));
        ssl.SetClientPrivateKeyPassword(GetDlgItemString(in_window, IDC_SSL_CLIENT_KEY_PASSWORD));
        DSDialogMessageBoxHost boxes(*in_window);
        ssl.ShowPwdNotSavedInfoMsg(boxes);
    }
    in_window->EndDialog(1);
}

void DSSSLDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::DriverSupport
