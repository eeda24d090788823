#pragma once
// Helpers for tests that work with files: a scratch folder removed at the end
// of the test, and reading and writing whole files.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>

#include "support/StringConverter.h"
#include "support/TarniString.h"

namespace TarniTest
{
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::random_device random;
        m_path = std::filesystem::temp_directory_path() /
                 ("tarni-test-" + std::to_string(random()) + "-" +
                  std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
        std::filesystem::create_directories(m_path);
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::filesystem::path operator/(const std::string& in_name) const { return m_path / in_name; }

private:
    std::filesystem::path m_path;
};

inline Tarni::tarni_wstring Wide(const std::filesystem::path& in_path)
{
    return in_path.u16string();
}

inline std::string ReadAll(const std::filesystem::path& in_path)
{
    std::ifstream file(in_path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

inline void WriteAll(const std::filesystem::path& in_path, const std::string& in_bytes)
{
    std::filesystem::create_directories(in_path.parent_path());
    std::ofstream file(in_path, std::ios::binary | std::ios::trunc);
    file << in_bytes;
}
}  // namespace TarniTest
