#pragma once
// Turns Ctrl-C in the console into a call of a handler for as long as the
// object lives: SIGINT on Linux (the signal handler only writes to a pipe; a
// watcher thread calls the handler), the console control handler on Windows
// (which the system runs on a thread of its own). Ctrl-C no longer ends the
// program meanwhile; the previous behaviour comes back afterwards.
#include <functional>
#include <memory>

namespace Tarni::Platform
{
class ConsoleInterrupt
{
public:
    /// in_onInterrupt runs on another thread than the caller's, once per
    /// Ctrl-C; it must be thread-safe.
    explicit ConsoleInterrupt(std::function<void()> in_onInterrupt);
    ~ConsoleInterrupt();
    ConsoleInterrupt(const ConsoleInterrupt&) = delete;
    ConsoleInterrupt& operator=(const ConsoleInterrupt&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};
}  // namespace Tarni::Platform
