#include "platform/ProcessInfo.h"

#include <pwd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace Tarni::Platform
{
unsigned long ProcessInfo::CurrentProcessId()
{
    return static_cast<unsigned long>(getpid());
}

unsigned long ProcessInfo::CurrentThreadId()
{
    // The kernel's thread id is cached per thread: one system call per thread.
    thread_local const unsigned long id = static_cast<unsigned long>(syscall(SYS_gettid));
    return id;
}

bool ProcessInfo::GetCurrentUserName(std::string& out_name, std::string& out_error)
{
    long size = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<size_t>(size) : 16384);
    passwd entry = {};
    passwd* found = nullptr;
    int error = 0;
    while ((error = getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
           buffer.size() < (1U << 20))
    {
        buffer.resize(buffer.size() * 2);
    }
    if (found == nullptr || found->pw_name == nullptr)
    {
        char text[256] = {};
        out_error = error != 0 ? strerror_r(error, text, sizeof(text)) : "no entry for the user id";
        return false;
    }
    out_name = found->pw_name;
    return true;
}

void ProcessInfo::LocalTime(std::time_t in_time, std::tm& out_time)
{
    localtime_r(&in_time, &out_time);
}
}  // namespace Tarni::Platform
