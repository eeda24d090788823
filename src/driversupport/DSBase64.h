#pragma once
// Base64 of the standard alphabet
// "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/".
#include <string>
#include <string_view>

namespace Tarni::DriverSupport
{
class DSBase64
{
public:
    /// Encodes with "=" padding, on one line.
    static std::string Encode(std::string_view in_bytes);

    /// Decodes. Padding "=" or "==" is honoured and may be left out (tokens
    /// leave it out); the URL-safe characters "-" and "_" are read as "+" and
    /// "/". A length that leaves a single character over (or a padded text
    /// whose length is not a multiple of four) throws ErrorException
    /// "DSInvalidBase64EncodedStringLenError" with the length; a character
    /// outside the alphabet throws "DSInvalidBase64EncodedStringCharError"
    /// with its position.
    static std::string Decode(std::string_view in_text);
};
}  // namespace Tarni::DriverSupport
