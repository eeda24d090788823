#pragma once
// The curses session of the terminal host. The terminal is taken when the
// first dialog or box opens and given back when the last one closes, so the
// shell sees its own screen again between dialogs and after the program.
// It is also given back on every other way out: an exception leaving a
// dialog (the session guard), exit(), std::terminate, and the signals that
// end the process (SIGINT, SIGTERM, SIGHUP, SIGQUIT), whose handler restores
// the terminal with async-signal-safe calls only and then lets the signal
// take its default course. While the terminal is taken the C locale's
// character type is UTF-8; the process's own locale comes back with it.
#include <curses.h>

#include <string>

#include "ui/terminal/TerminalKey.h"

namespace Tarni::Platform
{
class TerminalScreen
{
public:
    /// The one session of the process.
    static TerminalScreen& Instance();

    /// Takes the terminal (on the first call): throws ErrorException
    /// "DSTerminalUnavailableErr" when standard input and output are not a
    /// terminal the curses library can drive.
    void Acquire();
    /// Gives the terminal back on the last call.
    void Release();
    bool IsActive() const { return m_depth > 0; }

    /// Waits for a key on the window (which is refreshed first, as curses
    /// does). Escape followed at once by a character is Alt with it.
    TerminalKey ReadKey(WINDOW* in_window);

    int Rows() const;
    int Cols() const;

    // Attributes of the parts the host draws.
    attr_t Normal() const { return A_NORMAL; }
    attr_t Focused() const { return A_REVERSE; }
    attr_t Disabled() const { return A_DIM; }
    attr_t Field() const { return A_UNDERLINE; }
    attr_t DefaultButton() const { return A_BOLD; }
    attr_t Title() const { return A_BOLD; }
    attr_t StatusLine() const { return A_REVERSE; }
    attr_t Mnemonic() const { return A_UNDERLINE; }

    /// Guard that holds the session for a scope.
    class Session
    {
    public:
        explicit Session(TerminalScreen& in_screen) : m_screen(in_screen) { m_screen.Acquire(); }
        ~Session() { m_screen.Release(); }
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;

    private:
        TerminalScreen& m_screen;
    };

private:
    TerminalScreen() = default;
    void Open();
    void Close();
    static void InstallHandlers();
    // Sets a UTF-8 character type for the session and remembers the host
    // process's locale; RestoreLocale gives it back. Inside the setup library
    // the process belongs to the ODBC administrator, whose locale must not
    // change behind its back.
    void UseUtf8Locale();
    void RestoreLocale();

    int m_depth = 0;
    std::string m_savedLocale;
    SCREEN* m_screen = nullptr;
};
}  // namespace Tarni::Platform
