#pragma once
// Identity of the running process and thread, the user it runs as, and the
// local time, for log and trace lines.
#include <ctime>
#include <string>

namespace Tarni::Platform
{
class ProcessInfo
{
public:
    static unsigned long CurrentProcessId();
    /// The system's id of the calling thread (a small integer, as the system shows it).
    static unsigned long CurrentThreadId();

    /// The name of the user the process runs as (UTF-8). On failure returns
    /// false and puts the system's message into out_error.
    static bool GetCurrentUserName(std::string& out_name, std::string& out_error);

    /// Thread-safe conversion of a time to local broken-down time.
    static void LocalTime(std::time_t in_time, std::tm& out_time);
};
}  // namespace Tarni::Platform
