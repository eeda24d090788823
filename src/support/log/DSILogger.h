#pragma once
// The base of the program's loggers: the level test, the namespace filter and
// the format of a log line,
//   "Nov 14 17:29:03.042 INFO  4711 Tarni::DriverSupport::DSDSNConfiguration::Load: text"
// A derived logger only decides where a finished line goes (WriteLine).
#include <string>

#include "core/ILogger.h"

namespace Tarni::Support
{
class DSIMessageManager;

class DSILogger : public ILogger
{
public:
    /// in_level must lie within LOG_OFF..LOG_TRACE (checked: "Invalid Log Level").
    explicit DSILogger(LogLevel in_level, std::string in_logName = {});

    void SetNamespaceFilter(std::string in_filter) { m_namespaceFilter = std::move(in_filter); }
    const std::string& GetNamespaceFilter() const { return m_namespaceFilter; }
    const std::string& GetLogName() const { return m_logName; }

    /// The funnel of every level-specific call: checks the level and the
    /// namespace filter, builds the line and hands it to WriteLine.
    void LogMessageV(LogLevel in_level, const char* in_namespace, const char* in_class, const char* in_function,
                     const char* in_format, va_list in_args) override;

    /// The text of the error from the process-wide message catalogue, at ERROR.
    void LogError(const char* in_namespace, const char* in_class, const char* in_function,
                  const ErrorException& in_error) override;

    /// The text of the error from the given catalogue (which must exist:
    /// checked as "msgSource"), written at ERROR with the format "%s".
    void LogError(const char* in_namespace, const char* in_class, const char* in_function,
                  const ErrorException& in_error, DSIMessageManager* in_msgSource);

    using ILogger::LogError;

    /// True when the namespace starts with the filter (an empty filter matches all).
    bool MatchesNamespace(const char* in_namespace) const;

    /// Builds one line into io_line (cleared first). in_withMilliseconds adds
    /// ".mmm" to the time stamp.
    static void FormatLine(std::string& io_line, LogLevel in_level, const char* in_namespace, const char* in_class,
                           const char* in_function, const char* in_format, va_list in_args,
                           bool in_withMilliseconds = true);

protected:
    /// Writes one finished line (without a line end).
    virtual void WriteLine(LogLevel in_level, const std::string& in_line) = 0;

    /// Whether the time stamp of a line carries milliseconds.
    virtual bool UsesMilliseconds() const { return true; }

private:
    std::string m_namespaceFilter;
    std::string m_logName;
};
}  // namespace Tarni::Support
