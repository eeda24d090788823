#pragma once
// The logging interface every layer writes to. Messages are printf-style
// formats with narrow (UTF-8) arguments; namespace, class and function name
// the place of the record. A record below the current level costs one integer
// comparison (IsEnabled is inline and reads a member).
#include <cstdarg>

#include "support/LogLevel.h"

namespace Tarni::Support
{
class ErrorException;

class ILogger
{
public:
    virtual ~ILogger() = default;

    bool IsEnabled(LogLevel in_level) const { return in_level <= m_level; }
    LogLevel GetLogLevel() const { return m_level; }
    virtual void SetLogLevel(LogLevel in_level) { m_level = in_level; }

    /// Writes one record; callers go through the level helpers below.
    virtual void LogMessageV(LogLevel in_level, const char* in_namespace, const char* in_class,
                             const char* in_function, const char* in_format, va_list in_args) = 0;

    /// Writes an ErrorException at ERROR level, its text resolved through the
    /// message catalogue.
    virtual void LogError(const char* in_namespace, const char* in_class, const char* in_function,
                          const ErrorException& in_error) = 0;

#if defined(__GNUC__)
#define TARNI_PRINTF_FORMAT __attribute__((format(printf, 5, 6)))
#else
#define TARNI_PRINTF_FORMAT
#endif
    void LogFatal(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        if (IsEnabled(LOG_FATAL)) { va_list a; va_start(a, in_fmt); LogMessageV(LOG_FATAL, in_ns, in_cls, in_fn, in_fmt, a); va_end(a); }
    }
    void LogError(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        if (IsEnabled(LOG_ERROR)) { va_list a; va_start(a, in_fmt); LogMessageV(LOG_ERROR, in_ns, in_cls, in_fn, in_fmt, a); va_end(a); }
    }
    void LogWarning(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        if (IsEnabled(LOG_WARNING)) { va_list a; va_start(a, in_fmt); LogMessageV(LOG_WARNING, in_ns, in_cls, in_fn, in_fmt, a); va_end(a); }
    }
    void LogInfo(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        if (IsEnabled(LOG_INFO)) { va_list a; va_start(a, in_fmt); LogMessageV(LOG_INFO, in_ns, in_cls, in_fn, in_fmt, a); va_end(a); }
    }
    void LogDebug(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        if (IsEnabled(LOG_DEBUG)) { va_list a; va_start(a, in_fmt); LogMessageV(LOG_DEBUG, in_ns, in_cls, in_fn, in_fmt, a); va_end(a); }
    }
    void LogTrace(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        if (IsEnabled(LOG_TRACE)) { va_list a; va_start(a, in_fmt); LogMessageV(LOG_TRACE, in_ns, in_cls, in_fn, in_fmt, a); va_end(a); }
    }
#undef TARNI_PRINTF_FORMAT

    /// The entry record of a public operation, at TRACE level.
    void LogFunctionEntrance(const char* in_ns, const char* in_cls, const char* in_fn)
    {
        if (IsEnabled(LOG_TRACE)) { LogTrace(in_ns, in_cls, in_fn, "%s", "+++++ enter +++++"); }
    }

protected:
    LogLevel m_level = LOG_OFF;
};

}  // namespace Tarni::Support

/// Entry record of a public operation; ns and cls are the caller's constants.
#define TARNI_LOG_ENTRY(logger, ns, cls, fn)                        \
    do                                                              \
    {                                                               \
        if ((logger) != nullptr) (logger)->LogFunctionEntrance(ns, cls, fn); \
    } while (0)
