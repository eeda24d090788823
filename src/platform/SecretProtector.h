#pragma once
// Platform seam: protection of one stored secret in one of two scopes.
//   Windows: the data protection API (CryptProtectData); the all-users scope
//            is CRYPTPROTECT_LOCAL_MACHINE.
//   Linux:   AES-256-CTR with an HMAC-SHA-256 tag through libcrypto (the
//            SecretSealer handed in by the caller); the key material of the current-user
//            scope is a 32-byte random key file of mode 0600, that of the
//            all-users scope the machine identity.
// The seam works on bytes; the text form of a protected value (leading text
// naming method and scope, upper-case hexadecimal body) is
// DriverSupport::DSEncryptionUtils's. See docs/secrets.md.
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/TarniString.h"
#include "platform/SecretSealer.h"

namespace Tarni::Platform
{
enum class SecretScope
{
    CurrentUser,  ///< "Current User Only"
    AllUsers,     ///< "All Users of this Machine"
};

enum class SecretMethod
{
    DataProtectionApi = 1,  ///< Windows DPAPI
    Aes256Ctr = 2,          ///< AES-256-CTR + HMAC-SHA-256 over libcrypto
};

/// Where the Linux method finds its key material. The product uses
/// Default(); tests hand in other files to play another user or machine.
/// The Windows method has no key files and ignores these.
struct SecretKeyLocations
{
    /// The current user's key file; created (mode 0600, folder 0700) on the
    /// first protection in that scope and never replaced.
    tarni_wstring userKeyFile;
    /// The machine identity (a text file, such as /etc/machine-id).
    tarni_wstring machineIdentityFile;

    /// $XDG_CONFIG_HOME/tarni/secret.key (an absolute XDG_CONFIG_HOME only),
    /// else ~/.config/tarni/secret.key; /etc/machine-id, else
    /// /var/lib/dbus/machine-id when only that one exists.
    static SecretKeyLocations Default();
};

class SecretProtector
{
public:
    virtual ~SecretProtector() = default;

    /// The platform's protector over the given key sources. A protector that
    /// seals with key material of its own (Linux) uses in_sealer, which must
    /// outlive it; DPAPI does its own cryptography and ignores it.
    static std::unique_ptr<SecretProtector> Create(const SecretKeyLocations& in_locations,
                                                   const SecretSealer& in_sealer);

    virtual SecretMethod GetMethod() const = 0;

    /// Protects the bytes in the scope. in_label is bound to the result where
    /// the method can (the AES method authenticates it), so a value relabelled
    /// with another scope is refused. Throws ErrorException "DSEncryptError"
    /// (system's reason), "DSOpenSSLEncryptKeyMissingErr" (key source) or
    /// "DSSecretKeyFileErr" (file, reason), or the libcrypto loader's errors.
    virtual std::string Protect(std::string_view in_plain, SecretScope in_scope, std::string_view in_label) = 0;

    /// Recovers bytes protected in the scope under the label. Returns nothing
    /// when the value is refused (tampered, truncated, protected by another
    /// user, machine or key). Throws for a failing system or key source as
    /// Protect does (with "DSDecryptError"); never creates a key file.
    virtual std::optional<std::string> Unprotect(std::string_view in_protected, SecretScope in_scope,
                                                 std::string_view in_label) = 0;
};
}  // namespace Tarni::Platform
