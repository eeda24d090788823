#include "platform/ErrorStatePreserver.h"

#include <cerrno>

namespace Tarni::Platform
{
// POSIX has one error state per thread: errno.
ErrorStatePreserver::ErrorStatePreserver() : m_errno(errno), m_lastError(0)
{
}

ErrorStatePreserver::~ErrorStatePreserver()
{
    errno = m_errno;
}
}  // namespace Tarni::Platform
