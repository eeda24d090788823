#pragma once
#include <optional>
#include <string>

#include "core/TarniString.h"

namespace Tarni::Support
{
/// Strict text-to-number conversion: decimal digits only (no sign, no
/// blanks), and a value that does not fit is not a number.
class NumberConverter
{
public:
    static std::optional<unsigned long long> ToUInt64(tarni_wstring_view in_text);
    static std::optional<unsigned> ToUInt32(tarni_wstring_view in_text);
    /// An optional leading "-", then digits.
    static std::optional<long long> ToInt64(tarni_wstring_view in_text);

    /// The decimal text of a number.
    static tarni_wstring ToText(unsigned long long in_value);
    static tarni_wstring ToText(long long in_value);
};
}  // namespace Tarni::Support
