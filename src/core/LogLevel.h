#pragma once
namespace Tarni::Support
{
enum LogLevel : int
{
    LOG_OFF = 0,
    LOG_FATAL = 1,
    LOG_ERROR = 2,
    LOG_WARNING = 3,
    LOG_INFO = 4,
    LOG_DEBUG = 5,
    LOG_TRACE = 6,
};
}  // namespace Tarni::Support
