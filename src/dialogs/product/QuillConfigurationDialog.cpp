#include "dialogs/product/QuillConfigurationDialog.h"

#include <initializer_list>
#include <optional>

#include "dialogs/framework/DSDialogMessageBoxHost.h"
#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/framework/DSMessageCatalogue.h"
#include "dialogs/driversupport/DSHttpPropertiesDialog.h"
#include "dialogs/driversupport/DSOAuthOptionsDialog.h"
#include "dialogs/driversupport/DSLoggingDialog.h"
#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/driversupport/DSProxyConfigurationDialog.h"
#include "dialogs/driversupport/DSTestResultDialog.h"
#include "dialogs/product/QuillAdvancedOptionsDialog.h"
#include "dialogs/driversupport/DSSSLDialog.h"
#include "dialogs/product/QuillAOSSDialog.h"
#include "dialogs/product/QuillZkDialog.h"
#include "dialogs/thrift/TEDFIDialog.h"
#include "dialogs/thrift/TESAMLDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/ProductSettingKeys.h"
#include "product/SOAllowedTransports.h"
#include "product/SOConfigurationTables.h"
#include "product/SOProductSettings.h"
#include "product/SOUtils.h"
#include "thrift/connectiontest/TEConnectionTesterFactory.h"
#include "resource.h"
#include "core/ComponentId.h"
#include "core/NumberConverter.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using namespace Platform;
using DriverSupport::DSBaseDialog;
using DriverSupport::DSProductHelper;
namespace Keys = DriverSupport::Keys;
using Tables = SOConfigurationTables;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillConfigurationDialog";
// The test action logs under the class name of the product's setup dialog.
const char* const TEST_CLS = "SOConfigurationDialog";

/// The characters a data source name may not contain.
constexpr tarni_wstring_view DSN_NAME_REFUSED_CHARACTERS = u"[]{}(),;?*=!@\\";
/// Buffer of the name read on OK: at most 32 characters and the terminator.
constexpr int DSN_NAME_BUFFER = 33;
/// Buffer of the combo texts read back.
constexpr int COMBO_TEXT_BUFFER = 5000;

/// Every control whose enabled state CheckEnableButtons decides.
constexpr int RULE_BOUND_CONTROLS[] = {
    IDOK,
    IDC_TEST,
    IDC_DSN_NAME,
    IDC_DSN_DESCRIPTION,
    IDC_HOSTS,
    IDC_PORT,
    IDC_DATABASE,
    IDC_SERVER_TYPE,
    IDC_AUTH_MECH,
    IDC_KRB_REALM,
    IDC_KRB_HOST_FQDN,
    IDC_KRB_SERVICE_NAME,
    IDC_CANONICALIZE_PRINCIPAL,
    IDC_DELEGATE_KRB_CREDS,
    IDC_USER_NAME,
    IDC_PASSWORD,
    IDC_PASSWORD_OPTIONS,
    IDC_SERVICE_DISCOVERY_MODE,
    IDC_SERVICE_DISCOVERY_OPTIONS,
    IDC_SSL_OPTIONS,
    IDC_HTTP_OPTIONS,
    IDC_PROXY_OPTIONS,
    IDC_OAUTH_OPTIONS,
    IDC_SAML_OPTIONS,
    IDC_DFI_OPTIONS,
    IDC_DELEGATION_UID,
};

// The loader of DSBaseDialog with the main dialog's own step and fallback.
class MainDialogStrings : public DSBaseDialog
{
public:
    static tarni_wstring Load(unsigned in_id)
    {
        static const tarni_wstring fallback = u"Error loading the string";
        return LoadResourceStringInSteps(in_id, 256, fallback);
    }
};

// Sets a flag for the lifetime of the object, also when the scope is left by an exception.
class FlagScope
{
public:
    explicit FlagScope(bool& io_flag) : m_flag(io_flag), m_previous(io_flag) { m_flag = true; }
    ~FlagScope() { m_flag = m_previous; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& m_flag;
    bool m_previous;
};

// What a connection test changes and puts back: the three no-prompt switches
// of the interactive sign-in flows are forced on, so that the attempt never
// waits for a browser or a prompt, and the plain password stays in the map
// while the Test Results dialog runs. The destructor turns the drop switch
// on again and restores the three keys, whether the test ended normally or
// by an exception.
class ConnectionTestScope
{
public:
    explicit ConnectionTestScope(QuillConfiguration& io_configuration) : m_configuration(io_configuration)
    {
        for (std::size_t i = 0; i < std::size(KEYS); ++i)
        {
            if (m_configuration.GetMap().Contains(KEYS[i]))
            {
                m_saved[i] = m_configuration.GetValue(KEYS[i]);
            }
            m_configuration.SetValue(KEYS[i], u"1");
        }
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
    }

    ~ConnectionTestScope()
    {
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
        for (std::size_t i = 0; i < std::size(KEYS); ++i)
        {
            if (m_saved[i])
            {
                m_configuration.SetValue(KEYS[i], *m_saved[i]);
            }
            else
            {
                m_configuration.GetMap().Remove(KEYS[i]);
            }
        }
    }

    ConnectionTestScope(const ConnectionTestScope&) = delete;
    ConnectionTestScope& operator=(const ConnectionTestScope&) = delete;

private:
    static constexpr tarni_wstring_view KEYS[] = {Keys::SSOIgnoreDriverNoPrompt, Keys::OCIIgnoreDriverNoPrompt,
                                                  Keys::OAuthIgnoreDriverNoPrompt};
    QuillConfiguration& m_configuration;
    std::optional<tarni_wstring> m_saved[std::size(KEYS)];
};

tarni_wstring Switch(bool in_on) { return in_on ? u"1" : u"0"; }

tarni_wstring Number(unsigned in_value) { return StringConverter::FromNumber(static_cast<unsigned long long>(in_value)); }

bool IsOneOf(unsigned in_value, std::initializer_list<unsigned> in_values)
{
    for (const unsigned value : in_values)
    {
        if (value == in_value)
        {
            return true;
        }
    }
    return false;
}
}  // namespace

QuillConfigurationDialog* QuillConfigurationDialog::s_dialog = nullptr;

QuillConfigurationDialog::QuillConfigurationDialog(QuillConfiguration& io_configuration, Support::ILogger* in_logger)
    : m_configuration(io_configuration), m_logger(in_logger)
{
}

QuillConfigurationDialog::~QuillConfigurationDialog()
{
    if (s_dialog == this)
    {
        s_dialog = nullptr;
    }
}

tarni_wstring QuillConfigurationDialog::LoadResourceString(unsigned in_id) { return MainDialogStrings::Load(in_id); }

std::intptr_t QuillConfigurationDialog::Show(IDialogWindow* in_parent, unsigned in_templateId)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Show");
    m_isDsnDialog = in_templateId == IDD_DSN_SETUP;
    return DSBaseDialog::RunModal(in_parent, in_templateId, &ActionProc, this);
}

std::intptr_t QuillConfigurationDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                                   std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    if (in_message == WM_INITDIALOG)
    {
        s_dialog = reinterpret_cast<QuillConfigurationDialog*>(in_lParam);
        s_dialog->m_window = in_window;
        DSBaseDialog::GuardAction(in_window, s_dialog->m_logger, NS, CLS, [&] { s_dialog->Initialize(in_window); });
        return 1;
    }
    if (in_message == WM_DESTROY || in_message == WM_NCDESTROY)
    {
        return 1;
    }
    if (in_message != WM_COMMAND || s_dialog == nullptr)
    {
        return 0;
    }
    QuillConfigurationDialog& dialog = *s_dialog;
    const int id = static_cast<int>(LowWord(in_wParam));
    const unsigned code = HighWord(in_wParam);
    std::intptr_t handled = 1;
    DSBaseDialog::GuardAction(in_window, dialog.m_logger, NS, CLS, [&] {
        switch (id)
        {
            case IDOK:
            case IDCANCEL:
                dialog.DoOkAction(static_cast<unsigned>(id));
                break;
            case IDC_DSN_NAME:
            case IDC_HOSTS:
            case IDC_DATABASE:
            case IDC_PORT:
            case IDC_SERVER_TYPE:
            case IDC_AUTH_MECH:
            case IDC_KRB_HOST_FQDN:
            case IDC_KRB_SERVICE_NAME:
            case IDC_SERVICE_DISCOVERY_MODE:
            case IDC_THRIFT_TRANSPORT:
                if (code != EN_UPDATE && code != CBN_SELCHANGE)
                {
                    handled = 0;
                }
                else if (!dialog.m_isUpdating)
                {
                    // Notifications caused by the handler itself (texts it
                    // sets, lists it refills) arrive while the flag is set.
                    dialog.OnControlChanged(id);
                }
                break;
            case IDC_TEST:
                dialog.DoTestAction(in_window);
                break;
            case IDC_PASSWORD_OPTIONS:
                DriverSupport::DSPasswordOptionsDialog::Show(in_window, &dialog.m_configuration.GetCredentials());
                dialog.CheckEnableButtons();
                break;
            case IDC_SERVICE_DISCOVERY_OPTIONS:
                dialog.OpenServiceDiscoveryOptions();
                break;
            case IDC_SSL_OPTIONS:
                dialog.OpenSslOptions();
                break;
            case IDC_LOGGING_OPTIONS:
                dialog.OpenLoggingOptions();
                break;
            case IDC_PROXY_OPTIONS:
                DriverSupport::DSProxyConfigurationDialog::Show(in_window,
                                                                &dialog.m_configuration.GetProxyConfiguration());
                dialog.CheckEnableButtons();
                break;
            case IDC_ADVANCED_OPTIONS:
                QuillAdvancedOptionsDialog(dialog.m_configuration, dialog.GetSelectedServerTypeFromDlg(),
                                           dialog.m_allowEditing)
                    .Show(in_window);
                dialog.CheckEnableButtons();
                break;
            case IDC_HTTP_OPTIONS:
                // The DFI service has a fixed HTTP path.
                DriverSupport::DSHttpPropertiesDialog(dialog.m_configuration,
                                                      dialog.m_configuration.GetHttpHeaderGroup(),
                                                      dialog.GetSelectedServerTypeFromDlg() != Tables::SERVER_DFI)
                    .Show(in_window);
                dialog.CheckEnableButtons();
                break;
            case IDC_DFI_OPTIONS:
            {
                ThriftExtension::TEDFIDialog dfi;
                dfi.Show(in_window, &dialog.m_configuration.GetDFIConfiguration());
                break;
            }
            case IDC_OAUTH_OPTIONS:
                DriverSupport::DSOAuthOptionsDialog::Show(in_window, &dialog.m_configuration.GetOAuthConfiguration());
                dialog.CheckEnableButtons();
                break;
            case IDC_SAML_OPTIONS:
            {
                ThriftExtension::TESAMLDialog saml;
                saml.Show(in_window, &dialog.m_configuration);
                dialog.CheckEnableButtons();
                break;
            }
            default:
                handled = 0;
                break;
        }
    });
    return handled;
}

void QuillConfigurationDialog::SetControlText(int in_id, tarni_wstring_view in_text)
{
    DSBaseDialog::SetDlgItemString(m_window, in_id, in_text);
}

void QuillConfigurationDialog::EnableControl(int in_id, bool in_enable) { m_window->EnableItem(in_id, in_enable); }

bool QuillConfigurationDialog::HasControl(int in_id) { return m_window->HasItem(in_id); }

tarni_wstring QuillConfigurationDialog::Text(int in_id) const { return DSBaseDialog::GetDlgItemString(m_window, in_id); }

// ------------------------------------------------------------------ initialisation

void QuillConfigurationDialog::Initialize(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Initialize");
    m_window = in_window;
    // Filling the text fields notifies like typing would; nothing is to be
    // handled before the dialog is complete.
    FlagScope updating(m_isUpdating);
    DSBaseDialog::CenterDialog(in_window);
    FillCombos();
    SelectStoredValues();
    FillTextFields();
    const tarni_wstring bitness = LoadResourceString(sizeof(void*) == 8 ? IDS_BITNESS_64 : IDS_BITNESS_32);
    SetControlText(IDC_VERSION_LABEL, u"v" + DSProductHelper::GetProductIdentity().version + bitness);
    CheckEnableButtons();
    WarnAboutUnrecoveredSecrets();
}

void QuillConfigurationDialog::WarnAboutUnrecoveredSecrets()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "WarnAboutUnrecoveredSecrets");
    if (m_recoveryWarningShown)
    {
        return;
    }
    tarni_wstring lines;
    for (const DriverSupport::DSUidPwdConfiguration* credential : m_configuration.GetCredentialComponents())
    {
        if (const auto& error = credential->GetRecoveryError())
        {
            // The key and why; never the value.
            lines += u"\r\n" + credential->GetKeySet().EncryptedPwd() + u": " +
                     DriverSupport::DSDialogModule::GetErrorText(*error) + u"\r\n";
        }
    }
    if (lines.empty())
    {
        return;
    }
    m_recoveryWarningShown = true;
    if (m_logger != nullptr)
    {
        m_logger->LogWarning(NS, CLS, "WarnAboutUnrecoveredSecrets",
                             "Stored secrets that could not be recovered are kept as stored; the user is told.");
    }
    m_window->GetHost().MessageBox(m_window,
                                   LoadResourceString(IDS_SECRET_NOT_RECOVERED_TEXT) + lines +
                                       LoadResourceString(IDS_SECRET_NOT_RECOVERED_HINT),
                                   LoadResourceString(IDS_SECRET_NOT_RECOVERED_TITLE), MB_OK | MB_ICONEXCLAMATION);
}

bool QuillConfigurationDialog::IsOffered(unsigned in_authMech) const
{
    switch (in_authMech)
    {
        case Tables::AUTH_NONE:
        case Tables::AUTH_KERBEROS:
        case Tables::AUTH_USER_NAME:
        case Tables::AUTH_USER_NAME_PASSWORD:
        case Tables::AUTH_OAUTH2:
            return true;
        case Tables::AUTH_HDINSIGHT_EMULATOR:
        case Tables::AUTH_HDINSIGHT_SERVICE:
            return !DSProductHelper::IsSettingOne(DriverSupport::ProductSettingKeys::SupressHdinsight);
        case Tables::AUTH_SAML2:
            return m_samlOffered;
        case Tables::AUTH_MAPR_SASL:
            return DSProductHelper::IsSettingOne(DriverSupport::ProductSettingKeys::SupportMaprsasl);
        default:
            // "User Name and Password (SSL)" and the four HTTP mechanisms are kept
            // for stored values only and never listed.
            return false;
    }
}

void QuillConfigurationDialog::FillCombos()
{
    for (const auto& name : Tables::ServerTypeNames())
    {
        DSBaseDialog::AddComboString(m_window, IDC_SERVER_TYPE, name);
    }
    const auto& modes = Tables::ServiceDiscoveryModeNames();
    for (unsigned mode = Tables::SD_NONE; mode <= Tables::SD_AOSS; ++mode)
    {
        if (SOProductSettings::IsServiceDiscoveryModeSupported(mode))
        {
            DSBaseDialog::AddComboString(m_window, IDC_SERVICE_DISCOVERY_MODE, modes[mode]);
        }
    }
    const auto& mechanisms = Tables::AuthMechNames();
    for (unsigned mech = 0; mech < mechanisms.size(); ++mech)
    {
        if (IsOffered(mech))
        {
            DSBaseDialog::AddComboString(m_window, IDC_AUTH_MECH, mechanisms[mech]);
        }
    }
    for (const auto& name : Tables::TransportNames())
    {
        DSBaseDialog::AddComboString(m_window, IDC_THRIFT_TRANSPORT, name);
    }
}

void QuillConfigurationDialog::SelectStoredValues()
{
    const auto serverType = Support::NumberConverter::ToUInt32(m_configuration.GetValue(Keys::SparkServerType));
    m_currentServerType = serverType && *serverType >= Tables::SERVER_SHARK && *serverType <= Tables::SERVER_DFI
                              ? *serverType
                              : SOProductSettings::GetDefaultServerType();
    m_window->ComboSetCurSel(IDC_SERVER_TYPE, static_cast<int>(m_currentServerType) - 1);

    m_rememberedMode = SOUtils::ConvertStrToServiceDiscoveryMode(m_configuration.GetValue(Keys::ServiceDiscoveryMode),
                                                                 m_logger, true);
    SelectServiceDiscoveryModeOnDialog(m_rememberedMode);

    const auto mech = Support::NumberConverter::ToUInt32(m_configuration.GetValue(Keys::AuthMech));
    m_currentAuthMech = mech && *mech < Tables::AUTH_END ? *mech : SOProductSettings::GetDefaultAuthMech();
    SelectAuthMechOnDialog(m_currentAuthMech);

    // Without a stored transport the first one allowed for the server type
    // and mechanism is shown (and stored by OK).
    const auto transport = Support::NumberConverter::ToUInt32(m_configuration.GetValue(Keys::ThriftTransport));
    m_rememberedTransport = transport && *transport < Tables::TransportNames().size()
                                ? *transport
                                : SOAllowedTransports::GetDefault(m_currentServerType, m_currentAuthMech);
    SelectTransportOnDialog(m_rememberedTransport);
}

void QuillConfigurationDialog::FillTextFields()
{
    if (m_isDsnDialog)
    {
        SetControlText(IDC_DSN_NAME, m_configuration.GetDsnName());
        SetControlText(IDC_DSN_DESCRIPTION, m_configuration.GetValue(Keys::DESCRIPTION));
        SetControlText(IDC_HOSTS, m_configuration.GetValue(Keys::Host));
        SetControlText(IDC_PORT, m_configuration.GetValue(Keys::Port));
        SetControlText(IDC_DATABASE, m_configuration.GetValue(Keys::Schema));
    }
    SetControlText(IDC_KRB_REALM, m_configuration.GetValue(Keys::KrbRealm));
    SetControlText(IDC_KRB_HOST_FQDN, m_configuration.GetValue(Keys::KrbHostFQDN));
    SetControlText(IDC_KRB_SERVICE_NAME, m_configuration.GetValue(Keys::KrbServiceName));
    m_window->CheckButton(IDC_CANONICALIZE_PRINCIPAL,
                          m_configuration.GetValue(Keys::ServicePrincipalCanonicalization) == u"1");
    m_window->CheckButton(IDC_DELEGATE_KRB_CREDS, m_configuration.GetValue(Keys::DelegateKrbCreds) == u"1");
    SetControlText(IDC_USER_NAME, m_configuration.GetCredentials().GetUid());
    SetControlText(IDC_PASSWORD, m_configuration.GetCredentials().GetPwd());
    SetControlText(IDC_DELEGATION_UID, m_configuration.GetValue(Keys::DelegationUID));
}

// ------------------------------------------------------------------ combos

unsigned QuillConfigurationDialog::GetSelectedServerTypeFromDlg() const
{
    const int index = m_window->ComboGetCurSel(IDC_SERVER_TYPE);
    return index < 0 ? SOProductSettings::GetDefaultServerType() : static_cast<unsigned>(index) + 1;
}

unsigned QuillConfigurationDialog::GetSelectedServiceDiscoveryModeFromDlg() const
{
    if (!SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_ZOOKEEPER) &&
        !SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_AOSS))
    {
        return Tables::SD_NONE;
    }
    return SOUtils::ConvertStrToServiceDiscoveryMode(Text(IDC_SERVICE_DISCOVERY_MODE), m_logger, true);
}

unsigned QuillConfigurationDialog::GetSelectedAuthMechFromDlg() const
{
    const tarni_wstring text = m_window->GetItemText(IDC_AUTH_MECH, COMBO_TEXT_BUFFER);
    return Tables::AuthMechFromName(text).value_or(Tables::AUTH_END);
}

unsigned QuillConfigurationDialog::GetSelectedTransportFromDlg() const
{
    const tarni_wstring text = m_window->GetItemText(IDC_THRIFT_TRANSPORT, COMBO_TEXT_BUFFER);
    return Tables::TransportFromName(text).value_or(static_cast<unsigned>(Tables::TransportNames().size()));
}

void QuillConfigurationDialog::SelectServiceDiscoveryModeOnDialog(unsigned in_mode)
{
    const auto& names = Tables::ServiceDiscoveryModeNames();
    const int index = in_mode < names.size()
                          ? m_window->ComboFindStringExact(IDC_SERVICE_DISCOVERY_MODE, names[in_mode])
                          : DIALOG_LIST_ERROR;
    m_window->ComboSetCurSel(IDC_SERVICE_DISCOVERY_MODE, index);
}

void QuillConfigurationDialog::SelectAuthMechOnDialog(unsigned in_authMech)
{
    const auto& names = Tables::AuthMechNames();
    const int index =
        in_authMech < names.size() ? m_window->ComboFindStringExact(IDC_AUTH_MECH, names[in_authMech]) : DIALOG_LIST_ERROR;
    m_window->ComboSetCurSel(IDC_AUTH_MECH, index);
}

void QuillConfigurationDialog::SelectTransportOnDialog(unsigned in_transport)
{
    const auto& names = Tables::TransportNames();
    const int index = in_transport < names.size()
                          ? m_window->ComboFindStringExact(IDC_THRIFT_TRANSPORT, names[in_transport])
                          : DIALOG_LIST_ERROR;
    m_window->ComboSetCurSel(IDC_THRIFT_TRANSPORT, index);
}

void QuillConfigurationDialog::FillTransports(unsigned in_serverType, unsigned in_authMech, unsigned in_preferred)
{
    DSBaseDialog::ClearCombo(m_window, IDC_THRIFT_TRANSPORT);
    for (const unsigned transport : SOAllowedTransports::Get(in_serverType, in_authMech))
    {
        DSBaseDialog::AddComboString(m_window, IDC_THRIFT_TRANSPORT, Tables::TransportNames()[transport]);
    }
    SelectTransportOnDialog(SOAllowedTransports::IsAllowed(in_serverType, in_authMech, in_preferred)
                                ? in_preferred
                                : SOAllowedTransports::GetDefault(in_serverType, in_authMech));
}

// ------------------------------------------------------------------ change handler

void QuillConfigurationDialog::OnControlChanged(int in_id)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "OnControlChanged");
    FlagScope updating(m_isUpdating);
    switch (in_id)
    {
        case IDC_SERVER_TYPE:
            OnServerTypeChanged();
            break;
        case IDC_AUTH_MECH:
            OnAuthMechChanged();
            break;
        case IDC_SERVICE_DISCOVERY_MODE:
            m_rememberedMode = GetSelectedServiceDiscoveryModeFromDlg();
            break;
        case IDC_THRIFT_TRANSPORT:
            // SharkServer has one transport: choosing it is not a choice to remember.
            if (m_currentServerType != Tables::SERVER_SHARK)
            {
                m_rememberedTransport = GetSelectedTransportFromDlg();
            }
            break;
        default:
            // Texts only change which controls apply.
            break;
    }
    CheckEnableButtons();
}

void QuillConfigurationDialog::OnServerTypeChanged()
{
    const unsigned selected = GetSelectedServerTypeFromDlg();
    if (selected == m_currentServerType)
    {
        return;
    }
    if (selected == Tables::SERVER_DFI)
    {
        // The DFI service: user name and password over HTTPS on port 443.
        SelectServiceDiscoveryModeOnDialog(Tables::SD_NONE);
        SelectAuthMechOnDialog(Tables::AUTH_USER_NAME_PASSWORD);
        FillTransports(selected, Tables::AUTH_USER_NAME_PASSWORD, Tables::TRANSPORT_HTTP);
        if (HasControl(IDC_PORT))
        {
            SetControlText(IDC_PORT, u"443");
        }
        m_configuration.GetSSLConfiguration().SetSsl(u"1", false);
        m_configuration.SetValue(Keys::HTTPPath, u"cliservice");
    }
    else if (selected == Tables::SERVER_SHARK)
    {
        // The first Shark server: no discovery, no authentication, Binary.
        SelectServiceDiscoveryModeOnDialog(Tables::SD_NONE);
        SelectAuthMechOnDialog(Tables::AUTH_NONE);
        FillTransports(selected, Tables::AUTH_NONE, Tables::TRANSPORT_BINARY);
    }
    else if (m_currentServerType == Tables::SERVER_SHARK || m_currentServerType == Tables::SERVER_DFI)
    {
        // Back from a server type that fixed the choices: the user's own again.
        if (m_currentServerType == Tables::SERVER_DFI)
        {
            m_configuration.GetSSLConfiguration().LoadLastUserSelectedSslConfig();
        }
        SelectServiceDiscoveryModeOnDialog(m_rememberedMode);
        SelectAuthMechOnDialog(m_currentAuthMech);
        FillTransports(selected, m_currentAuthMech, m_rememberedTransport);
    }
    m_currentServerType = selected;
}

void QuillConfigurationDialog::OnAuthMechChanged()
{
    const unsigned mech = GetSelectedAuthMechFromDlg();
    if (mech == m_currentAuthMech)
    {
        return;
    }
    FillTransports(m_currentServerType, mech, m_rememberedTransport);
    m_currentAuthMech = mech;
    if (mech < Tables::AUTH_END)
    {
        m_configuration.SetValue(Keys::AuthMech, Number(mech));
    }
}

// ------------------------------------------------------------------ enabled states

void QuillConfigurationDialog::CheckEnableButtons()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "CheckEnableButtons");
    const unsigned serverType = GetSelectedServerTypeFromDlg();
    const unsigned mech = GetSelectedAuthMechFromDlg();
    const unsigned transport = GetSelectedTransportFromDlg();
    const unsigned mode = GetSelectedServiceDiscoveryModeFromDlg();

    std::map<int, bool>& enabled = m_enabledControls;
    enabled.clear();
    for (const int id : RULE_BOUND_CONTROLS)
    {
        enabled[id] = true;
    }
    enabled[IDC_DELEGATION_UID] = serverType != Tables::SERVER_SHARK;
    const auto disable = [&enabled](std::initializer_list<int> in_ids) {
        for (const int id : in_ids)
        {
            enabled[id] = false;
        }
    };

    // 1. The first Shark server has neither discovery nor authentication.
    if (serverType == Tables::SERVER_SHARK)
    {
        disable({IDC_SERVICE_DISCOVERY_MODE, IDC_SERVICE_DISCOVERY_OPTIONS, IDC_AUTH_MECH, IDC_KRB_REALM,
                 IDC_KRB_HOST_FQDN, IDC_KRB_SERVICE_NAME, IDC_DELEGATE_KRB_CREDS, IDC_CANONICALIZE_PRINCIPAL,
                 IDC_USER_NAME, IDC_PASSWORD, IDC_DELEGATION_UID, IDC_SSL_OPTIONS, IDC_HTTP_OPTIONS,
                 IDC_PASSWORD_OPTIONS});
    }

    if (serverType == Tables::SERVER_DFI)
    {
        // 2. DFI fixes discovery, port and mechanism; its credentials live in the DFI options.
        disable({IDC_SERVICE_DISCOVERY_MODE, IDC_SERVICE_DISCOVERY_OPTIONS, IDC_PORT, IDC_AUTH_MECH, IDC_KRB_REALM,
                 IDC_KRB_HOST_FQDN, IDC_KRB_SERVICE_NAME, IDC_DELEGATE_KRB_CREDS, IDC_CANONICALIZE_PRINCIPAL,
                 IDC_USER_NAME, IDC_PASSWORD, IDC_PASSWORD_OPTIONS, IDC_OAUTH_OPTIONS});
    }
    else
    {
        // 3. What the mechanism takes.
        const bool samlWithCredentials =
            mech == Tables::AUTH_SAML2 && m_configuration.GetValue(Keys::SSOUseCredentials) == u"1";
        if (mech != Tables::AUTH_KERBEROS)
        {
            disable({IDC_KRB_REALM, IDC_KRB_HOST_FQDN, IDC_KRB_SERVICE_NAME, IDC_DELEGATE_KRB_CREDS,
                     IDC_CANONICALIZE_PRINCIPAL});
        }
        else if (Text(IDC_KRB_HOST_FQDN).empty() || Text(IDC_KRB_SERVICE_NAME).empty())
        {
            disable({IDOK, IDC_TEST});
        }
        if (!IsOneOf(mech, {Tables::AUTH_USER_NAME, Tables::AUTH_USER_NAME_PASSWORD, Tables::AUTH_HDINSIGHT_EMULATOR,
                            Tables::AUTH_HDINSIGHT_SERVICE}) &&
            !samlWithCredentials)
        {
            disable({IDC_USER_NAME});
        }
        if (mech != Tables::AUTH_OAUTH2)
        {
            disable({IDC_OAUTH_OPTIONS});
        }
        if (mech != Tables::AUTH_SAML2)
        {
            disable({IDC_SAML_OPTIONS});
        }
        if (!IsOneOf(mech, {Tables::AUTH_USER_NAME_PASSWORD, Tables::AUTH_HDINSIGHT_EMULATOR,
                            Tables::AUTH_HDINSIGHT_SERVICE}) &&
            !samlWithCredentials)
        {
            disable({IDC_PASSWORD, IDC_PASSWORD_OPTIONS});
        }
        if (transport != Tables::TRANSPORT_HTTP)
        {
            disable({IDC_HTTP_OPTIONS});
        }

        // 4. Service discovery finds the port itself; without it the port is needed.
        if (mode == Tables::SD_NONE)
        {
            disable({IDC_SERVICE_DISCOVERY_OPTIONS});
            if (HasControl(IDC_PORT) && Text(IDC_PORT).empty())
            {
                disable({IDOK, IDC_TEST});
            }
        }
        else
        {
            // The options button stays as the rules above left it.
            disable({IDC_PORT});
        }
        disable({IDC_DFI_OPTIONS});
    }

    // 5. A data source needs a host.
    if (HasControl(IDC_HOSTS) && Text(IDC_HOSTS).empty())
    {
        disable({IDOK, IDC_TEST});
    }

    // 6. And a name.
    if (m_isDsnDialog && Text(IDC_DSN_NAME).empty())
    {
        disable({IDOK});
    }
    if (!m_dsnNameEditable)
    {
        disable({IDC_DSN_NAME});
    }

    // 7. Read-only.
    if (!m_allowEditing)
    {
        disable({IDC_DSN_NAME, IDC_DSN_DESCRIPTION, IDC_DATABASE, IDC_SERVER_TYPE, IDC_AUTH_MECH, IDC_KRB_REALM,
                 IDC_DELEGATE_KRB_CREDS, IDC_CANONICALIZE_PRINCIPAL, IDC_USER_NAME, IDC_DELEGATION_UID,
                 IDC_HTTP_OPTIONS, IDC_PROXY_OPTIONS, IDC_DFI_OPTIONS});
    }

    // 8. Apply.
    for (const auto& [id, on] : enabled)
    {
        EnableControl(id, on);
    }
}

// ------------------------------------------------------------------ option dialogs

void QuillConfigurationDialog::OpenServiceDiscoveryOptions()
{
    switch (GetSelectedServiceDiscoveryModeFromDlg())
    {
        case Tables::SD_ZOOKEEPER:
            QuillZkDialog::Show(m_window, &m_configuration);
            break;
        case Tables::SD_AOSS:
            QuillAOSSDialog::Show(m_window, &m_configuration, m_allowEditing);
            break;
        default:
            // No discovery, no options.
            break;
    }
    CheckEnableButtons();
}

void QuillConfigurationDialog::OpenSslOptions()
{
    // DFI connects over HTTPS only: SSL is on and stays on. Every transport
    // takes SSL (a TLS socket for Binary and SASL, HTTPS for HTTP), so the
    // transport does not restrict it.
    DriverSupport::DSSSLConfiguration& ssl = m_configuration.GetSSLConfiguration();
    const bool dfi = GetSelectedServerTypeFromDlg() == Tables::SERVER_DFI;
    if (dfi)
    {
        ssl.SetSsl(u"1", false);
    }
    DriverSupport::DSSSLDialog::Show(m_window, &ssl, m_allowEditing && !dfi);
}

void QuillConfigurationDialog::OpenLoggingOptions()
{
    // An import there replaces the whole configuration: what is typed here
    // goes into it first, and the controls show the result afterwards.
    ReadConfigValuesFromDlg();
    DriverSupport::DSLoggingDialog::Show(m_window, &m_configuration);
    FlagScope updating(m_isUpdating);
    const tarni_wstring typedName = m_isDsnDialog ? Text(IDC_DSN_NAME) : tarni_wstring();
    for (const int combo : {IDC_SERVER_TYPE, IDC_SERVICE_DISCOVERY_MODE, IDC_AUTH_MECH, IDC_THRIFT_TRANSPORT})
    {
        DSBaseDialog::ClearCombo(m_window, combo);
    }
    FillCombos();
    SelectStoredValues();
    FillTextFields();
    if (m_isDsnDialog)
    {
        SetControlText(IDC_DSN_NAME, typedName);
    }
    CheckEnableButtons();
}

// ------------------------------------------------------------------ OK, Cancel, Test

void QuillConfigurationDialog::ReadConfigValuesFromDlg()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "ReadConfigValuesFromDlg");
    if (m_isDsnDialog)
    {
        m_configuration.SetValue(Keys::DESCRIPTION, Text(IDC_DSN_DESCRIPTION));
        m_configuration.SetValue(Keys::Host, Text(IDC_HOSTS));
        m_configuration.SetValue(Keys::Port, Text(IDC_PORT));
        m_configuration.SetValue(Keys::Schema, Text(IDC_DATABASE));
    }
    m_configuration.SetValue(Keys::SparkServerType, Number(GetSelectedServerTypeFromDlg()));
    m_configuration.SetValue(Keys::ServiceDiscoveryMode,
                             Tables::ServiceDiscoveryModeNames()[GetSelectedServiceDiscoveryModeFromDlg()]);
    // A stored mechanism or transport that the lists do not offer stays as stored.
    const unsigned mech = GetSelectedAuthMechFromDlg();
    if (mech < Tables::AUTH_END)
    {
        m_configuration.SetValue(Keys::AuthMech, Number(mech));
    }
    const unsigned transport = GetSelectedTransportFromDlg();
    if (transport < Tables::TransportNames().size())
    {
        m_configuration.SetValue(Keys::ThriftTransport, Number(transport));
    }
    m_configuration.SetValue(Keys::KrbRealm, Text(IDC_KRB_REALM));
    m_configuration.SetValue(Keys::KrbHostFQDN, Text(IDC_KRB_HOST_FQDN));
    m_configuration.SetValue(Keys::KrbServiceName, Text(IDC_KRB_SERVICE_NAME));
    m_configuration.SetValue(Keys::ServicePrincipalCanonicalization,
                             Switch(m_window->IsButtonChecked(IDC_CANONICALIZE_PRINCIPAL)));
    m_configuration.SetValue(Keys::DelegateKrbCreds, Switch(m_window->IsButtonChecked(IDC_DELEGATE_KRB_CREDS)));
    m_configuration.GetCredentials().SetUid(Text(IDC_USER_NAME));
    m_configuration.GetCredentials().SetPwd(Text(IDC_PASSWORD));
    m_configuration.SetValue(Keys::DelegationUID, Text(IDC_DELEGATION_UID));
}

void QuillConfigurationDialog::ShowValidationBox(const tarni_wstring& in_title, const tarni_wstring& in_text)
{
    if (m_logger != nullptr)
    {
        m_logger->LogInfo(NS, CLS, "DoOkAction", "%s", StringConverter::ToUtf8(in_text).c_str());
    }
    m_window->GetHost().MessageBox(m_window, in_text, in_title, MB_OK | MB_ICONINFORMATION);
}

bool QuillConfigurationDialog::CheckOAuthCredentials()
{
    const auto present = [this](tarni_wstring_view in_plain, tarni_wstring_view in_protected) {
        // A secret loaded in its protected form counts as entered.
        return !m_configuration.GetValue(in_plain).empty() || !m_configuration.GetValue(in_protected).empty();
    };
    const auto flow = Support::NumberConverter::ToUInt32(m_configuration.GetValue(Keys::Auth_Flow));
    std::vector<tarni_wstring> parameters;
    unsigned fallbackId = 0;
    if (!flow)
    {
        parameters = {u"Authentication Flow", u"\"Authentication Flow\""};
        fallbackId = IDS_OAUTH_FLOW_MISSING_TEXT;
    }
    else if (*flow == 1)
    {
        if (!m_configuration.GetValue(Keys::Auth_Client_ID).empty() &&
            present(Keys::Auth_Client_Secret, Keys::Auth_Encrypted_Client_Secret))
        {
            return true;
        }
        parameters = {u"Authorization URL and Client Credential",
                      u"\"Authorization URL\", \"Client ID\" and \"Client Secret\"."};
        fallbackId = IDS_OAUTH_CLIENT_CRED_TEXT;
    }
    else if (*flow == 0)
    {
        if (present(Keys::Auth_AccessToken, Keys::Auth_Encrypted_Access_Token))
        {
            return true;
        }
        parameters = {u"Access token", u"\"Access Token\"."};
        fallbackId = IDS_OAUTH_ACCESS_TOKEN_TEXT;
    }
    else
    {
        // The browser flows ask for everything when they connect.
        return true;
    }
    ShowValidationBox(LoadResourceString(IDS_OAUTH_REQUIRED_TITLE),
                      DriverSupport::DSMessageCatalogue::GetOr(Support::PRODUCT_ERROR,
                                                               u"QuillEmptyOAuthCredentialsErr", parameters,
                                                               LoadResourceString(fallbackId)));
    return false;
}

bool QuillConfigurationDialog::ValidateDsnInput(tarni_wstring& out_name)
{
    out_name = m_window->GetItemText(IDC_DSN_NAME, DSN_NAME_BUFFER);
    if (out_name.empty())
    {
        ShowValidationBox(LoadResourceString(IDS_INVALID_DSN_TITLE), LoadResourceString(IDS_DSN_NAME_EMPTY));
        return false;
    }
    if (out_name.find_first_of(DSN_NAME_REFUSED_CHARACTERS) != tarni_wstring::npos)
    {
        ShowValidationBox(LoadResourceString(IDS_INVALID_DSN_TITLE), LoadResourceString(IDS_DSN_NAME_INVALID_CHARS));
        return false;
    }
    if (GetSelectedServiceDiscoveryModeFromDlg() == Tables::SD_ZOOKEEPER &&
        m_configuration.GetValue(Keys::ZKNamespace).empty())
    {
        ShowValidationBox(LoadResourceString(IDS_ZK_NAMESPACE_REQUIRED_TITLE),
                          DriverSupport::DSMessageCatalogue::GetOr(Support::PRODUCT_ERROR, u"QuillEmptyZkNamespaceErr",
                                                                   {},
                                                                   LoadResourceString(IDS_ZK_NAMESPACE_REQUIRED_TEXT)));
        return false;
    }
    if (GetSelectedAuthMechFromDlg() == Tables::AUTH_OAUTH2 && !CheckOAuthCredentials())
    {
        return false;
    }
    return true;
}

void QuillConfigurationDialog::DoOkAction(unsigned in_id)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DoOkAction");
    if (in_id == IDCANCEL)
    {
        m_window->EndDialog(0);
        return;
    }
    if (m_isDsnDialog)
    {
        tarni_wstring name;
        if (!ValidateDsnInput(name))
        {
            return;
        }
        m_configuration.SetDsnName(name);
    }
    ReadConfigValuesFromDlg();
    // A password typed here is saved only encrypted; when no scope is chosen
    // it is dropped on save, and the user is told so now.
    if (m_window->IsItemEnabled(IDC_PASSWORD) && !Text(IDC_PASSWORD).empty())
    {
        DriverSupport::DSDialogMessageBoxHost boxes(*m_window);
        m_configuration.GetCredentials().ShowPwdNotSavedInfoMsg(boxes);
    }
    if (m_saveAction)
    {
        m_saveAction(m_window);
    }
    m_window->EndDialog(1);
}

void QuillConfigurationDialog::DoTestAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(m_logger, NS, TEST_CLS, "DoTestAction");
    ReadConfigValuesFromDlg();
    ConnectionTestScope testScope(m_configuration);
    DriverSupport::IConnectionTester* tester =
        m_tester != nullptr ? m_tester : &ThriftExtension::TEConnectionTesterFactory::GetDefault();
    DriverSupport::DSTestResultDialog::Input input{&m_configuration, tester};
    DriverSupport::DSTestResultDialog::Show(in_window, &input);
}
}  // namespace Tarni::SparkODBC
