#pragma once
// One open dialog as its controller sees it: the controls of its template,
// addressed by control id, and the few window operations the dialogs use.
// Every host (Win32, terminal, scripted) implements it; a controller never
// touches anything else of the platform. Operations on a control id that
// the template lacks do nothing and read as empty, unchecked or an error
// value, as the corresponding Windows calls do.
#include <cstdint>

#include "ui/DialogRect.h"
#include "core/TarniString.h"

namespace Tarni::Platform
{
class IDialogHost;

/// CB_ERR / LB_ERR.
constexpr int DIALOG_LIST_ERROR = -1;

class IDialogWindow
{
public:
    virtual ~IDialogWindow() = default;

    /// The host that created the window (templates, strings, boxes, choosers).
    virtual IDialogHost& GetHost() = 0;
    /// The owner window, or null for a top-level dialog.
    virtual IDialogWindow* GetParent() = 0;
    /// The template the dialog was created from.
    virtual unsigned GetTemplateId() const = 0;

    // --- the window itself ---
    virtual tarni_wstring GetTitle() = 0;
    virtual void SetTitle(tarni_wstring_view in_text) = 0;
    /// Sets the window's icon from an icon resource of the program.
    virtual void SetIcon(unsigned in_iconId) = 0;
    virtual DialogRect GetWindowRect() = 0;
    virtual void MoveWindow(int in_x, int in_y, int in_width, int in_height, bool in_repaint) = 0;
    /// Ends the modal run; the host's DialogBoxParam returns in_result.
    virtual void EndDialog(std::intptr_t in_result) = 0;
    /// Starts (or restarts) a timer: the dialog procedure gets WM_TIMER with
    /// in_timerId as the word parameter about every in_intervalMs
    /// milliseconds, on the dialog's own thread, until KillTimer. While a
    /// timer runs, a wait cursor (or activity line) set for the dialog stays.
    virtual void SetTimer(unsigned in_timerId, unsigned in_intervalMs) = 0;
    virtual void KillTimer(unsigned in_timerId) = 0;

    /// Named window properties (SetPropW / GetPropW); null when not set.
    virtual void SetProperty(tarni_wstring_view in_name, void* in_value) = 0;
    virtual void* GetProperty(tarni_wstring_view in_name) = 0;

    // --- any control ---
    virtual bool HasItem(int in_id) = 0;
    /// WM_GETTEXTLENGTH: the length of the control's text, -1 on error.
    virtual int GetItemTextLength(int in_id) = 0;
    /// GetDlgItemTextW into a buffer of in_bufferChars wide characters: at
    /// most in_bufferChars - 1 characters of the text.
    virtual tarni_wstring GetItemText(int in_id, int in_bufferChars) = 0;
    virtual void SetItemText(int in_id, tarni_wstring_view in_text) = 0;
    virtual void EnableItem(int in_id, bool in_enable) = 0;
    virtual bool IsItemEnabled(int in_id) = 0;
    virtual void ShowItem(int in_id, bool in_show) = 0;
    virtual bool IsItemVisible(int in_id) = 0;
    virtual void SetFocusItem(int in_id) = 0;

    // --- buttons ---
    virtual bool IsButtonChecked(int in_id) = 0;
    virtual void CheckButton(int in_id, bool in_checked) = 0;

    // --- combo boxes (CB_*) ---
    /// Appends an entry (sorted combos insert in order); the index or -1.
    virtual int ComboAddString(int in_id, tarni_wstring_view in_text) = 0;
    /// Removes an entry; the remaining count or -1.
    virtual int ComboDeleteString(int in_id, int in_index) = 0;
    virtual int ComboGetCount(int in_id) = 0;
    virtual int ComboGetCurSel(int in_id) = 0;
    /// Selects an entry (-1 clears the selection); -1 for an index out of range.
    virtual int ComboSetCurSel(int in_id, int in_index) = 0;
    virtual tarni_wstring ComboGetItemText(int in_id, int in_index) = 0;
    /// CB_FINDSTRINGEXACT from the top: the index of the entry whose text
    /// equals in_text ignoring case, or -1.
    virtual int ComboFindStringExact(int in_id, tarni_wstring_view in_text) = 0;

    // --- list boxes (LB_*) ---
    virtual int ListAddString(int in_id, tarni_wstring_view in_text) = 0;
    virtual int ListDeleteString(int in_id, int in_index) = 0;
    virtual int ListGetCount(int in_id) = 0;
    virtual int ListGetCurSel(int in_id) = 0;
    virtual int ListSetCurSel(int in_id, int in_index) = 0;
    virtual tarni_wstring ListGetText(int in_id, int in_index) = 0;
    /// LB_FINDSTRING: the first entry after in_startAfter (wrapping around;
    /// -1 searches from the top) that begins with in_prefix ignoring case, or -1.
    virtual int ListFindString(int in_id, int in_startAfter, tarni_wstring_view in_prefix) = 0;

    // --- edit controls (EM_*) ---
    virtual void EditSetSel(int in_id, int in_start, int in_end) = 0;
    virtual void EditReplaceSel(int in_id, tarni_wstring_view in_text) = 0;
};
}  // namespace Tarni::Platform
