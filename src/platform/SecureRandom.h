#pragma once
#include <cstddef>

namespace Tarni::Platform
{
/// Random bytes from the operating system's cryptographic source
/// (getrandom on Linux, BCryptGenRandom on Windows). Used where a value must
/// not be guessable, such as session tags.
class SecureRandom
{
public:
    /// Fills the buffer completely. Throws SupportException "SecureRandomErr"
    /// with the system's text when the source fails.
    static void Fill(void* out_buffer, size_t in_length);
};
}  // namespace Tarni::Platform
