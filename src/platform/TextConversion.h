#pragma once
// Platform seam: UTF-16 <-> UTF-8 conversion and case folding of one code
// unit. ICU on Linux, the Win32 Unicode API on Windows. The strict decoding,
// the UTF-8 check and the case-insensitive comparison are portable and built
// on those; the support layer's StringConverter is the face the rest of the
// code uses.
#include <string>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class TextConversion
{
public:
    static std::string Utf16ToUtf8(tarni_wstring_view in_text);
    /// Decodes UTF-8; a malformed sequence becomes U+FFFD.
    static tarni_wstring Utf8ToUtf16(std::string_view in_text);
    /// Decodes UTF-8; throws SupportException "InvalidUtf8Err" for anything
    /// that is not well-formed UTF-8 (for names and values read from the
    /// system, where a silent substitution would change a key).
    static tarni_wstring StrictUtf8ToUtf16(std::string_view in_text);
    static bool IsValidUtf8(std::string_view in_text);

    /// The narrow text of the system's installer API ("ANSI") to UTF-16 and
    /// back: the active code page on Windows, UTF-8 elsewhere (malformed
    /// input becomes U+FFFD; what the code page cannot hold becomes "?").
    static tarni_wstring AnsiToUtf16(std::string_view in_text);
    static std::string Utf16ToAnsi(tarni_wstring_view in_text);

    static char16_t FoldCase(char16_t in_unit);
    /// Case-insensitive ordering by folded code units (ASCII fast path).
    static int CompareIgnoreCase(tarni_wstring_view in_left, tarni_wstring_view in_right);
    static bool EqualsIgnoreCase(tarni_wstring_view in_left, tarni_wstring_view in_right)
    {
        return in_left.size() == in_right.size() && CompareIgnoreCase(in_left, in_right) == 0;
    }
};
}  // namespace Tarni::Platform
