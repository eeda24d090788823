#pragma once
// SecretCipher offered to the platform's secret protector as its sealer.
#include "platform/SecretSealer.h"
#include "support/crypto/SecretCipher.h"

namespace Tarni::Support
{
class SecretCipherSealer : public Platform::SecretSealer
{
public:
    /// The one instance; it lives for the whole process.
    static const SecretCipherSealer& Instance()
    {
        static const SecretCipherSealer s_instance;
        return s_instance;
    }

    size_t GetKeyLength() const override { return SecretCipher::KEY_LENGTH; }
    std::string Seal(std::string_view in_plain, std::string_view in_keyMaterial, std::string_view in_salt,
                     std::string_view in_label) const override
    {
        return SecretCipher::Seal(in_plain, in_keyMaterial, in_salt, in_label);
    }
    std::optional<std::string> Open(std::string_view in_sealed, std::string_view in_keyMaterial,
                                    std::string_view in_salt, std::string_view in_label) const override
    {
        return SecretCipher::Open(in_sealed, in_keyMaterial, in_salt, in_label);
    }
    std::string RandomBytes(size_t in_count) const override { return SecretCipher::RandomBytes(in_count); }
};
}  // namespace Tarni::Support
