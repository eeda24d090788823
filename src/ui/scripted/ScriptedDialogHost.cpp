#include "ui/scripted/ScriptedDialogHost.h"

#include <algorithm>

#include "ui/DialogConstants.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
using Support::StringConverter;

ScriptedDialogHost::ScriptedDialogHost(const ResourceScript& in_resources) : m_resources(in_resources) {}

ScriptedDialogHost::~ScriptedDialogHost() = default;

void ScriptedDialogHost::ExpectDialog(unsigned in_templateId, DialogScript in_script)
{
    m_expectedDialogs.push_back({in_templateId, std::move(in_script)});
}

void ScriptedDialogHost::ExpectMessageBox(int in_answer) { m_boxAnswers.push_back(in_answer); }

void ScriptedDialogHost::ExpectOpenFile(std::optional<tarni_wstring> in_path)
{
    m_openAnswers.push_back(std::move(in_path));
}

void ScriptedDialogHost::ExpectSaveFile(std::optional<tarni_wstring> in_path)
{
    m_saveAnswers.push_back(std::move(in_path));
}

void ScriptedDialogHost::ExpectFolder(std::optional<tarni_wstring> in_path)
{
    m_folderAnswers.push_back(std::move(in_path));
}

void ScriptedDialogHost::VerifyAllUsed() const
{
    if (!m_expectedDialogs.empty())
    {
        throw ScriptedHostError("dialog " + std::to_string(m_expectedDialogs.front().templateId) +
                                " was expected but never opened");
    }
    if (!m_boxAnswers.empty())
    {
        throw ScriptedHostError(std::to_string(m_boxAnswers.size()) + " expected message box(es) never appeared");
    }
    if (!m_openAnswers.empty() || !m_saveAnswers.empty() || !m_folderAnswers.empty())
    {
        throw ScriptedHostError("an expected file or folder chooser never appeared");
    }
}

std::intptr_t ScriptedDialogHost::DialogBoxParam(unsigned in_templateId, IDialogWindow* in_owner,
                                                 DialogProcedure in_procedure, std::intptr_t in_param)
{
    const unsigned ownerTemplate = in_owner != nullptr ? in_owner->GetTemplateId() : 0;
    const DialogTemplate* dialogTemplate = m_resources.FindDialog(in_templateId);
    if (dialogTemplate == nullptr)
    {
        // As DialogBoxParamW: the dialog cannot be created.
        m_dialogs.push_back({in_templateId, ownerTemplate, -1});
        return -1;
    }
    if (m_expectedDialogs.empty())
    {
        throw ScriptedHostError("dialog " + std::to_string(in_templateId) + " opened, but the test expected none");
    }
    ExpectedDialog expected = std::move(m_expectedDialogs.front());
    m_expectedDialogs.pop_front();
    if (expected.templateId != in_templateId)
    {
        throw ScriptedHostError("dialog " + std::to_string(in_templateId) + " opened, but the test expected dialog " +
                                std::to_string(expected.templateId));
    }

    ScriptedDialogWindow window(*this, *dialogTemplate, in_owner, in_procedure);
    window.Send(WM_INITDIALOG, 0, in_param);
    if (m_settleTimers && window.HasTimers() &&
        !window.RunTimers([&window] { return !window.HasTimers(); }, std::chrono::seconds(30)) && !window.IsEnded())
    {
        throw ScriptedHostError("dialog " + std::to_string(in_templateId) + " still runs its timers after 30 s");
    }
    if (!window.IsEnded() && expected.script)
    {
        expected.script(window);
    }
    if (!window.IsEnded())
    {
        throw ScriptedHostError("dialog " + std::to_string(in_templateId) + " is still open after its script");
    }
    window.Send(WM_DESTROY, 0, 0);
    window.Send(WM_NCDESTROY, 0, 0);
    m_dialogs.push_back({in_templateId, ownerTemplate, window.GetResult()});
    return window.GetResult();
}

int ScriptedDialogHost::LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars)
{
    return m_resources.LoadString(in_id, out_buffer, in_bufferChars);
}

int ScriptedDialogHost::MessageBox(IDialogWindow* in_owner, tarni_wstring_view in_text, tarni_wstring_view in_caption,
                                   std::uint32_t in_flags)
{
    if (m_boxAnswers.empty())
    {
        throw ScriptedHostError("message box \"" + StringConverter::ToUtf8(in_caption) + "\": \"" +
                                StringConverter::ToUtf8(in_text) + "\" appeared, but the test expected none");
    }
    const int answer = m_boxAnswers.front();
    m_boxAnswers.pop_front();
    m_boxes.push_back({tarni_wstring(in_text), tarni_wstring(in_caption), in_flags,
                       in_owner != nullptr ? in_owner->GetTemplateId() : 0u, answer});
    return answer;
}

bool ScriptedDialogHost::SetWaitCursor(tarni_wstring_view)
{
    if (!m_waitCursorAvailable)
    {
        return false;
    }
    ++m_waitCursorCount;
    return true;
}

std::optional<tarni_wstring> ScriptedDialogHost::NextChooserAnswer(std::deque<std::optional<tarni_wstring>>& io_queue,
                                                                   const char* in_what)
{
    if (io_queue.empty())
    {
        throw ScriptedHostError(std::string(in_what) + " appeared, but the test expected none");
    }
    auto answer = std::move(io_queue.front());
    io_queue.pop_front();
    return answer;
}

std::optional<tarni_wstring> ScriptedDialogHost::GetOpenFileName(const FileChooserOptions& in_options)
{
    m_choosers.push_back(in_options);
    return NextChooserAnswer(m_openAnswers, "an open-file box");
}

std::optional<tarni_wstring> ScriptedDialogHost::GetSaveFileName(const FileChooserOptions& in_options)
{
    m_choosers.push_back(in_options);
    return NextChooserAnswer(m_saveAnswers, "a save-file box");
}

std::optional<tarni_wstring> ScriptedDialogHost::BrowseForFolder(IDialogWindow*, tarni_wstring_view in_title)
{
    m_folderTitles.emplace_back(in_title);
    return NextChooserAnswer(m_folderAnswers, "a folder chooser");
}
}  // namespace Tarni::Platform
