#include "support/crypto/SecretCipher.h"

#include <climits>
#include <memory>

#include "core/ErrorException.h"
#include "support/crypto/LibCrypto.h"

namespace Tarni::Support
{
namespace
{
constexpr const char* HKDF_INFO_PREFIX = "tarni secret protection v1:";

[[noreturn]] void ThrowCipherError(const char16_t* in_key, const tarni_wstring& in_detail)
{
    throw ErrorException(DiagState::GeneralError, DS_ERROR, in_key, {in_detail});
}

/// The encryption key and the MAC key, wiped when it goes out of scope.
struct DerivedKeys
{
    explicit DerivedKeys(std::shared_ptr<const LibCrypto> in_crypto) : crypto(std::move(in_crypto)) {}
    ~DerivedKeys() { crypto->OPENSSL_cleanse(bytes, sizeof(bytes)); }

    const unsigned char* EncryptionKey() const { return bytes; }
    const unsigned char* MacKey() const { return bytes + SecretCipher::KEY_LENGTH; }

    std::shared_ptr<const LibCrypto> crypto;
    unsigned char bytes[2 * SecretCipher::KEY_LENGTH] = {};
};

void CheckInputs(std::string_view in_keyMaterial, std::string_view in_salt)
{
    if (in_keyMaterial.empty())
    {
        throw ErrorException(DiagState::GeneralError, DS_ERROR, u"DSOpenSSLEncryptKeyMissingErr", {u"the key source"});
    }
    if (in_salt.empty())
    {
        throw ErrorException(DiagState::GeneralError, DS_ERROR, u"DSOpenSSLEncryptSaltMissingErr");
    }
    if (in_keyMaterial.size() > INT_MAX || in_salt.size() > INT_MAX)
    {
        ThrowCipherError(u"DSEncryptError", u"the key material or salt is too long");
    }
}

/// HKDF-SHA-256 (extract and expand) of 64 bytes; fails with in_errorKey.
void DeriveKeys(DerivedKeys& io_keys, std::string_view in_keyMaterial, std::string_view in_salt,
                std::string_view in_label, const char16_t* in_errorKey)
{
    const LibCrypto& c = *io_keys.crypto;
    const std::string info = std::string(HKDF_INFO_PREFIX) + std::string(in_label);
    std::unique_ptr<LibCrypto::EVP_PKEY_CTX, void (*)(LibCrypto::EVP_PKEY_CTX*)> context(
        c.EVP_PKEY_CTX_new_id(LibCrypto::EVP_PKEY_HKDF, nullptr), c.EVP_PKEY_CTX_free);
    size_t length = sizeof(io_keys.bytes);
    const bool ok = context != nullptr && c.EVP_PKEY_derive_init(context.get()) > 0 &&
                    c.EVP_PKEY_CTX_set_hkdf_md(context.get(), c.EVP_sha256()) > 0 &&
                    c.EVP_PKEY_CTX_set1_hkdf_salt(context.get(), reinterpret_cast<const unsigned char*>(in_salt.data()),
                                                  static_cast<int>(in_salt.size())) > 0 &&
                    c.EVP_PKEY_CTX_set1_hkdf_key(context.get(),
                                                 reinterpret_cast<const unsigned char*>(in_keyMaterial.data()),
                                                 static_cast<int>(in_keyMaterial.size())) > 0 &&
                    c.EVP_PKEY_CTX_add1_hkdf_info(context.get(), reinterpret_cast<const unsigned char*>(info.data()),
                                                  static_cast<int>(info.size())) > 0 &&
                    c.EVP_PKEY_derive(context.get(), io_keys.bytes, &length) > 0 && length == sizeof(io_keys.bytes);
    if (!ok)
    {
        ThrowCipherError(in_errorKey, c.TakeErrorText());
    }
}

/// HMAC-SHA-256 over label | IV | cipher text.
std::string ComputeTag(const DerivedKeys& in_keys, std::string_view in_label, std::string_view in_ivAndCipher,
                       const char16_t* in_errorKey)
{
    const LibCrypto& c = *in_keys.crypto;
    std::string data;
    data.reserve(in_label.size() + in_ivAndCipher.size());
    data.append(in_label).append(in_ivAndCipher);
    unsigned char tag[SecretCipher::TAG_LENGTH] = {};
    unsigned int length = 0;
    if (c.HMAC(c.EVP_sha256(), in_keys.MacKey(), static_cast<int>(SecretCipher::KEY_LENGTH),
               reinterpret_cast<const unsigned char*>(data.data()), data.size(), tag, &length) == nullptr ||
        length != sizeof(tag))
    {
        ThrowCipherError(in_errorKey, c.TakeErrorText());
    }
    return std::string(reinterpret_cast<const char*>(tag), sizeof(tag));
}

/// AES-256-CTR over the input (encryption and decryption are the same stream).
std::string RunCtr(const DerivedKeys& in_keys, std::string_view in_iv, std::string_view in_input,
                   const char16_t* in_errorKey)
{
    const LibCrypto& c = *in_keys.crypto;
    if (in_input.size() > static_cast<size_t>(INT_MAX) - 32)
    {
        ThrowCipherError(in_errorKey, u"the value is too long");
    }
    std::unique_ptr<LibCrypto::EVP_CIPHER_CTX, void (*)(LibCrypto::EVP_CIPHER_CTX*)> context(c.EVP_CIPHER_CTX_new(),
                                                                                             c.EVP_CIPHER_CTX_free);
    std::string output(in_input.size() + 32, '\0');
    int written = 0;
    int finalWritten = 0;
    auto* out = reinterpret_cast<unsigned char*>(output.data());
    const bool ok =
        context != nullptr &&
        c.EVP_EncryptInit_ex(context.get(), c.EVP_aes_256_ctr(), nullptr, in_keys.EncryptionKey(),
                             reinterpret_cast<const unsigned char*>(in_iv.data())) > 0 &&
        c.EVP_EncryptUpdate(context.get(), out, &written, reinterpret_cast<const unsigned char*>(in_input.data()),
                            static_cast<int>(in_input.size())) > 0 &&
        c.EVP_EncryptFinal_ex(context.get(), out + written, &finalWritten) > 0;
    if (!ok)
    {
        c.OPENSSL_cleanse(output.data(), output.size());
        ThrowCipherError(in_errorKey, c.TakeErrorText());
    }
    output.resize(static_cast<size_t>(written + finalWritten));
    return output;
}
}  // namespace

std::string SecretCipher::RandomBytes(size_t in_count)
{
    const auto crypto = LibCrypto::Get();
    std::string bytes(in_count, '\0');
    if (in_count > INT_MAX ||
        crypto->RAND_bytes(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<int>(in_count)) != 1)
    {
        ThrowCipherError(u"DSEncryptError", crypto->TakeErrorText());
    }
    return bytes;
}

std::string SecretCipher::Seal(std::string_view in_plain, std::string_view in_keyMaterial, std::string_view in_salt,
                               std::string_view in_label)
{
    CheckInputs(in_keyMaterial, in_salt);
    DerivedKeys keys(LibCrypto::Get());
    DeriveKeys(keys, in_keyMaterial, in_salt, in_label, u"DSEncryptError");

    std::string sealed = RandomBytes(IV_LENGTH);
    sealed += RunCtr(keys, std::string_view(sealed).substr(0, IV_LENGTH), in_plain, u"DSEncryptError");
    sealed += ComputeTag(keys, in_label, sealed, u"DSEncryptError");
    return sealed;
}

std::optional<std::string> SecretCipher::Open(std::string_view in_sealed, std::string_view in_keyMaterial,
                                              std::string_view in_salt, std::string_view in_label)
{
    CheckInputs(in_keyMaterial, in_salt);
    if (in_sealed.size() < IV_LENGTH + TAG_LENGTH)
    {
        return std::nullopt;
    }
    DerivedKeys keys(LibCrypto::Get());
    DeriveKeys(keys, in_keyMaterial, in_salt, in_label, u"DSDecryptError");

    const std::string_view ivAndCipher = in_sealed.substr(0, in_sealed.size() - TAG_LENGTH);
    const std::string expected = ComputeTag(keys, in_label, ivAndCipher, u"DSDecryptError");
    // Constant-time comparison: the time taken tells nothing about how much
    // of a forged tag was right.
    if (keys.crypto->CRYPTO_memcmp(expected.data(), in_sealed.data() + ivAndCipher.size(), TAG_LENGTH) != 0)
    {
        return std::nullopt;
    }
    return RunCtr(keys, ivAndCipher.substr(0, IV_LENGTH), ivAndCipher.substr(IV_LENGTH), u"DSDecryptError");
}
}  // namespace Tarni::Support
