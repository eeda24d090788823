#include "product/SODataSourceConfiguration.h"

#include "driversupport/ConfigurationKeys.h"
#include "product/SOKeyCatalogue.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
namespace Keys = DriverSupport::Keys;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "SODataSourceConfiguration";
}  // namespace

SODataSourceConfiguration::SODataSourceConfiguration(tarni_wstring in_dsnName, bool in_systemDsn,
                                                     Support::ILogger* in_logger)
    : QuillConfiguration(std::move(in_dsnName), in_systemDsn ? 2 : 1, in_logger)
{
    TARNI_LOG_ENTRY(in_logger, NS, CLS, "SODataSourceConfiguration");
}

bool SODataSourceConfiguration::IsGroupKey(tarni_wstring_view in_key) const
{
    // The prefixes of the data source's own groups, which are those of the driver's.
    static const DriverSupport::DSServerSidePropertyGroup serverSideProperties;
    static const DriverSupport::DSPrefixedPropertyGroup httpHeaders("http.header.");
    return serverSideProperties.IsGroupKey(in_key) || httpHeaders.IsGroupKey(in_key);
}

std::vector<tarni_wstring> SODataSourceConfiguration::GetKnownDataSourceKeys() const
{
    std::vector<tarni_wstring> keys = QuillConfiguration::GetKnownDataSourceKeys();
    for (const DriverSupport::DSKeyDescription& description : SOKeyCatalogue::All())
    {
        keys.emplace_back(description.GetName());
    }
    return keys;
}

void SODataSourceConfiguration::OnDataSourceLoaded(const std::vector<Platform::StoredValue>& in_section)
{
    GetServerSidePropertyGroup().ClearEntries();
    GetHttpHeaderGroup().ClearEntries();
    GetServerSidePropertyGroup().Load(in_section);
    GetHttpHeaderGroup().Load(in_section);
    // The switches a data source does not set come from what it inherits.
    GetServerSidePropertyGroup().SetLCaseSspKeyName(m_map.GetValue(Keys::LCaseSspKeyName));
    GetServerSidePropertyGroup().SetApplySSPWithQueries(m_map.GetValue(Keys::ApplySSPWithQueries));
}

void SODataSourceConfiguration::Load(const DriverSupport::ConfigurationMap& in_values)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Load");
    QuillConfiguration::Load(in_values);
    std::vector<Platform::StoredValue> values;
    for (const auto& [key, value] : m_map)
    {
        values.push_back(Platform::StoredValue{key, value});
    }
    OnDataSourceLoaded(values);
}

void SODataSourceConfiguration::OnDataSourceSaving()
{
    // The dialogs edit the groups: they decide which prefixed entries the data source keeps.
    GetServerSidePropertyGroup().CopyToMap(m_map);
    GetHttpHeaderGroup().CopyToMap(m_map);
    // A switch that neither the data source nor the driver sets stays unset.
    const auto keepSwitch = [this](tarni_wstring_view in_key, const tarni_wstring& in_value) {
        if (!in_value.empty() || m_map.Contains(in_key))
        {
            m_map.SetValue(in_key, in_value);
        }
    };
    keepSwitch(Keys::LCaseSspKeyName, GetServerSidePropertyGroup().GetLCaseSspKeyName());
    keepSwitch(Keys::ApplySSPWithQueries, GetServerSidePropertyGroup().GetApplySSPWithQueries());
}

void SODataSourceConfiguration::SetSetting(tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "SetSetting");
    for (DriverSupport::DSPrefixedPropertyGroup* group : {static_cast<DriverSupport::DSPrefixedPropertyGroup*>(
                                                              &GetServerSidePropertyGroup()),
                                                          &GetHttpHeaderGroup()})
    {
        if (group->IsGroupKey(in_key))
        {
            group->GetProperties().SetValue(in_key.substr(group->GetPrefix().size()), in_value);
        }
    }
    if (StringConverter::EqualsIgnoreCase(in_key, Keys::LCaseSspKeyName))
    {
        GetServerSidePropertyGroup().SetLCaseSspKeyName(in_value);
    }
    else if (StringConverter::EqualsIgnoreCase(in_key, Keys::ApplySSPWithQueries))
    {
        GetServerSidePropertyGroup().SetApplySSPWithQueries(in_value);
    }
    m_map.SetValue(in_key, in_value);
}

void SODataSourceConfiguration::UnsetSetting(tarni_wstring_view in_key)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "UnsetSetting");
    for (DriverSupport::DSPrefixedPropertyGroup* group : {static_cast<DriverSupport::DSPrefixedPropertyGroup*>(
                                                              &GetServerSidePropertyGroup()),
                                                          &GetHttpHeaderGroup()})
    {
        if (group->IsGroupKey(in_key))
        {
            group->GetProperties().Remove(in_key.substr(group->GetPrefix().size()));
        }
    }
    if (m_inherited.Contains(in_key))
    {
        SetSetting(in_key, m_inherited.GetValue(in_key));
    }
    else
    {
        m_map.Remove(in_key);
    }
}
}  // namespace Tarni::SparkODBC
