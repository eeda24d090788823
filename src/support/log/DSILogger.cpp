#include "support/log/DSILogger.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "platform/ProcessInfo.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"
#include "support/log/LogUtils.h"
#include "support/messages/DSIMessageManager.h"
#include "support/trace/TarniAssert.h"

namespace Tarni::Support
{
namespace
{
// The time stamp of the current second, formatted once per second and thread.
struct SecondStamp
{
    std::time_t second = -1;
    bool withMilliseconds = false;
    char text[32] = {};
    size_t length = 0;
};

void AppendTimeStamp(std::string& io_line, bool in_withMilliseconds)
{
    thread_local SecondStamp stamp;
    const auto now = std::chrono::system_clock::now();
    const std::time_t second = std::chrono::system_clock::to_time_t(now);
    if (second != stamp.second || in_withMilliseconds != stamp.withMilliseconds)
    {
        std::tm local = {};
        Platform::ProcessInfo::LocalTime(second, local);
        stamp.length = std::strftime(stamp.text, sizeof(stamp.text),
                                     in_withMilliseconds ? "%b %d %H:%M:%S.000" : "%b %d %H:%M:%S", &local);
        stamp.second = second;
        stamp.withMilliseconds = in_withMilliseconds;
    }
    const size_t start = io_line.size();
    io_line.append(stamp.text, stamp.length);
    if (in_withMilliseconds && stamp.length >= 3)
    {
        // Overwrite the three zeros with the milliseconds of the current time.
        const auto millis = static_cast<int>(
            std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000);
        char* digits = io_line.data() + start + stamp.length - 3;
        digits[0] = static_cast<char>('0' + millis / 100);
        digits[1] = static_cast<char>('0' + millis / 10 % 10);
        digits[2] = static_cast<char>('0' + millis % 10);
    }
}

void AppendFormatted(std::string& io_line, const char* in_format, va_list in_args)
{
    const size_t start = io_line.size();
    size_t room = io_line.capacity() - start;
    if (room < 256)
    {
        room = 256;
    }
    io_line.resize(start + room);
    va_list copy;
    va_copy(copy, in_args);
    int length = std::vsnprintf(io_line.data() + start, room + 1, in_format, copy);
    va_end(copy);
    if (length < 0)
    {
        length = 0;
    }
    else if (static_cast<size_t>(length) > room)
    {
        io_line.resize(start + static_cast<size_t>(length));
        va_copy(copy, in_args);
        std::vsnprintf(io_line.data() + start, static_cast<size_t>(length) + 1, in_format, copy);
        va_end(copy);
    }
    io_line.resize(start + static_cast<size_t>(length));
}

std::string& ThreadLine()
{
    thread_local std::string line;
    return line;
}
}  // namespace

DSILogger::DSILogger(LogLevel in_level, std::string in_logName) : m_logName(std::move(in_logName))
{
    TARNI_ASSERT_MSG(in_level >= LogUtils::LOG_MIN && in_level <= LogUtils::LOG_MAX, "Invalid Log Level");
    m_level = in_level;
}

bool DSILogger::MatchesNamespace(const char* in_namespace) const
{
    return m_namespaceFilter.empty() ||
           (in_namespace != nullptr &&
            std::strncmp(in_namespace, m_namespaceFilter.c_str(), m_namespaceFilter.size()) == 0);
}

void DSILogger::FormatLine(std::string& io_line, LogLevel in_level, const char* in_namespace, const char* in_class,
                           const char* in_function, const char* in_format, va_list in_args,
                           bool in_withMilliseconds)
{
    io_line.clear();
    AppendTimeStamp(io_line, in_withMilliseconds);
    io_line += ' ';
    io_line += LogUtils::GetLevelText(in_level);
    io_line += ' ';
    char thread[24];
    const int length = std::snprintf(thread, sizeof(thread), "%lu", Platform::ProcessInfo::CurrentThreadId());
    io_line.append(thread, static_cast<size_t>(length));
    io_line += ' ';
    io_line += in_namespace != nullptr ? in_namespace : "";
    io_line += "::";
    io_line += in_class != nullptr ? in_class : "";
    io_line += "::";
    io_line += in_function != nullptr ? in_function : "";
    io_line += ": ";
    AppendFormatted(io_line, in_format != nullptr ? in_format : "", in_args);
}

void DSILogger::LogMessageV(LogLevel in_level, const char* in_namespace, const char* in_class,
                            const char* in_function, const char* in_format, va_list in_args)
{
    if (in_level <= LOG_OFF || !IsEnabled(in_level) || !MatchesNamespace(in_namespace))
    {
        return;
    }
    std::string& line = ThreadLine();
    FormatLine(line, in_level, in_namespace, in_class, in_function, in_format, in_args, UsesMilliseconds());
    WriteLine(in_level, line);
}

void DSILogger::LogError(const char* in_namespace, const char* in_class, const char* in_function,
                         const ErrorException& in_error)
{
    LogError(in_namespace, in_class, in_function, in_error, &DSIMessageManager::GetDefault());
}

void DSILogger::LogError(const char* in_namespace, const char* in_class, const char* in_function,
                         const ErrorException& in_error, DSIMessageManager* in_msgSource)
{
    TARNI_ASSERT_MSG(in_msgSource != nullptr, "msgSource");
    if (!IsEnabled(LOG_ERROR) || !MatchesNamespace(in_namespace))
    {
        return;
    }
    const std::string text = StringConverter::ToUtf8(in_msgSource->GetErrorMessage(in_error).text);
    ILogger::LogError(in_namespace, in_class, in_function, "%s", text.c_str());
}
}  // namespace Tarni::Support
