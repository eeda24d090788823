#pragma once
#include "support/StringConverter.h"

namespace Tarni::Support
{
/// Ordering of configuration keys: case-insensitive, as registry value names
/// are. Transparent, so maps can be searched with a string_view.
struct CaseInsensitiveLess
{
    using is_transparent = void;
    bool operator()(tarni_wstring_view in_left, tarni_wstring_view in_right) const
    {
        return StringConverter::CompareIgnoreCase(in_left, in_right) < 0;
    }
};
}  // namespace Tarni::Support
