#include "support/log/DSIFileLogger.h"

#include <cstdio>

#include "support/StringConverter.h"

namespace Tarni::Support
{
DSIFileLogger::DSIFileLogger(const tarni_wstring& in_path, LogLevel in_level, std::uint64_t in_maxFileSize,
                             std::int32_t in_maxFileCount)
    : DSILogger(in_level, StringConverter::ToUtf8(in_path)), m_fileHandler(in_path, in_maxFileSize, in_maxFileCount)
{
}

void DSIFileLogger::WriteLine(LogLevel, const std::string& in_line)
{
    if (!m_fileHandler.WriteLine(in_line, false) && !m_failureReported.exchange(true))
    {
        std::fprintf(stderr, "Cannot write the log file \"%s\": %s. Logging to this file is off.\n",
                     GetLogName().c_str(), m_fileHandler.GetLastErrorText().c_str());
        std::fflush(stderr);
    }
}
}  // namespace Tarni::Support
