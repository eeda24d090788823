#include "platform/SecretProtector.h"

#include "platform/win32/DpapiSecretProtector.h"

namespace Tarni::Platform
{
SecretKeyLocations SecretKeyLocations::Default()
{
    // DPAPI keeps its keys with the user's profile and the machine.
    return {};
}

std::unique_ptr<SecretProtector> SecretProtector::Create(const SecretKeyLocations&, const SecretSealer&)
{
    return std::make_unique<DpapiSecretProtector>();
}
}  // namespace Tarni::Platform
