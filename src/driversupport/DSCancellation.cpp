#include "driversupport/DSCancellation.h"

namespace Tarni::DriverSupport
{
void DSCancellation::Cancel()
{
    // Handlers run under the lock so that RemoveHandler cannot return while
    // one of them still runs; they must not call back into this object.
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_cancelled.exchange(true))
    {
        return;
    }
    for (auto& [id, handler] : m_handlers)
    {
        handler();
    }
    m_handlers.clear();
}

std::size_t DSCancellation::AddHandler(Handler in_handler)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const std::size_t id = m_nextId++;
    if (m_cancelled.load())
    {
        lock.unlock();
        in_handler();
        return id;
    }
    m_handlers.emplace(id, std::move(in_handler));
    return id;
}

void DSCancellation::RemoveHandler(std::size_t in_id)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_handlers.erase(in_id);
}
}  // namespace Tarni::DriverSupport
