#pragma once
// The dialog host of the tests: it builds each dialog from the template of
// the resource script and, instead of waiting for a user, runs the script
// that the test queued for that dialog. Message boxes and choosers take the
// answers the test queued and are recorded. Anything the test did not
// expect (a dialog, a box, a chooser) fails with ScriptedHostError, which no
// dialog code catches, so the test sees it.
#include <deque>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ui/IDialogHost.h"
#include "ui/ResourceScript.h"
#include "ui/scripted/ScriptedDialogWindow.h"

namespace Tarni::Platform
{
class ScriptedHostError : public std::logic_error
{
public:
    using std::logic_error::logic_error;
};

class ScriptedDialogHost final : public IDialogHost
{
public:
    using DialogScript = std::function<void(ScriptedDialogWindow&)>;

    struct MessageBoxRecord
    {
        tarni_wstring text;
        tarni_wstring caption;
        std::uint32_t flags = 0;
        unsigned ownerTemplate = 0;  ///< 0: no owner
        int answer = 0;
    };

    struct DialogRecord
    {
        unsigned templateId = 0;
        unsigned ownerTemplate = 0;
        std::intptr_t result = 0;
    };

    explicit ScriptedDialogHost(const ResourceScript& in_resources = ResourceScript::Embedded());
    ~ScriptedDialogHost() override;

    /// The next dialog to open must be of this template; the script plays
    /// the user and must end it.
    void ExpectDialog(unsigned in_templateId, DialogScript in_script);
    /// The answer (IDOK, IDYES ...) to the next message box.
    void ExpectMessageBox(int in_answer);
    /// The answers of the next open-file, save-file and folder choosers
    /// (nothing: the user cancels).
    void ExpectOpenFile(std::optional<tarni_wstring> in_path);
    void ExpectSaveFile(std::optional<tarni_wstring> in_path);
    void ExpectFolder(std::optional<tarni_wstring> in_path);

    /// By default a dialog that starts a timer in WM_INITDIALOG (background
    /// work it polls) gets its timer messages until the timer stops before
    /// its script runs, as a user who waits; false hands the script the
    /// dialog at once (the script then lets time pass with RunTimers).
    void SetSettleTimers(bool in_settle) { m_settleTimers = in_settle; }

    void SetDesktopRect(const DialogRect& in_rect) { m_desktop = in_rect; }
    void SetWaitCursorAvailable(bool in_available) { m_waitCursorAvailable = in_available; }
    void SetDocumentsFolder(std::optional<tarni_wstring> in_folder) { m_documents = std::move(in_folder); }

    const std::vector<MessageBoxRecord>& GetMessageBoxes() const { return m_boxes; }
    const std::vector<DialogRecord>& GetDialogs() const { return m_dialogs; }
    const std::vector<FileChooserOptions>& GetFileChoosers() const { return m_choosers; }
    const std::vector<tarni_wstring>& GetFolderChooserTitles() const { return m_folderTitles; }
    int GetWaitCursorCount() const { return m_waitCursorCount; }
    /// Fails when a queued dialog, box or chooser answer was not used.
    void VerifyAllUsed() const;

    const ResourceScript& GetResources() const { return m_resources; }

    // --- IDialogHost ---
    std::intptr_t DialogBoxParam(unsigned in_templateId, IDialogWindow* in_owner, DialogProcedure in_procedure,
                                 std::intptr_t in_param) override;
    int LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars) override;
    int MessageBox(IDialogWindow* in_owner, tarni_wstring_view in_text, tarni_wstring_view in_caption,
                   std::uint32_t in_flags) override;
    DialogRect GetDesktopRect() override { return m_desktop; }
    bool SetWaitCursor(tarni_wstring_view in_activity) override;
    std::optional<tarni_wstring> GetOpenFileName(const FileChooserOptions& in_options) override;
    std::optional<tarni_wstring> GetSaveFileName(const FileChooserOptions& in_options) override;
    std::optional<tarni_wstring> BrowseForFolder(IDialogWindow* in_owner, tarni_wstring_view in_title) override;
    std::optional<tarni_wstring> GetDocumentsFolder() override { return m_documents; }

private:
    struct ExpectedDialog
    {
        unsigned templateId;
        DialogScript script;
    };

    std::optional<tarni_wstring> NextChooserAnswer(std::deque<std::optional<tarni_wstring>>& io_queue,
                                                   const char* in_what);

    const ResourceScript& m_resources;
    std::deque<ExpectedDialog> m_expectedDialogs;
    std::deque<int> m_boxAnswers;
    std::deque<std::optional<tarni_wstring>> m_openAnswers;
    std::deque<std::optional<tarni_wstring>> m_saveAnswers;
    std::deque<std::optional<tarni_wstring>> m_folderAnswers;
    std::vector<MessageBoxRecord> m_boxes;
    std::vector<DialogRecord> m_dialogs;
    std::vector<FileChooserOptions> m_choosers;
    std::vector<tarni_wstring> m_folderTitles;
    DialogRect m_desktop{0, 0, 1920, 1080};
    bool m_waitCursorAvailable = true;
    bool m_settleTimers = true;
    int m_waitCursorCount = 0;
    std::optional<tarni_wstring> m_documents;
};
}  // namespace Tarni::Platform
