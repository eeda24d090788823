#include "support/log/DriverLog.h"

#include <string>

#include "platform/ProcessEnvironment.h"
#include "platform/ProcessInfo.h"
#include "support/StringConverter.h"
#include "support/TarniSettingReader.h"
#include "support/log/DSIFileLogger.h"
#include "support/log/ETWLogger.h"
#include "support/log/LogUtils.h"
#include "support/messages/DSIMessageManager.h"

namespace Tarni::Support
{
namespace
{
constexpr const char* LOG_NAMESPACE = "Tarni::Support";
constexpr const char* LOG_CLASS = "DriverLog";

bool IsTrue(const tarni_wstring& in_value)
{
    return in_value == u"1" || StringConverter::EqualsIgnoreCase(in_value, u"true");
}
}  // namespace

DriverLog::DriverLog(tarni_wstring in_baseName, SettingReader in_reader)
    : m_baseName(std::move(in_baseName)), m_reader(std::move(in_reader))
{
    if (!m_reader)
    {
        m_reader = [](tarni_wstring_view in_name) { return TarniSettingReader::Read(in_name); };
    }
    ApplySettings();
}

DriverLog::~DriverLog() = default;

std::optional<tarni_wstring> DriverLog::ReadSetting(tarni_wstring_view in_name) const
{
    // A store that cannot be read leaves the log at its defaults; the store's
    // own error reaches the user through the configuration load.
    try
    {
        return m_reader(in_name);
    }
    catch (const std::exception&)
    {
        return std::nullopt;
    }
}

void DriverLog::ApplySettings()
{
    std::lock_guard<std::recursive_mutex> guard(m_lock);

    const LogLevel level = LogUtils::ToLogLevel(ReadSetting(u"LogLevel").value_or(tarni_wstring()));
    m_level = level;
    if (m_logger)
    {
        m_logger->SetLogLevel(level);
    }

    const std::optional<tarni_wstring> logType = ReadSetting(u"LogType");
    if (logType && StringConverter::EqualsIgnoreCase(*logType, u"ETW") && ETWLogger::IsAvailable())
    {
        auto logger = std::make_unique<ETWLogger>(level);
        logger->SetNamespaceFilter(m_namespaceFilter);
        m_logger = std::move(logger);
        m_isUsingETW = true;
        m_filePath.clear();
        return;
    }

    std::string userNameFailure;
    if (const std::optional<tarni_wstring> usePrefix = ReadSetting(u"UseLogPrefix"))
    {
        if (IsTrue(*usePrefix))
        {
            std::string user;
            if (!Platform::ProcessInfo::GetCurrentUserName(user, userNameFailure))
            {
                user.clear();
            }
            m_prefix = StringConverter::FromUtf8(user) + u"_" +
                       StringConverter::FromNumber(
                           static_cast<unsigned long long>(Platform::ProcessInfo::CurrentProcessId())) +
                       u"_";
        }
        else
        {
            m_prefix.clear();
        }
    }

    const tarni_wstring folder = LogUtils::NormalizeLogPath(ReadSetting(u"LogPath").value_or(tarni_wstring()),
                                                            Platform::ProcessEnvironment::PathSeparator());
    m_filePath = folder + m_prefix + m_baseName;
    const int count = LogUtils::ParseLogFileCount(ReadSetting(u"LogFileCount").value_or(tarni_wstring()));
    const unsigned long long size = LogUtils::ParseLogFileSize(ReadSetting(u"LogFileSize").value_or(tarni_wstring()));

    auto logger = std::make_unique<DSIFileLogger>(m_filePath, level, size, count);
    logger->SetNamespaceFilter(m_namespaceFilter);
    m_logger = std::move(logger);
    m_isUsingETW = false;

    if (!userNameFailure.empty())
    {
        LogWarning(LOG_NAMESPACE, LOG_CLASS, "ApplySettings",
                   "Failed to retrieve username (Error: %s); using empty string instead", userNameFailure.c_str());
    }
}

void DriverLog::SetLogLevel(LogLevel in_level)
{
    std::lock_guard<std::recursive_mutex> guard(m_lock);
    m_level = in_level;
    m_logger->SetLogLevel(in_level);
}

void DriverLog::SetNamespaceFilter(const std::string& in_filter)
{
    std::lock_guard<std::recursive_mutex> guard(m_lock);
    m_namespaceFilter = in_filter;
    m_logger->SetNamespaceFilter(in_filter);
}

void DriverLog::LogMessageV(LogLevel in_level, const char* in_namespace, const char* in_class,
                            const char* in_function, const char* in_format, va_list in_args)
{
    std::lock_guard<std::recursive_mutex> guard(m_lock);
    m_logger->LogMessageV(in_level, in_namespace, in_class, in_function, in_format, in_args);
}

void DriverLog::LogError(const char* in_namespace, const char* in_class, const char* in_function,
                         const ErrorException& in_error)
{
    if (!IsEnabled(LOG_ERROR))
    {
        return;
    }
    // The text is looked up before the lock is taken: the catalogue may log too.
    const std::string text = StringConverter::ToUtf8(DSIMessageManager::GetDefault().GetErrorMessage(in_error).text);
    ILogger::LogError(in_namespace, in_class, in_function, "%s", text.c_str());
}

bool DriverLog::IsUsingETW() const
{
    std::lock_guard<std::recursive_mutex> guard(m_lock);
    return m_isUsingETW;
}

tarni_wstring DriverLog::GetLogFilePath() const
{
    std::lock_guard<std::recursive_mutex> guard(m_lock);
    return m_filePath;
}

tarni_wstring DriverLog::GetLogPrefix() const
{
    std::lock_guard<std::recursive_mutex> guard(m_lock);
    return m_prefix;
}
}  // namespace Tarni::Support
