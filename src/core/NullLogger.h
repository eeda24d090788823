#pragma once
#include "core/ILogger.h"

namespace Tarni::Support
{
/// A logger that writes nothing (level LOG_OFF, so every call stops at the
/// level comparison). Used where no log is wanted, e.g. the command-line tool.
class NullLogger final : public ILogger
{
public:
    void SetLogLevel(LogLevel) override {}
    void LogMessageV(LogLevel, const char*, const char*, const char*, const char*, va_list) override {}
    void LogError(const char*, const char*, const char*, const ErrorException&) override {}
    using ILogger::LogError;
};
}  // namespace Tarni::Support
