#include "driversupport/DSStoreChangeRecorder.h"

#include <algorithm>
#include <optional>

#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::StringConverter;

namespace
{
std::optional<tarni_wstring> ValueOf(const std::vector<Platform::StoredValue>& in_values, tarni_wstring_view in_name)
{
    for (const Platform::StoredValue& value : in_values)
    {
        if (StringConverter::EqualsIgnoreCase(value.name, in_name))
        {
            return value.value;
        }
    }
    return std::nullopt;
}

bool Named(const std::vector<DSStoreChange>& in_changes, tarni_wstring_view in_name)
{
    return std::any_of(in_changes.begin(), in_changes.end(), [&](const DSStoreChange& change) {
        return StringConverter::EqualsIgnoreCase(change.name, in_name);
    });
}
}  // namespace

DSStoreChangeRecorder::DSStoreChangeRecorder(std::vector<Platform::StoredValue> in_present, tarni_wstring in_location)
    : m_present(std::move(in_present)), m_location(std::move(in_location)), m_values(m_present)
{
}

void DSStoreChangeRecorder::WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value)
{
    m_operations.push_back({tarni_wstring(in_name), false, tarni_wstring(in_value)});
    for (Platform::StoredValue& value : m_values)
    {
        if (StringConverter::EqualsIgnoreCase(value.name, in_name))
        {
            value.value = in_value;
            return;
        }
    }
    m_values.push_back({tarni_wstring(in_name), tarni_wstring(in_value)});
}

void DSStoreChangeRecorder::DeleteValue(tarni_wstring_view in_name)
{
    m_operations.push_back({tarni_wstring(in_name), true, {}});
    m_values.erase(std::remove_if(m_values.begin(), m_values.end(),
                                  [&](const Platform::StoredValue& value) {
                                      return StringConverter::EqualsIgnoreCase(value.name, in_name);
                                  }),
                   m_values.end());
}

void DSStoreChangeRecorder::AbortUpdate()
{
    m_operations.clear();
    m_values = m_present;
}

std::vector<DSStoreChange> DSStoreChangeRecorder::GetChanges(const EquivalentValues& in_equivalent) const
{
    std::vector<DSStoreChange> changes;
    std::vector<tarni_wstring> seen;
    for (const Operation& operation : m_operations)
    {
        if (std::any_of(seen.begin(), seen.end(),
                        [&](const tarni_wstring& name) { return StringConverter::EqualsIgnoreCase(name, operation.name); }))
        {
            continue;
        }
        seen.push_back(operation.name);
        DSStoreChange change;
        change.name = operation.name;
        change.before = ValueOf(m_present, operation.name);
        change.after = ValueOf(m_values, operation.name);
        if (change.before == change.after)
        {
            continue;
        }
        if (change.before && change.after)
        {
            if (in_equivalent && in_equivalent(change.name, *change.before, *change.after))
            {
                continue;
            }
            change.kind = DSStoreChange::Kind::Modified;
        }
        else
        {
            change.kind = change.after ? DSStoreChange::Kind::Added : DSStoreChange::Kind::Removed;
        }
        changes.push_back(std::move(change));
    }
    return changes;
}

void DSStoreChangeRecorder::Replay(Platform::ISettingsStore& io_store, const std::vector<DSStoreChange>& in_changes) const
{
    for (const Operation& operation : m_operations)
    {
        if (!Named(in_changes, operation.name))
        {
            continue;
        }
        if (operation.remove)
        {
            io_store.DeleteValue(operation.name);
        }
        else
        {
            io_store.WriteValue(operation.name, operation.value);
        }
    }
}
}  // namespace Tarni::DriverSupport
