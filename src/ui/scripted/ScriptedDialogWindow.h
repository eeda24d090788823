#pragma once
// A dialog of the scripted host: the controls of its template held in
// memory. The dialog's controller drives it through IDialogWindow; a test
// drives it through the user operations below (type, click, select, press
// Enter or Escape, close box), each of which sends the notifications that
// Windows would send, in the same order.
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "ui/IDialogHost.h"
#include "ui/IDialogWindow.h"
#include "ui/DialogControlState.h"

namespace Tarni::Platform
{
class ScriptedDialogHost;

class ScriptedDialogWindow final : public IDialogWindow
{
public:
    ScriptedDialogWindow(ScriptedDialogHost& in_host, const DialogTemplate& in_template, IDialogWindow* in_parent,
                         DialogProcedure in_procedure);

    // --- what a user does (each fails the test when the control cannot take it) ---
    /// Replaces the text of an edit control as typing would; ES_NUMBER
    /// fields drop what is not a digit. Sends EN_UPDATE, then EN_CHANGE.
    void Type(int in_id, tarni_wstring_view in_text);
    /// Clicks a button: automatic check boxes toggle, automatic radio buttons
    /// check themselves and clear the others of their group; BN_CLICKED.
    void Click(int in_id);
    /// Selects the combo entry with the text (exact); CBN_SELCHANGE.
    void SelectCombo(int in_id, tarni_wstring_view in_text);
    /// Selects a list box entry; LBN_SELCHANGE (lists with LBS_NOTIFY).
    void SelectListItem(int in_id, int in_index);
    /// Double-clicks a list box entry; LBN_SELCHANGE then LBN_DBLCLK.
    void DoubleClickListItem(int in_id, int in_index);
    /// Enter: the default push button, when it is enabled.
    void PressEnter();
    /// Escape: IDCANCEL, as the dialog manager sends it.
    void PressEscape();
    /// The close box: WM_CLOSE, which the default handling turns into IDCANCEL.
    void PressCloseBox();

    // --- what a user sees ---
    tarni_wstring Text(int in_id) const;
    bool Checked(int in_id) const;
    bool Enabled(int in_id) const;
    bool Visible(int in_id) const;
    std::vector<tarni_wstring> Items(int in_id) const;
    int Selection(int in_id) const;
    /// The text of the selected combo or list entry, empty when none.
    tarni_wstring SelectedText(int in_id) const;
    /// The selection of an edit control (start, end); the caret is at the end.
    std::pair<int, int> EditSelection(int in_id) const;

    bool IsEnded() const { return m_ended; }
    /// Whether the dialog has a timer running.
    bool HasTimers() const { return !m_timers.empty(); }
    /// Lets time pass as the message loop would: sends WM_TIMER for each
    /// running timer at its interval until in_until() holds, no timer runs,
    /// the dialog ends or in_limit has passed; whether in_until() held.
    bool RunTimers(const std::function<bool()>& in_until, std::chrono::milliseconds in_limit);
    std::intptr_t GetResult() const { return m_result; }
    const DialogTemplate& GetTemplate() const { return m_template; }

    /// Sends a message to the dialog procedure, as the system would.
    std::intptr_t Send(std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t in_lParam);

    // --- IDialogWindow ---
    IDialogHost& GetHost() override;
    IDialogWindow* GetParent() override { return m_parent; }
    unsigned GetTemplateId() const override { return m_template.id; }
    tarni_wstring GetTitle() override { return m_title; }
    void SetTitle(tarni_wstring_view in_text) override { m_title = tarni_wstring(in_text); }
    void SetIcon(unsigned in_iconId) override { m_iconId = in_iconId; }
    unsigned GetIconId() const { return m_iconId; }
    DialogRect GetWindowRect() override { return m_rect; }
    void MoveWindow(int in_x, int in_y, int in_width, int in_height, bool in_repaint) override;
    void EndDialog(std::intptr_t in_result) override;
    void SetTimer(unsigned in_timerId, unsigned in_intervalMs) override { m_timers[in_timerId] = in_intervalMs; }
    void KillTimer(unsigned in_timerId) override { m_timers.erase(in_timerId); }
    void SetProperty(tarni_wstring_view in_name, void* in_value) override;
    void* GetProperty(tarni_wstring_view in_name) override;
    bool HasItem(int in_id) override { return Find(in_id) != nullptr; }
    int GetItemTextLength(int in_id) override;
    tarni_wstring GetItemText(int in_id, int in_bufferChars) override;
    void SetItemText(int in_id, tarni_wstring_view in_text) override;
    void EnableItem(int in_id, bool in_enable) override;
    bool IsItemEnabled(int in_id) override { return Enabled(in_id); }
    void ShowItem(int in_id, bool in_show) override;
    bool IsItemVisible(int in_id) override { return Visible(in_id); }
    void SetFocusItem(int in_id) override;
    bool IsButtonChecked(int in_id) override { return Checked(in_id); }
    void CheckButton(int in_id, bool in_checked) override;
    int ComboAddString(int in_id, tarni_wstring_view in_text) override;
    int ComboDeleteString(int in_id, int in_index) override;
    int ComboGetCount(int in_id) override;
    int ComboGetCurSel(int in_id) override;
    int ComboSetCurSel(int in_id, int in_index) override;
    tarni_wstring ComboGetItemText(int in_id, int in_index) override;
    int ComboFindStringExact(int in_id, tarni_wstring_view in_text) override;
    int ListAddString(int in_id, tarni_wstring_view in_text) override;
    int ListDeleteString(int in_id, int in_index) override;
    int ListGetCount(int in_id) override;
    int ListGetCurSel(int in_id) override;
    int ListSetCurSel(int in_id, int in_index) override;
    tarni_wstring ListGetText(int in_id, int in_index) override;
    int ListFindString(int in_id, int in_startAfter, tarni_wstring_view in_prefix) override;
    void EditSetSel(int in_id, int in_start, int in_end) override;
    void EditReplaceSel(int in_id, tarni_wstring_view in_text) override;
    int GetFocusItem() const { return m_focus; }

private:
    DialogControlState* Find(int in_id);
    const DialogControlState* Find(int in_id) const;
    DialogControlState* Of(int in_id, ControlKind in_kind);
    /// The control a user operation acts on: it must exist, be of the kind,
    /// and be visible and enabled, else the test fails.
    DialogControlState& Usable(int in_id, ControlKind in_kind, const char* in_operation);
    void Command(int in_id, unsigned in_code);

    ScriptedDialogHost& m_host;
    const DialogTemplate& m_template;
    IDialogWindow* m_parent;
    DialogProcedure m_procedure;
    std::vector<DialogControlState> m_controls;
    std::map<tarni_wstring, void*> m_properties;
    tarni_wstring m_title;
    unsigned m_iconId = 0;
    DialogRect m_rect;
    int m_focus = 0;
    bool m_ended = false;
    std::map<unsigned, unsigned> m_timers;  ///< id, interval in ms
    std::intptr_t m_result = 0;
};
}  // namespace Tarni::Platform
