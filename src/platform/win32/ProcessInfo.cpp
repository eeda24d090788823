#include "platform/ProcessInfo.h"

#include <windows.h>

#include "platform/SystemError.h"
#include "platform/TextConversion.h"

namespace Tarni::Platform
{
unsigned long ProcessInfo::CurrentProcessId()
{
    return GetCurrentProcessId();
}

unsigned long ProcessInfo::CurrentThreadId()
{
    return GetCurrentThreadId();
}

bool ProcessInfo::GetCurrentUserName(std::string& out_name, std::string& out_error)
{
    wchar_t name[257] = {};
    DWORD length = 257;
    if (GetUserNameW(name, &length) == FALSE)
    {
        out_error = TextConversion::Utf16ToUtf8(SystemError::Text(static_cast<int>(GetLastError())));
        return false;
    }
    out_name = TextConversion::Utf16ToUtf8(reinterpret_cast<const char16_t*>(name));
    return true;
}

void ProcessInfo::LocalTime(std::time_t in_time, std::tm& out_time)
{
    localtime_s(&out_time, &in_time);
}
}  // namespace Tarni::Platform
