#pragma once
// An in-memory settings store for tests: keeps values in stored order and
// records every operation, so tests can check what a save wrote and in which
// order. Updates are applied at commit, like the INI store does.
#include <string>
#include <vector>

#include "platform/ISettingsStore.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::Testing
{
class MemorySettingsStore : public Platform::ISettingsStore
{
public:
    std::vector<Platform::StoredValue> values;
    std::vector<std::string> operations;  // "write Key=Value", "delete Key", "commit", "abort"
    /// Key whose write fails (simulates a store that refuses a value).
    tarni_wstring failOnWrite;

    tarni_wstring GetLocation() const override { return u"memory"; }
    std::vector<Platform::StoredValue> ReadAll() override { return values; }

    void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) override
    {
        if (!failOnWrite.empty() && Support::StringConverter::EqualsIgnoreCase(in_name, failOnWrite))
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          u"DSRegistryWriteErr", {u"Access is denied."}, 1010);
        }
        operations.push_back("write " + U8(in_name) + "=" + U8(in_value));
        m_pending.push_back({tarni_wstring(in_name), tarni_wstring(in_value), false});
        if (!m_inUpdate) Flush();
    }
    void DeleteValue(tarni_wstring_view in_name) override
    {
        operations.push_back("delete " + U8(in_name));
        m_pending.push_back({tarni_wstring(in_name), u"", true});
        if (!m_inUpdate) Flush();
    }
    void BeginUpdate() override { m_inUpdate = true; }
    void CommitUpdate() override
    {
        operations.push_back("commit");
        m_inUpdate = false;
        Flush();
    }
    void AbortUpdate() override
    {
        operations.push_back("abort");
        m_inUpdate = false;
        m_pending.clear();
    }

    const Platform::StoredValue* Find(tarni_wstring_view in_name) const
    {
        for (const auto& value : values)
            if (Support::StringConverter::EqualsIgnoreCase(value.name, in_name)) return &value;
        return nullptr;
    }
    /// Index of the last recorded operation that starts with the text, or -1.
    int LastIndexOf(const std::string& in_prefix) const
    {
        for (size_t i = operations.size(); i-- > 0;)
            if (operations[i].rfind(in_prefix, 0) == 0) return static_cast<int>(i);
        return -1;
    }
    /// Index of the first recorded operation that starts with the text, or -1.
    int IndexOf(const std::string& in_prefix) const
    {
        for (size_t i = 0; i < operations.size(); ++i)
            if (operations[i].rfind(in_prefix, 0) == 0) return static_cast<int>(i);
        return -1;
    }

private:
    struct Pending
    {
        tarni_wstring name, value;
        bool erase;
    };
    static std::string U8(tarni_wstring_view in_text) { return Support::StringConverter::ToUtf8(in_text); }
    void Flush()
    {
        for (const Pending& change : m_pending)
        {
            bool found = false;
            for (auto it = values.begin(); it != values.end(); ++it)
            {
                if (Support::StringConverter::EqualsIgnoreCase(it->name, change.name))
                {
                    if (change.erase) values.erase(it);
                    else it->value = change.value;
                    found = true;
                    break;
                }
            }
            if (!found && !change.erase) values.push_back({change.name, change.value});
        }
        m_pending.clear();
    }
    bool m_inUpdate = false;
    std::vector<Pending> m_pending;
};
}  // namespace Tarni::Testing
