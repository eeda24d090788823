#pragma once
// The Advanced Options dialog (template 129): the tuning and behaviour
// switches of the configuration, eleven check boxes and eight fields, each
// bound to one key, and the buttons of the Server Side Properties and
// Temporary Table Configuration dialogs. Out-of-range numbers are corrected
// silently on OK. The dialog procedure reaches the live dialog object through
// a process-wide pointer set on the initialisation message.
#include "dialogs/framework/DSBaseDialog.h"
#include "product/QuillConfiguration.h"

namespace Tarni::SparkODBC
{
class QuillAdvancedOptionsDialog
{
public:
    /// in_serverType: the server type selected in the main dialog (1 to 4);
    /// in_allowEditing: the main dialog's allow-editing flag.
    QuillAdvancedOptionsDialog(QuillConfiguration& io_configuration, unsigned in_serverType, bool in_allowEditing);
    ~QuillAdvancedOptionsDialog();

    QuillAdvancedOptionsDialog(const QuillAdvancedOptionsDialog&) = delete;
    QuillAdvancedOptionsDialog& operator=(const QuillAdvancedOptionsDialog&) = delete;

    /// Runs the dialog owned by the main dialog. OK and Cancel both end it
    /// with 1 (-1: it could not be created); only OK writes.
    std::intptr_t Show(Platform::IDialogWindow* in_parent);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// Whether the product offers temporary tables: the Temporary Table
    /// Configuration button is shown only then. Off in this program.
    void SetTempTablesOffered(bool in_offered) { m_tempTablesOffered = in_offered; }

    void Initialize(Platform::IDialogWindow* in_window);
    /// Writes every control to its key in a fixed order, then ends with 1.
    void DoOkAction();

    /// The value of a numeric field as the edit control gives it: an unsigned
    /// decimal number (blanks around it allowed), 0 when it is empty, not a
    /// number or too large.
    static unsigned ReadNumber(Platform::IDialogWindow* in_window, int in_id);

private:
    bool IsSharkServer() const { return m_serverType == 1; }
    /// The server types that apply the asynchronous and table switches: 2, 3, 4.
    bool QueriesAllowed() const { return m_serverType >= 2 && m_serverType <= 4; }
    void FillFields();
    void FillCheckBoxes();
    void ApplyEnabling();
    void OpenServerSideProperties();
    void OpenTempTableConfiguration();

    QuillConfiguration& m_configuration;
    Support::ILogger* m_logger;
    Platform::IDialogWindow* m_window = nullptr;
    unsigned m_serverType;
    bool m_allowEditing;
    bool m_tempTablesOffered = false;

    static QuillAdvancedOptionsDialog* s_dialog;
};
}  // namespace Tarni::SparkODBC
