#include "programs/config-cli/ConfigChangeReport.h"

#include <nlohmann/json.hpp>

#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSEncryptionUtils.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using DriverSupport::DSStoreChange;
using Support::StringConverter;

namespace
{
std::string U8(tarni_wstring_view in_text)
{
    return StringConverter::ToUtf8(in_text);
}

std::string Dump(const nlohmann::ordered_json& in_json)
{
    return in_json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

bool Protected(const std::optional<tarni_wstring>& in_value)
{
    return in_value && DriverSupport::DSEncryptionUtils::HasProtectedForm(*in_value);
}
}  // namespace

ConfigChangeReport::ConfigChangeReport(const DriverSupport::DSDSNConfiguration& in_config,
                                       std::vector<DSStoreChange> in_changes)
    : m_config(in_config), m_changes(std::move(in_changes))
{
}

std::vector<ConfigChangeReport::Entry> ConfigChangeReport::GetEntries() const
{
    std::vector<Entry> entries;
    for (const DSStoreChange& change : m_changes)
    {
        Entry entry;
        entry.key = change.name;
        entry.stored = &change;
        entry.change = change.kind == DSStoreChange::Kind::Added     ? '+'
                       : change.kind == DSStoreChange::Kind::Removed ? '-'
                                                                     : '~';
        if (const auto* credential = m_config.FindCredentialByProtectedKey(change.name))
        {
            entry.key = credential->GetKeySet().Pwd();
            entry.secret = true;
        }
        else if (m_config.FindCredentialBySecretKey(change.name) != nullptr)
        {
            entry.secret = true;
        }
        entry.secret = entry.secret || m_config.IsNeverStoredKey(change.name) || Protected(change.before) ||
                       Protected(change.after);
        bool seen = false;
        for (Entry& earlier : entries)
        {
            if (StringConverter::EqualsIgnoreCase(earlier.key, entry.key))
            {
                // The plain and the protected key of one secret are one change.
                earlier.change = earlier.change == entry.change ? entry.change : '~';
                earlier.secret = true;
                seen = true;
            }
        }
        if (!seen)
        {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

std::vector<tarni_wstring> ConfigChangeReport::GetKeys() const
{
    std::vector<tarni_wstring> keys;
    for (const Entry& entry : GetEntries())
    {
        keys.push_back(entry.key);
    }
    return keys;
}

std::string ConfigChangeReport::FormatText() const
{
    const auto keys = GetKeys();
    if (keys.empty())
    {
        return "unchanged\n";
    }
    std::string text = "changed: ";
    for (size_t i = 0; i < keys.size(); ++i)
    {
        text += (i == 0 ? "" : ", ") + U8(keys[i]);
    }
    return text + "\n";
}

std::string ConfigChangeReport::FormatJson() const
{
    nlohmann::ordered_json report;
    const auto keys = GetKeys();
    report["changed"] = !keys.empty();
    report["keys"] = nlohmann::ordered_json::array();
    for (const tarni_wstring& key : keys)
    {
        report["keys"].push_back(U8(key));
    }
    return Dump(report);
}

std::string ConfigChangeReport::FormatDiffText() const
{
    std::string text;
    for (const Entry& entry : GetEntries())
    {
        text += std::string(1, entry.change) + " " + U8(entry.key);
        if (!entry.secret)
        {
            const DSStoreChange& stored = *entry.stored;
            text += "=" + U8(stored.after ? *stored.after : *stored.before);
            if (entry.change == '~')
            {
                text += " (was " + U8(*stored.before) + ")";
            }
        }
        text += "\n";
    }
    return text;
}

std::string ConfigChangeReport::FormatDiffJson() const
{
    nlohmann::ordered_json report;
    const auto entries = GetEntries();
    report["changed"] = !entries.empty();
    report["keys"] = nlohmann::ordered_json::array();
    report["changes"] = nlohmann::ordered_json::array();
    for (const Entry& entry : entries)
    {
        report["keys"].push_back(U8(entry.key));
        nlohmann::ordered_json change;
        change["key"] = U8(entry.key);
        change["change"] = std::string(1, entry.change);
        if (entry.secret)
        {
            change["protected"] = true;
        }
        else
        {
            if (entry.stored->before)
            {
                change["before"] = U8(*entry.stored->before);
            }
            if (entry.stored->after)
            {
                change["after"] = U8(*entry.stored->after);
            }
        }
        report["changes"].push_back(std::move(change));
    }
    return Dump(report);
}
}  // namespace Tarni::SparkODBC
