#include "support/StringConverter.h"

#include "platform/TextConversion.h"
#include "support/SupportException.h"

namespace Tarni::Support
{
std::string StringConverter::ToUtf8(tarni_wstring_view in_text)
{
    return Platform::TextConversion::Utf16ToUtf8(in_text);
}

tarni_wstring StringConverter::FromUtf8(std::string_view in_text)
{
    if (!IsValidUtf8(in_text))
    {
        throw SupportException(u"InvalidUtf8Err");
    }
    return Platform::TextConversion::Utf8ToUtf16(in_text);
}

bool StringConverter::IsValidUtf8(std::string_view in_text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(in_text.data());
    const auto* end = p + in_text.size();
    while (p < end)
    {
        const unsigned char c = *p;
        if (c < 0x80)
        {
            ++p;
            continue;
        }
        int extra = 0;
        unsigned int codePoint = 0;
        if (c >= 0xC2 && c <= 0xDF)
        {
            extra = 1;
            codePoint = c & 0x1F;
        }
        else if (c >= 0xE0 && c <= 0xEF)
        {
            extra = 2;
            codePoint = c & 0x0F;
        }
        else if (c >= 0xF0 && c <= 0xF4)
        {
            extra = 3;
            codePoint = c & 0x07;
        }
        else
        {
            return false;
        }
        if (end - p <= extra)
        {
            return false;
        }
        for (int i = 1; i <= extra; ++i)
        {
            if ((p[i] & 0xC0) != 0x80)
            {
                return false;
            }
            codePoint = (codePoint << 6) | (p[i] & 0x3F);
        }
        // Overlong forms, surrogates and values above U+10FFFF are not UTF-8.
        if ((extra == 2 && codePoint < 0x800) || (extra == 3 && codePoint < 0x10000) ||
            (codePoint >= 0xD800 && codePoint <= 0xDFFF) || codePoint > 0x10FFFF)
        {
            return false;
        }
        p += extra + 1;
    }
    return true;
}

tarni_wstring StringConverter::FromAscii(std::string_view in_text)
{
    return tarni_wstring(in_text.begin(), in_text.end());
}

char16_t StringConverter::FoldCase(char16_t in_unit)
{
    if (in_unit < 0x80)
    {
        return (in_unit >= u'A' && in_unit <= u'Z') ? static_cast<char16_t>(in_unit + 32) : in_unit;
    }
    return Platform::TextConversion::FoldCase(in_unit);
}

int StringConverter::CompareIgnoreCase(tarni_wstring_view in_left, tarni_wstring_view in_right)
{
    const size_t n = in_left.size() < in_right.size() ? in_left.size() : in_right.size();
    for (size_t i = 0; i < n; ++i)
    {
        const char16_t a = FoldCase(in_left[i]);
        const char16_t b = FoldCase(in_right[i]);
        if (a != b)
        {
            return a < b ? -1 : 1;
        }
    }
    if (in_left.size() == in_right.size())
    {
        return 0;
    }
    return in_left.size() < in_right.size() ? -1 : 1;
}

tarni_wstring StringConverter::ToLower(tarni_wstring_view in_text)
{
    tarni_wstring result(in_text);
    for (auto& unit : result)
    {
        unit = FoldCase(unit);
    }
    return result;
}

tarni_wstring StringConverter::FromNumber(unsigned long long in_value)
{
    return FromAscii(std::to_string(in_value));
}

tarni_wstring StringConverter::FromNumber(long long in_value)
{
    return FromAscii(std::to_string(in_value));
}
}  // namespace Tarni::Support
