#include "platform/ConsoleEcho.h"

#include <windows.h>

namespace Tarni::Platform
{
ConsoleEcho::ConsoleEcho()
{
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    // GetConsoleMode fails for a pipe or a file: nothing to hide then.
    if (input == INVALID_HANDLE_VALUE || input == nullptr || !GetConsoleMode(input, &mode))
    {
        return;
    }
    m_savedMode = mode;
    SetConsoleMode(input, mode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
    m_terminal = true;
}

ConsoleEcho::~ConsoleEcho()
{
    if (m_terminal)
    {
        SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), static_cast<DWORD>(m_savedMode));
    }
}
}  // namespace Tarni::Platform
