#pragma once
// The configuration file of import and export ("DSN Definition", *.sdc): one
// key=value line per setting in the map's key order, UTF-8 without a
// byte-order mark, lines ended by a line feed; no header, section or comment.
// The logging settings belong to the machine and no secret ever leaves it,
// so an export carries neither. An import replaces the configuration: keys
// the file does not name return to their defaults, except the logging
// settings, which stay as they are.
#include <cstddef>
#include <string>
#include <string_view>

#include "driversupport/ConfigurationMap.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;

class DSConfigurationFile
{
public:
    /// Larger files are refused: a configuration is a few kilobytes.
    static constexpr std::size_t MAX_FILE_BYTES = 1024 * 1024;
    /// The longest setting name a store holds (the registry's value-name limit).
    static constexpr std::size_t MAX_KEY_CHARS = 16383;

    /// A copy of the configuration's map without the logging settings
    /// ("LogLevel", "LogPath", "LogNamespace", "LogFileCount", "LogFileSize"),
    /// without the plain and protected keys of every credential, the OAuth
    /// refresh token, the keys that are never stored, and any value held in
    /// protected form.
    static ConfigurationMap GetExportMap(const DSDSNConfiguration& in_configuration);

    /// The file's bytes for the map. Throws ErrorException
    /// "DSConfigFileEntryErr" for an entry that a line cannot carry.
    static std::string Format(const ConfigurationMap& in_map);

    /// Reads the file's bytes: an optional byte-order mark, LF or CRLF line
    /// ends; a line without "=" is skipped, otherwise the text before the
    /// first "=" is the key and the rest the value; a later line of the same
    /// key wins. Throws ErrorException naming in_source (and the line) for a
    /// file over MAX_FILE_BYTES, a NUL byte, invalid UTF-8, a carriage return
    /// inside a line or a key no store can hold.
    static ConfigurationMap Parse(std::string_view in_bytes, tarni_wstring_view in_source);

    /// Writes the export of the configuration to the file, replacing it as a
    /// whole: on any failure the file under that name is as it was.
    static void Export(const DSDSNConfiguration& in_configuration, const tarni_wstring& in_path);

    /// Reads and parses the file (a folder, a missing or unreadable file is
    /// an error naming it).
    static ConfigurationMap Read(const tarni_wstring& in_path);

    /// Loads the pairs into the configuration (DSDSNConfiguration::Load) and
    /// keeps its logging settings where the pairs do not name them. Nothing
    /// reaches the store until the configuration is saved.
    static void Import(DSDSNConfiguration& io_configuration, const ConfigurationMap& in_values);
};
}  // namespace Tarni::DriverSupport
