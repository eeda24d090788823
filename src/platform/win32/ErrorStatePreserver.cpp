#include "platform/ErrorStatePreserver.h"

#include <windows.h>

#include <cerrno>

namespace Tarni::Platform
{
ErrorStatePreserver::ErrorStatePreserver() : m_errno(errno), m_lastError(GetLastError())
{
}

ErrorStatePreserver::~ErrorStatePreserver()
{
    errno = m_errno;
    SetLastError(static_cast<DWORD>(m_lastError));
}
}  // namespace Tarni::Platform
