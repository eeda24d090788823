#pragma once
// File helpers of the support tests: a scratch folder removed at the end of
// the test, and reading and writing whole files (creating their folders).
#include <filesystem>
#include <string>

#include "common/TempDirectory.h"
#include "core/TarniString.h"

namespace TarniTest
{
using ScratchFolder = Tarni::Testing::TempDirectory;

inline Tarni::tarni_wstring Wide(const std::filesystem::path& in_path)
{
    return in_path.u16string();
}

inline std::string ReadAll(const std::filesystem::path& in_path)
{
    return Tarni::Testing::TempDirectory::ReadFile(in_path);
}

inline void WriteAll(const std::filesystem::path& in_path, const std::string& in_bytes)
{
    std::filesystem::create_directories(in_path.parent_path());
    Tarni::Testing::TempDirectory::WriteFile(in_path, in_bytes);
}
}  // namespace TarniTest
