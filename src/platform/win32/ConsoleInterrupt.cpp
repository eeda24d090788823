#include "platform/ConsoleInterrupt.h"

#include <mutex>

#include <windows.h>

namespace Tarni::Platform
{
namespace
{
std::mutex g_lock;
std::function<void()>* g_onInterrupt = nullptr;

BOOL WINAPI OnConsoleControl(DWORD in_event)
{
    if (in_event != CTRL_C_EVENT && in_event != CTRL_BREAK_EVENT)
    {
        return FALSE;
    }
    // The system runs this handler on a thread of its own.
    const std::lock_guard<std::mutex> lock(g_lock);
    if (g_onInterrupt == nullptr)
    {
        return FALSE;
    }
    (*g_onInterrupt)();
    return TRUE;
}
}  // namespace

struct ConsoleInterrupt::State
{
    std::function<void()> onInterrupt;
};

ConsoleInterrupt::ConsoleInterrupt(std::function<void()> in_onInterrupt) : m_state(std::make_unique<State>())
{
    m_state->onInterrupt = std::move(in_onInterrupt);
    {
        const std::lock_guard<std::mutex> lock(g_lock);
        g_onInterrupt = &m_state->onInterrupt;
    }
    ::SetConsoleCtrlHandler(&OnConsoleControl, TRUE);
}

ConsoleInterrupt::~ConsoleInterrupt()
{
    ::SetConsoleCtrlHandler(&OnConsoleControl, FALSE);
    const std::lock_guard<std::mutex> lock(g_lock);
    g_onInterrupt = nullptr;
}
}  // namespace Tarni::Platform
