#pragma once
// Test helpers for stored secrets: a private temporary folder with key
// sources of its own, so a test never reads or creates the real user key
// file or depends on the real machine identity.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "driversupport/DSEncryptionUtils.h"
#include "support/ErrorException.h"
#include "support/StringConverter.h"

namespace SecretTest
{
inline std::filesystem::path MakeTemporaryFolder()
{
    std::random_device random;
    const auto folder = std::filesystem::temp_directory_path() /
                        ("tarni-secrets-" + std::to_string(random()) + std::to_string(random()));
    std::filesystem::create_directories(folder);
    return folder;
}

inline Tarni::tarni_wstring Wide(const std::filesystem::path& in_path)
{
    return Tarni::Support::StringConverter::FromUtf8(in_path.string());
}

inline void WriteFile(const std::filesystem::path& in_path, const std::string& in_bytes)
{
    std::ofstream(in_path, std::ios::binary | std::ios::trunc) << in_bytes;
}

/// Key sources under a temporary folder: user "alice" on machine "m1" unless
/// told otherwise. Installs them for the process-wide protector and restores
/// the product's on destruction.
class KeySources
{
public:
    KeySources() : m_folder(MakeTemporaryFolder())
    {
        WriteFile(m_folder / "machine-m1", "0123456789abcdef0123456789abcdef\n");
        WriteFile(m_folder / "machine-m2", "fedcba9876543210fedcba9876543210\n");
        Use("alice", "m1");
    }
    ~KeySources()
    {
        Tarni::DriverSupport::DSEncryptionUtils::ResetKeyLocations();
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    Tarni::Platform::SecretKeyLocations Locations(const std::string& in_user, const std::string& in_machine) const
    {
        return {Wide(UserKeyFile(in_user)), Wide(m_folder / ("machine-" + in_machine))};
    }
    void Use(const std::string& in_user, const std::string& in_machine)
    {
        Tarni::DriverSupport::DSEncryptionUtils::SetKeyLocations(Locations(in_user, in_machine));
    }
    std::filesystem::path UserKeyFile(const std::string& in_user) const
    {
        return m_folder / in_user / "config" / "tarni" / "secret.key";
    }
    const std::filesystem::path& Folder() const { return m_folder; }

private:
    std::filesystem::path m_folder;
};

/// Runs the call and returns the key of the ErrorException it throws.
template <typename Call>
Tarni::Support::ErrorException Caught(Call&& in_call)
{
    try
    {
        in_call();
    }
    catch (const Tarni::Support::ErrorException& e)
    {
        return e;
    }
    ADD_FAILURE() << "no ErrorException was thrown";
    return Tarni::Support::ErrorException(Tarni::Support::DiagState::GeneralError, 0, u"(none)");
}
}  // namespace SecretTest
