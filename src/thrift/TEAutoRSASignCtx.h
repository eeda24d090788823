#pragma once
// Owns a digest-signing context (an EVP_MD_CTX of libcrypto) and frees it on
// every path.
#include <memory>

#include "support/crypto/LibCrypto.h"

namespace Tarni::ThriftExtension
{
class TEAutoRSASignCtx
{
public:
    /// Get() is null when libcrypto could not allocate the context.
    explicit TEAutoRSASignCtx(std::shared_ptr<const Support::LibCrypto> in_crypto)
        : m_crypto(std::move(in_crypto)), m_context(m_crypto->EVP_MD_CTX_new())
    {
    }
    ~TEAutoRSASignCtx()
    {
        if (m_context != nullptr)
        {
            m_crypto->EVP_MD_CTX_free(m_context);
        }
    }
    TEAutoRSASignCtx(const TEAutoRSASignCtx&) = delete;
    TEAutoRSASignCtx& operator=(const TEAutoRSASignCtx&) = delete;

    Support::LibCrypto::EVP_MD_CTX* Get() const { return m_context; }

private:
    std::shared_ptr<const Support::LibCrypto> m_crypto;
    Support::LibCrypto::EVP_MD_CTX* m_context;
};
}  // namespace Tarni::ThriftExtension
