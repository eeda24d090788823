#pragma once
#include "core/TarniString.h"

namespace Tarni::Platform
{
/// The system's text for an error code (errno on Linux, GetLastError on
/// Windows); "Unknown error" when the system has none.
class SystemError
{
public:
    static int LastErrorCode();
    static tarni_wstring Text(int in_code);
};
}  // namespace Tarni::Platform
