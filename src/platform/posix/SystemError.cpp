#include "platform/SystemError.h"

#include <cerrno>
#include <cstring>

#include "platform/TextConversion.h"

namespace Tarni::Platform
{
int SystemError::LastErrorCode()
{
    return errno;
}

tarni_wstring SystemError::Text(int in_code)
{
    char buffer[256] = {};
    const char* text = strerror_r(in_code, buffer, sizeof(buffer));
    if (text == nullptr || *text == '\0')
    {
        return u"Unknown error";
    }
    return TextConversion::StrictUtf8ToUtf16(text);
}
}  // namespace Tarni::Platform
