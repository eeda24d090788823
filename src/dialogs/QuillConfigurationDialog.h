#pragma once
// The main configuration dialog: template 1092 (driver-wide configuration,
// what this program shows) and template 1093 (DSN setup). This class fills
// the controls from the configuration, opens the option dialogs and writes
// the controls back on OK. The dialog procedure reaches the one live dialog
// object through a process-wide pointer set on the initialisation message.
#include <cstdint>

#include "dialogs/DSBaseDialog.h"
#include "product/QuillConfiguration.h"

namespace Tarni::SparkODBC
{
class QuillConfigurationDialog
{
public:
    QuillConfigurationDialog(QuillConfiguration& io_configuration, Support::ILogger* in_logger);
    virtual ~QuillConfigurationDialog();

    /// Runs the dialog modally from the template: 1 after OK, 0 after Cancel,
    /// -1 when it cannot be created.
    std::intptr_t Show(Platform::IDialogWindow* in_parent, unsigned in_templateId);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// The main dialog's own string loader: steps of 256 characters, and
    /// "Error loading the string" (no full stop) when the load fails.
    static tarni_wstring LoadResourceString(unsigned in_id);

    // Virtual operations used by the dialog procedure.
    virtual void SetControlText(int in_id, tarni_wstring_view in_text);
    virtual void DoTestAction(Platform::IDialogWindow* in_window);
    virtual void EnableControl(int in_id, bool in_enable);
    virtual bool HasControl(int in_id);

    void Initialize(Platform::IDialogWindow* in_window);
    void CheckEnableButtons();
    void DoOkAction(unsigned in_id);
    /// Writes every control into the configuration.
    void ReadConfigValuesFromDlg();

    /// Selected values of the combos (see the fixed lists of the tables).
    unsigned GetSelectedServerTypeFromDlg() const;
    unsigned GetSelectedServiceDiscoveryModeFromDlg() const;
    unsigned GetSelectedAuthMechFromDlg() const;
    unsigned GetSelectedTransportFromDlg() const;

private:
    void FillCombos();
    void SelectStoredValues();
    void FillTextFields();
    void OpenServiceDiscoveryOptions();
    static bool IsDsnTemplate(unsigned in_templateId);
    tarni_wstring Text(int in_id) const;

    QuillConfiguration& m_configuration;
    Support::ILogger* m_logger;
    Platform::IDialogWindow* m_window = nullptr;
    bool m_isDsnDialog = false;

    static QuillConfigurationDialog* s_dialog;
};
}  // namespace Tarni::SparkODBC
