#pragma once
// The authenticated cipher that a key-file based protector seals with. The
// support layer's libcrypto cipher implements it and the model hands it to
// SecretProtector::Create, so the platform seam keeps the key sources and
// files while the cryptography stays with the libcrypto loader above it.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Tarni::Platform
{
class SecretSealer
{
public:
    virtual ~SecretSealer() = default;

    /// Length in bytes of a generated key.
    virtual size_t GetKeyLength() const = 0;
    /// Seals the plain bytes under key material, salt and label.
    virtual std::string Seal(std::string_view in_plain, std::string_view in_keyMaterial, std::string_view in_salt,
                             std::string_view in_label) const = 0;
    /// Opens a sealed value; nothing when it is refused (tampered, truncated,
    /// sealed under another key, salt or label).
    virtual std::optional<std::string> Open(std::string_view in_sealed, std::string_view in_keyMaterial,
                                            std::string_view in_salt, std::string_view in_label) const = 0;
    /// Random bytes for a new key.
    virtual std::string RandomBytes(size_t in_count) const = 0;
};
}  // namespace Tarni::Platform
