#pragma once
// Platform seam: UTF-16 <-> UTF-8 conversion and case folding of one code
// unit. ICU on Linux, the Win32 Unicode API on Windows.
#include <string>

#include "support/TarniString.h"

namespace Tarni::Platform
{
class TextConversion
{
public:
    static std::string Utf16ToUtf8(tarni_wstring_view in_text);
    /// The input must be valid UTF-8 (StringConverter checks it first).
    static tarni_wstring Utf8ToUtf16(std::string_view in_text);
    static char16_t FoldCase(char16_t in_unit);
};
}  // namespace Tarni::Platform
