#pragma once
// The dialog host: runs dialogs from the templates of the resource script,
// gives the strings of its string table, and shows the system's message
// boxes and choosers. Three hosts implement it: Win32 (DialogBoxParamW over
// the compiled resources), the terminal host and the scripted host of the
// tests. The dialog procedure has the shape of a Windows one, with the
// dialog window in place of the window handle.
#include <cstdint>
#include <optional>

#include "ui/DialogRect.h"
#include "ui/FileChooserOptions.h"
#include "core/TarniString.h"

namespace Tarni::Platform
{
class IDialogWindow;

/// The dialog procedure: returns TRUE (1) for a handled message, FALSE (0)
/// otherwise; for WM_INITDIALOG the long parameter is the creation parameter.
using DialogProcedure = std::intptr_t (*)(IDialogWindow* in_window, std::uint32_t in_message,
                                          std::uintptr_t in_wParam, std::intptr_t in_lParam);

class IDialogHost
{
public:
    virtual ~IDialogHost() = default;

    /// DialogBoxParamW: creates the dialog of the template owned by in_owner
    /// (null: no owner), sends WM_INITDIALOG with in_param and runs it
    /// modally until EndDialog; returns the value given to EndDialog, or -1
    /// when the dialog cannot be created (for instance a missing template).
    virtual std::intptr_t DialogBoxParam(unsigned in_templateId, IDialogWindow* in_owner,
                                         DialogProcedure in_procedure, std::intptr_t in_param) = 0;

    /// LoadStringW: copies at most in_bufferChars - 1 characters of string
    /// in_id into the buffer, terminates it and returns the number copied;
    /// 0 when the string does not exist.
    virtual int LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars) = 0;

    /// MessageBoxW: the id of the button pressed (IDOK, IDCANCEL, IDYES ...).
    virtual int MessageBox(IDialogWindow* in_owner, tarni_wstring_view in_text, tarni_wstring_view in_caption,
                           std::uint32_t in_flags) = 0;

    /// The rectangle of the desktop window.
    virtual DialogRect GetDesktopRect() = 0;

    /// Shows the system's wait cursor; false when it cannot be loaded. A host
    /// without a mouse pointer shows in_activity ("Connecting...") instead, or
    /// a general "Please wait..." when it is empty.
    virtual bool SetWaitCursor(tarni_wstring_view in_activity) = 0;

    /// The open and save file boxes: the chosen path, or nothing when the
    /// user cancelled.
    virtual std::optional<tarni_wstring> GetOpenFileName(const FileChooserOptions& in_options) = 0;
    virtual std::optional<tarni_wstring> GetSaveFileName(const FileChooserOptions& in_options) = 0;

    /// The folder chooser with its title; nothing when cancelled or when the
    /// chosen item has no file-system path.
    virtual std::optional<tarni_wstring> BrowseForFolder(IDialogWindow* in_owner, tarni_wstring_view in_title) = 0;

    /// The user's documents folder; nothing when it cannot be found.
    virtual std::optional<tarni_wstring> GetDocumentsFolder() = 0;
};
}  // namespace Tarni::Platform
