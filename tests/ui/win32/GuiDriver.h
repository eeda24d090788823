#pragma once
// Drives real dialogs the way a user would, through window messages: finds
// the dialog by its title, types with WM_SETTEXT (which the edit control
// reports as EN_UPDATE and EN_CHANGE), clicks with BM_CLICK, presses Escape
// as a key message, and closes through the system menu's close command.
#include "ui/win32/Win32Headers.h"

#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace Tarni::Testing
{
class GuiDriver
{
public:
    /// The dialog window with the title owned by the process (0: any), waiting
    /// up to in_timeout for it to appear; null when it does not.
    static HWND WaitForDialog(const std::wstring& in_title, DWORD in_processId = 0,
                              std::chrono::milliseconds in_timeout = std::chrono::seconds(60))
    {
        const auto deadline = std::chrono::steady_clock::now() + in_timeout;
        while (std::chrono::steady_clock::now() < deadline)
        {
            HWND found = nullptr;
            while ((found = ::FindWindowExW(nullptr, found, L"#32770", in_title.c_str())) != nullptr)
            {
                DWORD owner = 0;
                ::GetWindowThreadProcessId(found, &owner);
                if ((in_processId == 0 || owner == in_processId) && ::IsWindowVisible(found))
                {
                    return found;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return nullptr;
    }

    /// The visible dialog window owned by in_owner (a chooser or a box), waiting for it.
    static HWND WaitForOwnedDialog(HWND in_owner, std::chrono::milliseconds in_timeout = std::chrono::seconds(60))
    {
        const auto deadline = std::chrono::steady_clock::now() + in_timeout;
        while (std::chrono::steady_clock::now() < deadline)
        {
            HWND found = nullptr;
            while ((found = ::FindWindowExW(nullptr, found, L"#32770", nullptr)) != nullptr)
            {
                if (::GetWindow(found, GW_OWNER) == in_owner && ::IsWindowVisible(found))
                {
                    return found;
                }
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return nullptr;
    }

    /// Waits until the window is gone.
    static bool WaitForClose(HWND in_dialog, std::chrono::milliseconds in_timeout = std::chrono::seconds(30))
    {
        const auto deadline = std::chrono::steady_clock::now() + in_timeout;
        while (::IsWindow(in_dialog))
        {
            if (std::chrono::steady_clock::now() >= deadline)
            {
                return false;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return true;
    }

    static void Type(HWND in_dialog, int in_id, const std::wstring& in_text)
    {
        ::SendMessageW(::GetDlgItem(in_dialog, in_id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(in_text.c_str()));
    }

    static std::wstring Text(HWND in_dialog, int in_id)
    {
        wchar_t buffer[1024] = {};
        ::SendMessageW(::GetDlgItem(in_dialog, in_id), WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(buffer));
        return buffer;
    }

    static void Click(HWND in_dialog, int in_id) { ::SendMessageW(::GetDlgItem(in_dialog, in_id), BM_CLICK, 0, 0); }

    /// A button press that returns at once: for a button that opens a modal
    /// window, which runs a message loop of its own that a sent click would wait for.
    static void PostClick(HWND in_dialog, int in_id)
    {
        ::PostMessageW(in_dialog, WM_COMMAND, MAKEWPARAM(in_id, BN_CLICKED),
                       reinterpret_cast<LPARAM>(::GetDlgItem(in_dialog, in_id)));
    }

    /// Posts the button's press and waits for the dialog with the title it opens.
    static HWND OpenFrom(HWND in_owner, int in_id, const std::wstring& in_title, DWORD in_processId = 0)
    {
        PostClick(in_owner, in_id);
        return WaitForDialog(in_title, in_processId, std::chrono::seconds(30));
    }

    /// Types the path into a file dialog's name field and presses its OK;
    /// false when the dialog has no such field or stays open.
    static bool ChooseFile(HWND in_chooser, const std::wstring& in_path)
    {
        // The explorer-style dialog names its field cmb13, the older one edt1.
        HWND name = ::GetDlgItem(in_chooser, 0x47C);
        if (name == nullptr)
        {
            name = ::GetDlgItem(in_chooser, 0x480);
        }
        if (name == nullptr)
        {
            return false;
        }
        ::SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(in_path.c_str()));
        PostClick(in_chooser, IDOK);
        return WaitForClose(in_chooser);
    }

    static bool Enabled(HWND in_dialog, int in_id) { return ::IsWindowEnabled(::GetDlgItem(in_dialog, in_id)) != 0; }

    static bool Checked(HWND in_dialog, int in_id)
    {
        return ::SendMessageW(::GetDlgItem(in_dialog, in_id), BM_GETCHECK, 0, 0) == BST_CHECKED;
    }

    /// Selects a combo entry by its text and notifies the dialog as a user's
    /// selection does (CBN_SELCHANGE).
    static void Select(HWND in_dialog, int in_id, const std::wstring& in_text)
    {
        HWND combo = ::GetDlgItem(in_dialog, in_id);
        const LRESULT index =
            ::SendMessageW(combo, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(in_text.c_str()));
        ::SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        ::SendMessageW(in_dialog, WM_COMMAND, MAKEWPARAM(in_id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
    }

    /// Escape, as a key press that reaches the dialog's message loop.
    static void PressEscape(HWND in_dialog)
    {
        ::PostMessageW(in_dialog, WM_KEYDOWN, VK_ESCAPE, 0x00010001);
        ::PostMessageW(in_dialog, WM_KEYUP, VK_ESCAPE, 0xC0010001);
    }

    /// The close box of the caption.
    static void PressCloseBox(HWND in_dialog) { ::PostMessageW(in_dialog, WM_SYSCOMMAND, SC_CLOSE, 0); }

    /// The three ways to leave a dialog without OK: Cancel, Escape and the close box.
    using Closer = void (*)(HWND);
    static constexpr Closer CLOSERS[] = {[](HWND in_dialog) { Click(in_dialog, IDCANCEL); }, &PressEscape,
                                         &PressCloseBox};

    /// Runs in_user on a thread of its own while the calling thread runs the
    /// modal dialog in in_modal.
    template <typename Modal>
    static auto WhileModal(std::function<void()> in_user, Modal&& in_modal)
    {
        std::thread user(std::move(in_user));
        auto result = in_modal();
        user.join();
        return result;
    }
};
}  // namespace Tarni::Testing
