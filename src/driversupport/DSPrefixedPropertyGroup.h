#pragma once
// Free name/value properties stored under a key prefix ("SSP_" server-side
// properties, "http.header." HTTP headers). The group remembers which names it
// loaded, so a save deletes the entries that the user removed.
#include <string_view>
#include <vector>

#include "driversupport/ConfigurationMap.h"
#include "platform/ISettingsStore.h"
#include "core/ILogger.h"

namespace Tarni::DriverSupport
{
class DSPrefixedPropertyGroup
{
public:
    explicit DSPrefixedPropertyGroup(std::string_view in_prefix);
    virtual ~DSPrefixedPropertyGroup() = default;

    const tarni_wstring& GetPrefix() const { return m_prefix; }
    /// Name (without the prefix) -> value.
    ConfigurationMap& GetProperties() { return m_properties; }
    const ConfigurationMap& GetProperties() const { return m_properties; }

    /// True when the stored key begins with the prefix (compared as value names are, ignoring case).
    bool IsGroupKey(tarni_wstring_view in_key) const;

    /// Removes every entry (and returns switches to their defaults); the
    /// names loaded before are still deleted by the next save.
    virtual void ClearEntries() { m_properties.clear(); }

    /// Collects every stored value whose name begins with the prefix.
    virtual void Load(const std::vector<Platform::StoredValue>& in_stored);
    /// Deletes the loaded names no longer in the group, then writes every entry.
    virtual void Save(Platform::ISettingsStore& io_store);
    void WriteOne(Platform::ISettingsStore& io_store, tarni_wstring_view in_name, tarni_wstring_view in_value);
    void DeleteOne(Platform::ISettingsStore& io_store, tarni_wstring_view in_name);

    /// Replaces the group's keys (prefix + name) in a configuration map by the
    /// group's entries, so the map lists what a save will store.
    void CopyToMap(ConfigurationMap& io_map) const;

    /// The log of the configuration that owns the group (nothing is logged without one).
    void SetLogger(Support::ILogger* in_logger) { m_logger = in_logger; }

protected:
    Support::ILogger* m_logger = nullptr;
    tarni_wstring m_prefix;
    ConfigurationMap m_properties;
    std::vector<tarni_wstring> m_loadedNames;
};
}  // namespace Tarni::DriverSupport
