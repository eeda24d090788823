#pragma once
#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
/// The keys of one credential: user name, plain password and its protected
/// form, each stored under prefix + key.
struct DSUidPwdKeySet
{
    tarni_wstring uidKey;
    tarni_wstring pwdKey;
    tarni_wstring encryptedPwdKey;
    tarni_wstring prefix;
    /// Consulted by GetPwd when this set's plain key is absent (may be null).
    const DSUidPwdKeySet* fallback = nullptr;

    tarni_wstring Uid() const { return prefix + uidKey; }
    tarni_wstring Pwd() const { return prefix + pwdKey; }
    tarni_wstring EncryptedPwd() const { return prefix + encryptedPwdKey; }
};
}  // namespace Tarni::DriverSupport
