#pragma once
// The certificates that the operating system trusts as roots, for TLS code
// whose library does not read the system's store itself.
#include <string>
#include <vector>

namespace Tarni::Platform
{
class SystemTrustStore
{
public:
    /// The DER encodings of the system's trusted root certificates. Empty
    /// where the TLS library finds the store by itself (the system's
    /// OpenSSL configuration on Linux).
    static std::vector<std::string> ReadRootCertificates();
};
}  // namespace Tarni::Platform
