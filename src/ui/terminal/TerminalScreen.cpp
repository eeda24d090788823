#include "ui/terminal/TerminalScreen.h"

#include <langinfo.h>
#include <termios.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
namespace
{
// What the signal handler needs to give the terminal back, prepared while
// the terminal is taken so that the handler itself only calls write() and
// tcsetattr(), which are async-signal-safe.
volatile std::sig_atomic_t g_active = 0;
struct termios g_savedModes;
bool g_haveSavedModes = false;
char g_leaveSequence[512];
std::size_t g_leaveLength = 0;
std::terminate_handler g_previousTerminate = nullptr;

constexpr int HANDLED_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

void RestoreAsyncSafe()
{
    if (g_active == 0)
    {
        return;
    }
    g_active = 0;
    std::size_t written = 0;
    while (written < g_leaveLength)
    {
        const ssize_t n = ::write(STDOUT_FILENO, g_leaveSequence + written, g_leaveLength - written);
        if (n <= 0)
        {
            break;
        }
        written += static_cast<std::size_t>(n);
    }
    if (g_haveSavedModes)
    {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &g_savedModes);
    }
}

extern "C" void OnTerminatingSignal(int in_signal)
{
    RestoreAsyncSafe();
    // The signal is blocked while its handler runs: raised again with the
    // default action, it ends the process as soon as the handler returns.
    ::signal(in_signal, SIG_DFL);
    ::raise(in_signal);
}

void OnTerminate()
{
    RestoreAsyncSafe();
    if (g_previousTerminate != nullptr)
    {
        g_previousTerminate();
    }
    std::abort();
}

extern "C" void OnExit()
{
    if (g_active != 0)
    {
        ::endwin();
        g_active = 0;
    }
}

void Append(const char* in_capability)
{
    const char* value = ::tigetstr(const_cast<char*>(in_capability));
    if (value == nullptr || value == reinterpret_cast<const char*>(-1))
    {
        return;
    }
    const std::size_t length = std::strlen(value);
    if (g_leaveLength + length < sizeof(g_leaveSequence))
    {
        std::memcpy(g_leaveSequence + g_leaveLength, value, length);
        g_leaveLength += length;
    }
}

[[noreturn]] void ThrowUnavailable()
{
    const char* term = std::getenv("TERM");
    throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSTerminalUnavailableErr",
                                  {Support::StringConverter::FromUtf8(term != nullptr ? term : "")});
}
}  // namespace

TerminalScreen& TerminalScreen::Instance()
{
    static TerminalScreen screen;
    return screen;
}

void TerminalScreen::InstallHandlers()
{
    static bool installed = false;
    if (installed)
    {
        return;
    }
    installed = true;
    for (const int signal : HANDLED_SIGNALS)
    {
        struct sigaction current{};
        if (::sigaction(signal, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        {
            struct sigaction action{};
            action.sa_handler = OnTerminatingSignal;
            sigemptyset(&action.sa_mask);
            ::sigaction(signal, &action, nullptr);
        }
    }
    g_previousTerminate = std::set_terminate(OnTerminate);
    std::atexit(OnExit);
}

void TerminalScreen::Acquire()
{
    if (m_depth == 0)
    {
        Open();
    }
    ++m_depth;
}

void TerminalScreen::Release()
{
    if (m_depth > 0 && --m_depth == 0)
    {
        Close();
    }
}

void TerminalScreen::Open()
{
    if (m_screen != nullptr)
    {
        // Back from endwin(): the next update takes the terminal again.
        UseUtf8Locale();
        g_active = 1;
        ::clearok(curscr, TRUE);
        ::doupdate();
        return;
    }
    if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDOUT_FILENO) == 0)
    {
        ThrowUnavailable();
    }
    UseUtf8Locale();
    g_haveSavedModes = ::tcgetattr(STDIN_FILENO, &g_savedModes) == 0;
    InstallHandlers();
    m_screen = ::newterm(nullptr, stdout, stdin);
    if (m_screen == nullptr)
    {
        RestoreLocale();
        ThrowUnavailable();
    }
    ::set_term(m_screen);
    ::set_escdelay(25);
    ::cbreak();
    ::noecho();
    ::nonl();
    ::keypad(stdscr, TRUE);
    ::curs_set(0);
    g_leaveLength = 0;
    Append("sgr0");
    Append("cnorm");
    Append("rmkx");
    Append("rmcup");
    g_active = 1;
}

void TerminalScreen::Close()
{
    ::endwin();
    g_active = 0;
    RestoreLocale();
}

void TerminalScreen::UseUtf8Locale()
{
    const char* current = std::setlocale(LC_ALL, nullptr);
    m_savedLocale = current != nullptr ? current : "C";
    // Wide characters need a UTF-8 character type; fall back to C.UTF-8 when
    // the environment names none.
    std::setlocale(LC_ALL, "");
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") != 0)
    {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

void TerminalScreen::RestoreLocale()
{
    if (!m_savedLocale.empty())
    {
        std::setlocale(LC_ALL, m_savedLocale.c_str());
        m_savedLocale.clear();
    }
}

int TerminalScreen::Rows() const { return LINES; }

int TerminalScreen::Cols() const { return COLS; }

TerminalKey TerminalScreen::ReadKey(WINDOW* in_window)
{
    wint_t code = 0;
    const int rc = ::wget_wch(in_window, &code);
    if (rc == ERR)
    {
        return {};
    }
    if (rc == KEY_CODE_YES)
    {
        if (code == KEY_RESIZE)
        {
            return {TerminalKey::Kind::Resize, 0};
        }
        return {TerminalKey::Kind::Function, code};
    }
    if (code == 27)
    {
        // Alt sends Escape and the character together; Escape alone is
        // followed by nothing.
        ::wtimeout(in_window, 30);
        wint_t next = 0;
        const int nextRc = ::wget_wch(in_window, &next);
        ::wtimeout(in_window, -1);
        if (nextRc == OK)
        {
            return {TerminalKey::Kind::Alt, next};
        }
        if (nextRc == KEY_CODE_YES)
        {
            return {next == KEY_RESIZE ? TerminalKey::Kind::Resize : TerminalKey::Kind::Function, next};
        }
        return {TerminalKey::Kind::Escape, 27};
    }
    return {TerminalKey::Kind::Char, code};
}

}  // namespace Tarni::Platform
