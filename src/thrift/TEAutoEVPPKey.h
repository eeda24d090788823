#pragma once
// Owns an RSA private key (an EVP_PKEY of libcrypto) and frees it when the
// last holder lets go; keeps libcrypto loaded meanwhile.
#include <memory>
#include <string>

#include "core/ILogger.h"
#include "support/crypto/LibCrypto.h"

namespace Tarni::ThriftExtension
{
class TEAutoEVPPKey
{
public:
    /// Reads an RSA private key from a PEM file (PKCS#1 or PKCS#8; encrypted
    /// with in_passPhrase when the file is). Returns null, with the failure
    /// logged, when the file cannot be read or holds no RSA private key; the
    /// key is never requested interactively. Throws SupportException when
    /// libcrypto cannot be loaded.
    static std::shared_ptr<TEAutoEVPPKey> ReadPrivateKeyFile(const std::string& in_path,
                                                             const std::string& in_passPhrase,
                                                             Support::ILogger* in_log);

    TEAutoEVPPKey(std::shared_ptr<const Support::LibCrypto> in_crypto, Support::LibCrypto::EVP_PKEY* in_key);
    ~TEAutoEVPPKey();
    TEAutoEVPPKey(const TEAutoEVPPKey&) = delete;
    TEAutoEVPPKey& operator=(const TEAutoEVPPKey&) = delete;

    Support::LibCrypto::EVP_PKEY* Get() const { return m_key; }
    const std::shared_ptr<const Support::LibCrypto>& GetCrypto() const { return m_crypto; }

private:
    std::shared_ptr<const Support::LibCrypto> m_crypto;
    Support::LibCrypto::EVP_PKEY* m_key;
};
}  // namespace Tarni::ThriftExtension
