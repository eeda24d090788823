#include "product/SOProductSettings.h"

#include <mutex>
#include <optional>

#include "driversupport/DSProductHelper.h"
#include "driversupport/ProductSettingKeys.h"
#include "product/SOConfigurationTables.h"
#include "core/NumberConverter.h"

namespace Tarni::SparkODBC
{
using DriverSupport::DSProductHelper;
namespace PSK = DriverSupport::ProductSettingKeys;
using Support::NumberConverter;

namespace
{
// A value derived from the product settings, recomputed when they are reloaded.
template <typename T>
class CachedSetting
{
public:
    template <typename Compute>
    T Get(Compute in_compute)
    {
        const unsigned generation = DSProductHelper::GetSettingsGeneration();
        std::lock_guard<std::mutex> guard(m_lock);
        if (!m_value || m_generation != generation)
        {
            m_value = in_compute();
            m_generation = generation;
        }
        return *m_value;
    }

private:
    std::mutex m_lock;
    std::optional<T> m_value;
    unsigned m_generation = 0;
};
}  // namespace

unsigned long long SOProductSettings::GetDefaultPort()
{
    static CachedSetting<unsigned long long> cache;
    return cache.Get([] {
        const auto port = NumberConverter::ToUInt64(DSProductHelper::GetSetting(PSK::DsnPort));
        return port ? *port : 10000ULL;
    });
}

unsigned long long SOProductSettings::GetDefaultStringColumnLength()
{
    static CachedSetting<unsigned long long> cache;
    return cache.Get([] {
        const auto length = NumberConverter::ToUInt64(DSProductHelper::GetSetting(PSK::DefaultStringColumnLength));
        return length ? *length : 255ULL;
    });
}

unsigned SOProductSettings::GetDefaultServerType()
{
    static CachedSetting<unsigned> cache;
    return cache.Get([] {
        const auto type = NumberConverter::ToUInt32(DSProductHelper::GetSetting(PSK::DsnHsType));
        return (type && *type >= 1 && *type <= 4) ? *type : 3u;
    });
}

unsigned SOProductSettings::GetDefaultAuthMech()
{
    static CachedSetting<unsigned> cache;
    return cache.Get([] {
        const auto mech = NumberConverter::ToUInt32(DSProductHelper::GetSetting(PSK::DsnAuthMech));
        return (mech && *mech < SOConfigurationTables::AUTH_END) ? *mech : 2u;
    });
}

bool SOProductSettings::GetBoolean(tarni_wstring_view in_setting)
{
    return DSProductHelper::GetBoolSetting(in_setting).value_or(false);
}

bool SOProductSettings::IsServiceDiscoveryModeSupported(unsigned in_mode)
{
    if (in_mode == SOConfigurationTables::SD_NONE)
    {
        return true;
    }
    if (in_mode > SOConfigurationTables::SD_AOSS || DSProductHelper::IsSettingOne(PSK::SupressServiceDiscovery))
    {
        return false;
    }
    const tarni_wstring list = DSProductHelper::GetSetting(PSK::SupportedServiceDiscoveryModes);
    if (list.empty())
    {
        return in_mode == SOConfigurationTables::SD_AOSS && !DSProductHelper::IsSettingOne(PSK::SuppressAoss);
    }
    const tarni_wstring& name = SOConfigurationTables::ServiceDiscoveryModeNames()[in_mode];
    size_t start = 0;
    while (start <= list.size())
    {
        size_t comma = list.find(u',', start);
        if (comma == tarni_wstring::npos)
        {
            comma = list.size();
        }
        if (tarni_wstring_view(list).substr(start, comma - start) == name)
        {
            return true;
        }
        start = comma + 1;
    }
    return false;
}
}  // namespace Tarni::SparkODBC
