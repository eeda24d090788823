#include "support/log/LogUtils.h"

#include <cctype>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

namespace Tarni::Support
{
namespace
{
struct LevelName
{
    const char* name;
    const char* digit;
    const char* text;
};

// Indexed by level value.
constexpr LevelName LEVELS[] = {
    {"Off", "0", "OFF  "},     {"Fatal", "1", "FATAL"}, {"Error", "2", "ERROR"}, {"Warning", "3", "WARN "},
    {"Info", "4", "INFO "},    {"Debug", "5", "DEBUG"}, {"Trace", "6", "TRACE"},
};

bool EqualsIgnoreCase(std::string_view in_left, std::string_view in_right)
{
    if (in_left.size() != in_right.size())
    {
        return false;
    }
    for (size_t i = 0; i < in_left.size(); ++i)
    {
        if (std::tolower(static_cast<unsigned char>(in_left[i])) !=
            std::tolower(static_cast<unsigned char>(in_right[i])))
        {
            return false;
        }
    }
    return true;
}

bool IsBlank(char in_c)
{
    return in_c == ' ' || in_c == '\t' || in_c == '\r' || in_c == '\n' || in_c == '\f' || in_c == '\v';
}

std::string_view TrimRight(std::string_view in_text)
{
    while (!in_text.empty() && IsBlank(in_text.back()))
    {
        in_text.remove_suffix(1);
    }
    return in_text;
}

std::string_view Trim(std::string_view in_text)
{
    in_text = TrimRight(in_text);
    while (!in_text.empty() && IsBlank(in_text.front()))
    {
        in_text.remove_prefix(1);
    }
    return in_text;
}

// The settings are ASCII; anything else cannot match and reads as unreadable.
std::string Narrow(tarni_wstring_view in_text)
{
    std::string narrow;
    narrow.reserve(in_text.size());
    for (const char16_t unit : in_text)
    {
        narrow.push_back(unit < 0x80 ? static_cast<char>(unit) : '\x7F');
    }
    return narrow;
}
}  // namespace

LogLevel LogUtils::ToLogLevel(std::string_view in_text)
{
    if (in_text.size() > 4 && EqualsIgnoreCase(in_text.substr(0, 4), "LOG_"))
    {
        in_text.remove_prefix(4);
    }
    for (int level = LOG_MIN; level <= LOG_MAX; ++level)
    {
        if (EqualsIgnoreCase(in_text, LEVELS[level].name) || in_text == LEVELS[level].digit)
        {
            return static_cast<LogLevel>(level);
        }
    }
    if (in_text.empty())
    {
        return LOG_OFF;
    }

    // A decimal number, clamped to the range of levels.
    size_t position = 0;
    bool negative = false;
    if (in_text[0] == '-' || in_text[0] == '+')
    {
        negative = in_text[0] == '-';
        position = 1;
    }
    if (position == in_text.size())
    {
        return LOG_OFF;
    }
    for (size_t i = position; i < in_text.size(); ++i)
    {
        if (in_text[i] < '0' || in_text[i] > '9')
        {
            return LOG_OFF;
        }
    }
    if (negative)
    {
        return LOG_OFF;
    }
    unsigned long long value = 0;
    const auto result = std::from_chars(in_text.data() + position, in_text.data() + in_text.size(), value);
    if (result.ec != std::errc() || value > static_cast<unsigned long long>(LOG_MAX))
    {
        return LOG_MAX;  // only too large numbers get here
    }
    return static_cast<LogLevel>(value);
}

LogLevel LogUtils::ToLogLevel(tarni_wstring_view in_text)
{
    return ToLogLevel(std::string_view(Narrow(in_text)));
}

const char* LogUtils::GetLevelText(int in_level)
{
    return in_level >= LOG_MIN && in_level <= LOG_MAX ? LEVELS[in_level].text : "UNKWN";
}

unsigned long long LogUtils::ParseLogFileSize(std::string_view in_text)
{
    std::string_view text = TrimRight(in_text);
    if (!text.empty() && (text.back() == 'b' || text.back() == 'B'))
    {
        text.remove_suffix(1);
    }
    unsigned long long multiplier = 1;
    if (!text.empty())
    {
        switch (text.back())
        {
            case 'K': case 'k': multiplier = 1024ULL; break;
            case 'M': case 'm': multiplier = 1048576ULL; break;
            case 'G': case 'g': multiplier = 1073741824ULL; break;
            default: break;
        }
        if (multiplier != 1)
        {
            text.remove_suffix(1);
        }
    }
    text = Trim(text);

    // digits [ "." digits ], at least one digit; no sign, no exponent.
    size_t dot = text.find('.');
    const std::string_view whole = text.substr(0, dot);
    const std::string_view fraction = dot == std::string_view::npos ? std::string_view() : text.substr(dot + 1);
    const auto allDigits = [](std::string_view in_part) {
        for (const char c : in_part)
        {
            if (c < '0' || c > '9')
            {
                return false;
            }
        }
        return true;
    };
    if (text.empty() || !allDigits(whole) || !allDigits(fraction) || (whole.empty() && fraction.empty()))
    {
        return DEFAULT_LOG_FILE_SIZE;
    }

    constexpr unsigned long long MAX = std::numeric_limits<unsigned long long>::max();
    unsigned long long integer = 0;
    for (const char c : whole)
    {
        const unsigned digit = static_cast<unsigned>(c - '0');
        if (integer > (MAX - digit) / 10)
        {
            return MAX;
        }
        integer = integer * 10 + digit;
    }
    if (integer > MAX / multiplier)
    {
        return MAX;
    }
    unsigned long long bytes = integer * multiplier;

    // The fraction, in units of the multiplier, rounded down to whole bytes.
    if (!fraction.empty() && multiplier > 1)
    {
        double part = 0.0;
        double scale = 0.1;
        for (size_t i = 0; i < fraction.size() && i < 18; ++i, scale /= 10)
        {
            part += (fraction[i] - '0') * scale;
        }
        const auto extra = static_cast<unsigned long long>(part * static_cast<double>(multiplier));
        if (bytes > MAX - extra)
        {
            return MAX;
        }
        bytes += extra;
    }
    return bytes;
}

unsigned long long LogUtils::ParseLogFileSize(tarni_wstring_view in_text)
{
    return ParseLogFileSize(std::string_view(Narrow(in_text)));
}

int LogUtils::ParseLogFileCount(std::string_view in_text)
{
    const std::string_view text = Trim(in_text);
    unsigned value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size() || value == 0 ||
        value > static_cast<unsigned>(std::numeric_limits<int>::max()))
    {
        return DEFAULT_LOG_FILE_COUNT;
    }
    return static_cast<int>(value);
}

int LogUtils::ParseLogFileCount(tarni_wstring_view in_text)
{
    return ParseLogFileCount(std::string_view(Narrow(in_text)));
}

tarni_wstring LogUtils::NormalizeLogPath(tarni_wstring_view in_path, char16_t in_separator)
{
    tarni_wstring path(in_path);
    if (path.empty())
    {
        path = u".";
    }
    if (path.back() == u'/' || path.back() == u'\\')
    {
        path.back() = in_separator;
    }
    else
    {
        path += in_separator;
    }
    return path;
}
}  // namespace Tarni::Support
