#include "support/TarniSettingReader.h"

namespace Tarni::Support
{
std::mutex TarniSettingReader::s_lock;
Platform::ISettingsStore* TarniSettingReader::s_store = nullptr;
std::optional<std::vector<Platform::StoredValue>> TarniSettingReader::s_cache;
std::map<tarni_wstring, tarni_wstring, CaseInsensitiveLess> TarniSettingReader::s_overrides;

void TarniSettingReader::SetStore(Platform::ISettingsStore* in_store)
{
    std::lock_guard<std::mutex> guard(s_lock);
    s_store = in_store;
    s_cache.reset();
}

std::vector<Platform::StoredValue> TarniSettingReader::ReadAll()
{
    std::lock_guard<std::mutex> guard(s_lock);
    if (!s_cache)
    {
        s_cache = s_store != nullptr ? s_store->ReadAll() : std::vector<Platform::StoredValue>();
    }
    return *s_cache;
}

std::optional<tarni_wstring> TarniSettingReader::Read(tarni_wstring_view in_name)
{
    {
        std::lock_guard<std::mutex> guard(s_lock);
        if (const auto it = s_overrides.find(in_name); it != s_overrides.end())
        {
            return it->second;
        }
    }
    for (const auto& value : ReadAll())
    {
        if (StringConverter::EqualsIgnoreCase(value.name, in_name))
        {
            return value.value;
        }
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
    s_cache.reset();
    s_overrides.clear();
}
}  // namespace Tarni::Support
