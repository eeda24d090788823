#include "core/DSITypeUtilities.h"

#include "core/DSIException.h"
#include "core/NumberConverter.h"

namespace Tarni::DSI
{
namespace
{
constexpr char16_t HEX_DIGITS[] = u"0123456789ABCDEF";

int DigitValue(char16_t in_digit)
{
    if (in_digit >= u'0' && in_digit <= u'9') return in_digit - u'0';
    if (in_digit >= u'A' && in_digit <= u'F') return in_digit - u'A' + 10;
    return -1;
}
}  // namespace

tarni_wstring DSITypeUtilities::BinaryToHexString(std::string_view in_bytes)
{
    tarni_wstring hex;
    hex.reserve(in_bytes.size() * 2);
    for (const char byte : in_bytes)
    {
        const auto value = static_cast<unsigned char>(byte);
        hex.push_back(HEX_DIGITS[value >> 4]);
        hex.push_back(HEX_DIGITS[value & 0x0F]);
    }
    return hex;
}

std::string DSITypeUtilities::HexStringToBinary(tarni_wstring_view in_hex)
{
    if (in_hex.size() % 2 != 0)
    {
        throw DSIException(u"DSIHexToBinaryConversionOddLengthError",
                           {Support::NumberConverter::ToText(static_cast<unsigned long long>(in_hex.size()))});
    }
    std::string bytes;
    bytes.reserve(in_hex.size() / 2);
    for (size_t i = 0; i < in_hex.size(); i += 2)
    {
        const int high = DigitValue(in_hex[i]);
        const int low = DigitValue(in_hex[i + 1]);
        if (high < 0 || low < 0)
        {
            const size_t position = high < 0 ? i : i + 1;
            throw DSIException(u"DSIHexToBinaryConversionInvalidDigitError",
                               {Support::NumberConverter::ToText(static_cast<unsigned long long>(position))});
        }
        bytes.push_back(static_cast<char>((high << 4) | low));
    }
    return bytes;
}
}  // namespace Tarni::DSI
