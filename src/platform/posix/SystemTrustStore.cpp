#include "platform/SystemTrustStore.h"

namespace Tarni::Platform
{
std::vector<std::string> SystemTrustStore::ReadRootCertificates()
{
    // OpenSSL's default verify paths are the distribution's store.
    return {};
}
}  // namespace Tarni::Platform
