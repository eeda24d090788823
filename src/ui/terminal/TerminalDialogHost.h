#pragma once
// The dialog host of the Linux dialog program: every dialog of the resource
// script drawn in the terminal with curses (ncursesw with its form and menu
// libraries), modal, nested over its owner, driven with the keyboard. The
// last row of the screen is a status line with the keys that work; the
// dialogs take the rows above it. Message boxes are modal pop-ups with the
// buttons their flags ask for; the open, save and folder choosers are a
// path prompt with completion of file names.
#include <vector>

#include "ui/IDialogHost.h"
#include "ui/ResourceScript.h"
#include "ui/terminal/TerminalScreen.h"
#include "core/ILogger.h"

namespace Tarni::Platform
{
class TerminalDialogWindow;

class TerminalDialogHost final : public IDialogHost
{
public:
    explicit TerminalDialogHost(const ResourceScript& in_resources = ResourceScript::Embedded(),
                                Support::ILogger* in_logger = nullptr);
    ~TerminalDialogHost() override;
    TerminalDialogHost(const TerminalDialogHost&) = delete;
    TerminalDialogHost& operator=(const TerminalDialogHost&) = delete;

    void SetLogger(Support::ILogger* in_logger) { m_logger = in_logger; }

    // --- for the dialogs and pop-ups of the host ---
    TerminalScreen& GetScreen() { return m_screen; }
    /// Rows the dialogs may take (all but the status line).
    int GetDialogRows() const;
    int GetScreenCols() const;
    /// Draws every open dialog, bottom to top, and the status line (the top
    /// dialog's, or in_status when given); with in_update the screen is
    /// updated, else the caller draws its pop-up over it and updates.
    void PaintAll(const std::wstring* in_status, bool in_update);
    /// Lays every open dialog out again after the terminal changed its size.
    void RelayoutAll();
    /// Reads a key for a pop-up window; a resize lays the dialogs out again
    /// before it is returned.
    TerminalKey ReadKey(WINDOW* in_window);

    // --- IDialogHost ---
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
    void DrawStatus(const std::wstring& in_text);

    const ResourceScript& m_resources;
    Support::ILogger* m_logger;
    TerminalScreen& m_screen;
    std::vector<TerminalDialogWindow*> m_stack;  ///< open dialogs, the top one last
    std::wstring m_waitStatus;  ///< the activity line of SetWaitCursor, while it lasts
};
}  // namespace Tarni::Platform
