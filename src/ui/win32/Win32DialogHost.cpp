#include "ui/win32/Win32DialogHost.h"





#include <algorithm>
#include <vector>

#include "ui/DialogConstants.h"
#include "ui/win32/Win32DialogWindow.h"

namespace Tarni::Platform
{
// The portable names keep the system's values.
static_assert(WM_INITDIALOG == 0x0110 && WM_COMMAND == 0x0111 && WM_NCDESTROY == 0x0082);
static_assert(EN_CHANGE == 0x0300 && EN_UPDATE == 0x0400 && CBN_SELCHANGE == 1 && LBN_DBLCLK == 2);
static_assert(MB_ICONEXCLAMATION == 0x30 && MB_YESNO == 4 && MB_OKCANCEL == 1 && IDYES == 6);
static_assert(OFN_PATHMUSTEXIST == 0x800 && OFN_FILEMUSTEXIST == 0x1000);

namespace
{
const wchar_t* W(const tarni_wstring& in_text) { return reinterpret_cast<const wchar_t*>(in_text.c_str()); }

// What DialogBoxParamW carries to the initialisation message.
struct Creation
{
    Win32DialogHost* host;
    IDialogWindow* owner;
    unsigned templateId;
    DialogProcedure procedure;
    std::intptr_t param;
    std::exception_ptr* pending;
};

HWND HandleOf(IDialogWindow* in_window)
{
    auto* window = dynamic_cast<Win32DialogWindow*>(in_window);
    return window != nullptr ? window->GetHandle() : nullptr;
}
}  // namespace

Win32DialogHost::Win32DialogHost(HINSTANCE in_module)
    : m_module(in_module != nullptr ? in_module : ::GetModuleHandleW(nullptr))
{
    INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX), ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES};
    ::InitCommonControlsEx(&controls);
}

INT_PTR CALLBACK Win32DialogHost::DialogProc(HWND in_hwnd, UINT in_message, WPARAM in_wParam, LPARAM in_lParam)
{
    Win32DialogWindow* window = Win32DialogWindow::FromHandle(in_hwnd);
    Creation* creation = nullptr;
    if (in_message == WM_INITDIALOG)
    {
        creation = reinterpret_cast<Creation*>(in_lParam);
        window = new Win32DialogWindow(*creation->host, in_hwnd, creation->owner, creation->templateId,
                                       creation->procedure);
        ::SetPropW(in_hwnd, L"TarniPendingException", creation->pending);
    }
    if (window == nullptr)
    {
        return FALSE;  // messages before WM_INITDIALOG (WM_SETFONT ...)
    }
    if (in_message == WM_SETCURSOR && window->HasTimers() && creation == nullptr)
    {
        // Work runs in the background while a timer polls it: the wait
        // cursor stays over the dialog until the timer stops.
        if (HCURSOR cursor = ::LoadCursorW(nullptr, IDC_WAIT))
        {
            ::SetCursor(cursor);
            ::SetWindowLongPtrW(in_hwnd, DWLP_MSGRESULT, TRUE);
            return TRUE;
        }
    }
    INT_PTR result = FALSE;
    try
    {
        result = window->GetProcedure()(window, in_message, in_wParam,
                                        creation != nullptr ? static_cast<LPARAM>(creation->param) : in_lParam);
    }
    catch (...)
    {
        // Keep the exception out of the system's frames; end the dialog and
        // let DialogBoxParam throw it again.
        auto* pending = static_cast<std::exception_ptr*>(::GetPropW(in_hwnd, L"TarniPendingException"));
        if (pending != nullptr && !*pending)
        {
            *pending = std::current_exception();
        }
        ::EndDialog(in_hwnd, -1);
        result = TRUE;
    }
    if (in_message == WM_NCDESTROY)
    {
        ::RemovePropW(in_hwnd, Win32DialogWindow::WRAPPER_PROPERTY);
        ::RemovePropW(in_hwnd, L"TarniPendingException");
        delete window;
    }
    return result;
}

std::intptr_t Win32DialogHost::DialogBoxParam(unsigned in_templateId, IDialogWindow* in_owner,
                                              DialogProcedure in_procedure, std::intptr_t in_param)
{
    std::exception_ptr pending;
    Creation creation{this, in_owner, in_templateId, in_procedure, in_param, &pending};
    const INT_PTR result = ::DialogBoxParamW(m_module, MAKEINTRESOURCEW(in_templateId), HandleOf(in_owner),
                                             &Win32DialogHost::DialogProc, reinterpret_cast<LPARAM>(&creation));
    if (pending)
    {
        std::rethrow_exception(pending);
    }
    return result;
}

int Win32DialogHost::LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars)
{
    return ::LoadStringW(m_module, in_id, reinterpret_cast<wchar_t*>(out_buffer), in_bufferChars);
}

int Win32DialogHost::MessageBox(IDialogWindow* in_owner, tarni_wstring_view in_text, tarni_wstring_view in_caption,
                                std::uint32_t in_flags)
{
    const tarni_wstring text(in_text);
    const tarni_wstring caption(in_caption);
    return ::MessageBoxW(HandleOf(in_owner), W(text), W(caption), in_flags);
}

DialogRect Win32DialogHost::GetDesktopRect()
{
    RECT rect{};
    ::GetWindowRect(::GetDesktopWindow(), &rect);
    return DialogRect{rect.left, rect.top, rect.right, rect.bottom};
}

bool Win32DialogHost::SetWaitCursor(tarni_wstring_view)
{
    HCURSOR cursor = ::LoadCursorW(nullptr, IDC_WAIT);
    if (cursor == nullptr)
    {
        return false;
    }
    ::SetCursor(cursor);
    return true;
}

std::optional<tarni_wstring> Win32DialogHost::RunFileBox(const FileChooserOptions& in_options, bool in_save)
{
    std::vector<wchar_t> name(in_options.bufferChars > 0 ? in_options.bufferChars : 1, L'\0');
    const std::size_t initial = std::min<std::size_t>(in_options.initialFile.size(), name.size() - 1);
    std::copy_n(reinterpret_cast<const wchar_t*>(in_options.initialFile.data()), initial, name.data());

    // "description\0pattern\0...\0\0"
    tarni_wstring filter;
    for (const auto& entry : in_options.filter)
    {
        filter += entry.description;
        filter.push_back(u'\0');
        filter += entry.pattern;
        filter.push_back(u'\0');
    }
    filter.push_back(u'\0');

    OPENFILENAMEW box{};
    box.lStructSize = sizeof(box);
    box.hwndOwner = HandleOf(in_options.owner);
    box.lpstrFilter = in_options.filter.empty() ? nullptr : W(filter);
    box.lpstrFile = name.data();
    box.nMaxFile = static_cast<DWORD>(name.size());
    box.lpstrTitle = in_options.title.empty() ? nullptr : W(in_options.title);
    box.lpstrDefExt = in_options.defaultExtension.empty() ? nullptr : W(in_options.defaultExtension);
    box.Flags = in_options.flags;
    const BOOL chosen = in_save ? ::GetSaveFileNameW(&box) : ::GetOpenFileNameW(&box);
    if (!chosen)
    {
        return std::nullopt;
    }
    return tarni_wstring(reinterpret_cast<const char16_t*>(name.data()));
}

std::optional<tarni_wstring> Win32DialogHost::GetOpenFileName(const FileChooserOptions& in_options)
{
    return RunFileBox(in_options, false);
}

std::optional<tarni_wstring> Win32DialogHost::GetSaveFileName(const FileChooserOptions& in_options)
{
    return RunFileBox(in_options, true);
}

std::optional<tarni_wstring> Win32DialogHost::BrowseForFolder(IDialogWindow* in_owner, tarni_wstring_view in_title)
{
    const tarni_wstring title(in_title);
    BROWSEINFOW info{};
    info.hwndOwner = HandleOf(in_owner);
    info.lpszTitle = W(title);
    info.ulFlags = BIF_RETURNONLYFSDIRS;
    PIDLIST_ABSOLUTE items = ::SHBrowseForFolderW(&info);
    if (items == nullptr)
    {
        return std::nullopt;
    }
    wchar_t path[MAX_PATH] = {};
    const BOOL havePath = ::SHGetPathFromIDListW(items, path);
    ::CoTaskMemFree(items);  // the shell allocator
    if (!havePath)
    {
        return std::nullopt;
    }
    return tarni_wstring(reinterpret_cast<const char16_t*>(path));
}

std::optional<tarni_wstring> Win32DialogHost::GetDocumentsFolder()
{
    wchar_t path[MAX_PATH] = {};
    if (FAILED(::SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, 0, path)))
    {
        return std::nullopt;
    }
    return tarni_wstring(reinterpret_cast<const char16_t*>(path));
}
}  // namespace Tarni::Platform
