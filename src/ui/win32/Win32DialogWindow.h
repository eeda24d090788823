#pragma once
#include <set>

#include "ui/win32/Win32Headers.h"

#include "ui/IDialogHost.h"
#include "ui/IDialogWindow.h"

namespace Tarni::Platform
{
class Win32DialogHost;

/// One dialog of the Win32 host: the window handle and the procedure that
/// the dialog code gave; every operation is the corresponding Win32 call.
class Win32DialogWindow final : public IDialogWindow
{
public:
    Win32DialogWindow(Win32DialogHost& in_host, HWND in_hwnd, IDialogWindow* in_parent, unsigned in_templateId,
                      DialogProcedure in_procedure);
    ~Win32DialogWindow() override;

    HWND GetHandle() const { return m_hwnd; }
    DialogProcedure GetProcedure() const { return m_procedure; }
    /// The wrapper of a dialog window created by the host, or null.
    static Win32DialogWindow* FromHandle(HWND in_hwnd);
    static constexpr const wchar_t* WRAPPER_PROPERTY = L"TarniDialogWindow";

    IDialogHost& GetHost() override;
    IDialogWindow* GetParent() override { return m_parent; }
    unsigned GetTemplateId() const override { return m_templateId; }
    tarni_wstring GetTitle() override;
    void SetTitle(tarni_wstring_view in_text) override;
    void SetIcon(unsigned in_iconId) override;
    DialogRect GetWindowRect() override;
    void MoveWindow(int in_x, int in_y, int in_width, int in_height, bool in_repaint) override;
    void EndDialog(std::intptr_t in_result) override;
    void SetProperty(tarni_wstring_view in_name, void* in_value) override;
    void* GetProperty(tarni_wstring_view in_name) override;
    bool HasItem(int in_id) override;
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
    void SetTimer(unsigned in_timerId, unsigned in_intervalMs) override;
    void KillTimer(unsigned in_timerId) override;
    bool HasTimers() const { return !m_timers.empty(); }

private:
    LRESULT SendItem(int in_id, UINT in_message, WPARAM in_wParam, LPARAM in_lParam);

    Win32DialogHost& m_host;
    HWND m_hwnd;
    IDialogWindow* m_parent;
    unsigned m_templateId;
    DialogProcedure m_procedure;
    HICON m_bigIcon = nullptr;
    HICON m_smallIcon = nullptr;
    std::set<unsigned> m_timers;
};
}  // namespace Tarni::Platform
