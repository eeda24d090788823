#include "thrift/TEAutoEVPPKey.h"

#include <cstring>

#include "support/StringConverter.h"
#include "thrift/TEAutoKeyBIO.h"

namespace Tarni::ThriftExtension
{
using Support::LibCrypto;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEAutoEVPPKey";

/// Hands libcrypto the configured pass phrase instead of letting it prompt on
/// the terminal; without one, an encrypted key simply fails to decrypt.
int PassPhraseCallback(char* out_buffer, int in_size, int, void* in_passPhrase)
{
    const auto* passPhrase = static_cast<const std::string*>(in_passPhrase);
    if (passPhrase == nullptr || passPhrase->empty() || in_size <= 0 ||
        passPhrase->size() > static_cast<size_t>(in_size))
    {
        return 0;
    }
    std::memcpy(out_buffer, passPhrase->data(), passPhrase->size());
    return static_cast<int>(passPhrase->size());
}
}  // namespace

TEAutoEVPPKey::TEAutoEVPPKey(std::shared_ptr<const LibCrypto> in_crypto, LibCrypto::EVP_PKEY* in_key)
    : m_crypto(std::move(in_crypto)), m_key(in_key)
{
}

TEAutoEVPPKey::~TEAutoEVPPKey()
{
    if (m_key != nullptr)
    {
        m_crypto->EVP_PKEY_free(m_key);
    }
}

std::shared_ptr<TEAutoEVPPKey> TEAutoEVPPKey::ReadPrivateKeyFile(const std::string& in_path,
                                                                 const std::string& in_passPhrase,
                                                                 Support::ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadPrivateKeyFile");
    std::shared_ptr<const LibCrypto> crypto = LibCrypto::Get();
    std::string error;
    const TEAutoKeyBIO file(crypto, in_path, error);
    if (file.Get() == nullptr)
    {
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "ReadPrivateKeyFile", "Failed to BIO_read_filename for %s: %s", in_path.c_str(),
                             error.c_str());
        }
        return nullptr;
    }
    std::string passPhrase = in_passPhrase;
    LibCrypto::EVP_PKEY* key = crypto->PEM_read_bio_PrivateKey(file.Get(), nullptr, PassPhraseCallback, &passPhrase);
    crypto->OPENSSL_cleanse(passPhrase.data(), passPhrase.size());
    std::string reason;
    if (key == nullptr)
    {
        reason = Support::StringConverter::ToUtf8(crypto->TakeErrorText());
    }
    else if (crypto->EVP_PKEY_get_base_id(key) != LibCrypto::EVP_PKEY_RSA)
    {
        crypto->EVP_PKEY_free(key);
        key = nullptr;
        reason = "the key in " + in_path + " is not an RSA key";
    }
    if (key == nullptr)
    {
        if (in_log != nullptr)
        {
            const std::string text = "Failed to PEM_read_bio_RSAPrivateKey: " + reason;
            in_log->LogError(NS, CLS, "ReadPrivateKeyFile", "%s", text.c_str());
        }
        return nullptr;
    }
    return std::make_shared<TEAutoEVPPKey>(std::move(crypto), key);
}
}  // namespace Tarni::ThriftExtension
