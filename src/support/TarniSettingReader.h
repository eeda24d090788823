#pragma once
// Reads the driver's settings from the driver-wide store once per process and
// caches them; a second read in the same run sees the first result. Settings
// set programmatically (overrides) win over stored ones.
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/ISettingsStore.h"
#include "support/CaseInsensitiveLess.h"

namespace Tarni::Support
{
class TarniSettingReader
{
public:
    /// The store every later read comes from (the driver-wide store of the run).
    static void SetStore(Platform::ISettingsStore* in_store);

    /// All stored values, read on first use and cached.
    static std::vector<Platform::StoredValue> ReadAll();

    /// One setting: an override, else the stored value; nothing when absent.
    static std::optional<tarni_wstring> Read(tarni_wstring_view in_name);

    static void SetOverride(tarni_wstring_view in_name, tarni_wstring_view in_value);

    /// Forgets the cache and the overrides (a new store or a new run in tests).
    static void Reset();

private:
    static std::mutex s_lock;
    static Platform::ISettingsStore* s_store;
    static std::optional<std::vector<Platform::StoredValue>> s_cache;
    static std::map<tarni_wstring, tarni_wstring, CaseInsensitiveLess> s_overrides;
    /// Name -> position in s_cache (the first value of a name), rebuilt with the cache.
    static std::map<tarni_wstring_view, size_t, CaseInsensitiveLess> s_index;

    /// The cached values, read from the store first when needed; call under s_lock.
    static const std::vector<Platform::StoredValue>& CacheLocked();
};
}  // namespace Tarni::Support
