#include "driversupport/DSBase64.h"

#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
namespace
{
const char ALPHABET[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int ValueOf(char in_c)
{
    if (in_c >= 'A' && in_c <= 'Z') return in_c - 'A';
    if (in_c >= 'a' && in_c <= 'z') return in_c - 'a' + 26;
    if (in_c >= '0' && in_c <= '9') return in_c - '0' + 52;
    if (in_c == '+' || in_c == '-') return 62;
    if (in_c == '/' || in_c == '_') return 63;
    return -1;
}

[[noreturn]] void Throw(const char16_t* in_key, size_t in_number)
{
    throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, in_key,
                                  {Support::StringConverter::FromNumber(static_cast<unsigned long long>(in_number))});
}
}  // namespace

std::string DSBase64::Encode(std::string_view in_bytes)
{
    std::string result;
    result.reserve((in_bytes.size() + 2) / 3 * 4);
    size_t i = 0;
    for (; i + 3 <= in_bytes.size(); i += 3)
    {
        const unsigned n = (static_cast<unsigned char>(in_bytes[i]) << 16) |
                           (static_cast<unsigned char>(in_bytes[i + 1]) << 8) |
                           static_cast<unsigned char>(in_bytes[i + 2]);
        result += ALPHABET[(n >> 18) & 63];
        result += ALPHABET[(n >> 12) & 63];
        result += ALPHABET[(n >> 6) & 63];
        result += ALPHABET[n & 63];
    }
    const size_t rest = in_bytes.size() - i;
    if (rest > 0)
    {
        unsigned n = static_cast<unsigned char>(in_bytes[i]) << 16;
        if (rest == 2)
        {
            n |= static_cast<unsigned char>(in_bytes[i + 1]) << 8;
        }
        result += ALPHABET[(n >> 18) & 63];
        result += ALPHABET[(n >> 12) & 63];
        result += rest == 2 ? ALPHABET[(n >> 6) & 63] : '=';
        result += '=';
    }
    return result;
}

std::string DSBase64::Decode(std::string_view in_text)
{
    size_t length = in_text.size();
    size_t padding = 0;
    while (padding < 2 && length > 0 && in_text[length - 1] == '=')
    {
        --length;
        ++padding;
    }
    if ((padding > 0 && in_text.size() % 4 != 0) || length % 4 == 1)
    {
        Throw(u"DSInvalidBase64EncodedStringLenError", in_text.size());
    }
    std::string result;
    result.reserve(length / 4 * 3 + 2);
    unsigned buffer = 0;
    int bits = 0;
    for (size_t i = 0; i < length; ++i)
    {
        const int value = ValueOf(in_text[i]);
        if (value < 0)
        {
            Throw(u"DSInvalidBase64EncodedStringCharError", i);
        }
        buffer = (buffer << 6) | static_cast<unsigned>(value);
        bits += 6;
        if (bits >= 8)
        {
            bits -= 8;
            result += static_cast<char>((buffer >> bits) & 0xFF);
        }
    }
    return result;
}
}  // namespace Tarni::DriverSupport
