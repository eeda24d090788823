#pragma once
// Compiled removal patterns per name, least recently used first out. A
// connection removes only a handful of names (its synthetic catalog and the
// temporary schemas), so a small bound keeps every one compiled while a
// stream of distinct names cannot grow the cache without limit. Safe for
// concurrent statements: a compiled set is shared read-only, and an evicted
// set lives on while a caller still holds it.
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "thrift/TECatalogRemovalPatterns.h"

namespace Tarni::ThriftExtension
{
class TECatalogRemovalPatternCache
{
public:
    static constexpr std::size_t DEFAULT_CAPACITY = 32;

    explicit TECatalogRemovalPatternCache(std::size_t in_capacity = DEFAULT_CAPACITY);

    /// The process-wide cache used by TEUtils.
    static TECatalogRemovalPatternCache& GetInstance();

    /// The compiled patterns of the name, compiled on first use. Throws
    /// TEException "TERegexError" for a name that makes a pattern invalid
    /// (such a name is not cached).
    std::shared_ptr<const TECatalogRemovalPatterns> Get(const std::string& in_name);

    std::size_t Size() const;
    void Clear();

private:
    using Entry = std::pair<std::string, std::shared_ptr<const TECatalogRemovalPatterns>>;

    const std::size_t m_capacity;
    mutable std::mutex m_lock;
    /// Most recently used at the front.
    std::list<Entry> m_entries;
    std::unordered_map<std::string, std::list<Entry>::iterator> m_index;
};
}  // namespace Tarni::ThriftExtension
