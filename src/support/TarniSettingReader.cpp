#include "support/TarniSettingReader.h"

namespace Tarni::Support
{
std::mutex TarniSettingReader::s_lock;
Platform::ISettingsStore* TarniSettingReader::s_store = nullptr;
std::optional<std::vector<Platform::StoredValue>> TarniSettingReader::s_cache;
std::map<tarni_wstring, tarni_wstring, CaseInsensitiveLess> TarniSettingReader::s_overrides;
std::map<tarni_wstring_view, size_t, CaseInsensitiveLess> TarniSettingReader::s_index;

const std::vector<Platform::StoredValue>& TarniSettingReader::CacheLocked()
{
    if (!s_cache)
    {
        s_cache = s_store != nullptr ? s_store->ReadAll() : std::vector<Platform::StoredValue>();
        // One lookup per key instead of a scan of every stored value: a load
        // reads each default key, so a scan would cost keys x values.
        s_index.clear();
        for (size_t i = 0; i < s_cache->size(); ++i)
        {
            s_index.emplace((*s_cache)[i].name, i);
        }
    }
    return *s_cache;
}

void TarniSettingReader::SetStore(Platform::ISettingsStore* in_store)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_store = in_store;
    s_index.clear();
    s_cache.reset();
}

std::vector<Platform::StoredValue> TarniSettingReader::ReadAll()
{
    std::lock_guard<std::mutex> guard(s_lock);
    return CacheLocked();
}

std::optional<tarni_wstring> TarniSettingReader::Read(tarni_wstring_view in_name)
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (const auto it = s_overrides.find(in_name); it != s_overrides.end())
    {
        return it->second;
    }
    const std::vector<Platform::StoredValue>& cache = CacheLocked();
    if (const auto it = s_index.find(in_name); it != s_index.end())
    {
        return cache[it->second].value;
    }
    return std::nullopt;
}

void TarniSettingReader::SetOverride(tarni_wstring_view in_name, tarni_wstring_view in_value)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_overrides[tarni_wstring(in_name)] = tarni_wstring(in_value);
}

void TarniSettingReader::Reset()
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_index.clear();
    s_cache.reset();
    s_overrides.clear();
}
}  // namespace Tarni::Support
