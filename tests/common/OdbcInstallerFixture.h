#pragma once
// A private ODBC installer environment for one test: unixODBC's system files
// (ODBCSYSINI: odbcinst.ini, odbc.ini, emptied for each test), the user's
// data sources (ODBCINI) and HOME under a temporary folder, and the
// driver-wide INI file (SPARKINI) beside them. unixODBC keeps the system
// folder it found first for the rest of the process, so that folder is one
// for the whole test program.
#include <cstdlib>

#include "common/ProductSettingsFixture.h"

namespace Tarni::Testing
{
class OdbcInstallerFixture : public ProductSettingsFixture
{
protected:
    void SetUp() override
    {
        ProductSettingsFixture::SetUp();
        std::filesystem::create_directories(m_dir / "home");
        TempDirectory::WriteFile(SystemFolder() / "odbcinst.ini", "");
        TempDirectory::WriteFile(SystemFolder() / "odbc.ini", "");
        Set("ODBCSYSINI", SystemFolder().string());
        Set("ODBCINI", UserIni().string());
        Set("HOME", (m_dir / "home").string());
        Set("SPARKINI", DriverIni().string());
    }
    void TearDown() override
    {
        for (const auto& [name, value] : m_saved)
        {
            if (value)
            {
                ::setenv(name.c_str(), value->c_str(), 1);
            }
            else
            {
                ::unsetenv(name.c_str());
            }
        }
        ProductSettingsFixture::TearDown();
    }
    std::filesystem::path UserIni() const { return m_dir / "home/.odbc.ini"; }
    std::filesystem::path SystemIni() const { return SystemFolder() / "odbc.ini"; }
    static const std::filesystem::path& SystemFolder()
    {
        static const TempDirectory folder;
        return folder.Path();
    }
    std::filesystem::path DriverIni() const { return m_dir / "sparkodbc.ini"; }
    static std::string Read(const std::filesystem::path& in_path)
    {
        return std::filesystem::exists(in_path) ? TempDirectory::ReadFile(in_path) : std::string();
    }

private:
    void Set(const std::string& in_name, const std::string& in_value)
    {
        const char* previous = std::getenv(in_name.c_str());
        m_saved.emplace_back(in_name, previous != nullptr ? std::optional<std::string>(previous) : std::nullopt);
        ::setenv(in_name.c_str(), in_value.c_str(), 1);
    }
    std::vector<std::pair<std::string, std::optional<std::string>>> m_saved;
};
}  // namespace Tarni::Testing
