#pragma once
// A fresh folder under the system's temporary folder, removed with its contents.
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace Tarni::Testing
{
class TempDirectory
{
public:
    TempDirectory()
    {
        std::random_device random;
        m_path = std::filesystem::temp_directory_path() / ("tarni-test-" + std::to_string(random()) + std::to_string(random()));
        std::filesystem::create_directories(m_path);
    }
    ~TempDirectory()
    {
        std::error_code ignored;
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(m_path, ignored);
    }
    const std::filesystem::path& Path() const { return m_path; }
    std::filesystem::path operator/(const std::string& in_name) const { return m_path / in_name; }

    static void WriteFile(const std::filesystem::path& in_path, const std::string& in_bytes)
    {
        std::ofstream(in_path, std::ios::binary) << in_bytes;
    }
    static std::string ReadFile(const std::filesystem::path& in_path)
    {
        std::ifstream file(in_path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

private:
    std::filesystem::path m_path;
};
}  // namespace Tarni::Testing
