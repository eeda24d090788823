#pragma once
// The settings of one data source: its section of the installer's data-source
// store (odbc.ini on Linux, ODBC.INI in the registry on Windows) in the
// installer's current configuration mode, read and written only through the
// installer's calls.
#include "platform/ISettingsStore.h"

namespace Tarni::Platform
{
class DataSourceStore : public ISettingsStore
{
public:
    /// in_knownKeys: the entries to look for one by one where the installer
    /// cannot list a section's entries (Wine's installer lists none).
    explicit DataSourceStore(tarni_wstring in_dsnName, std::vector<tarni_wstring> in_knownKeys = {});

    const tarni_wstring& GetDsnName() const { return m_dsnName; }

    /// "data source NAME (user)" or "(system)", after the installer's mode.
    tarni_wstring GetLocation() const override;

    /// Every entry of the section; a missing section reads as empty. Where
    /// the installer lists no entries, the known keys that are present.
    std::vector<StoredValue> ReadAll() override;
    void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) override;
    void DeleteValue(tarni_wstring_view in_name) override;

    /// Registers the data source with the installer under the driver's name
    /// (SQLWriteDSNToIni), which creates its section.
    void Register(tarni_wstring_view in_driverName);

    /// Removes the data source from the installer's list and its values:
    /// some installers keep the values in a second place that
    /// SQLRemoveDSNFromIni does not clear.
    static void Remove(tarni_wstring_view in_dsnName);

    /// Whether a data source of this name exists in the current mode.
    static bool Exists(tarni_wstring_view in_dsnName);

    /// The data sources of the current mode, each with its driver.
    static std::vector<StoredValue> List();

    /// The driver of one data source: from the installer's list, else its
    /// section's "Driver" entry (empty when neither names one). Works where
    /// the installer cannot list the data sources.
    static tarni_wstring DriverOf(tarni_wstring_view in_dsnName);

    /// Entries every data source of the driver holds: found one by one when
    /// the installer cannot list a section.
    static constexpr const char16_t* ALWAYS_STORED[] = {u"Host", u"Port", u"DESCRIPTION"};

private:
    tarni_wstring m_dsnName;
    std::vector<tarni_wstring> m_knownKeys;
};
}  // namespace Tarni::Platform
