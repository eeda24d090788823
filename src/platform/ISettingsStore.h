#pragma once
// The driver-wide settings store: the registry on Windows, an INI file on
// Linux. Both offer the same operations to the configuration: read every
// value, write one value, delete one value. Writes made between BeginUpdate
// and CommitUpdate are applied together where the store can do so (the INI
// store replaces its file once, atomically); outside an update each write is
// applied at once.
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Platform
{
struct StoredValue
{
    tarni_wstring name;
    tarni_wstring value;
};

class ISettingsStore
{
public:
    virtual ~ISettingsStore() = default;

    /// Where the values live, for messages ("registry key HKLM\..." or the file path).
    virtual tarni_wstring GetLocation() const = 0;

    /// Every value, in stored order. A store that does not exist yet reads as empty.
    virtual std::vector<StoredValue> ReadAll() = 0;

    virtual void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) = 0;
    virtual void DeleteValue(tarni_wstring_view in_name) = 0;

    virtual void BeginUpdate() {}
    virtual void CommitUpdate() {}
    /// Drops the writes of the current update; nothing of it reaches the store.
    virtual void AbortUpdate() {}

    /// Serialises read-modify-write cycles of several processes: holds an
    /// exclusive lock from here until UnlockAfterUpdate (or destruction).
    virtual void LockForUpdate() {}
    virtual void UnlockAfterUpdate() {}
};
}  // namespace Tarni::Platform
