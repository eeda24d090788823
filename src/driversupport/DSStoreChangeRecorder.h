#pragma once
// A settings store that applies nothing: it starts from the values a real
// store holds, records the writes and deletions of a save in order and keeps
// the values they would leave. From that it tells which values the save
// would really change, and replays only those operations onto the real
// store, so a save that changes nothing touches nothing (a file keeps its
// bytes and modification time, registry values stay as they are).
#include <functional>
#include <vector>

#include "driversupport/DSStoreChange.h"
#include "platform/ISettingsStore.h"

namespace Tarni::DriverSupport
{
class DSStoreChangeRecorder final : public Platform::ISettingsStore
{
public:
    /// Tells whether two different stored texts of one value mean the same
    /// (a secret protected twice gives two texts); false counts as a change.
    using EquivalentValues =
        std::function<bool(tarni_wstring_view in_name, tarni_wstring_view in_before, tarni_wstring_view in_after)>;

    DSStoreChangeRecorder(std::vector<Platform::StoredValue> in_present, tarni_wstring in_location);

    tarni_wstring GetLocation() const override { return m_location; }
    /// The values as the recorded operations leave them.
    std::vector<Platform::StoredValue> ReadAll() override { return m_values; }
    void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) override;
    void DeleteValue(tarni_wstring_view in_name) override;
    /// A failed save drops what it recorded.
    void AbortUpdate() override;

    /// The values whose stored text differs afterwards (names compared
    /// without regard to case, as both stores do), in the order the save
    /// first touched them. Values the comparison calls equivalent are not
    /// changes.
    std::vector<DSStoreChange> GetChanges(const EquivalentValues& in_equivalent) const;

    /// Applies to io_store, in recorded order, the operations on the named
    /// values only.
    void Replay(Platform::ISettingsStore& io_store, const std::vector<DSStoreChange>& in_changes) const;

private:
    struct Operation
    {
        tarni_wstring name;
        bool remove = false;
        tarni_wstring value;
    };

    const std::vector<Platform::StoredValue> m_present;
    tarni_wstring m_location;
    std::vector<Platform::StoredValue> m_values;
    std::vector<Operation> m_operations;
};
}  // namespace Tarni::DriverSupport
