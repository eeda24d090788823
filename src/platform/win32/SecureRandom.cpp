#include "platform/SecureRandom.h"

#include <windows.h>
#include <bcrypt.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

#include "platform/TextConversion.h"
#include "core/SupportException.h"

namespace Tarni::Platform
{
namespace
{
[[noreturn]] void ThrowStatus(const char* in_call, NTSTATUS in_status)
{
    char code[16] = {};
    snprintf(code, sizeof(code), "0x%08lX", static_cast<unsigned long>(in_status));
    throw Support::SupportException(u"SecureRandomErr",
                                    {TextConversion::StrictUtf8ToUtf16(std::string(in_call) + " failed with status " + code)});
}
}  // namespace

void SecureRandom::Fill(void* out_buffer, size_t in_length)
{
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    NTSTATUS status = BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_RNG_ALGORITHM, nullptr, 0);
    if (!BCRYPT_SUCCESS(status))
    {
        ThrowStatus("BCryptOpenAlgorithmProvider", status);
    }
    auto* bytes = static_cast<unsigned char*>(out_buffer);
    size_t done = 0;
    while (done < in_length && BCRYPT_SUCCESS(status))
    {
        // BCryptGenRandom takes a 32-bit length.
        const ULONG chunk = static_cast<ULONG>(std::min<size_t>(in_length - done, std::numeric_limits<ULONG>::max()));
        status = BCryptGenRandom(algorithm, bytes + done, chunk, 0);
        done += chunk;
    }
    BCryptCloseAlgorithmProvider(algorithm, 0);
    if (!BCRYPT_SUCCESS(status))
    {
        ThrowStatus("BCryptGenRandom", status);
    }
}
}  // namespace Tarni::Platform
