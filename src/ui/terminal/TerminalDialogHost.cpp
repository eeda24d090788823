#include "ui/terminal/TerminalDialogHost.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "ui/DialogConstants.h"
#include "ui/terminal/TerminalDialogWindow.h"
#include "ui/terminal/TerminalMessageBox.h"
#include "ui/terminal/TerminalPathPrompt.h"
#include "ui/terminal/TerminalText.h"
#include "ui/terminal/XdgUserDirectories.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
namespace
{
using Support::StringConverter;

constexpr const char* NAMESPACE = "Tarni::Platform";
constexpr const char* CLASS = "TerminalDialogHost";
/// Reads that fail one after the other before the input counts as gone.
constexpr int MAX_FAILED_READS = 64;

// Keeps a dialog on the stack of open dialogs for its modal run.
class StackEntry
{
public:
    StackEntry(std::vector<TerminalDialogWindow*>& io_stack, TerminalDialogWindow* in_window) : m_stack(io_stack)
    {
        m_stack.push_back(in_window);
    }
    ~StackEntry() { m_stack.pop_back(); }
    StackEntry(const StackEntry&) = delete;
    StackEntry& operator=(const StackEntry&) = delete;

private:
    std::vector<TerminalDialogWindow*>& m_stack;
};
}  // namespace

TerminalDialogHost::TerminalDialogHost(const ResourceScript& in_resources, Support::ILogger* in_logger)
    : m_resources(in_resources), m_logger(in_logger), m_screen(TerminalScreen::Instance())
{
}

TerminalDialogHost::~TerminalDialogHost() = default;

int TerminalDialogHost::GetDialogRows() const { return std::max(m_screen.Rows() - 1, 1); }

int TerminalDialogHost::GetScreenCols() const { return std::max(m_screen.Cols(), 1); }

void TerminalDialogHost::DrawStatus(const std::wstring& in_text)
{
    const int row = m_screen.Rows() - 1;
    const std::wstring shown = TerminalText::Fit(L" " + in_text, m_screen.Cols());
    ::wattr_set(stdscr, m_screen.StatusLine(), 0, nullptr);
    ::mvwhline(stdscr, row, 0, ' ', m_screen.Cols());
    ::mvwaddnwstr(stdscr, row, 0, shown.c_str(), static_cast<int>(shown.size()));
    ::wattr_set(stdscr, A_NORMAL, 0, nullptr);
}

void TerminalDialogHost::PaintAll(const std::wstring* in_status, bool in_update)
{
    ::werase(stdscr);
    if (in_status != nullptr)
    {
        DrawStatus(*in_status);
    }
    else if (!m_waitStatus.empty())
    {
        DrawStatus(m_waitStatus);
    }
    else if (!m_stack.empty())
    {
        DrawStatus(m_stack.back()->GetStatusText());
    }
    ::wnoutrefresh(stdscr);
    for (std::size_t i = 0; i < m_stack.size(); ++i)
    {
        m_stack[i]->Paint(i + 1 == m_stack.size() && in_status == nullptr);
    }
    if (in_update)
    {
        if (!m_stack.empty())
        {
            m_stack.back()->PlaceCaret();
        }
        ::doupdate();
    }
}

void TerminalDialogHost::RelayoutAll()
{
    ::clearok(curscr, TRUE);
    for (TerminalDialogWindow* window : m_stack)
    {
        window->Layout(GetDialogRows(), GetScreenCols());
    }
}

TerminalKey TerminalDialogHost::ReadKey(WINDOW* in_window)
{
    for (int failed = 0;;)
    {
        const TerminalKey key = m_screen.ReadKey(in_window);
        if (key.kind == TerminalKey::Kind::Resize)
        {
            RelayoutAll();
        }
        if (key.kind != TerminalKey::Kind::None)
        {
            return key;
        }
        // A blocking read that fails again and again: the terminal is gone.
        if (++failed >= MAX_FAILED_READS)
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          u"DSTerminalInputLostErr");
        }
    }
}

std::intptr_t TerminalDialogHost::DialogBoxParam(unsigned in_templateId, IDialogWindow* in_owner,
                                                 DialogProcedure in_procedure, std::intptr_t in_param)
{
    TARNI_LOG_ENTRY(m_logger, NAMESPACE, CLASS, "DialogBoxParam");
    const DialogTemplate* dialogTemplate = m_resources.FindDialog(in_templateId);
    if (dialogTemplate == nullptr)
    {
        if (m_logger != nullptr)
        {
            m_logger->LogError(NAMESPACE, CLASS, "DialogBoxParam", "Dialog template %u does not exist.", in_templateId);
        }
        return -1;
    }
    TerminalScreen::Session session(m_screen);
    TerminalDialogWindow window(*this, *dialogTemplate, in_owner, in_procedure);
    StackEntry entry(m_stack, &window);
    window.Layout(GetDialogRows(), GetScreenCols());
    window.Send(WM_INITDIALOG, 0, in_param);
    window.FocusFirst();
    auto lastTimers = std::chrono::steady_clock::now();
    while (!window.IsEnded())
    {
        const unsigned interval = window.GetTimerInterval();
        if (interval == 0)
        {
            // The activity line of SetWaitCursor lasts while work runs in
            // the background (a timer polls it), else until the next key.
            m_waitStatus.clear();
        }
        PaintAll(nullptr, true);
        if (interval == 0)
        {
            const TerminalKey key = ReadKey(window.GetCursesWindow());
            if (key.kind != TerminalKey::Kind::Resize)
            {
                window.HandleKey(key);
            }
            continue;
        }
        // A timer runs: wait for a key no longer than its interval.
        ::wtimeout(window.GetCursesWindow(), static_cast<int>(interval));
        const TerminalKey key = m_screen.ReadKey(window.GetCursesWindow());
        ::wtimeout(window.GetCursesWindow(), -1);
        if (key.kind == TerminalKey::Kind::Resize)
        {
            RelayoutAll();
        }
        else if (key.kind != TerminalKey::Kind::None)
        {
            window.HandleKey(key);
        }
        if (std::chrono::steady_clock::now() - lastTimers >= std::chrono::milliseconds(interval))
        {
            lastTimers = std::chrono::steady_clock::now();
            window.FireTimers();
        }
    }
    m_waitStatus.clear();
    window.Send(WM_DESTROY, 0, 0);
    window.Send(WM_NCDESTROY, 0, 0);
    return window.GetResult();
}

int TerminalDialogHost::LoadString(unsigned in_id, char16_t* out_buffer, int in_bufferChars)
{
    return m_resources.LoadString(in_id, out_buffer, in_bufferChars);
}

int TerminalDialogHost::MessageBox(IDialogWindow*, tarni_wstring_view in_text, tarni_wstring_view in_caption,
                                   std::uint32_t in_flags)
{
    TARNI_LOG_ENTRY(m_logger, NAMESPACE, CLASS, "MessageBox");
    const std::wstring text = TerminalText::ToWide(in_text);
    const std::wstring caption = TerminalText::ToWide(in_caption);
    try
    {
        TerminalScreen::Session session(m_screen);
        return TerminalMessageBox::Run(*this, text, caption, in_flags);
    }
    catch (const Support::ErrorException& e)
    {
        // Without a terminal the box goes to the error output, and its
        // default button is the answer.
        if (m_logger != nullptr)
        {
            m_logger->LogError(NAMESPACE, CLASS, "MessageBox", e);
        }
        std::fprintf(stderr, "%s: %s\n", StringConverter::ToUtf8(in_caption).c_str(),
                     StringConverter::ToUtf8(in_text).c_str());
        int defaultIndex = 0;
        const auto buttons = TerminalMessageBox::ButtonsOf(in_flags, defaultIndex);
        return buttons[static_cast<std::size_t>(defaultIndex)].id;
    }
}

DialogRect TerminalDialogHost::GetDesktopRect()
{
    return DialogRect{0, 0, GetScreenCols(), GetDialogRows()};
}

bool TerminalDialogHost::SetWaitCursor(tarni_wstring_view in_activity)
{
    // The terminal has no mouse pointer: the status line says it instead.
    if (m_screen.IsActive())
    {
        m_waitStatus = in_activity.empty() ? std::wstring(L"Please wait...") : TerminalText::ToWide(in_activity);
        DrawStatus(m_waitStatus);
        ::wnoutrefresh(stdscr);
        ::doupdate();
    }
    return true;
}

std::optional<tarni_wstring> TerminalDialogHost::GetOpenFileName(const FileChooserOptions& in_options)
{
    TARNI_LOG_ENTRY(m_logger, NAMESPACE, CLASS, "GetOpenFileName");
    TerminalScreen::Session session(m_screen);
    const std::wstring title = in_options.title.empty() ? L"Open" : TerminalText::ToWide(in_options.title);
    const auto path = TerminalPathPrompt::Run(*this, TerminalPathPrompt::Mode::Open, title, in_options);
    return path ? std::optional<tarni_wstring>(StringConverter::FromUtf8(*path)) : std::nullopt;
}

std::optional<tarni_wstring> TerminalDialogHost::GetSaveFileName(const FileChooserOptions& in_options)
{
    TARNI_LOG_ENTRY(m_logger, NAMESPACE, CLASS, "GetSaveFileName");
    TerminalScreen::Session session(m_screen);
    const std::wstring title = in_options.title.empty() ? L"Save As" : TerminalText::ToWide(in_options.title);
    const auto path = TerminalPathPrompt::Run(*this, TerminalPathPrompt::Mode::Save, title, in_options);
    return path ? std::optional<tarni_wstring>(StringConverter::FromUtf8(*path)) : std::nullopt;
}

std::optional<tarni_wstring> TerminalDialogHost::BrowseForFolder(IDialogWindow* in_owner, tarni_wstring_view in_title)
{
    TARNI_LOG_ENTRY(m_logger, NAMESPACE, CLASS, "BrowseForFolder");
    TerminalScreen::Session session(m_screen);
    FileChooserOptions options;
    options.owner = in_owner;
    const std::wstring title = in_title.empty() ? L"Browse For Folder" : TerminalText::ToWide(in_title);
    const auto path = TerminalPathPrompt::Run(*this, TerminalPathPrompt::Mode::Folder, title, options);
    return path ? std::optional<tarni_wstring>(StringConverter::FromUtf8(*path)) : std::nullopt;
}

std::optional<tarni_wstring> TerminalDialogHost::GetDocumentsFolder()
{
    const auto folder = XdgUserDirectories::DocumentsFolder();
    return folder ? std::optional<tarni_wstring>(StringConverter::FromUtf8(*folder)) : std::nullopt;
}
}  // namespace Tarni::Platform
