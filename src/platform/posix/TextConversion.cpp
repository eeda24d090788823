#include "platform/TextConversion.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace Tarni::Platform
{
std::string TextConversion::Utf16ToUtf8(tarni_wstring_view in_text)
{
    if (in_text.empty())
    {
        return {};
    }
    std::string out(in_text.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, in_text.data(),
                       static_cast<int32_t>(in_text.size()), 0xFFFD, nullptr, &status);
    out.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return out;
}

tarni_wstring TextConversion::Utf8ToUtf16(std::string_view in_text)
{
    if (in_text.empty())
    {
        return {};
    }
    tarni_wstring out(in_text.size(), u'\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, in_text.data(),
                         static_cast<int32_t>(in_text.size()), 0xFFFD, nullptr, &status);
    out.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return out;
}

tarni_wstring TextConversion::AnsiToUtf16(std::string_view in_text)
{
    return Utf8ToUtf16(in_text);
}

std::string TextConversion::Utf16ToAnsi(tarni_wstring_view in_text)
{
    return Utf16ToUtf8(in_text);
}

char16_t TextConversion::FoldCase(char16_t in_unit)
{
    if (in_unit >= 0xD800 && in_unit <= 0xDFFF)
    {
        return in_unit;
    }
    const UChar32 folded = u_tolower(in_unit);
    return folded <= 0xFFFF ? static_cast<char16_t>(folded) : in_unit;
}
}  // namespace Tarni::Platform
