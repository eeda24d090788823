#include "thrift/TECatalogRemovalPatternCache.h"

namespace Tarni::ThriftExtension
{
TECatalogRemovalPatternCache::TECatalogRemovalPatternCache(std::size_t in_capacity)
    : m_capacity(in_capacity == 0 ? 1 : in_capacity)
{
}

TECatalogRemovalPatternCache& TECatalogRemovalPatternCache::GetInstance()
{
    static TECatalogRemovalPatternCache instance;
    return instance;
}

std::shared_ptr<const TECatalogRemovalPatterns> TECatalogRemovalPatternCache::Get(const std::string& in_name)
{
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (const auto it = m_index.find(in_name); it != m_index.end())
        {
            m_entries.splice(m_entries.begin(), m_entries, it->second);
            return it->second->second;
        }
    }
    // Compile outside the lock so that other statements are not held up; if
    // two threads compile the same name, the first to insert wins.
    auto compiled = std::make_shared<const TECatalogRemovalPatterns>(in_name);

    std::lock_guard<std::mutex> guard(m_lock);
    if (const auto it = m_index.find(in_name); it != m_index.end())
    {
        m_entries.splice(m_entries.begin(), m_entries, it->second);
        return it->second->second;
    }
    m_entries.emplace_front(in_name, compiled);
    m_index.emplace(in_name, m_entries.begin());
    if (m_entries.size() > m_capacity)
    {
        m_index.erase(m_entries.back().first);
        m_entries.pop_back();
    }
    return compiled;
}

std::size_t TECatalogRemovalPatternCache::Size() const
{
    std::lock_guard<std::mutex> guard(m_lock);
    return m_entries.size();
}

void TECatalogRemovalPatternCache::Clear()
{
    std::lock_guard<std::mutex> guard(m_lock);
    m_index.clear();
    m_entries.clear();
}
}  // namespace Tarni::ThriftExtension
