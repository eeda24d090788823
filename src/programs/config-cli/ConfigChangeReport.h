#pragma once
// What tarni-spark-config says about a save: "unchanged", or "changed: "
// and the keys, as text or as a JSON object, and the key-by-key diff of an
// import. A secret is named by its own key (PWD, not the key of its
// protected form) and its value never appears, plain or protected.
#include <string>
#include <vector>

#include "core/TarniString.h"
#include "driversupport/DSStoreChange.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;
}

namespace Tarni::SparkODBC
{
class ConfigChangeReport
{
public:
    ConfigChangeReport(const DriverSupport::DSDSNConfiguration& in_config,
                       std::vector<DriverSupport::DSStoreChange> in_changes);

    /// The changed keys, each once, in the order the save touched them.
    std::vector<tarni_wstring> GetKeys() const;

    /// "unchanged\n" or "changed: KEY, KEY\n".
    std::string FormatText() const;
    /// {"changed": true|false, "keys": [...]} and a line end.
    std::string FormatJson() const;

    /// One line per key: "+ KEY=VALUE", "- KEY=VALUE" (the value that
    /// goes), "~ KEY=VALUE (was OLD)"; a secret as "+ KEY" and so on.
    /// Nothing when nothing changes.
    std::string FormatDiffText() const;
    /// The report's object with "changes": [{"key", "change" ("+", "-",
    /// "~"), "before", "after"}]; a secret has "protected": true instead of
    /// its values.
    std::string FormatDiffJson() const;

private:
    struct Entry
    {
        tarni_wstring key;
        char change = '~';
        bool secret = false;
        const DriverSupport::DSStoreChange* stored = nullptr;
    };
    std::vector<Entry> GetEntries() const;

    const DriverSupport::DSDSNConfiguration& m_config;
    std::vector<DriverSupport::DSStoreChange> m_changes;
};
}  // namespace Tarni::SparkODBC
