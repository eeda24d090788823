#pragma once
// A logger that writes its lines to a rotating log file. A file that cannot
// be opened or written does not stop the program: the failure is reported
// once on standard error and the lines are dropped.
#include <atomic>

#include "support/log/DSILogger.h"
#include "support/log/FileHandler.h"

namespace Tarni::Support
{
class DSIFileLogger : public DSILogger
{
public:
    DSIFileLogger(const tarni_wstring& in_path, LogLevel in_level, std::uint64_t in_maxFileSize,
                  std::int32_t in_maxFileCount);

    const tarni_wstring& GetPath() const { return m_fileHandler.GetPath(); }

protected:
    void WriteLine(LogLevel in_level, const std::string& in_line) override;

private:
    FileHandler m_fileHandler;
    std::atomic<bool> m_failureReported{false};
};
}  // namespace Tarni::Support
