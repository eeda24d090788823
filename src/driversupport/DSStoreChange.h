#pragma once
// One stored value that a save changes: added, removed or given another
// value. Values before and after are the stored texts (a secret's protected
// form included); callers decide what of them may be shown.
#include <optional>

#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
struct DSStoreChange
{
    enum class Kind
    {
        Added,
        Removed,
        Modified,
    };

    tarni_wstring name;
    Kind kind = Kind::Modified;
    std::optional<tarni_wstring> before;
    std::optional<tarni_wstring> after;
};
}  // namespace Tarni::DriverSupport
