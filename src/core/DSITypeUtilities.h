#pragma once
// Conversions between binary data and its text form.
#include <string>
#include <string_view>

#include "core/TarniString.h"

namespace Tarni::DSI
{
class DSITypeUtilities
{
public:
    /// Two upper-case hexadecimal digits per byte ("0123456789ABCDEF"), the
    /// high half of the byte first, bytes in their order.
    static tarni_wstring BinaryToHexString(std::string_view in_bytes);

    /// The inverse of BinaryToHexString. Throws DSIException
    /// "DSIHexToBinaryConversionOddLengthError" (length) for text of odd
    /// length and "DSIHexToBinaryConversionInvalidDigitError" (position) for a
    /// character that is not one of the sixteen upper-case digits.
    static std::string HexStringToBinary(tarni_wstring_view in_hex);
};
}  // namespace Tarni::DSI
