#pragma once
// The message catalogue as the dialogs ask it for the text of a message box:
// the message of a key of a component with its parameters filled in, or
// nothing when the catalogue has no such message. The program connects the
// catalogue at start-up; until then (and in builds without message files)
// every lookup finds nothing and the dialogs use their string resources.
#include <functional>
#include <optional>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
class DSMessageCatalogue
{
public:
    using Lookup = std::function<std::optional<tarni_wstring>(int in_componentId, tarni_wstring_view in_key,
                                                              const std::vector<tarni_wstring>& in_parameters)>;

    /// Connects the catalogue (null: none).
    static void SetLookup(Lookup in_lookup);

    /// The catalogue's text of the key, or nothing.
    static std::optional<tarni_wstring> Find(int in_componentId, tarni_wstring_view in_key,
                                             const std::vector<tarni_wstring>& in_parameters = {});

    /// The catalogue's text of the key when it has one, else in_fallback.
    static tarni_wstring GetOr(int in_componentId, tarni_wstring_view in_key,
                               const std::vector<tarni_wstring>& in_parameters, const tarni_wstring& in_fallback);
};
}  // namespace Tarni::DriverSupport
