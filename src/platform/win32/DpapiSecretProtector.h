#pragma once
#include "platform/SecretProtector.h"

namespace Tarni::Platform
{
/// The Windows protector: CryptProtectData / CryptUnprotectData, the
/// all-users scope with CRYPTPROTECT_LOCAL_MACHINE.
class DpapiSecretProtector : public SecretProtector
{
public:
    SecretMethod GetMethod() const override { return SecretMethod::DataProtectionApi; }
    std::string Protect(std::string_view in_plain, SecretScope in_scope, std::string_view in_label) override;
    std::optional<std::string> Unprotect(std::string_view in_protected, SecretScope in_scope,
                                         std::string_view in_label) override;
};
}  // namespace Tarni::Platform
