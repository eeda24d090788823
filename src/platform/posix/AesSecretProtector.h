#pragma once
#include "platform/SecretProtector.h"

namespace Tarni::Platform
{
/// The Linux protector: AES-256-CTR + HMAC-SHA-256 (the given sealer)
/// with key material from the user's key file or the machine identity.
class AesSecretProtector : public SecretProtector
{
public:
    AesSecretProtector(SecretKeyLocations in_locations, const SecretSealer& in_sealer)
        : m_locations(std::move(in_locations)), m_sealer(in_sealer)
    {
    }

    SecretMethod GetMethod() const override { return SecretMethod::Aes256Ctr; }
    std::string Protect(std::string_view in_plain, SecretScope in_scope, std::string_view in_label) override;
    std::optional<std::string> Unprotect(std::string_view in_protected, SecretScope in_scope,
                                         std::string_view in_label) override;

private:
    /// Key material of the scope; nothing when the user scope has no key file
    /// yet and in_create is false.
    std::optional<std::string> GetKeyMaterial(SecretScope in_scope, bool in_create) const;
    std::optional<std::string> ReadUserKey() const;
    std::string CreateUserKey() const;
    std::string ReadMachineIdentity() const;

    SecretKeyLocations m_locations;
    const SecretSealer& m_sealer;
};
}  // namespace Tarni::Platform
