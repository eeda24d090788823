#pragma once
// Runs a shell script in a detached tmux session of its own (a private
// server socket, an 80x24 window) and lets a test type keys and read the
// screen. Every wait is bounded, and the server is killed when the session
// object goes, so a test that fails cannot leave anything running.
#include <chrono>
#include <functional>
#include <string>

namespace Tarni::Testing
{
class TmuxSession
{
public:
    /// Starts in_script (bash) in in_folder.
    TmuxSession(const std::string& in_folder, const std::string& in_script, int in_cols = 80, int in_rows = 24);
    ~TmuxSession();
    TmuxSession(const TmuxSession&) = delete;
    TmuxSession& operator=(const TmuxSession&) = delete;

    /// Sends one key by its tmux name ("Tab", "BTab", "Enter", "Escape", "C-u", "M-l", "Down").
    void Key(const std::string& in_key);
    /// Changes the size of the terminal.
    void Resize(int in_cols, int in_rows);
    /// Types the text as it stands.
    void Type(const std::string& in_text);
    /// The screen as text, or with its attributes as escape sequences.
    std::string Screen(bool in_attributes = false) const;
    /// The row of the cursor when it is shown, -1 when it is hidden.
    int CursorRow() const;
    /// Waits until the condition holds for the screen; false after the timeout.
    bool WaitFor(const std::function<bool(const std::string&)>& in_condition, bool in_attributes = false,
                 std::chrono::milliseconds in_timeout = std::chrono::seconds(15)) const;
    bool WaitForText(const std::string& in_text,
                     std::chrono::milliseconds in_timeout = std::chrono::seconds(15)) const;
    /// The process id of the first child of the pane's shell, -1 when none.
    int ChildPid() const;
    /// The line of the screen that holds the text, empty when none.
    std::string LineWith(const std::string& in_text, bool in_attributes = false) const;
    /// The row of the first line that holds the text, -1 when none.
    int RowOf(const std::string& in_text) const;
    /// The last line of the screen: the host's status line, which names the
    /// control with the focus (" OK", " Space: open list", ...).
    static std::string StatusLine(const std::string& in_screen);
    /// Presses Tab until the caret is on the row of the label; false when it never is.
    bool FocusField(const std::string& in_label);
    /// Presses Tab until the status line starts with the text; false when it never does.
    bool FocusStatus(const std::string& in_start);

private:
    bool TabUntil(const std::function<bool()>& in_focused, int in_limit = 60);
    std::string Tmux(const std::string& in_arguments) const;

    std::string m_socket;
};
}  // namespace Tarni::Testing
