#include "driversupport/DSServerSidePropertyGroup.h"

#include "driversupport/ConfigurationKeys.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSServerSidePropertyGroup";
}  // namespace

DSServerSidePropertyGroup::DSServerSidePropertyGroup() : DSPrefixedPropertyGroup("SSP_") {}

void DSServerSidePropertyGroup::SetApplySSPWithQueries(tarni_wstring_view in_value)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetApplySSPWithQueries");
    m_applyWithQueries = tarni_wstring(in_value);
    m_writeApplyWithQueries = true;
}

void DSServerSidePropertyGroup::ClearEntries()
{
    const DSServerSidePropertyGroup defaults;
    m_lcaseKeyName = defaults.m_lcaseKeyName;
    m_applyWithQueries = defaults.m_applyWithQueries;
    DSPrefixedPropertyGroup::ClearEntries();
}

void DSServerSidePropertyGroup::Load(const std::vector<Platform::StoredValue>& in_stored)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Load");
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
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Save");
    io_store.WriteValue(Keys::LCaseSspKeyName, m_lcaseKeyName);
    if (m_writeApplyWithQueries)
    {
        io_store.WriteValue(Keys::ApplySSPWithQueries, m_applyWithQueries);
    }
    DSPrefixedPropertyGroup::Save(io_store);
}
}  // namespace Tarni::DriverSupport
