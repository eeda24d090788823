#pragma once
// Key sources of stored secrets under a private temporary folder, so a test
// never reads or creates the real user key file or depends on the real
// machine identity: user "alice" on machine "m1" unless told otherwise.
// Installed for the process while the object lives.
#include <string>

#include "common/TempDirectory.h"
#include "driversupport/DSEncryptionUtils.h"
#include "support/StringConverter.h"

namespace Tarni::Testing
{
class SecretKeySources
{
public:
    SecretKeySources()
    {
        TempDirectory::WriteFile(m_dir / "machine-m1", "0123456789abcdef0123456789abcdef\n");
        TempDirectory::WriteFile(m_dir / "machine-m2", "fedcba9876543210fedcba9876543210\n");
        Use("alice", "m1");
    }
    ~SecretKeySources() { DriverSupport::DSEncryptionUtils::ResetKeyLocations(); }

    static tarni_wstring Wide(const std::filesystem::path& in_path)
    {
        return Support::StringConverter::FromUtf8(in_path.string());
    }
    Platform::SecretKeyLocations Locations(const std::string& in_user, const std::string& in_machine) const
    {
        return {Wide(UserKeyFile(in_user)), Wide(m_dir / ("machine-" + in_machine))};
    }
    /// Plays the user on the machine (Linux; Windows keeps its own keys).
    void Use(const std::string& in_user, const std::string& in_machine)
    {
        DriverSupport::DSEncryptionUtils::SetKeyLocations(Locations(in_user, in_machine));
    }
    std::filesystem::path UserKeyFile(const std::string& in_user) const
    {
        return m_dir / in_user / "config" / "tarni" / "secret.key";
    }
    const std::filesystem::path& Folder() const { return m_dir.Path(); }

private:
    TempDirectory m_dir;
};
}  // namespace Tarni::Testing
