#include "platform/SecureRandom.h"

#include <sys/random.h>

#include <cerrno>

#include "platform/SystemError.h"
#include "core/SupportException.h"

namespace Tarni::Platform
{
void SecureRandom::Fill(void* out_buffer, size_t in_length)
{
    auto* bytes = static_cast<unsigned char*>(out_buffer);
    size_t done = 0;
    while (done < in_length)
    {
        // getrandom may return fewer bytes than asked for large requests or
        // when a signal arrives; it never blocks once the pool is initialised.
        const ssize_t got = getrandom(bytes + done, in_length - done, 0);
        if (got < 0)
        {
            if (errno == EINTR)
            {
                continue;
            }
            throw Support::SupportException(u"SecureRandomErr", {SystemError::Text(errno)});
        }
        done += static_cast<size_t>(got);
    }
}
}  // namespace Tarni::Platform
