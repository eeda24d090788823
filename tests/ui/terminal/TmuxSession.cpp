#include "TmuxSession.h"

#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace Tarni::Testing
{
namespace
{
std::string Quote(const std::string& in_text)
{
    std::string out = "'";
    for (const char c : in_text)
    {
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + "'";
}

std::string Run(const std::string& in_command)
{
    std::string output;
    FILE* pipe = ::popen((in_command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr)
    {
        throw std::runtime_error("cannot run " + in_command);
    }
    std::array<char, 4096> buffer{};
    std::size_t n = 0;
    while ((n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
    {
        output.append(buffer.data(), n);
    }
    ::pclose(pipe);
    return output;
}
}  // namespace

TmuxSession::TmuxSession(const std::string& in_folder, const std::string& in_script, int in_cols, int in_rows)
{
    static std::atomic<int> counter{0};
    m_socket = "tarni-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++);
    const std::string script = in_folder + "/session.sh";
    std::ofstream(script) << "cd " << Quote(in_folder) << "\n" << in_script << "\n";
    if (Run("command -v tmux").empty())
    {
        throw std::runtime_error("tmux is not installed (scripts/install-deps.sh installs it)");
    }
    Tmux("-f /dev/null new-session -d -x " + std::to_string(in_cols) + " -y " + std::to_string(in_rows) +
         " -e LANG=C.UTF-8 -e TERM=screen " + Quote("bash --norc --noprofile " + Quote(script)));
}

TmuxSession::~TmuxSession() { Tmux("kill-server"); }

std::string TmuxSession::Tmux(const std::string& in_arguments) const
{
    return Run("tmux -u -L " + m_socket + " " + in_arguments);
}

void TmuxSession::Key(const std::string& in_key)
{
    Tmux("send-keys " + in_key);
    // Keys that arrive together would read as one (Escape and a letter as Alt).
    std::this_thread::sleep_for(std::chrono::milliseconds(120));
}

void TmuxSession::Resize(int in_cols, int in_rows)
{
    Tmux("resize-window -x " + std::to_string(in_cols) + " -y " + std::to_string(in_rows));
}

void TmuxSession::Type(const std::string& in_text)
{
    Tmux("send-keys -l " + Quote(in_text));
    std::this_thread::sleep_for(std::chrono::milliseconds(120));
}

std::string TmuxSession::Screen(bool in_attributes) const
{
    return Tmux(std::string("capture-pane -p") + (in_attributes ? " -e" : ""));
}

int TmuxSession::CursorRow() const
{
    std::istringstream in(Tmux("display-message -p '#{cursor_flag} #{cursor_y}'"));
    int shown = 0;
    int row = -1;
    in >> shown >> row;
    return shown != 0 ? row : -1;
}

bool TmuxSession::WaitFor(const std::function<bool(const std::string&)>& in_condition, bool in_attributes,
                          std::chrono::milliseconds in_timeout) const
{
    const auto end = std::chrono::steady_clock::now() + in_timeout;
    while (std::chrono::steady_clock::now() < end)
    {
        if (in_condition(Screen(in_attributes)))
        {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return false;
}

bool TmuxSession::WaitForText(const std::string& in_text, std::chrono::milliseconds in_timeout) const
{
    return WaitFor([&](const std::string& in_screen) { return in_screen.find(in_text) != std::string::npos; }, false,
                   in_timeout);
}

int TmuxSession::ChildPid() const
{
    std::istringstream in(Tmux("display-message -p '#{pane_pid}'"));
    int shell = -1;
    in >> shell;
    std::ifstream children("/proc/" + std::to_string(shell) + "/task/" + std::to_string(shell) + "/children");
    int child = -1;
    children >> child;
    return child;
}

std::string TmuxSession::LineWith(const std::string& in_text, bool in_attributes) const
{
    std::istringstream in(Screen(in_attributes));
    std::string line;
    while (std::getline(in, line))
    {
        if (line.find(in_text) != std::string::npos)
        {
            return line;
        }
    }
    return {};
}
}  // namespace Tarni::Testing

namespace Tarni::Testing
{
int TmuxSession::RowOf(const std::string& in_text) const
{
    std::istringstream in(Screen());
    std::string line;
    for (int row = 0; std::getline(in, line); ++row)
    {
        if (line.find(in_text) != std::string::npos)
        {
            return row;
        }
    }
    return -1;
}

std::string TmuxSession::StatusLine(const std::string& in_screen)
{
    std::string trimmed = in_screen;
    while (!trimmed.empty() && trimmed.back() == '\n')
    {
        trimmed.pop_back();
    }
    return trimmed.substr(trimmed.rfind('\n') + 1);
}

bool TmuxSession::TabUntil(const std::function<bool()>& in_focused, int in_limit)
{
    for (int i = 0; i < in_limit; ++i)
    {
        if (in_focused())
        {
            return true;
        }
        Key("Tab");
    }
    return in_focused();
}

bool TmuxSession::FocusField(const std::string& in_label)
{
    return TabUntil([&]() { return CursorRow() == RowOf(in_label) && CursorRow() >= 0; });
}

bool TmuxSession::FocusStatus(const std::string& in_start)
{
    return TabUntil([&]() { return StatusLine(Screen()).rfind(in_start, 0) == 0; });
}
}  // namespace Tarni::Testing
