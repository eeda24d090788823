#include "platform/DataSourceLeftovers.h"

#include <windows.h>

namespace Tarni::Platform
{
void DataSourceLeftovers::Remove(tarni_wstring_view in_dsnName)
{
    const tarni_wstring name(in_dsnName);
    const auto* wideName = reinterpret_cast<const wchar_t*>(name.c_str());
    for (HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
    {
        HKEY odbcIni = nullptr;
        if (::RegOpenKeyExW(hive, L"Software\\ODBC\\ODBC.INI", 0, KEY_ALL_ACCESS, &odbcIni) != ERROR_SUCCESS)
        {
            continue;
        }
        DWORD type = 0;
        DWORD size = 0;
        const bool listed = ::RegGetValueW(odbcIni, L"ODBC Data Sources", wideName, RRF_RT_REG_SZ, &type, nullptr,
                                           &size) == ERROR_SUCCESS;
        if (!listed)
        {
            ::RegDeleteTreeW(odbcIni, wideName);
            ::RegDeleteKeyW(odbcIni, wideName);
        }
        ::RegCloseKey(odbcIni);
    }
}
}  // namespace Tarni::Platform
