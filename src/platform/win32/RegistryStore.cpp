#include "platform/win32/RegistryStore.h"

#include "platform/SystemError.h"
#include "core/ErrorException.h"

namespace Tarni::Platform
{
using Support::DiagState;
using Support::ErrorException;

namespace
{
// The registry write error: component 63, message 1010, with the system's text.
// A write refused for lack of rights gets its own message naming the key: the
// program writes under HKEY_LOCAL_MACHINE, which only an elevated process may.
[[noreturn]] void ThrowRegistryError(LONG in_code, const tarni_wstring& in_location)
{
    if (in_code == ERROR_ACCESS_DENIED)
    {
        throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, u"DSRegistryAccessDeniedErr",
                             {in_location}, 1190);
    }
    throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, u"DSRegistryWriteErr",
                         {SystemError::Text(static_cast<int>(in_code))}, 1010);
}

const wchar_t* W(const tarni_wstring& in_text)
{
    return reinterpret_cast<const wchar_t*>(in_text.c_str());
}
}  // namespace

RegistryStore::RegistryStore(HKEY in_root, tarni_wstring in_path) : m_root(in_root), m_path(std::move(in_path))
{
}

tarni_wstring RegistryStore::GetLocation() const
{
    const tarni_wstring root = m_root == HKEY_LOCAL_MACHINE ? u"HKEY_LOCAL_MACHINE\\" : u"HKEY_CURRENT_USER\\";
    return root + m_path;
}

std::vector<StoredValue> RegistryStore::ReadAll()
{
    std::vector<StoredValue> values;
    HKEY key = nullptr;
    if (RegOpenKeyExW(m_root, W(m_path), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return values;  // a missing key reads as no values
    }
    DWORD maxName = 0;
    DWORD maxData = 0;
    RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &maxName, &maxData,
                     nullptr, nullptr);
    std::wstring name(maxName + 1, L'\0');
    std::vector<BYTE> data(maxData + sizeof(wchar_t) * 2);
    for (DWORD index = 0;; ++index)
    {
        DWORD nameLength = static_cast<DWORD>(name.size());
        DWORD dataLength = static_cast<DWORD>(data.size());
        DWORD type = 0;
        const LONG rc = RegEnumValueW(key, index, name.data(), &nameLength, nullptr, &type, data.data(), &dataLength);
        if (rc == ERROR_NO_MORE_ITEMS)
        {
            break;
        }
        if (rc != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
        {
            continue;
        }
        size_t units = dataLength / sizeof(char16_t);
        const auto* text = reinterpret_cast<const char16_t*>(data.data());
        while (units > 0 && text[units - 1] == u'\0')
        {
            --units;
        }
        values.push_back({tarni_wstring(reinterpret_cast<const char16_t*>(name.c_str()), nameLength),
                          tarni_wstring(text, units)});
    }
    RegCloseKey(key);
    return values;
}

void RegistryStore::WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value)
{
    HKEY key = nullptr;
    LONG rc = RegCreateKeyW(m_root, W(m_path), &key);
    if (rc != ERROR_SUCCESS)
    {
        ThrowRegistryError(rc, GetLocation());
    }
    const tarni_wstring name(in_name);
    const tarni_wstring value(in_value);
    rc = RegSetValueExW(key, W(name), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                        static_cast<DWORD>((value.size() + 1) * sizeof(char16_t)));
    RegCloseKey(key);
    if (rc != ERROR_SUCCESS)
    {
        ThrowRegistryError(rc, GetLocation());
    }
}

void RegistryStore::DeleteValue(tarni_wstring_view in_name)
{
    HKEY key = nullptr;
    const LONG rc = RegOpenKeyExW(m_root, W(m_path), 0, KEY_ALL_ACCESS, &key);
    if (rc != ERROR_SUCCESS)
    {
        ThrowRegistryError(rc, GetLocation());
    }
    const tarni_wstring name(in_name);
    RegDeleteValueW(key, W(name));
    RegCloseKey(key);
}

void RegistryStore::DeleteKey()
{
    RegDeleteKeyW(m_root, W(m_path));
}
}  // namespace Tarni::Platform
