// The MSI as an administrator uses it, under Wine: a silent install puts the
// programs under Program Files, where they find their message files and
// product settings; OK in the installed program writes the registry, which
// `reg query` shows; uninstalling removes the files and keeps the settings;
// a newer package replaces an older one. Arguments: the MSI of this build and
// a newer one (same upgrade code, higher version).
#include <gtest/gtest.h>

#include <windows.h>
#include <msi.h>
#include <msiquery.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "driversupport/DSProductHelper.h"
#include "platform/SettingsStoreFactory.h"
#include "product/SOProductIdentity.h"
#include "ui/win32/GuiDriver.h"
#include "resource.h"

namespace fs = std::filesystem;
using Tarni::Testing::GuiDriver;

namespace
{
std::wstring g_olderMsi;
std::wstring g_newerMsi;
const wchar_t* const UPGRADE_CODE = L"{B5BEF4ED-3DF8-4112-A461-F8E8E972239D}";

struct Result
{
    DWORD exitCode = 9999;
    std::string output;
};

/// Runs a command line through the shell and collects its output. The outer
/// quotes are the ones cmd /c strips from a line that starts with a quote.
Result RunShell(const std::wstring& in_command)
{
    Result result;
    FILE* pipe = _wpopen((L"\"" + in_command + L" 2>&1\"").c_str(), L"r");
    if (pipe == nullptr) return result;
    char buffer[512];
    while (fgets(buffer, sizeof(buffer), pipe) != nullptr) result.output += buffer;
    result.exitCode = static_cast<DWORD>(_pclose(pipe));
    return result;
}

/// msiexec's exit code; Wine keeps only its low 8 bits (1603 reads as 67).
DWORD Msiexec(const std::wstring& in_arguments)
{
    return RunShell(L"msiexec.exe " + in_arguments + L" /qn").exitCode & 0xFF;
}

fs::path InstallDir()
{
    wchar_t folder[MAX_PATH] = {};
    ::SHGetFolderPathW(nullptr, CSIDL_PROGRAM_FILES, nullptr, 0, folder);
    return fs::path(folder) / L"Tarni Spark ODBC Driver";
}

/// Whether the Start-menu entry exists. Windows puts it in the common
/// programs folder of a per-machine install; Wine's installer takes the
/// user's programs folder whatever ALLUSERS says.
bool HasStartMenuEntry()
{
    for (int id : {CSIDL_COMMON_PROGRAMS, CSIDL_PROGRAMS})
    {
        wchar_t folder[MAX_PATH] = {};
        ::SHGetFolderPathW(nullptr, id, nullptr, 0, folder);
        if (fs::exists(fs::path(folder) / L"Tarni Spark ODBC Driver" / L"Tarni Spark ODBC Driver Configuration.lnk"))
        {
            return true;
        }
    }
    return false;
}

/// The installed products of this upgrade code, with their versions.
std::vector<std::wstring> InstalledVersions()
{
    std::vector<std::wstring> versions;
    wchar_t product[39] = {};
    for (DWORD index = 0; ::MsiEnumRelatedProductsW(UPGRADE_CODE, 0, index, product) == ERROR_SUCCESS; ++index)
    {
        wchar_t version[64] = {};
        DWORD length = 64;
        ::MsiGetProductInfoW(product, INSTALLPROPERTY_VERSIONSTRING, version, &length);
        versions.emplace_back(version);
    }
    return versions;
}

/// The Registry table rows of the package as "key|name|value" lines.
std::vector<std::wstring> RegistryRows(const std::wstring& in_msi)
{
    std::vector<std::wstring> rows;
    MSIHANDLE database = 0;
    if (::MsiOpenDatabaseW(in_msi.c_str(), MSIDBOPEN_READONLY, &database) != ERROR_SUCCESS)
    {
        return rows;
    }
    MSIHANDLE view = 0;
    if (::MsiDatabaseOpenViewW(database, L"SELECT `Key`, `Name`, `Value` FROM `Registry`", &view) == ERROR_SUCCESS &&
        ::MsiViewExecute(view, 0) == ERROR_SUCCESS)
    {
        for (MSIHANDLE record = 0; ::MsiViewFetch(view, &record) == ERROR_SUCCESS; ::MsiCloseHandle(record))
        {
            std::wstring row;
            for (UINT field = 1; field <= 3; ++field)
            {
                wchar_t text[512] = {};
                DWORD length = 512;
                ::MsiRecordGetStringW(record, field, text, &length);
                row += (field > 1 ? L"|" : L"") + std::wstring(text);
            }
            rows.push_back(row);
        }
        ::MsiCloseHandle(view);
    }
    ::MsiCloseHandle(database);
    return rows;
}

std::wstring Narrow(const std::string& in_text) { return std::wstring(in_text.begin(), in_text.end()); }

class MsiPackageTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Tarni::SparkODBC::SOProductIdentity::Register();
        m_key = Tarni::DriverSupport::DSProductHelper::GetDriverStoreLocation().registryPath;
        RemoveAll();
    }
    void TearDown() override { RemoveAll(); }

    static void RemoveAll()
    {
        Msiexec(L"/x \"" + g_newerMsi + L"\"");
        Msiexec(L"/x \"" + g_olderMsi + L"\"");
    }

    std::wstring RegistryKey() const { return L"HKLM\\" + std::wstring(m_key.begin(), m_key.end()); }

    std::u16string m_key;
};
}  // namespace

TEST_F(MsiPackageTest, InstallsSilentlyAndTheInstalledProgramSavesWithItsOwnFiles)
{
    ASSERT_EQ(0u, Msiexec(L"/i \"" + g_olderMsi + L"\""));
    const fs::path dir = InstallDir();
    for (const wchar_t* file : {L"TarniSparkDriverConfig.exe", L"tarni-spark-config.exe", L"libcrypto-3-x64.dll",
                                L"SparkODBC.did", L"cacerts.pem", L"messages\\en-US\\DSMessages.xml"})
    {
        EXPECT_TRUE(fs::exists(dir / file)) << fs::path(file).string() << " is not installed";
    }
    // Nothing imports or loads libssl: the connection test links OpenSSL statically.
    EXPECT_FALSE(fs::exists(dir / L"libssl-3-x64.dll"));
    EXPECT_TRUE(HasStartMenuEntry()) << "no Start-menu entry";
    EXPECT_GT(fs::file_size(dir / L"cacerts.pem"), 10000u) << "the CA bundle is empty";

    // The installed command-line program takes its error text from the
    // installed message files.
    const Result refused =
        RunShell(L"\"" + (dir / L"tarni-spark-config.exe").wstring() + L"\" export C:\\no\\such\\folder\\out.ini");
    EXPECT_EQ(1u, refused.exitCode);
    EXPECT_NE(std::string::npos, refused.output.find("Cannot write the configuration file")) << refused.output;

    // OK in the installed dialog program writes the registry.
    const std::wstring token = L"msi-" + std::to_wstring(std::chrono::steady_clock::now().time_since_epoch().count());
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    const std::wstring program = (dir / L"TarniSparkDriverConfig.exe").wstring();
    std::wstring commandLine = L"\"" + program + L"\"";
    ASSERT_TRUE(::CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                 dir.wstring().c_str(), &startup, &process));
    HWND dialog = GuiDriver::WaitForDialog(L"Tarni Spark ODBC Driver Configuration", process.dwProcessId);
    EXPECT_NE(nullptr, dialog) << "the installed program shows no dialog";
    if (dialog != nullptr)
    {
        GuiDriver::Type(dialog, IDC_DELEGATION_UID, token);
        GuiDriver::Click(dialog, IDOK);
    }
    DWORD exitCode = 9999;
    if (::WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0) ::GetExitCodeProcess(process.hProcess, &exitCode);
    else ::TerminateProcess(process.hProcess, 9998);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    EXPECT_EQ(1u, exitCode);
    const Result query = RunShell(L"reg query \"" + RegistryKey() + L"\" /v DelegationUID");
    EXPECT_NE(std::string::npos, Narrow(query.output).find(token)) << query.output;
}

TEST_F(MsiPackageTest, UninstallRemovesTheFilesAndKeepsTheSettings)
{
    ASSERT_EQ(0u, Msiexec(L"/i \"" + g_olderMsi + L"\""));
    auto store = Tarni::Platform::SettingsStoreFactory::OpenDriverStore(
        Tarni::DriverSupport::DSProductHelper::GetDriverStoreLocation());
    store->WriteValue(u"Host", u"kept.example.test");

    ASSERT_EQ(0u, Msiexec(L"/x \"" + g_olderMsi + L"\""));
    // The installer's own key goes as a whole: the package asks for that
    // explicitly (Name "-") instead of relying on the removal of emptied keys.
    const std::wstring installerKey = L"SOFTWARE\\Tarni\\Tarni Spark ODBC Driver Configuration";
    const auto rows = RegistryRows(g_olderMsi);
    EXPECT_NE(std::find(rows.begin(), rows.end(), installerKey + L"|-|"), rows.end());
    EXPECT_EQ(1u, RunShell(L"reg query \"HKLM\\" + installerKey + L"\"").exitCode);
    EXPECT_FALSE(fs::exists(InstallDir() / L"TarniSparkDriverConfig.exe"));
    EXPECT_FALSE(fs::exists(InstallDir() / L"messages\\en-US\\DSMessages.xml"));
    EXPECT_FALSE(HasStartMenuEntry());
    EXPECT_TRUE(InstalledVersions().empty());
    const Result query = RunShell(L"reg query \"" + RegistryKey() + L"\" /v Host");
    EXPECT_NE(std::string::npos, query.output.find("kept.example.test")) << query.output;
    store->DeleteValue(u"Host");
}

TEST_F(MsiPackageTest, ANewerPackageReplacesTheOlderOne)
{
    ASSERT_EQ(0u, Msiexec(L"/i \"" + g_olderMsi + L"\""));
    ASSERT_EQ(1u, InstalledVersions().size());
    const std::wstring older = InstalledVersions().front();
    ASSERT_EQ(0u, Msiexec(L"/i \"" + g_newerMsi + L"\""));
    const auto versions = InstalledVersions();
    ASSERT_EQ(1u, versions.size()) << "two installations side by side";
    EXPECT_NE(older, versions.front());
    EXPECT_TRUE(fs::exists(InstallDir() / L"TarniSparkDriverConfig.exe"));
}

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    int count = 0;
    wchar_t** arguments = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (count < 3)
    {
        std::fprintf(stderr, "usage: MsiPackageTest OLDER.msi NEWER.msi\n");
        return 2;
    }
    g_olderMsi = arguments[count - 2];
    g_newerMsi = arguments[count - 1];
    return RUN_ALL_TESTS();
}
