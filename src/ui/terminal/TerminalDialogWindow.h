#pragma once
// A dialog of the terminal host: the controls of its template on the cells
// that TerminalLayout gives them, inside a framed curses window with the
// dialog's title. The controller drives it through IDialogWindow; the user
// drives it with the keyboard (see HandleKey), and every change the user
// makes reaches the controller at once as the WM_COMMAND notification that
// Windows would send (EN_UPDATE and EN_CHANGE for each edit, BN_CLICKED,
// CBN_SELCHANGE, LBN_SELCHANGE and LBN_DBLCLK).
//
// Window coordinates (GetWindowRect, MoveWindow, the desktop rectangle) are
// character cells. A position that would put the dialog partly off the
// screen is pulled back onto it when the dialog is drawn.
#include <curses.h>

#include <map>
#include <utility>
#include <vector>

#include "ui/IDialogHost.h"
#include "ui/IDialogWindow.h"
#include "ui/terminal/TerminalControl.h"
#include "ui/terminal/TerminalKey.h"

namespace Tarni::Platform
{
class TerminalDialogHost;

class TerminalDialogWindow final : public IDialogWindow
{
public:
    TerminalDialogWindow(TerminalDialogHost& in_host, const DialogTemplate& in_template, IDialogWindow* in_parent,
                         DialogProcedure in_procedure);
    ~TerminalDialogWindow() override;
    TerminalDialogWindow(const TerminalDialogWindow&) = delete;
    TerminalDialogWindow& operator=(const TerminalDialogWindow&) = delete;

    /// Sends a message to the dialog procedure.
    std::intptr_t Send(std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// Lays the dialog out for the screen (rows above the status line) and
    /// centres it over its owner, or the screen.
    void Layout(int in_screenRows, int in_screenCols);
    /// Focuses the first tab stop unless the controller has set the focus.
    void FocusFirst();
    /// Draws the dialog into its window (wnoutrefresh, no update).
    void Paint(bool in_isTop);
    /// Puts the terminal's cursor on the caret of the focused edit field.
    void PlaceCaret();
    /// What the status line says while this dialog is on top.
    std::wstring GetStatusText() const;
    /// Acts on a key of the user.
    void HandleKey(const TerminalKey& in_key);

    WINDOW* GetCursesWindow() const { return m_window; }
    bool IsEnded() const { return m_ended; }
    /// The shortest interval of the running timers, 0 when none runs.
    unsigned GetTimerInterval() const;
    /// Sends WM_TIMER for each running timer.
    void FireTimers();
    std::intptr_t GetResult() const { return m_result; }
    const DialogTemplate& GetTemplate() const { return m_template; }
    /// The control id that has the focus, 0 when none.
    int GetFocusId() const;

    // --- IDialogWindow ---
    IDialogHost& GetHost() override;
    IDialogWindow* GetParent() override { return m_parent; }
    unsigned GetTemplateId() const override { return m_template.id; }
    tarni_wstring GetTitle() override { return m_title; }
    void SetTitle(tarni_wstring_view in_text) override { m_title = tarni_wstring(in_text); }
    void SetIcon(unsigned in_iconId) override { m_iconId = in_iconId; }
    DialogRect GetWindowRect() override;
    void MoveWindow(int in_x, int in_y, int in_width, int in_height, bool in_repaint) override;
    void EndDialog(std::intptr_t in_result) override;
    void SetTimer(unsigned in_timerId, unsigned in_intervalMs) override { m_timers[in_timerId] = in_intervalMs; }
    void KillTimer(unsigned in_timerId) override { m_timers.erase(in_timerId); }
    void SetProperty(tarni_wstring_view in_name, void* in_value) override;
    void* GetProperty(tarni_wstring_view in_name) override;
    bool HasItem(int in_id) override { return Find(in_id) >= 0; }
    int GetItemTextLength(int in_id) override;
    tarni_wstring GetItemText(int in_id, int in_bufferChars) override;
    void SetItemText(int in_id, tarni_wstring_view in_text) override;
    void EnableItem(int in_id, bool in_enable) override;
    bool IsItemEnabled(int in_id) override;
    void ShowItem(int in_id, bool in_show) override;
    bool IsItemVisible(int in_id) override;
    void SetFocusItem(int in_id) override;
    bool IsButtonChecked(int in_id) override;
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

private:
    /// Index of the first control with the id, -1 when none.
    int Find(int in_id) const;
    TerminalControl* Of(int in_id, ControlKind in_kind);
    tarni_wstring TextOf(const TerminalControl& in_control) const;
    void SetText(TerminalControl& io_control, tarni_wstring_view in_text);
    void Command(int in_id, unsigned in_code);

    // --- focus ---
    bool IsFocusable(int in_index) const;
    bool IsTabStop(int in_index) const;
    /// First and one-past-last index of the radio group of a control.
    std::pair<int, int> GroupOf(int in_index) const;
    void SetFocus(int in_index);
    void MoveTab(int in_direction);
    void MoveSpatial(int in_rowDirection, int in_colDirection);
    void ScrollToFocus();

    // --- user actions ---
    void Click(int in_index);
    void PressEnter();
    bool ActivateMnemonic(wchar_t in_letter);
    void OpenDropDown(int in_index);
    bool HandleFocusedKey(const TerminalKey& in_key);

    // --- drawing ---
    int ViewRows() const { return m_height - 2; }
    /// Window row of an interior row, or -1 when it is scrolled out of view.
    int WindowRow(int in_row) const;
    int DefaultButtonIndex() const;
    void DrawControl(int in_index, bool in_isTop);
    /// Whether a multi-line edit is drawn in a frame (room for one).
    static bool MultiLineFramed(const TerminalControl& in_control);
    /// The line (of the wrapped text) and column of a multi-line edit's caret.
    static std::pair<int, int> MultiLineCaret(const TerminalControl& in_control);
    void DrawLabel(int in_row, int in_col, int in_cols, const MnemonicText& in_label, attr_t in_attributes,
                   bool in_showMnemonic);
    void DrawBox(int in_top, int in_left, int in_bottom, int in_right, const MnemonicText* in_title,
                 attr_t in_attributes);

    TerminalDialogHost& m_host;
    const DialogTemplate& m_template;
    IDialogWindow* m_parent;
    DialogProcedure m_procedure;
    std::vector<TerminalControl> m_controls;
    std::map<tarni_wstring, void*> m_properties;
    tarni_wstring m_title;
    unsigned m_iconId = 0;
    TerminalLayout m_layout;
    WINDOW* m_window = nullptr;
    int m_top = 0;
    int m_left = 0;
    int m_height = 3;
    int m_width = 3;
    int m_scroll = 0;
    int m_focus = -1;
    int m_caretRow = -1;
    int m_caretCol = -1;
    bool m_ended = false;
    std::map<unsigned, unsigned> m_timers;  ///< id, interval in ms
    std::intptr_t m_result = 0;
};
}  // namespace Tarni::Platform
