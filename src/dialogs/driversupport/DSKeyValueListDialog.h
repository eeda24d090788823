#pragma once
// The property list dialogs: a sorted list of "key=value" entries with Add,
// Edit and Remove, each pair edited in the Edit Property dialog. One dialog
// procedure and one set of list operations serve every such dialog (the
// server-side properties, template 132, and the HTTP properties, template
// 9110); each derived dialog has its own Initialize and OK. The procedure
// reaches the live dialog object through a process-wide pointer set on the
// initialisation message.
#include <tuple>
#include <utility>

#include "dialogs/driversupport/DSEditPropertyDialog.h"
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/ConfigurationMap.h"

namespace Tarni::DriverSupport
{
class DSKeyValueListDialog
{
public:
    DSKeyValueListDialog(unsigned in_templateId, ConfigurationMap& io_properties, Support::ILogger* in_logger);
    virtual ~DSKeyValueListDialog();

    DSKeyValueListDialog(const DSKeyValueListDialog&) = delete;
    DSKeyValueListDialog& operator=(const DSKeyValueListDialog&) = delete;

    /// Runs the dialog modally, owned by in_parent. OK and Cancel both end it
    /// with 1 (-1: it could not be created); only OK changes the properties.
    std::intptr_t Show(Platform::IDialogWindow* in_parent);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// OK (in_command 1): writes the list and the dialog's own controls back.
    virtual void DoOkAction(unsigned in_command) = 0;
    /// Fills the list and the dialog's own controls.
    virtual void Initialize(Platform::IDialogWindow* in_window) = 0;

    /// "key=value" split at the first "="; without one, the whole text is the key.
    static std::pair<tarni_wstring, tarni_wstring> SplitEntry(tarni_wstring_view in_entry);
    static tarni_wstring JoinEntry(tarni_wstring_view in_key, tarni_wstring_view in_value);

protected:
    /// Keeps the window, centres it and lists the properties.
    void InitializeList(Platform::IDialogWindow* in_window);
    /// Edit and Remove are enabled exactly while an entry is selected.
    void RefreshButtons();
    /// The list as a property map (a later equal key replaces an earlier
    /// one); an entry without a key is an internal error.
    ConfigurationMap ReadList() const;

    Platform::IDialogWindow* m_window = nullptr;
    ConfigurationMap& m_properties;
    Support::ILogger* m_logger;

private:
    /// Runs Edit Property over m_current until its key is not a duplicate of
    /// another entry (Retry) or the user gives up; true when the pair is to
    /// be taken. in_index: the entry being edited, -1 for a new one.
    bool EditEntry(int in_index, bool in_isNew);
    void OnAdd();
    void OnEdit();
    void OnRemove();

    unsigned m_templateId;
    DSEditPropertyDialog::Context m_current;

    static DSKeyValueListDialog* s_current;
};
}  // namespace Tarni::DriverSupport
