#include "platform/DataSourceStore.h"

#include <algorithm>

#include "platform/DataSourceLeftovers.h"
#include "platform/OdbcInstaller.h"

namespace Tarni::Platform
{
namespace
{
/// Data-source names compare as the installers compare them: ASCII letters without case.
bool EqualsIgnoreCase(tarni_wstring_view in_a, tarni_wstring_view in_b)
{
    const auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; };
    return in_a.size() == in_b.size() && std::equal(in_a.begin(), in_a.end(), in_b.begin(),
                                                    [&](char16_t a, char16_t b) { return lower(a) == lower(b); });
}

/// Sections of the data-source store that are not data sources.
bool IsListSection(tarni_wstring_view in_section)
{
    return EqualsIgnoreCase(in_section, u"ODBC Data Sources") || EqualsIgnoreCase(in_section, u"ODBC");
}
}  // namespace

DataSourceStore::DataSourceStore(tarni_wstring in_dsnName, std::vector<tarni_wstring> in_knownKeys)
    : m_dsnName(std::move(in_dsnName)), m_knownKeys(std::move(in_knownKeys))
{
}

tarni_wstring DataSourceStore::GetLocation() const
{
    const auto mode = OdbcInstaller::GetConfigMode();
    return u"data source \"" + m_dsnName + u"\" (" +
           (mode && *mode == OdbcInstaller::CONFIG_MODE_SYSTEM_DSN ? u"system" : u"user") + u")";
}

std::vector<StoredValue> DataSourceStore::ReadAll()
{
    std::vector<StoredValue> values;
    std::vector<tarni_wstring> keys = OdbcInstaller::GetProfileKeys(m_dsnName);
    if (keys.empty())
    {
        keys = m_knownKeys;
    }
    for (const tarni_wstring& key : keys)
    {
        if (const auto value = OdbcInstaller::GetProfileString(m_dsnName, key))
        {
            values.push_back(StoredValue{key, *value});
        }
    }
    return values;
}

void DataSourceStore::WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value)
{
    const tarni_wstring name(in_name), value(in_value);
    OdbcInstaller::WriteProfileString(m_dsnName, &name, &value);
}

void DataSourceStore::DeleteValue(tarni_wstring_view in_name)
{
    const tarni_wstring name(in_name);
    OdbcInstaller::WriteProfileString(m_dsnName, &name, nullptr);
}

void DataSourceStore::Register(tarni_wstring_view in_driverName)
{
    OdbcInstaller::WriteDSNToIni(m_dsnName, in_driverName);
}

void DataSourceStore::Remove(tarni_wstring_view in_dsnName)
{
    OdbcInstaller::RemoveDSNFromIni(in_dsnName);
    // Installers that keep the values apart from the list may have kept them.
    DataSourceLeftovers::Remove(in_dsnName);
}

bool DataSourceStore::Exists(tarni_wstring_view in_dsnName)
{
    // Listed by the installer, or a section of its own (written by hand, or
    // kept by an installer that lists data sources apart from their values).
    const auto listed = OdbcInstaller::GetProfileString(u"ODBC Data Sources", in_dsnName);
    if (listed && !listed->empty())
    {
        return true;
    }
    if (!OdbcInstaller::GetProfileKeys(in_dsnName).empty())
    {
        return true;
    }
    for (const char16_t* key : ALWAYS_STORED)
    {
        if (OdbcInstaller::GetProfileString(in_dsnName, key))
        {
            return true;
        }
    }
    for (const StoredValue& source : List())
    {
        if (EqualsIgnoreCase(source.name, in_dsnName))
        {
            return true;
        }
    }
    return false;
}

std::vector<StoredValue> DataSourceStore::List()
{
    // The installer's list first (Windows keeps one; unixODBC does not),
    // then sections that are not on it.
    std::vector<tarni_wstring> names = OdbcInstaller::GetProfileKeys(u"ODBC Data Sources");
    for (const tarni_wstring& section : OdbcInstaller::GetProfileKeys(u""))
    {
        const bool known = std::any_of(names.begin(), names.end(),
                                       [&](const tarni_wstring& in_name) { return EqualsIgnoreCase(in_name, section); });
        if (!known && !IsListSection(section))
        {
            names.push_back(section);
        }
    }
    std::vector<StoredValue> sources;
    for (const tarni_wstring& name : names)
    {
        sources.push_back(StoredValue{name, DriverOf(name)});
    }
    return sources;
}

tarni_wstring DataSourceStore::DriverOf(tarni_wstring_view in_dsnName)
{
    auto driver = OdbcInstaller::GetProfileString(u"ODBC Data Sources", in_dsnName);
    if (!driver || driver->empty())
    {
        driver = OdbcInstaller::GetProfileString(in_dsnName, u"Driver");
    }
    return driver.value_or(tarni_wstring());
}
}  // namespace Tarni::Platform
