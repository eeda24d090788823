#include "driversupport/DSConnectionUtils.h"

#include <limits>

#include "driversupport/ConfigurationKeys.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"
#include "support/TarniSettingReader.h"

namespace Tarni::DriverSupport
{
using Support::ILogger;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSConnectionUtils";
// Read only here: the application's entry in the HTTP user agent.
const char16_t* const USER_AGENT_ENTRY = u"UserAgentEntry";
const size_t MAX_USER_AGENT_ENTRY_LENGTH = 256;

std::optional<tarni_wstring> FromConnection(tarni_wstring_view in_key, const ConfigurationMap& in_settings)
{
    const auto it = in_settings.find(in_key);
    if (it == in_settings.end())
    {
        return std::nullopt;
    }
    return it->second;
}

/// Blanks and tabs around a number are tolerated: values typed into a
/// connection string often carry them.
tarni_wstring_view TrimBlanks(tarni_wstring_view in_text)
{
    while (!in_text.empty() && (in_text.front() == u' ' || in_text.front() == u'\t'))
    {
        in_text.remove_prefix(1);
    }
    while (!in_text.empty() && (in_text.back() == u' ' || in_text.back() == u'\t'))
    {
        in_text.remove_suffix(1);
    }
    return in_text;
}

/// Decimal digits only; false on any other character or on overflow of T.
template <typename T>
bool ParseUnsigned(tarni_wstring_view in_text, T& out_value)
{
    if (in_text.empty())
    {
        return false;
    }
    T value = 0;
    for (const char16_t unit : in_text)
    {
        if (unit < u'0' || unit > u'9')
        {
            return false;
        }
        const T digit = static_cast<T>(unit - u'0');
        if (value > (std::numeric_limits<T>::max() - digit) / 10)
        {
            return false;
        }
        value = static_cast<T>(value * 10 + digit);
    }
    out_value = value;
    return true;
}

void Warn(ILogger* in_log, DSWarningList& io_warnings, const char* in_function, tarni_wstring_view in_key,
          tarni_wstring_view in_value, const char* in_typeName)
{
    io_warnings.Add(Support::DS_ERROR, u"DSInvalidSettingValueWarn",
                    {tarni_wstring(in_key), tarni_wstring(in_value), StringConverter::FromAscii(in_typeName)});
    if (in_log != nullptr)
    {
        in_log->LogWarning(NS, CLS, in_function,
                           "The value \"%s\" of the setting %s cannot be converted into %s; the setting is ignored.",
                           StringConverter::ToUtf8(in_value).c_str(), StringConverter::ToUtf8(in_key).c_str(),
                           in_typeName);
    }
}

bool IsTokenCharacter(char in_c)
{
    if ((in_c >= 'A' && in_c <= 'Z') || (in_c >= 'a' && in_c <= 'z') || (in_c >= '0' && in_c <= '9'))
    {
        return true;
    }
    return std::string_view("!#$%&'*+-.^_`|~").find(in_c) != std::string_view::npos;
}

/// Consumes a token from the front; false when there is none.
bool TakeToken(std::string_view& io_text)
{
    size_t length = 0;
    while (length < io_text.size() && IsTokenCharacter(io_text[length]))
    {
        ++length;
    }
    io_text.remove_prefix(length);
    return length > 0;
}
}  // namespace

std::optional<bool> DSConnectionUtils::ParseBoolean(tarni_wstring_view in_text)
{
    if (in_text == u"1" || StringConverter::EqualsIgnoreCase(in_text, u"true"))
    {
        return true;
    }
    if (in_text == u"0" || StringConverter::EqualsIgnoreCase(in_text, u"false"))
    {
        return false;
    }
    return std::nullopt;
}

bool DSConnectionUtils::IsDriverConfigTakePrecedence(const ConfigurationMap& in_settings)
{
    // The driver-wide value is the administrator's; it decides when present.
    std::optional<tarni_wstring> value = Support::TarniSettingReader::Read(Keys::DriverConfigTakePrecedence);
    if (!value)
    {
        value = FromConnection(Keys::DriverConfigTakePrecedence, in_settings);
    }
    return value && ParseBoolean(*value).value_or(false);
}

std::optional<tarni_wstring> DSConnectionUtils::GetSettingValue(tarni_wstring_view in_key,
                                                                const ConfigurationMap& in_settings)
{
    if (IsDriverConfigTakePrecedence(in_settings))
    {
        if (auto value = Support::TarniSettingReader::Read(in_key))
        {
            return value;
        }
        return FromConnection(in_key, in_settings);
    }
    if (auto value = FromConnection(in_key, in_settings))
    {
        return value;
    }
    return Support::TarniSettingReader::Read(in_key);
}

ConfigurationMap DSConnectionUtils::GetPrefixedSettings(tarni_wstring_view in_prefix,
                                                        const ConfigurationMap& in_settings)
{
    const auto hasPrefix = [&](tarni_wstring_view in_key) {
        return in_key.size() >= in_prefix.size() &&
               StringConverter::EqualsIgnoreCase(in_key.substr(0, in_prefix.size()), in_prefix);
    };
    ConfigurationMap driverWide;
    for (const auto& stored : Support::TarniSettingReader::ReadAll())
    {
        if (hasPrefix(stored.name))
        {
            driverWide.SetValue(stored.name, stored.value);
        }
    }
    ConfigurationMap connection;
    for (const auto& [key, value] : in_settings)
    {
        if (hasPrefix(key))
        {
            connection.SetValue(key, value);
        }
    }
    // Start from the source looked up second, then let the first overwrite it.
    const bool driverFirst = IsDriverConfigTakePrecedence(in_settings);
    ConfigurationMap result = driverFirst ? connection : driverWide;
    for (const auto& [key, value] : driverFirst ? driverWide : connection)
    {
        result.SetValue(key, value);
    }
    return result;
}

std::optional<tarni_wstring> DSConnectionUtils::FindRequired(tarni_wstring_view in_key,
                                                             const ConfigurationMap& in_settings, bool in_isRequired)
{
    std::optional<tarni_wstring> value = GetSettingValue(in_key, in_settings);
    if (!value && in_isRequired)
    {
        throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                      u"DSRequiredSettingNotFound", {tarni_wstring(in_key)});
    }
    return value;
}

bool DSConnectionUtils::ReadUTF8StringSetting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                              std::string& out_value, bool in_isRequired, ILogger* in_log,
                                              DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadUTF8StringSetting");
    const std::optional<tarni_wstring> value = FindRequired(in_key, in_settings, in_isRequired);
    if (!value)
    {
        return false;
    }
    out_value = StringConverter::ToUtf8(*value);
    return true;
}

template <typename T>
bool DSConnectionUtils::ReadUnsigned(tarni_wstring_view in_key, const ConfigurationMap& in_settings, T& out_value,
                                     bool in_isRequired, ILogger* in_log, DSWarningList& io_warnings,
                                     const char* in_function, const char* in_typeName)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, in_function);
    const std::optional<tarni_wstring> value = FindRequired(in_key, in_settings, in_isRequired);
    if (!value)
    {
        return false;
    }
    const tarni_wstring_view text = TrimBlanks(*value);
    if (text.empty())
    {
        if (in_isRequired)
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          u"DSRequiredSettingNotFound", {tarni_wstring(in_key)});
        }
        return false;
    }
    T parsed = 0;
    if (!ParseUnsigned(text, parsed))
    {
        Warn(in_log, io_warnings, in_function, in_key, *value, in_typeName);
        return false;
    }
    out_value = parsed;
    return true;
}

bool DSConnectionUtils::ReadUInt16Setting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                          std::uint16_t& out_value, bool in_isRequired, ILogger* in_log,
                                          DSWarningList& io_warnings)
{
    return ReadUnsigned(in_key, in_settings, out_value, in_isRequired, in_log, io_warnings, "ReadUInt16Setting",
                        "an unsigned 16-bit integer");
}

bool DSConnectionUtils::ReadUInt32Setting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                          std::uint32_t& out_value, bool in_isRequired, ILogger* in_log,
                                          DSWarningList& io_warnings)
{
    return ReadUnsigned(in_key, in_settings, out_value, in_isRequired, in_log, io_warnings, "ReadUInt32Setting",
                        "an unsigned 32-bit integer");
}

bool DSConnectionUtils::ReadUInt64Setting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                          std::uint64_t& out_value, bool in_isRequired, ILogger* in_log,
                                          DSWarningList& io_warnings)
{
    return ReadUnsigned(in_key, in_settings, out_value, in_isRequired, in_log, io_warnings, "ReadUInt64Setting",
                        "an unsigned 64-bit integer");
}

bool DSConnectionUtils::ReadUnsignedNativeSetting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                                  std::size_t& out_value, bool in_isRequired, ILogger* in_log,
                                                  DSWarningList& io_warnings)
{
    return ReadUnsigned(in_key, in_settings, out_value, in_isRequired, in_log, io_warnings,
                        "ReadUnsignedNativeSetting", "an unsigned integer");
}

bool DSConnectionUtils::ReadBooleanSetting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                           bool& out_value, bool in_isRequired, ILogger* in_log,
                                           DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadBooleanSetting");
    const std::optional<tarni_wstring> value = FindRequired(in_key, in_settings, in_isRequired);
    if (!value || value->empty())
    {
        return false;
    }
    const std::optional<bool> parsed = ParseBoolean(TrimBlanks(*value));
    if (!parsed)
    {
        // Not a switch: treated as off, as every switch of the driver is.
        io_warnings.Add(Support::DS_ERROR, u"DSInvalidSettingValueWarn",
                        {tarni_wstring(in_key), *value, u"a boolean (1, 0, true or false)"});
        if (in_log != nullptr)
        {
            in_log->LogWarning(NS, CLS, "ReadBooleanSetting", "Connection string contains invalid data type: %s.",
                               StringConverter::ToUtf8(in_key).c_str());
        }
        out_value = false;
        return true;
    }
    out_value = *parsed;
    return true;
}

bool DSConnectionUtils::IsValidUserAgentEntry(std::string_view in_entry)
{
    if (in_entry.empty() || in_entry.size() > MAX_USER_AGENT_ENTRY_LENGTH)
    {
        return false;
    }
    for (const char c : in_entry)
    {
        if (c < 0x20 || c > 0x7E)
        {
            return false;
        }
    }
    std::string_view rest = in_entry;
    if (!TakeToken(rest) || rest.empty() || rest.front() != '/')
    {
        return false;
    }
    rest.remove_prefix(1);
    if (!TakeToken(rest))
    {
        return false;
    }
    if (rest.empty())
    {
        return true;
    }
    // " (comment)": no nested or stray parentheses inside.
    if (rest.size() < 3 || rest.substr(0, 2) != " (" || rest.back() != ')')
    {
        return false;
    }
    const std::string_view comment = rest.substr(2, rest.size() - 3);
    return comment.find_first_of("()") == std::string_view::npos;
}

bool DSConnectionUtils::ReadUserAgentEntrySetting(const ConfigurationMap& in_settings, std::string& out_value,
                                                  ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadUserAgentEntrySetting");
    const std::optional<tarni_wstring> value = GetSettingValue(USER_AGENT_ENTRY, in_settings);
    if (!value || value->empty())
    {
        return false;
    }
    const std::string entry = StringConverter::ToUtf8(*value);
    if (!IsValidUserAgentEntry(entry))
    {
        io_warnings.Add(Support::DS_ERROR, u"DSInvalidUserAgentEntryWarn", {*value});
        if (in_log != nullptr)
        {
            in_log->LogWarning(NS, CLS, "ReadUserAgentEntrySetting",
                               "The UserAgentEntry value \"%s\" is not of the form product/version with an optional "
                               "comment in parentheses; it is ignored.",
                               entry.c_str());
        }
        return false;
    }
    out_value = entry;
    return true;
}
}  // namespace Tarni::DriverSupport
