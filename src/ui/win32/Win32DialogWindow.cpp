#include "ui/win32/Win32DialogWindow.h"

#include <vector>

#include "ui/win32/Win32DialogHost.h"

namespace Tarni::Platform
{
namespace
{
static_assert(sizeof(wchar_t) == sizeof(char16_t), "the Win32 host passes UTF-16 text as it is");

const wchar_t* W(const tarni_wstring& in_text) { return reinterpret_cast<const wchar_t*>(in_text.c_str()); }

tarni_wstring FromBuffer(const std::vector<wchar_t>& in_buffer, std::size_t in_length)
{
    return tarni_wstring(reinterpret_cast<const char16_t*>(in_buffer.data()), in_length);
}
}  // namespace

Win32DialogWindow::Win32DialogWindow(Win32DialogHost& in_host, HWND in_hwnd, IDialogWindow* in_parent,
                                     unsigned in_templateId, DialogProcedure in_procedure)
    : m_host(in_host), m_hwnd(in_hwnd), m_parent(in_parent), m_templateId(in_templateId), m_procedure(in_procedure)
{
    ::SetPropW(m_hwnd, WRAPPER_PROPERTY, this);
}

Win32DialogWindow::~Win32DialogWindow()
{
    if (m_bigIcon != nullptr)
    {
        ::DestroyIcon(m_bigIcon);
    }
    if (m_smallIcon != nullptr)
    {
        ::DestroyIcon(m_smallIcon);
    }
}

Win32DialogWindow* Win32DialogWindow::FromHandle(HWND in_hwnd)
{
    return static_cast<Win32DialogWindow*>(::GetPropW(in_hwnd, WRAPPER_PROPERTY));
}

IDialogHost& Win32DialogWindow::GetHost() { return m_host; }

LRESULT Win32DialogWindow::SendItem(int in_id, UINT in_message, WPARAM in_wParam, LPARAM in_lParam)
{
    return ::SendDlgItemMessageW(m_hwnd, in_id, in_message, in_wParam, in_lParam);
}

tarni_wstring Win32DialogWindow::GetTitle()
{
    const int length = ::GetWindowTextLengthW(m_hwnd);
    std::vector<wchar_t> buffer(static_cast<std::size_t>(length) + 1);
    const int copied = ::GetWindowTextW(m_hwnd, buffer.data(), length + 1);
    return FromBuffer(buffer, static_cast<std::size_t>(copied > 0 ? copied : 0));
}

void Win32DialogWindow::SetTitle(tarni_wstring_view in_text) { ::SetWindowTextW(m_hwnd, W(tarni_wstring(in_text))); }

void Win32DialogWindow::SetIcon(unsigned in_iconId)
{
    const HINSTANCE module = m_host.GetModule();
    m_bigIcon = static_cast<HICON>(::LoadImageW(module, MAKEINTRESOURCEW(in_iconId), IMAGE_ICON,
                                                ::GetSystemMetrics(SM_CXICON), ::GetSystemMetrics(SM_CYICON), 0));
    m_smallIcon = static_cast<HICON>(::LoadImageW(module, MAKEINTRESOURCEW(in_iconId), IMAGE_ICON,
                                                  ::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON), 0));
    if (m_bigIcon != nullptr)
    {
        ::SendMessageW(m_hwnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(m_bigIcon));
    }
    if (m_smallIcon != nullptr)
    {
        ::SendMessageW(m_hwnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(m_smallIcon));
    }
}

DialogRect Win32DialogWindow::GetWindowRect()
{
    RECT rect{};
    ::GetWindowRect(m_hwnd, &rect);
    return DialogRect{rect.left, rect.top, rect.right, rect.bottom};
}

void Win32DialogWindow::MoveWindow(int in_x, int in_y, int in_width, int in_height, bool in_repaint)
{
    ::MoveWindow(m_hwnd, in_x, in_y, in_width, in_height, in_repaint ? TRUE : FALSE);
}

void Win32DialogWindow::EndDialog(std::intptr_t in_result) { ::EndDialog(m_hwnd, in_result); }

void Win32DialogWindow::SetTimer(unsigned in_timerId, unsigned in_intervalMs)
{
    if (::SetTimer(m_hwnd, in_timerId, in_intervalMs, nullptr) != 0)
    {
        m_timers.insert(in_timerId);
    }
}

void Win32DialogWindow::KillTimer(unsigned in_timerId)
{
    ::KillTimer(m_hwnd, in_timerId);
    m_timers.erase(in_timerId);
}

void Win32DialogWindow::SetProperty(tarni_wstring_view in_name, void* in_value)
{
    ::SetPropW(m_hwnd, W(tarni_wstring(in_name)), in_value);
}

void* Win32DialogWindow::GetProperty(tarni_wstring_view in_name)
{
    return ::GetPropW(m_hwnd, W(tarni_wstring(in_name)));
}

bool Win32DialogWindow::HasItem(int in_id) { return ::GetDlgItem(m_hwnd, in_id) != nullptr; }

int Win32DialogWindow::GetItemTextLength(int in_id)
{
    return static_cast<int>(SendItem(in_id, WM_GETTEXTLENGTH, 0, 0));
}

tarni_wstring Win32DialogWindow::GetItemText(int in_id, int in_bufferChars)
{
    if (in_bufferChars <= 0)
    {
        return {};
    }
    std::vector<wchar_t> buffer(static_cast<std::size_t>(in_bufferChars), L'\0');
    const UINT copied = ::GetDlgItemTextW(m_hwnd, in_id, buffer.data(), in_bufferChars);
    return FromBuffer(buffer, copied);
}

void Win32DialogWindow::SetItemText(int in_id, tarni_wstring_view in_text)
{
    ::SetDlgItemTextW(m_hwnd, in_id, W(tarni_wstring(in_text)));
}

void Win32DialogWindow::EnableItem(int in_id, bool in_enable)
{
    if (HWND item = ::GetDlgItem(m_hwnd, in_id))
    {
        ::EnableWindow(item, in_enable ? TRUE : FALSE);
    }
}

bool Win32DialogWindow::IsItemEnabled(int in_id)
{
    HWND item = ::GetDlgItem(m_hwnd, in_id);
    return item != nullptr && ::IsWindowEnabled(item) != FALSE;
}

void Win32DialogWindow::ShowItem(int in_id, bool in_show)
{
    if (HWND item = ::GetDlgItem(m_hwnd, in_id))
    {
        ::ShowWindow(item, in_show ? SW_SHOW : SW_HIDE);
    }
}

bool Win32DialogWindow::IsItemVisible(int in_id)
{
    HWND item = ::GetDlgItem(m_hwnd, in_id);
    return item != nullptr && (::GetWindowLongW(item, GWL_STYLE) & WS_VISIBLE) != 0;
}

void Win32DialogWindow::SetFocusItem(int in_id)
{
    if (HWND item = ::GetDlgItem(m_hwnd, in_id))
    {
        ::SendMessageW(m_hwnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item), TRUE);
    }
}

bool Win32DialogWindow::IsButtonChecked(int in_id) { return ::IsDlgButtonChecked(m_hwnd, in_id) == BST_CHECKED; }

void Win32DialogWindow::CheckButton(int in_id, bool in_checked)
{
    ::CheckDlgButton(m_hwnd, in_id, in_checked ? BST_CHECKED : BST_UNCHECKED);
}

int Win32DialogWindow::ComboAddString(int in_id, tarni_wstring_view in_text)
{
    const tarni_wstring text(in_text);
    return static_cast<int>(SendItem(in_id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(W(text))));
}

int Win32DialogWindow::ComboDeleteString(int in_id, int in_index)
{
    return static_cast<int>(SendItem(in_id, CB_DELETESTRING, static_cast<WPARAM>(in_index), 0));
}

int Win32DialogWindow::ComboGetCount(int in_id)
{
    return HasItem(in_id) ? static_cast<int>(SendItem(in_id, CB_GETCOUNT, 0, 0)) : CB_ERR;
}

int Win32DialogWindow::ComboGetCurSel(int in_id)
{
    return HasItem(in_id) ? static_cast<int>(SendItem(in_id, CB_GETCURSEL, 0, 0)) : CB_ERR;
}

int Win32DialogWindow::ComboSetCurSel(int in_id, int in_index)
{
    return static_cast<int>(SendItem(in_id, CB_SETCURSEL, static_cast<WPARAM>(in_index), 0));
}

tarni_wstring Win32DialogWindow::ComboGetItemText(int in_id, int in_index)
{
    const LRESULT length = SendItem(in_id, CB_GETLBTEXTLEN, static_cast<WPARAM>(in_index), 0);
    if (length == CB_ERR || length < 0)
    {
        return {};
    }
    std::vector<wchar_t> buffer(static_cast<std::size_t>(length) + 1, L'\0');
    const LRESULT copied =
        SendItem(in_id, CB_GETLBTEXT, static_cast<WPARAM>(in_index), reinterpret_cast<LPARAM>(buffer.data()));
    return copied == CB_ERR ? tarni_wstring() : FromBuffer(buffer, static_cast<std::size_t>(copied));
}

int Win32DialogWindow::ComboFindStringExact(int in_id, tarni_wstring_view in_text)
{
    const tarni_wstring text(in_text);
    return static_cast<int>(
        SendItem(in_id, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(W(text))));
}

int Win32DialogWindow::ListAddString(int in_id, tarni_wstring_view in_text)
{
    const tarni_wstring text(in_text);
    return static_cast<int>(SendItem(in_id, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(W(text))));
}

int Win32DialogWindow::ListDeleteString(int in_id, int in_index)
{
    return static_cast<int>(SendItem(in_id, LB_DELETESTRING, static_cast<WPARAM>(in_index), 0));
}

int Win32DialogWindow::ListGetCount(int in_id)
{
    return HasItem(in_id) ? static_cast<int>(SendItem(in_id, LB_GETCOUNT, 0, 0)) : LB_ERR;
}

int Win32DialogWindow::ListGetCurSel(int in_id)
{
    return HasItem(in_id) ? static_cast<int>(SendItem(in_id, LB_GETCURSEL, 0, 0)) : LB_ERR;
}

int Win32DialogWindow::ListSetCurSel(int in_id, int in_index)
{
    return static_cast<int>(SendItem(in_id, LB_SETCURSEL, static_cast<WPARAM>(in_index), 0));
}

tarni_wstring Win32DialogWindow::ListGetText(int in_id, int in_index)
{
    const LRESULT length = SendItem(in_id, LB_GETTEXTLEN, static_cast<WPARAM>(in_index), 0);
    if (length == LB_ERR || length < 0)
    {
        return {};
    }
    std::vector<wchar_t> buffer(static_cast<std::size_t>(length) + 1, L'\0');
    const LRESULT copied =
        SendItem(in_id, LB_GETTEXT, static_cast<WPARAM>(in_index), reinterpret_cast<LPARAM>(buffer.data()));
    return copied == LB_ERR ? tarni_wstring() : FromBuffer(buffer, static_cast<std::size_t>(copied));
}

int Win32DialogWindow::ListFindString(int in_id, int in_startAfter, tarni_wstring_view in_prefix)
{
    const tarni_wstring prefix(in_prefix);
    return static_cast<int>(
        SendItem(in_id, LB_FINDSTRING, static_cast<WPARAM>(in_startAfter), reinterpret_cast<LPARAM>(W(prefix))));
}

void Win32DialogWindow::EditSetSel(int in_id, int in_start, int in_end)
{
    SendItem(in_id, EM_SETSEL, static_cast<WPARAM>(in_start), static_cast<LPARAM>(in_end));
}

void Win32DialogWindow::EditReplaceSel(int in_id, tarni_wstring_view in_text)
{
    const tarni_wstring text(in_text);
    SendItem(in_id, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(W(text)));
}
}  // namespace Tarni::Platform
