#pragma once
// Turns off the echo of the process's standard input while a secret is
// typed, when standard input is a terminal (a console on Windows); does
// nothing for a pipe or a file. The echo comes back when the object goes.
namespace Tarni::Platform
{
class ConsoleEcho
{
public:
    ConsoleEcho();
    ~ConsoleEcho();
    ConsoleEcho(const ConsoleEcho&) = delete;
    ConsoleEcho& operator=(const ConsoleEcho&) = delete;

    /// True when standard input is a terminal (and its echo is now off).
    bool IsTerminal() const { return m_terminal; }

private:
    bool m_terminal = false;
    [[maybe_unused]] unsigned long m_savedMode = 0;  // Windows console mode
    [[maybe_unused]] void* m_savedTerminal = nullptr;  // POSIX termios
};
}  // namespace Tarni::Platform
