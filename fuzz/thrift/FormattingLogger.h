#pragma once
// A logger at TRACE that formats every record (so that every format string
// and its arguments are exercised) and throws the text away.
#include <cstdio>

#include "core/ILogger.h"

namespace Tarni::Fuzzing
{
class FormattingLogger final : public Support::ILogger
{
public:
    FormattingLogger() { m_level = Support::LOG_TRACE; }
    void LogMessageV(Support::LogLevel, const char*, const char*, const char*, const char* in_format,
                     va_list in_args) override
    {
        char buffer[1024];
        std::vsnprintf(buffer, sizeof(buffer), in_format, in_args);
    }
    void LogError(const char*, const char*, const char*, const Support::ErrorException&) override {}
    using ILogger::LogError;
};
}  // namespace Tarni::Fuzzing
