#pragma once
// Typed readers of connection settings. A value is looked up in the
// connection's own settings (connection string or DSN) first and in the
// driver-wide configuration second; when "DriverConfigTakePrecedence" is on,
// the driver-wide value is looked up first. A key found in neither leaves the
// destination unchanged. A value that does not convert leaves it unchanged
// too, adds a warning to the list and writes a log line: a bad value degrades
// the connection's behaviour, it does not stop the connection.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "driversupport/ConfigurationMap.h"
#include "driversupport/DSWarningList.h"
#include "core/ILogger.h"

namespace Tarni::DriverSupport
{
class DSConnectionUtils
{
public:
    /// The raw value of a key under the lookup order above, or nothing.
    static std::optional<tarni_wstring> GetSettingValue(tarni_wstring_view in_key, const ConfigurationMap& in_settings);

    /// True when the driver-wide value of "DriverConfigTakePrecedence" (or,
    /// without one, the connection's) is a true switch.
    static bool IsDriverConfigTakePrecedence(const ConfigurationMap& in_settings);

    /// Every entry whose key begins with the prefix (compared without regard
    /// to case), from both sources; for a key in both, the source that is
    /// looked up first wins. Keys keep their prefix.
    static ConfigurationMap GetPrefixedSettings(tarni_wstring_view in_prefix, const ConfigurationMap& in_settings);

    /// "1" or "true" (any case) is true, "0" or "false" is false; anything
    /// else is not a switch and returns nothing.
    static std::optional<bool> ParseBoolean(tarni_wstring_view in_text);

    // Each reader returns true when the key was found with a usable value.
    // With in_isRequired, a missing key throws ErrorException
    // "DSRequiredSettingNotFound" naming the key. An empty value of a number
    // or switch counts as not given (a stored default of "" means "unset").

    static bool ReadUTF8StringSetting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                      std::string& out_value, bool in_isRequired, Support::ILogger* in_log,
                                      DSWarningList& io_warnings);

    static bool ReadUInt16Setting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                  std::uint16_t& out_value, bool in_isRequired, Support::ILogger* in_log,
                                  DSWarningList& io_warnings);

    static bool ReadUInt32Setting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                  std::uint32_t& out_value, bool in_isRequired, Support::ILogger* in_log,
                                  DSWarningList& io_warnings);

    static bool ReadUInt64Setting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                  std::uint64_t& out_value, bool in_isRequired, Support::ILogger* in_log,
                                  DSWarningList& io_warnings);

    static bool ReadUnsignedNativeSetting(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                          std::size_t& out_value, bool in_isRequired, Support::ILogger* in_log,
                                          DSWarningList& io_warnings);

    /// A value that is not a switch reads as false, with a warning.
    static bool ReadBooleanSetting(tarni_wstring_view in_key, const ConfigurationMap& in_settings, bool& out_value,
                                   bool in_isRequired, Support::ILogger* in_log, DSWarningList& io_warnings);

    /// "UserAgentEntry": the application's own product token for the HTTP
    /// user agent. A value that is not a valid entry is ignored with the
    /// warning "DSInvalidUserAgentEntryWarn".
    static bool ReadUserAgentEntrySetting(const ConfigurationMap& in_settings, std::string& out_value,
                                          Support::ILogger* in_log, DSWarningList& io_warnings);

    /// A user-agent entry is a product token, "/", a version token, and
    /// optionally a blank and a comment in parentheses, at most 256
    /// characters of printable ASCII. Tokens use the characters HTTP allows in
    /// a token (letters, digits and !#$%&'*+-.^_`|~).
    static bool IsValidUserAgentEntry(std::string_view in_entry);

private:
    template <typename T>
    static bool ReadUnsigned(tarni_wstring_view in_key, const ConfigurationMap& in_settings, T& out_value,
                             bool in_isRequired, Support::ILogger* in_log, DSWarningList& io_warnings,
                             const char* in_function, const char* in_typeName);

    static std::optional<tarni_wstring> FindRequired(tarni_wstring_view in_key, const ConfigurationMap& in_settings,
                                                     bool in_isRequired);
};
}  // namespace Tarni::DriverSupport
