#pragma once
// Owns the file reader (a file BIO of libcrypto) of a private key file and
// frees it on every path.
#include <memory>
#include <string>

#include "support/crypto/LibCrypto.h"

namespace Tarni::ThriftExtension
{
class TEAutoKeyBIO
{
public:
    /// Opens the file for reading. On failure Get() is null and out_error
    /// holds libcrypto's reason.
    TEAutoKeyBIO(std::shared_ptr<const Support::LibCrypto> in_crypto, const std::string& in_path,
                 std::string& out_error);
    ~TEAutoKeyBIO();
    TEAutoKeyBIO(const TEAutoKeyBIO&) = delete;
    TEAutoKeyBIO& operator=(const TEAutoKeyBIO&) = delete;

    Support::LibCrypto::BIO* Get() const { return m_bio; }

private:
    std::shared_ptr<const Support::LibCrypto> m_crypto;
    Support::LibCrypto::BIO* m_bio = nullptr;
};
}  // namespace Tarni::ThriftExtension
