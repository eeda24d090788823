#include "driversupport/DSPrefixedPropertyGroup.h"

#include <iterator>

#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSPrefixedPropertyGroup";
}  // namespace

DSPrefixedPropertyGroup::DSPrefixedPropertyGroup(std::string_view in_prefix)
    : m_prefix(StringConverter::FromUtf8(in_prefix))
{
}

bool DSPrefixedPropertyGroup::IsGroupKey(tarni_wstring_view in_key) const
{
    return in_key.size() > m_prefix.size() &&
           StringConverter::EqualsIgnoreCase(in_key.substr(0, m_prefix.size()), m_prefix);
}

void DSPrefixedPropertyGroup::Load(const std::vector<Platform::StoredValue>& in_stored)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Load");
    m_properties.clear();
    m_loadedNames.clear();
    for (const auto& stored : in_stored)
    {
        if (IsGroupKey(stored.name))
        {
            tarni_wstring name = stored.name.substr(m_prefix.size());
            m_properties.SetValue(name, stored.value);
            m_loadedNames.push_back(std::move(name));
        }
    }
}

void DSPrefixedPropertyGroup::Save(Platform::ISettingsStore& io_store)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Save");
    for (const tarni_wstring& name : m_loadedNames)
    {
        if (!m_properties.Contains(name))
        {
            DeleteOne(io_store, name);
        }
    }
    for (const auto& [name, value] : m_properties)
    {
        WriteOne(io_store, name, value);
    }
}

void DSPrefixedPropertyGroup::WriteOne(Platform::ISettingsStore& io_store, tarni_wstring_view in_name,
                                       tarni_wstring_view in_value)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "WriteOne");
    io_store.WriteValue(m_prefix + tarni_wstring(in_name), in_value);
}

void DSPrefixedPropertyGroup::CopyToMap(ConfigurationMap& io_map) const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "CopyToMap");
    for (auto it = io_map.begin(); it != io_map.end();)
    {
        it = IsGroupKey(it->first) ? io_map.erase(it) : std::next(it);
    }
    for (const auto& [name, value] : m_properties)
    {
        io_map.SetValue(m_prefix + name, value);
    }
}

void DSPrefixedPropertyGroup::DeleteOne(Platform::ISettingsStore& io_store, tarni_wstring_view in_name)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DeleteOne");
    io_store.DeleteValue(m_prefix + tarni_wstring(in_name));
}
}  // namespace Tarni::DriverSupport
