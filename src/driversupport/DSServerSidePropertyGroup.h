#pragma once
#include "driversupport/DSPrefixedPropertyGroup.h"

namespace Tarni::DriverSupport
{
/// The server-side properties ("SSP_") with their two switches: convert key
/// names to lower case, and apply the properties with queries.
class DSServerSidePropertyGroup : public DSPrefixedPropertyGroup
{
public:
    DSServerSidePropertyGroup();

    tarni_wstring GetLCaseSspKeyName() const { return m_lcaseKeyName; }
    void SetLCaseSspKeyName(tarni_wstring_view in_value) { m_lcaseKeyName = tarni_wstring(in_value); }
    tarni_wstring GetApplySSPWithQueries() const { return m_applyWithQueries; }
    /// Setting the switch also marks it to be written on save.
    void SetApplySSPWithQueries(tarni_wstring_view in_value);
    bool IsApplySSPWithQueriesToBeWritten() const { return m_writeApplyWithQueries; }

    void ClearEntries() override;
    void Load(const std::vector<Platform::StoredValue>& in_stored) override;
    void Save(Platform::ISettingsStore& io_store) override;

private:
    tarni_wstring m_lcaseKeyName = u"1";
    tarni_wstring m_applyWithQueries = u"1";
    bool m_writeApplyWithQueries = false;
};
}  // namespace Tarni::DriverSupport
