#pragma once
// The Windows driver-wide store: REG_SZ values under one registry key. Each
// write opens (or creates) the key with RegCreateKeyW and closes it again;
// each deletion opens it with KEY_ALL_ACCESS.
#include <windows.h>

#include "platform/ISettingsStore.h"

namespace Tarni::Platform
{
class RegistryStore final : public ISettingsStore
{
public:
    RegistryStore(HKEY in_root, tarni_wstring in_path);

    tarni_wstring GetLocation() const override;
    std::vector<StoredValue> ReadAll() override;
    void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) override;
    void DeleteValue(tarni_wstring_view in_name) override;

    /// Removes the key and its values (used by tests to start clean).
    void DeleteKey();

private:
    HKEY m_root;
    tarni_wstring m_path;
};
}  // namespace Tarni::Platform
