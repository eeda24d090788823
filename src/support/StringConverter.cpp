#include "support/StringConverter.h"

#include "platform/TextConversion.h"
#include "core/NumberConverter.h"

namespace Tarni::Support
{
std::string StringConverter::ToUtf8(tarni_wstring_view in_text)
{
    return Platform::TextConversion::Utf16ToUtf8(in_text);
}

tarni_wstring StringConverter::FromUtf8(std::string_view in_text)
{
    return Platform::TextConversion::StrictUtf8ToUtf16(in_text);
}

bool StringConverter::IsValidUtf8(std::string_view in_text)
{
    return Platform::TextConversion::IsValidUtf8(in_text);
}

tarni_wstring StringConverter::FromAscii(std::string_view in_text)
{
    return tarni_wstring(in_text.begin(), in_text.end());
}

char16_t StringConverter::FoldCase(char16_t in_unit)
{
    return Platform::TextConversion::FoldCase(in_unit);
}

int StringConverter::CompareIgnoreCase(tarni_wstring_view in_left, tarni_wstring_view in_right)
{
    return Platform::TextConversion::CompareIgnoreCase(in_left, in_right);
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
    return NumberConverter::ToText(in_value);
}

tarni_wstring StringConverter::FromNumber(long long in_value)
{
    return NumberConverter::ToText(in_value);
}
}  // namespace Tarni::Support
