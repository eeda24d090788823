#include "core/NumberConverter.h"

#include <limits>

namespace Tarni::Support
{
std::optional<unsigned long long> NumberConverter::ToUInt64(tarni_wstring_view in_text)
{
    if (in_text.empty())
    {
        return std::nullopt;
    }
    unsigned long long value = 0;
    for (const char16_t unit : in_text)
    {
        if (unit < u'0' || unit > u'9')
        {
            return std::nullopt;
        }
        const unsigned digit = static_cast<unsigned>(unit - u'0');
        if (value > (std::numeric_limits<unsigned long long>::max() - digit) / 10)
        {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    return value;
}

std::optional<unsigned> NumberConverter::ToUInt32(tarni_wstring_view in_text)
{
    const auto value = ToUInt64(in_text);
    if (!value || *value > std::numeric_limits<unsigned>::max())
    {
        return std::nullopt;
    }
    return static_cast<unsigned>(*value);
}

std::optional<long long> NumberConverter::ToInt64(tarni_wstring_view in_text)
{
    const bool negative = !in_text.empty() && in_text.front() == u'-';
    const auto magnitude = ToUInt64(negative ? in_text.substr(1) : in_text);
    if (!magnitude)
    {
        return std::nullopt;
    }
    const auto limit = static_cast<unsigned long long>(std::numeric_limits<long long>::max());
    if (*magnitude > limit + (negative ? 1 : 0))
    {
        return std::nullopt;
    }
    return negative ? static_cast<long long>(0 - *magnitude) : static_cast<long long>(*magnitude);
}
tarni_wstring NumberConverter::ToText(unsigned long long in_value)
{
    const std::string digits = std::to_string(in_value);
    return tarni_wstring(digits.begin(), digits.end());
}

tarni_wstring NumberConverter::ToText(long long in_value)
{
    const std::string digits = std::to_string(in_value);
    return tarni_wstring(digits.begin(), digits.end());
}
}  // namespace Tarni::Support
