#pragma once
// Authenticated symmetric protection of one secret over libcrypto:
// AES-256-CTR with a fresh random IV per value, and an HMAC-SHA-256 tag over
// the label, the IV and the cipher text. Both keys come from HKDF-SHA-256 over
// the key material and the salt, with the label in the HKDF info, so a value
// sealed under one label (method and scope) never opens under another.
//
// Sealed layout: IV (16 bytes) | cipher text (as long as the plain text) |
// tag (32 bytes).
#include <optional>
#include <string>
#include <string_view>

namespace Tarni::Support
{
class SecretCipher
{
public:
    static constexpr size_t IV_LENGTH = 16;
    static constexpr size_t TAG_LENGTH = 32;
    static constexpr size_t KEY_LENGTH = 32;

    /// Seals the plain bytes. Throws ErrorException "DSOpenSSLEncryptKeyMissingErr"
    /// for empty key material, "DSOpenSSLEncryptSaltMissingErr" for an empty
    /// salt, "DSEncryptError" (library's error text) when libcrypto fails, and
    /// the loader's errors when libcrypto cannot be used.
    static std::string Seal(std::string_view in_plain, std::string_view in_keyMaterial, std::string_view in_salt,
                            std::string_view in_label);

    /// Opens a sealed value. Returns nothing when the value is too short or
    /// its tag does not match (tampered, truncated, or sealed under another
    /// key, salt or label); nothing is decrypted then. Throws as Seal does
    /// for missing key or salt and library failures ("DSDecryptError").
    static std::optional<std::string> Open(std::string_view in_sealed, std::string_view in_keyMaterial,
                                           std::string_view in_salt, std::string_view in_label);

    /// Random bytes from libcrypto's generator.
    static std::string RandomBytes(size_t in_count);
};
}  // namespace Tarni::Support
