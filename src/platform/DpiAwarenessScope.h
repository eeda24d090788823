#pragma once
// Per-monitor DPI awareness for the dialogs of the calling thread while the
// scope lives, where the system offers it (Windows 10 1607 and later); the
// thread's previous context is put back at the end. A library shows its
// dialogs this way instead of changing the awareness of the program that
// loaded it. Nothing to do on other systems.
namespace Tarni::Platform
{
class DpiAwarenessScope
{
public:
    DpiAwarenessScope();
    ~DpiAwarenessScope();
    DpiAwarenessScope(const DpiAwarenessScope&) = delete;
    DpiAwarenessScope& operator=(const DpiAwarenessScope&) = delete;

private:
    void* m_previous = nullptr;
};
}  // namespace Tarni::Platform
