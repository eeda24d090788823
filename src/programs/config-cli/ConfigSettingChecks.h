#pragma once
// What tarni-spark-config checks before it writes anything: each value of a
// `set` against the description of its key (the same descriptions the
// defaults and the dialogs' setters use), the names given to `unset`, and
// that what `show` and `get` print reached standard output.
#include <iosfwd>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class ConfigSettingChecks
{
public:
    using Setting = std::pair<tarni_wstring, tarni_wstring>;

    /// Prints one error per refused value and a warning for keys the model
    /// does not know (they are still stored) and for a LogFileSize that the
    /// stored byte count wraps. False when any value was refused.
    static bool CheckSettings(const std::vector<Setting>& in_settings, std::ostream& io_err);

    /// Why a name cannot be unset (empty, a section header, or with "="), or nothing.
    static std::optional<std::string> ProblemWithUnsetName(tarni_wstring_view in_key);

    /// The operands of set-secret: one KEY (out_key, empty when none is
    /// given) and "--scope user|machine" (io_allUsers, left as it is without
    /// one). The problem with them as a usage text, or nothing.
    static std::optional<std::string> ParseSecretOperands(const std::vector<tarni_wstring>& in_operands,
                                                          tarni_wstring& out_key, bool& io_allUsers);

    /// Flushes the output; false (after an error on io_err) when it could not be written.
    static bool OutputWritten(std::ostream& io_out, std::ostream& io_err);
};
}  // namespace Tarni::SparkODBC
