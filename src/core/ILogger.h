#pragma once
// The logging interface every layer writes to. Messages are printf-style
// formats with narrow (UTF-8) arguments; namespace, class and function name
// the place of the record. A record below the current level costs one integer
// comparison (IsEnabled is inline and reads a member).
#include <cstdarg>

#include "core/LogLevel.h"

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
// An exception from formatting or writing reaches the caller unchanged, after
// the argument list has been released.
#define TARNI_LOG_AT_LEVEL(level)                                         \
    if (IsEnabled(level))                                                 \
    {                                                                     \
        va_list a;                                                        \
        va_start(a, in_fmt);                                              \
        try                                                               \
        {                                                                 \
            LogMessageV(level, in_ns, in_cls, in_fn, in_fmt, a);          \
        }                                                                 \
        catch (...)                                                       \
        {                                                                 \
            va_end(a);                                                    \
            throw;                                                        \
        }                                                                 \
        va_end(a);                                                        \
    }
    void LogFatal(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        TARNI_LOG_AT_LEVEL(LOG_FATAL);
    }
    void LogError(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        TARNI_LOG_AT_LEVEL(LOG_ERROR);
    }
    void LogWarning(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        TARNI_LOG_AT_LEVEL(LOG_WARNING);
    }
    void LogInfo(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        TARNI_LOG_AT_LEVEL(LOG_INFO);
    }
    void LogDebug(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        TARNI_LOG_AT_LEVEL(LOG_DEBUG);
    }
    void LogTrace(const char* in_ns, const char* in_cls, const char* in_fn, const char* in_fmt, ...) TARNI_PRINTF_FORMAT
    {
        TARNI_LOG_AT_LEVEL(LOG_TRACE);
    }
#undef TARNI_PRINTF_FORMAT
#undef TARNI_LOG_AT_LEVEL

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
