#include "platform/ConsoleEcho.h"

#include <termios.h>
#include <unistd.h>

namespace Tarni::Platform
{
ConsoleEcho::ConsoleEcho()
{
    if (isatty(STDIN_FILENO) == 0)
    {
        return;
    }
    auto* saved = new termios();
    if (tcgetattr(STDIN_FILENO, saved) != 0)
    {
        delete saved;
        return;
    }
    termios quiet = *saved;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    quiet.c_lflag |= ECHONL;  // the user still sees the line end
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    m_savedTerminal = saved;
    m_terminal = true;
}

ConsoleEcho::~ConsoleEcho()
{
    if (m_savedTerminal != nullptr)
    {
        auto* saved = static_cast<termios*>(m_savedTerminal);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, saved);
        delete saved;
    }
}
}  // namespace Tarni::Platform
