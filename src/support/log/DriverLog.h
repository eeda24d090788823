#pragma once
// The log of a program run. It reads the driver's logging settings (LogLevel,
// LogType, UseLogPrefix, LogPath, LogFileCount, LogFileSize) when created and
// whenever they are applied again, and passes every line to its one active
// sink: a rotating file, or event tracing when the host registered an event
// publisher and LogType is "ETW". A lock guards a change of settings against
// lines being written.
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "core/TarniString.h"
#include "support/log/DSILogger.h"

namespace Tarni::Support
{
class DriverLog : public ILogger
{
public:
    /// Looks a setting up by name; nothing when it is not set.
    using SettingReader = std::function<std::optional<tarni_wstring>(tarni_wstring_view)>;

    /// in_baseName is the file name of the log, e.g. "TarniSparkODBC_DriverConfig.log".
    /// Without a reader the settings come from TarniSettingReader.
    explicit DriverLog(tarni_wstring in_baseName, SettingReader in_reader = {});
    ~DriverLog() override;

    /// Reads the settings again and replaces the sink.
    void ApplySettings();

    void SetLogLevel(LogLevel in_level) override;
    void SetNamespaceFilter(const std::string& in_filter);

    void LogMessageV(LogLevel in_level, const char* in_namespace, const char* in_class, const char* in_function,
                     const char* in_format, va_list in_args) override;
    void LogError(const char* in_namespace, const char* in_class, const char* in_function,
                  const ErrorException& in_error) override;
    using ILogger::LogError;

    bool IsUsingETW() const;
    /// The full path of the log file (empty while event tracing is in use).
    tarni_wstring GetLogFilePath() const;
    /// The name prefix from UseLogPrefix: empty, or user + "_" + process id + "_".
    tarni_wstring GetLogPrefix() const;

private:
    std::optional<tarni_wstring> ReadSetting(tarni_wstring_view in_name) const;

    tarni_wstring m_baseName;
    tarni_wstring m_prefix;
    std::unique_ptr<DSILogger> m_logger;
    bool m_isUsingETW = false;
    mutable std::recursive_mutex m_lock;

    SettingReader m_reader;
    tarni_wstring m_filePath;
    std::string m_namespaceFilter;
};
}  // namespace Tarni::Support
