#include "dialogs/framework/DSMessageCatalogue.h"

#include <mutex>

namespace Tarni::DriverSupport
{
namespace
{
std::mutex& LookupLock()
{
    static std::mutex lock;
    return lock;
}

DSMessageCatalogue::Lookup& LookupSlot()
{
    static DSMessageCatalogue::Lookup lookup;
    return lookup;
}
}  // namespace

void DSMessageCatalogue::SetLookup(Lookup in_lookup)
{
    std::lock_guard<std::mutex> guard(LookupLock());
    LookupSlot() = std::move(in_lookup);
}

std::optional<tarni_wstring> DSMessageCatalogue::Find(int in_componentId, tarni_wstring_view in_key,
                                                      const std::vector<tarni_wstring>& in_parameters)
{
    Lookup lookup;
    {
        std::lock_guard<std::mutex> guard(LookupLock());
        lookup = LookupSlot();
    }
    if (!lookup)
    {
        return std::nullopt;
    }
    return lookup(in_componentId, in_key, in_parameters);
}

tarni_wstring DSMessageCatalogue::GetOr(int in_componentId, tarni_wstring_view in_key,
                                        const std::vector<tarni_wstring>& in_parameters,
                                        const tarni_wstring& in_fallback)
{
    auto text = Find(in_componentId, in_key, in_parameters);
    return text && !text->empty() ? *text : in_fallback;
}
}  // namespace Tarni::DriverSupport
