#pragma once
// The main configuration dialog: template 1092 (driver-wide configuration,
// what this program shows) and template 1093 (DSN setup, which adds the data
// source name, description, host(s), port, database and a Test button). It
// fills the controls from the configuration, keeps the server type, service
// discovery mode, mechanism and transport consistent with each other while
// the user changes them, enables the controls that apply, opens the option
// dialogs and writes the controls back on OK. The dialog procedure reaches
// the one live dialog object through a process-wide pointer set on the
// initialisation message.
#include <cstdint>
#include <functional>
#include <map>

#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/IConnectionTester.h"
#include "product/QuillConfiguration.h"

namespace Tarni::SparkODBC
{
class QuillConfigurationDialog
{
public:
    /// The save step of OK (after the controls are written into the
    /// configuration); the window owns any box it shows. A throw keeps the
    /// dialog open.
    using SaveAction = std::function<void(Platform::IDialogWindow* in_owner)>;

    QuillConfigurationDialog(QuillConfiguration& io_configuration, Support::ILogger* in_logger);
    virtual ~QuillConfigurationDialog();

    QuillConfigurationDialog(const QuillConfigurationDialog&) = delete;
    QuillConfigurationDialog& operator=(const QuillConfigurationDialog&) = delete;

    /// Runs the dialog modally from the template: 1 after OK, 0 after Cancel,
    /// -1 when it cannot be created.
    std::intptr_t Show(Platform::IDialogWindow* in_parent, unsigned in_templateId);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// The main dialog's own string loader: steps of 256 characters, and
    /// "Error loading the string" (no full stop) when the load fails.
    static tarni_wstring LoadResourceString(unsigned in_id);

    // --- set by the creator before Show ---
    /// Clear: the dialog runs read-only (set by default).
    void SetAllowEditing(bool in_allow) { m_allowEditing = in_allow; }
    bool IsAllowEditing() const { return m_allowEditing; }
    /// Whether the data source name may be changed: set for a new DSN (set by default).
    void SetDsnNameEditable(bool in_editable) { m_dsnNameEditable = in_editable; }
    /// The save step of OK: the configuration's save, with the dialog window
    /// as the owner of any error box. A failed save keeps the dialog open
    /// with every input, so the user can correct the cause or cancel.
    void SetSaveAction(SaveAction in_action) { m_saveAction = std::move(in_action); }
    /// Who attempts the connection of the Test button; null (the default): the
    /// build's own tester (ThriftExtension::TEConnectionTesterFactory).
    void SetConnectionTester(DriverSupport::IConnectionTester* in_tester) { m_tester = in_tester; }
    /// The offer switch of "SAML_2.0"; off in this program.
    void SetSamlOffered(bool in_offered) { m_samlOffered = in_offered; }

    // --- virtual operations used by the dialog procedure ---
    virtual void SetControlText(int in_id, tarni_wstring_view in_text);
    /// The Test button of the DSN setup: the controls are written into the
    /// configuration, the three no-prompt switches are set and plain
    /// passwords are kept while the Test Results dialog attempts a
    /// connection; afterwards (also after an error) all of it is put back.
    virtual void DoTestAction(Platform::IDialogWindow* in_window);
    virtual void EnableControl(int in_id, bool in_enable);
    virtual bool HasControl(int in_id);

    void Initialize(Platform::IDialogWindow* in_window);
    /// Recomputes which controls are enabled from the controls' contents and
    /// applies it; the result is kept in GetEnabledControls.
    void CheckEnableButtons();
    /// The change handler: a combo selection or a text of the controls that
    /// decide the enabled states has changed.
    void OnControlChanged(int in_id);
    /// OK (validate, write back, save, end with 1) or Cancel (end with 0).
    void DoOkAction(unsigned in_id);
    /// Writes every control into the configuration.
    void ReadConfigValuesFromDlg();

    /// Selected values of the combos: server type 1..4, mode 0..2, mechanism
    /// (14: none or unknown), transport (3: none or unknown).
    unsigned GetSelectedServerTypeFromDlg() const;
    unsigned GetSelectedServiceDiscoveryModeFromDlg() const;
    unsigned GetSelectedAuthMechFromDlg() const;
    unsigned GetSelectedTransportFromDlg() const;

    /// Select the entry named after the value; a value the list does not
    /// hold leaves no entry selected.
    void SelectServiceDiscoveryModeOnDialog(unsigned in_mode);
    void SelectAuthMechOnDialog(unsigned in_authMech);
    void SelectTransportOnDialog(unsigned in_transport);

    /// Control id -> enabled, as the last CheckEnableButtons decided.
    const std::map<int, bool>& GetEnabledControls() const { return m_enabledControls; }

private:
    void FillCombos();
    void SelectStoredValues();
    void FillTextFields();
    /// Fills the transport list with the transports allowed for the server
    /// type and mechanism and selects in_preferred, or the first entry when
    /// in_preferred is not allowed.
    void FillTransports(unsigned in_serverType, unsigned in_authMech, unsigned in_preferred);
    void OnServerTypeChanged();
    void OnAuthMechChanged();
    void OpenServiceDiscoveryOptions();
    /// SSL Options over the driver's SSL settings; with DFI selected, SSL is
    /// on and cannot be switched off.
    void OpenSslOptions();
    /// Tells the user, once per dialog, which stored secrets could not be
    /// recovered and that they are kept as stored.
    void WarnAboutUnrecoveredSecrets();
    /// Logging Options over the configuration, then the controls refilled
    /// from it (an import may have replaced it).
    void OpenLoggingOptions();
    /// The checks of OK in the DSN setup; false after a box has told the user
    /// what is missing.
    bool ValidateDsnInput(tarni_wstring& out_name);
    bool CheckOAuthCredentials();
    void ShowValidationBox(const tarni_wstring& in_title, const tarni_wstring& in_text);
    bool IsOffered(unsigned in_authMech) const;
    tarni_wstring Text(int in_id) const;

    QuillConfiguration& m_configuration;
    Support::ILogger* m_logger;
    Platform::IDialogWindow* m_window = nullptr;

    unsigned m_currentServerType = 0;
    unsigned m_rememberedMode = 0;
    unsigned m_rememberedTransport = 0;
    unsigned m_currentAuthMech = 0;

    bool m_dsnNameEditable = true;
    bool m_isDsnDialog = false;
    bool m_allowEditing = true;
    bool m_isUpdating = false;
    bool m_samlOffered = false;
    bool m_recoveryWarningShown = false;
    std::map<int, bool> m_enabledControls;

    SaveAction m_saveAction;
    DriverSupport::IConnectionTester* m_tester = nullptr;

    static QuillConfigurationDialog* s_dialog;
};
}  // namespace Tarni::SparkODBC
