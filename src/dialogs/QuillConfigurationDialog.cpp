#include "dialogs/QuillConfigurationDialog.h"

#include "dialogs/DSDialogMessageBoxHost.h"
#include "dialogs/DSPasswordOptionsDialog.h"
#include "dialogs/QuillZkDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/ProductSettingKeys.h"
#include "product/SOConfigurationTables.h"
#include "product/SOProductSettings.h"
#include "product/SOUtils.h"
#include "resource.h"
#include "support/NumberConverter.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using namespace Platform;
using DriverSupport::DSBaseDialog;
using DriverSupport::DSProductHelper;
namespace Keys = DriverSupport::Keys;
using Tables = SOConfigurationTables;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillConfigurationDialog";

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

std::optional<unsigned> ParseUnsigned(const tarni_wstring& in_text)
{
    return Support::NumberConverter::ToUInt32(in_text);
}

tarni_wstring Switch(bool in_on) { return in_on ? u"1" : u"0"; }
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

bool QuillConfigurationDialog::IsDsnTemplate(unsigned in_templateId) { return in_templateId == IDD_DSN_SETUP; }

std::intptr_t QuillConfigurationDialog::Show(IDialogWindow* in_parent, unsigned in_templateId)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Show");
    m_isDsnDialog = IsDsnTemplate(in_templateId);
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
    const unsigned id = LowWord(in_wParam);
    const unsigned code = HighWord(in_wParam);
    std::intptr_t handled = 1;
    DSBaseDialog::GuardAction(in_window, dialog.m_logger, NS, CLS, [&] {
        switch (id)
        {
            case IDOK:
            case IDCANCEL:
                dialog.DoOkAction(id);
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
                if (code == EN_UPDATE || code == CBN_SELCHANGE)
                {
                    dialog.CheckEnableButtons();
                }
                else
                {
                    handled = 0;
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

void QuillConfigurationDialog::DoTestAction(IDialogWindow*)
{
    // The Test Results dialog belongs to the DSN variant and is not shown by
    // the driver-wide configuration.
}

void QuillConfigurationDialog::EnableControl(int in_id, bool in_enable) { m_window->EnableItem(in_id, in_enable); }

bool QuillConfigurationDialog::HasControl(int in_id) { return m_window->HasItem(in_id); }

tarni_wstring QuillConfigurationDialog::Text(int in_id) const { return DSBaseDialog::GetDlgItemString(m_window, in_id); }

void QuillConfigurationDialog::Initialize(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Initialize");
    m_window = in_window;
    DSBaseDialog::CenterDialog(in_window);
    FillCombos();
    SelectStoredValues();
    FillTextFields();
    const tarni_wstring bitness = LoadResourceString(sizeof(void*) == 8 ? IDS_BITNESS_64 : IDS_BITNESS_32);
    SetControlText(IDC_VERSION_LABEL, u"v" + DSProductHelper::GetProductIdentity().version + bitness);
    CheckEnableButtons();
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
    const bool hdInsight = !DSProductHelper::IsSettingOne(DriverSupport::ProductSettingKeys::SupressHdinsight);
    const bool maprSasl = DSProductHelper::IsSettingOne(DriverSupport::ProductSettingKeys::SupportMaprsasl);
    for (unsigned mech = 0; mech < mechanisms.size(); ++mech)
    {
        const bool offered = mech <= Tables::AUTH_USER_NAME_PASSWORD ||
                             ((mech == Tables::AUTH_HDINSIGHT_EMULATOR || mech == Tables::AUTH_HDINSIGHT_SERVICE) &&
                              hdInsight) ||
                             mech == Tables::AUTH_OAUTH2 || (mech == Tables::AUTH_MAPR_SASL && maprSasl);
        if (offered)
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
    const auto serverType = ParseUnsigned(m_configuration.GetValue(Keys::SparkServerType));
    const unsigned type = serverType && *serverType >= 1 && *serverType <= 4 ? *serverType
                                                                            : SOProductSettings::GetDefaultServerType();
    m_window->ComboSetCurSel(IDC_SERVER_TYPE, static_cast<int>(type) - 1);

    const unsigned mode = SOUtils::ConvertStrToServiceDiscoveryMode(
        m_configuration.GetValue(Keys::ServiceDiscoveryMode), m_logger, true);
    m_window->ComboSetCurSel(IDC_SERVICE_DISCOVERY_MODE,
                             m_window->ComboFindStringExact(IDC_SERVICE_DISCOVERY_MODE,
                                                            Tables::ServiceDiscoveryModeNames()[mode]));

    // A stored mechanism or transport that is not a known value shows the
    // product's default mechanism and "Binary".
    const auto mech = ParseUnsigned(m_configuration.GetValue(Keys::AuthMech));
    const unsigned shownMech = mech && *mech < Tables::AUTH_END ? *mech : SOProductSettings::GetDefaultAuthMech();
    m_window->ComboSetCurSel(IDC_AUTH_MECH,
                             m_window->ComboFindStringExact(IDC_AUTH_MECH, Tables::AuthMechNames()[shownMech]));
    const auto transport = ParseUnsigned(m_configuration.GetValue(Keys::ThriftTransport));
    const bool knownTransport = transport && *transport < Tables::TransportNames().size();
    m_window->ComboSetCurSel(IDC_THRIFT_TRANSPORT,
                             knownTransport ? static_cast<int>(*transport) : static_cast<int>(Tables::TRANSPORT_BINARY));
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
    const tarni_wstring text = m_window->GetItemText(IDC_AUTH_MECH, 5000);
    return Tables::AuthMechFromName(text).value_or(Tables::AUTH_END);
}

unsigned QuillConfigurationDialog::GetSelectedTransportFromDlg() const
{
    const tarni_wstring text = m_window->GetItemText(IDC_THRIFT_TRANSPORT, 5000);
    return Tables::TransportFromName(text).value_or(static_cast<unsigned>(Tables::TransportNames().size()));
}

void QuillConfigurationDialog::CheckEnableButtons()
{
    // The enabling rules that the option dialogs of this program need: the
    // service discovery options belong to a discovery mode, the password and
    // its options to the mechanisms that take a password.
    const unsigned mode = GetSelectedServiceDiscoveryModeFromDlg();
    EnableControl(IDC_SERVICE_DISCOVERY_OPTIONS, mode == Tables::SD_ZOOKEEPER || mode == Tables::SD_AOSS);
    const unsigned mech = GetSelectedAuthMechFromDlg();
    const bool password = mech == Tables::AUTH_USER_NAME_PASSWORD || mech == Tables::AUTH_HDINSIGHT_EMULATOR ||
                          mech == Tables::AUTH_HDINSIGHT_SERVICE;
    EnableControl(IDC_PASSWORD, password);
    EnableControl(IDC_PASSWORD_OPTIONS, password);
}

void QuillConfigurationDialog::OpenServiceDiscoveryOptions()
{
    switch (GetSelectedServiceDiscoveryModeFromDlg())
    {
        case Tables::SD_ZOOKEEPER:
            QuillZkDialog::Show(m_window, &m_configuration);
            break;
        default:
            // AOSS Options is opened by its own dialog class; mode 0 has no options.
            break;
    }
    CheckEnableButtons();
}

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
    m_configuration.SetValue(Keys::SparkServerType,
                             Support::StringConverter::FromNumber(
                                 static_cast<unsigned long long>(GetSelectedServerTypeFromDlg())));
    m_configuration.SetValue(Keys::ServiceDiscoveryMode,
                             Tables::ServiceDiscoveryModeNames()[GetSelectedServiceDiscoveryModeFromDlg()]);
    const unsigned mech = GetSelectedAuthMechFromDlg();
    if (mech < Tables::AUTH_END)
    {
        m_configuration.SetValue(Keys::AuthMech,
                                 Support::StringConverter::FromNumber(static_cast<unsigned long long>(mech)));
    }
    const unsigned transport = GetSelectedTransportFromDlg();
    if (transport < Tables::TransportNames().size())
    {
        m_configuration.SetValue(Keys::ThriftTransport,
                                 Support::StringConverter::FromNumber(static_cast<unsigned long long>(transport)));
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

void QuillConfigurationDialog::DoOkAction(unsigned in_id)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DoOkAction");
    if (in_id == IDCANCEL)
    {
        m_window->EndDialog(0);
        return;
    }
    ReadConfigValuesFromDlg();
    // A password typed here is saved only encrypted; when no scope is chosen
    // it is dropped on save, and the user is told so now.
    if (m_window->IsItemEnabled(IDC_PASSWORD) && !Text(IDC_PASSWORD).empty())
    {
        DriverSupport::DSDialogMessageBoxHost boxes(*m_window);
        m_configuration.GetCredentials().ShowPwdNotSavedInfoMsg(boxes);
    }
    m_window->EndDialog(1);
}
}  // namespace Tarni::SparkODBC
