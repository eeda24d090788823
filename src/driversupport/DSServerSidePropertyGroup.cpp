#include "driversupport/DSServerSidePropertyGroup.h"

#include "driversupport/ConfigurationKeys.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
DSServerSidePropertyGroup::DSServerSidePropertyGroup() : DSPrefixedPropertyGroup("SSP_") {}

void DSServerSidePropertyGroup::SetApplySSPWithQueries(tarni_wstring_view in_value)
{
    m_applyWithQueries = tarni_wstring(in_value);
    m_writeApplyWithQueries = true;
}

void DSServerSidePropertyGroup::Load(const std::vector<Platform::StoredValue>& in_stored)
{
    for (const auto& stored : in_stored)
    {
        if (Support::StringConverter::EqualsIgnoreCase(stored.name, Keys::ApplySSPWithQueries))
        {
            m_applyWithQueries = stored.value;
        }
        else if (Support::StringConverter::EqualsIgnoreCase(stored.name, Keys::LCaseSspKeyName))
        {
            m_lcaseKeyName = stored.value;
        }
    }
    DSPrefixedPropertyGroup::Load(in_stored);
}

void DSServerSidePropertyGroup::Save(Platform::ISettingsStore& io_store)
{
    io_store.WriteValue(Keys::LCaseSspKeyName, m_lcaseKeyName);
    if (m_writeApplyWithQueries)
    {
        io_store.WriteValue(Keys::ApplySSPWithQueries, m_applyWithQueries);
    }
    DSPrefixedPropertyGroup::Save(io_store);
}
}  // namespace Tarni::DriverSupport
