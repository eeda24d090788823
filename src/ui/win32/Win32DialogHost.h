#pragma once
// The Win32 dialog host: real modal dialogs from the templates compiled into
// the module (DialogBoxParamW), real controls, MessageBoxW, the common file
// boxes and the shell's folder chooser.
#include "ui/win32/Win32Headers.h"

#include <exception>

#include "ui/IDialogHost.h"

namespace Tarni::Platform
{
class Win32DialogHost final : public IDialogHost
{
public:
    /// The module whose resources hold the templates and strings (null: the
    /// program itself).
    explicit Win32DialogHost(HINSTANCE in_module = nullptr);

    HINSTANCE GetModule() const { return m_module; }

    std::intptr_t DialogBoxParam(unsigned in_templateId, IDialogWindow* in_owner, DialogProcedure in_procedure,
                                 std::intptr_t in_param) override;
    int LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars) override;
    int MessageBox(IDialogWindow* in_owner, tarni_wstring_view in_text, tarni_wstring_view in_caption,
                   std::uint32_t in_flags) override;
    DialogRect GetDesktopRect() override;
    bool SetWaitCursor(tarni_wstring_view in_activity) override;
    std::optional<tarni_wstring> GetOpenFileName(const FileChooserOptions& in_options) override;
    std::optional<tarni_wstring> GetSaveFileName(const FileChooserOptions& in_options) override;
    std::optional<tarni_wstring> BrowseForFolder(IDialogWindow* in_owner, tarni_wstring_view in_title) override;
    std::optional<tarni_wstring> GetDocumentsFolder() override;

private:
    static INT_PTR CALLBACK DialogProc(HWND in_hwnd, UINT in_message, WPARAM in_wParam, LPARAM in_lParam);
    std::optional<tarni_wstring> RunFileBox(const FileChooserOptions& in_options, bool in_save);

    HINSTANCE m_module;
    /// An exception thrown by dialog code inside the system's dialog loop is
    /// held here and thrown again once DialogBoxParamW has returned: it must
    /// not unwind through the system's frames.
    std::exception_ptr m_pendingException;
};
}  // namespace Tarni::Platform
