#pragma once
// Conversions between tarni_wstring and UTF-8, and case-insensitive
// comparison. The conversion itself is a platform seam (ICU on Linux, the
// Win32 API on Windows); everything here is portable.
#include <string>
#include <string_view>

#include "core/TarniString.h"

namespace Tarni::Support
{
class StringConverter
{
public:
    /// UTF-16 to UTF-8. Unpaired surrogates become U+FFFD.
    static std::string ToUtf8(tarni_wstring_view in_text);

    /// UTF-8 to UTF-16. Throws SupportException "InvalidUtf8Err" for bytes that
    /// are not UTF-8 (the caller names the file or argument they came from).
    static tarni_wstring FromUtf8(std::string_view in_text);

    /// True when the bytes are well-formed UTF-8.
    static bool IsValidUtf8(std::string_view in_text);

    /// ASCII-only widening, for literals and numbers.
    static tarni_wstring FromAscii(std::string_view in_text);

    /// Simple case folding of one UTF-16 code unit (the platform's lower-case
    /// mapping; identical for ASCII on every platform).
    static char16_t FoldCase(char16_t in_unit);

    /// Three-way comparison after simple case folding, code unit by code unit.
    /// The same order on every platform, so the configuration map lists its
    /// keys identically on Windows and Linux.
    static int CompareIgnoreCase(tarni_wstring_view in_left, tarni_wstring_view in_right);

    static bool EqualsIgnoreCase(tarni_wstring_view in_left, tarni_wstring_view in_right)
    {
        return in_left.size() == in_right.size() && CompareIgnoreCase(in_left, in_right) == 0;
    }

    static tarni_wstring ToLower(tarni_wstring_view in_text);

    /// Decimal text of a number.
    static tarni_wstring FromNumber(unsigned long long in_value);
    static tarni_wstring FromNumber(long long in_value);
};
}  // namespace Tarni::Support
