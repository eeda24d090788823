#include "platform/TextConversion.h"

#include "core/SupportException.h"

// The portable half of the text seam: strict decoding, the UTF-8 check and
// the case-insensitive comparison over the platform's folding.
namespace Tarni::Platform
{
namespace
{
char16_t FoldUnit(char16_t in_unit)
{
    if (in_unit < 0x80)
    {
        return (in_unit >= u'A' && in_unit <= u'Z') ? static_cast<char16_t>(in_unit + 32) : in_unit;
    }
    return TextConversion::FoldCase(in_unit);
}
}  // namespace

tarni_wstring TextConversion::StrictUtf8ToUtf16(std::string_view in_text)
{
    if (!IsValidUtf8(in_text))
    {
        throw Support::SupportException(u"InvalidUtf8Err");
    }
    return Utf8ToUtf16(in_text);
}

bool TextConversion::IsValidUtf8(std::string_view in_text)
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

int TextConversion::CompareIgnoreCase(tarni_wstring_view in_left, tarni_wstring_view in_right)
{
    const size_t n = in_left.size() < in_right.size() ? in_left.size() : in_right.size();
    for (size_t i = 0; i < n; ++i)
    {
        const char16_t a = FoldUnit(in_left[i]);
        const char16_t b = FoldUnit(in_right[i]);
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

}  // namespace Tarni::Platform
