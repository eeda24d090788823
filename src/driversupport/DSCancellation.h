#pragma once
// Lets one thread stop work that another thread runs (a connection test that
// waits on a server): Cancel() sets the flag and runs the handlers the work
// registered, which unblock it (closing the socket it waits on, for example).
#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>

namespace Tarni::DriverSupport
{
class DSCancellation
{
public:
    using Handler = std::function<void()>;

    DSCancellation() = default;
    DSCancellation(const DSCancellation&) = delete;
    DSCancellation& operator=(const DSCancellation&) = delete;

    /// Thread-safe; the handlers run on the calling thread, once.
    void Cancel();

    bool IsCancelled() const { return m_cancelled.load(); }

    /// Registers a handler for Cancel(); when the work is already cancelled
    /// it runs at once. Returns the id that RemoveHandler takes.
    std::size_t AddHandler(Handler in_handler);

    /// After it returns the handler neither runs nor is running.
    void RemoveHandler(std::size_t in_id);

private:
    std::atomic<bool> m_cancelled{false};
    std::mutex m_mutex;
    std::map<std::size_t, Handler> m_handlers;
    std::size_t m_nextId = 1;
};
}  // namespace Tarni::DriverSupport
