#include "platform/SystemError.h"

#include <windows.h>

namespace Tarni::Platform
{
int SystemError::LastErrorCode()
{
    return static_cast<int>(GetLastError());
}

tarni_wstring SystemError::Text(int in_code)
{
    wchar_t* buffer = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, static_cast<DWORD>(in_code), 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    if (length == 0 || buffer == nullptr)
    {
        return u"Unknown error";
    }
    tarni_wstring text(reinterpret_cast<const char16_t*>(buffer), length);
    LocalFree(buffer);
    while (!text.empty() && (text.back() == u'\n' || text.back() == u'\r' || text.back() == u' '))
    {
        text.pop_back();
    }
    return text;
}
}  // namespace Tarni::Platform
