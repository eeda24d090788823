#pragma once
// Protection of stored secrets in their text form (docs/secrets.md):
//
//     <leading text><upper-case hexadecimal body>
//
// The leading text names the method and the scope, so recovery knows both:
//   "DPAPI_USER:"      Windows data protection, current user
//   "DPAPI_MACHINE:"   Windows data protection, all users of the machine
//   "AES256_USER:"     AES-256-CTR + HMAC-SHA-256, current user (Linux)
//   "AES256_MACHINE:"  AES-256-CTR + HMAC-SHA-256, all users (Linux)
// The body is the platform's protected bytes (Platform::SecretProtector) of
// the secret's UTF-8 bytes, two digits per byte.
#include <optional>

#include "platform/SecretProtector.h"
#include "core/TarniString.h"

namespace Tarni::Support
{
class ILogger;
}

namespace Tarni::DriverSupport
{
/// A secret recovered from its protected text, with the scope it was
/// protected in.
struct DSRecoveredSecret
{
    tarni_wstring value;
    Platform::SecretScope scope = Platform::SecretScope::CurrentUser;
};

class DSEncryptionUtils
{
public:
    /// Protects one secret in the current user's scope, or the machine's when
    /// in_allUsers is set. Empty text gives empty text. Throws ErrorException
    /// "DSEncryptError" (reason, in_keyName), "DSOpenSSLEncryptKeyMissingErr",
    /// "DSSecretKeyFileErr" or the libcrypto loader's errors; the secret
    /// itself appears in no error and no log record.
    static tarni_wstring Encrypt(tarni_wstring_view in_value, bool in_allUsers, tarni_wstring_view in_keyName,
                                 Support::ILogger* in_log = nullptr);

    /// The recovery path: the secret and its scope. Empty text gives an empty
    /// secret (current-user scope). A value that is tampered, truncated, of an
    /// unknown or foreign method, or protected by another user or machine
    /// throws ErrorException "DSDecryptError" (reason, in_keyName); nothing
    /// is written anywhere either way.
    static DSRecoveredSecret Decrypt(tarni_wstring_view in_protected, tarni_wstring_view in_keyName,
                                     Support::ILogger* in_log = nullptr);

    /// True when the text begins with one of the leading texts above.
    static bool HasProtectedForm(tarni_wstring_view in_text);

    /// The leading text of a method and scope.
    static tarni_wstring GetLeadingText(Platform::SecretMethod in_method, Platform::SecretScope in_scope);

    /// Protects a zero-terminated text with the Windows data protection API,
    /// the terminating zero included (UTF-16 bytes); the result is the bare
    /// hexadecimal body. Elsewhere it throws "DSEncryptError" because the API
    /// does not exist. in_value must not be null.
    static tarni_wstring DPAPIEncrypt(const char16_t* in_value, bool in_allUsers);

    /// The key sources of the process-wide protector; the product never calls
    /// this (it uses Platform::SecretKeyLocations::Default()). Tests use it
    /// to play another user or machine.
    static void SetKeyLocations(const Platform::SecretKeyLocations& in_locations);
    static void ResetKeyLocations();
};
}  // namespace Tarni::DriverSupport
