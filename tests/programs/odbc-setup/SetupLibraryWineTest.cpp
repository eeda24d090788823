// The setup DLL as Wine's own installer library (odbccp32) reaches it: the
// driver registered with SQLInstallDriverEx, data sources added, configured
// in the DSN dialog on a private X server, and removed through
// SQLConfigDataSource; ConfigDriverW called directly, since Wine's installer
// handles ODBC_CONFIG_DRIVER itself.
#include <gtest/gtest.h>

#include "ui/win32/GuiDriver.h"

#include <odbcinst.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "resource.h"

using Tarni::Testing::GuiDriver;

namespace
{
const wchar_t* const DRIVER = L"Tarni Spark ODBC Driver";
const wchar_t* const DSN_TITLE = L"Tarni Spark ODBC Driver DSN Setup";

std::wstring List(std::initializer_list<std::wstring> in_entries)
{
    std::wstring list;
    for (const std::wstring& entry : in_entries)
    {
        list += entry;
        list.push_back(L'\0');
    }
    list.push_back(L'\0');
    return list;
}

/// A value of the data source's key in the hive, or nothing.
bool ReadValue(HKEY in_hive, const std::wstring& in_dsn, const wchar_t* in_name, std::wstring* out_value = nullptr)
{
    wchar_t buffer[4096] = {};
    DWORD size = sizeof(buffer);
    const std::wstring key = L"Software\\ODBC\\ODBC.INI\\" + in_dsn;
    if (::RegGetValueW(in_hive, key.c_str(), in_name, RRF_RT_REG_SZ, nullptr, buffer, &size) != ERROR_SUCCESS)
    {
        return false;
    }
    if (out_value != nullptr)
    {
        *out_value = buffer;
    }
    return true;
}

bool KeyExists(HKEY in_hive, const std::wstring& in_dsn)
{
    HKEY key = nullptr;
    const std::wstring path = L"Software\\ODBC\\ODBC.INI\\" + in_dsn;
    if (::RegOpenKeyExW(in_hive, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    {
        return false;
    }
    ::RegCloseKey(key);
    return true;
}

std::pair<DWORD, std::wstring> InstallerError()
{
    DWORD code = 0;
    wchar_t message[1024] = {};
    WORD length = 0;
    ::SQLInstallerErrorW(1, &code, message, 1024, &length);
    return {code, message};
}

std::string Narrow(const std::wstring& in_text)
{
    return std::string(in_text.begin(), in_text.end());
}

class SetupLibraryWine : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        wchar_t self[MAX_PATH] = {};
        ::GetModuleFileNameW(nullptr, self, MAX_PATH);
        std::wstring folder(self);
        folder.erase(folder.find_last_of(L"\\/"));
        // The folder in the path argument, bare file names in the attributes.
        const std::wstring attributes =
            List({DRIVER, L"Driver=TarniSparkODBCSetup.dll", L"Setup=TarniSparkODBCSetup.dll"});
        wchar_t installed[MAX_PATH] = {};
        WORD length = 0;
        DWORD usage = 0;
        ASSERT_TRUE(::SQLInstallDriverExW(attributes.c_str(), folder.c_str(), installed, MAX_PATH, &length,
                                          ODBC_INSTALL_COMPLETE, &usage))
            << Narrow(InstallerError().second);
    }

    static BOOL Config(HWND in_parent, WORD in_request, const std::wstring& in_list)
    {
        return ::SQLConfigDataSourceW(in_parent, in_request, DRIVER, in_list.c_str());
    }
};
}  // namespace

TEST_F(SetupLibraryWine, SilentAddStoresTheSecretOnlyProtectedAndRemoveClearsBothHives)
{
    ASSERT_TRUE(Config(nullptr, ODBC_ADD_DSN,
                       List({L"DSN=WineLab", L"Host=spark.lab", L"Port=10002", L"UID=bob", L"PWD=hunter2-secret"})))
        << Narrow(InstallerError().second);
    std::wstring host, encrypted;
    EXPECT_TRUE(ReadValue(HKEY_CURRENT_USER, L"WineLab", L"Host", &host) ||
                ReadValue(HKEY_LOCAL_MACHINE, L"WineLab", L"Host", &host));
    EXPECT_EQ(L"spark.lab", host);
    EXPECT_TRUE(ReadValue(HKEY_CURRENT_USER, L"WineLab", L"EncryptedPWD", &encrypted) ||
                ReadValue(HKEY_LOCAL_MACHINE, L"WineLab", L"EncryptedPWD", &encrypted));
    EXPECT_FALSE(encrypted.empty());
    EXPECT_EQ(std::wstring::npos, encrypted.find(L"hunter2"));
    EXPECT_FALSE(ReadValue(HKEY_CURRENT_USER, L"WineLab", L"PWD"));
    EXPECT_FALSE(ReadValue(HKEY_LOCAL_MACHINE, L"WineLab", L"PWD"));

    ASSERT_TRUE(Config(nullptr, ODBC_CONFIG_DSN, List({L"DSN=WineLab", L"Port=10003"})))
        << Narrow(InstallerError().second);
    std::wstring port;
    EXPECT_TRUE(ReadValue(HKEY_CURRENT_USER, L"WineLab", L"Port", &port) ||
                ReadValue(HKEY_LOCAL_MACHINE, L"WineLab", L"Port", &port));
    EXPECT_EQ(L"10003", port);

    ASSERT_TRUE(Config(nullptr, ODBC_REMOVE_DSN, List({L"DSN=WineLab"}))) << Narrow(InstallerError().second);
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"WineLab"));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"WineLab"));
}

TEST_F(SetupLibraryWine, BadInputIsRefusedAndWritesNothing)
{
    // Wine's SQLPostInstallerError keeps no error (the codes are shown by the
    // tests over unixODBC): the installer reports its own "request failed".
    EXPECT_FALSE(Config(nullptr, ODBC_ADD_DSN, List({L"DSN=bad{name}", L"Host=h"})));
    EXPECT_EQ(static_cast<DWORD>(ODBC_ERROR_REQUEST_FAILED), InstallerError().first);
    EXPECT_FALSE(Config(nullptr, ODBC_ADD_DSN, List({L"DSN=Fine", L"Host"})));
    EXPECT_FALSE(Config(nullptr, ODBC_ADD_DSN, List({L"DSN=Fine", L"Port=ten"})));
    EXPECT_FALSE(Config(nullptr, ODBC_REMOVE_DSN, List({L"DSN=Missing"})));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Fine"));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, L"Fine"));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"bad{name}"));
}

TEST_F(SetupLibraryWine, ConfigureWithAWindowOpensTheDsnDialogWithTheStoredValues)
{
    ASSERT_TRUE(Config(nullptr, ODBC_ADD_DSN, List({L"DSN=WineGui", L"Host=gui.lab", L"Port=10010", L"UID=carol"})))
        << Narrow(InstallerError().second);
    HWND owner = ::CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr, nullptr,
                                   nullptr);
    std::wstring shownName, shownHost, shownPort;
    const BOOL result = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(DSN_TITLE);
            ASSERT_NE(nullptr, dialog) << "the DSN dialog did not appear";
            shownName = GuiDriver::Text(dialog, IDC_DSN_NAME);
            shownHost = GuiDriver::Text(dialog, IDC_HOSTS);
            shownPort = GuiDriver::Text(dialog, IDC_PORT);
            if (std::getenv("TARNI_SCREENSHOT_PAUSE") != nullptr)
            {
                // scripts/screenshots-odbc-setup.sh photographs the dialog now.
                RECT rect{};
                ::GetWindowRect(dialog, &rect);
                std::printf("DSN-SETUP %ld %ld %ld %ld\n", rect.left, rect.top, rect.right, rect.bottom);
                std::fflush(stdout);
                ::Sleep(4000);
            }
            GuiDriver::Type(dialog, IDC_PORT, L"10011");
            GuiDriver::Click(dialog, IDOK);
        },
        [&] { return Config(owner, ODBC_CONFIG_DSN, List({L"DSN=WineGui"})); });
    ::DestroyWindow(owner);
    EXPECT_TRUE(result) << Narrow(InstallerError().second);
    EXPECT_EQ(L"WineGui", shownName);
    EXPECT_EQ(L"gui.lab", shownHost);
    EXPECT_EQ(L"10010", shownPort);
    std::wstring port;
    EXPECT_TRUE(ReadValue(HKEY_CURRENT_USER, L"WineGui", L"Port", &port) ||
                ReadValue(HKEY_LOCAL_MACHINE, L"WineGui", L"Port", &port));
    EXPECT_EQ(L"10011", port);
    ASSERT_TRUE(Config(nullptr, ODBC_REMOVE_DSN, List({L"DSN=WineGui"}))) << Narrow(InstallerError().second);
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"WineGui"));
}

TEST_F(SetupLibraryWine, ConfigDriverWithAWindowOpensTheDriverDialog)
{
    HMODULE library = ::LoadLibraryW(L"TarniSparkODBCSetup.dll");
    ASSERT_NE(nullptr, library);
    using ConfigDriverW = BOOL(WINAPI*)(HWND, WORD, LPCWSTR, LPCWSTR, LPWSTR, WORD, WORD*);
    const auto configDriver = reinterpret_cast<ConfigDriverW>(
        reinterpret_cast<void*>(::GetProcAddress(library, "ConfigDriverW")));
    ASSERT_NE(nullptr, configDriver);
    WORD length = 0;
    EXPECT_TRUE(configDriver(nullptr, ODBC_INSTALL_DRIVER, DRIVER, L"", nullptr, 0, &length));
    HWND owner = ::CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr, nullptr,
                                   nullptr);
    bool shown = false;
    const BOOL result = GuiDriver::WhileModal(
        [&] {
            HWND dialog = GuiDriver::WaitForDialog(L"Tarni Spark ODBC Driver Configuration");
            shown = dialog != nullptr;
            if (dialog != nullptr)
            {
                GuiDriver::Click(dialog, IDCANCEL);
            }
        },
        [&] { return configDriver(owner, ODBC_CONFIG_DRIVER, DRIVER, L"", nullptr, 0, &length); });
    ::DestroyWindow(owner);
    EXPECT_TRUE(shown);
    EXPECT_FALSE(result);  // Cancel
    // Only the four entry points are exported.
    EXPECT_EQ(nullptr, ::GetProcAddress(library, "_ZN5Tarni9SparkODBC14SOSetupRequest9ConfigDSNEPvtPKDsS4_"));
    ::FreeLibrary(library);
}
