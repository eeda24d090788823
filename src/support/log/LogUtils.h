#pragma once
// Conversions of the driver's logging settings: the level names, the level
// text of a log line, the log file size and count values and the log folder.
#include <string_view>

#include "core/LogLevel.h"
#include "core/TarniString.h"

namespace Tarni::Support
{
class LogUtils
{
public:
    static constexpr LogLevel LOG_MIN = LOG_OFF;
    static constexpr LogLevel LOG_MAX = LOG_TRACE;
    /// 20 MiB: the size limit of an empty, unreadable or negative LogFileSize.
    static constexpr unsigned long long DEFAULT_LOG_FILE_SIZE = 20971520ULL;
    /// The file count of an empty, unreadable or zero LogFileCount.
    static constexpr int DEFAULT_LOG_FILE_COUNT = 50;

    /// A LogLevel setting as a level: "log_debug", "DEBUG", "debug" and "5"
    /// give LOG_DEBUG; other numbers are clamped to 0..6; anything else is 0.
    static LogLevel ToLogLevel(std::string_view in_text);
    static LogLevel ToLogLevel(tarni_wstring_view in_text);

    /// The five-character text of a level in a log line ("UNKWN" for others).
    static const char* GetLevelText(int in_level);

    /// A LogFileSize value in bytes: "10 MB", "512k", "1.5M", "4096".
    static unsigned long long ParseLogFileSize(std::string_view in_text);
    static unsigned long long ParseLogFileSize(tarni_wstring_view in_text);

    /// A LogFileCount value: an unsigned number; 0 and anything else give 50.
    static int ParseLogFileCount(std::string_view in_text);
    static int ParseLogFileCount(tarni_wstring_view in_text);

    /// A LogPath value as a folder prefix ending in in_separator: empty is
    /// "." + separator; a trailing "/" or "\" becomes the separator.
    static tarni_wstring NormalizeLogPath(tarni_wstring_view in_path, char16_t in_separator);
};
}  // namespace Tarni::Support
