#include "platform/DataSourceStore.h"

#include <algorithm>

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

DataSourceStore::DataSourceStore(tarni_wstring in_dsnName) : m_dsnName(std::move(in_dsnName)) {}

tarni_wstring DataSourceStore::GetLocation() const
{
    const auto mode = OdbcInstaller::GetConfigMode();
    return u"data source \"" + m_dsnName + u"\" (" +
           (mode && *mode == OdbcInstaller::CONFIG_MODE_SYSTEM_DSN ? u"system" : u"user") + u")";
}

std::vector<StoredValue> DataSourceStore::ReadAll()
{
    std::vector<StoredValue> values;
    for (const tarni_wstring& key : OdbcInstaller::GetProfileKeys(m_dsnName))
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
    if (Exists(in_dsnName))
    {
        // The values were kept apart from the list (Wine keeps them in the
        // user's hive while the list is in the machine's).
        OdbcInstaller::WriteProfileString(in_dsnName, nullptr, nullptr);
    }
}

bool DataSourceStore::Exists(tarni_wstring_view in_dsnName)
{
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
    std::vector<StoredValue> sources;
    for (const tarni_wstring& section : OdbcInstaller::GetProfileKeys(u""))
    {
        if (IsListSection(section))
        {
            continue;
        }
        // The installer's list names the driver; a section written by hand may only have its own entry.
        auto driver = OdbcInstaller::GetProfileString(u"ODBC Data Sources", section);
        if (!driver || driver->empty())
        {
            driver = OdbcInstaller::GetProfileString(section, u"Driver");
        }
        sources.push_back(StoredValue{section, driver.value_or(tarni_wstring())});
    }
    return sources;
}
}  // namespace Tarni::Platform
