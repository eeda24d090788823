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
    explicit DataSourceStore(tarni_wstring in_dsnName);

    const tarni_wstring& GetDsnName() const { return m_dsnName; }

    /// "data source NAME (user)" or "(system)", after the installer's mode.
    tarni_wstring GetLocation() const override;

    /// Every entry of the section; a missing section reads as empty.
    std::vector<StoredValue> ReadAll() override;
    void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) override;
    void DeleteValue(tarni_wstring_view in_name) override;

    /// Registers the data source with the installer under the driver's name
    /// (SQLWriteDSNToIni), which creates its section.
    void Register(tarni_wstring_view in_driverName);

    /// Removes the data source from the installer's list and its whole
    /// section: some installers keep the section's values in a second place
    /// that SQLRemoveDSNFromIni does not clear.
    static void Remove(tarni_wstring_view in_dsnName);

    /// Whether a data source of this name exists in the current mode.
    static bool Exists(tarni_wstring_view in_dsnName);

    /// The data sources of the current mode, each with its driver.
    static std::vector<StoredValue> List();

private:
    tarni_wstring m_dsnName;
};
}  // namespace Tarni::Platform
