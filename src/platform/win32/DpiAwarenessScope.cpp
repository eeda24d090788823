#include "platform/DpiAwarenessScope.h"

#include <windows.h>

namespace Tarni::Platform
{
namespace
{
// SetThreadDpiAwarenessContext, looked up so that older systems still run.
using SetContextFunction = void* (WINAPI*)(void*);

SetContextFunction SetContext()
{
    HMODULE user32 = ::GetModuleHandleW(L"user32.dll");
    return user32 == nullptr ? nullptr
                             : reinterpret_cast<SetContextFunction>(
                                   reinterpret_cast<void*>(::GetProcAddress(user32, "SetThreadDpiAwarenessContext")));
}

// DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2
void* const PER_MONITOR_AWARE_V2 = reinterpret_cast<void*>(static_cast<INT_PTR>(-4));
}  // namespace

DpiAwarenessScope::DpiAwarenessScope()
{
    if (const SetContextFunction setContext = SetContext())
    {
        m_previous = setContext(PER_MONITOR_AWARE_V2);
    }
}

DpiAwarenessScope::~DpiAwarenessScope()
{
    if (m_previous != nullptr)
    {
        if (const SetContextFunction setContext = SetContext())
        {
            setContext(m_previous);
        }
    }
}
}  // namespace Tarni::Platform
