// TarniSparkDriverConfig.exe under Wine and an X server, driven from outside
// through window messages as a user would: OK writes the configuration to
// the registry and exits with 1; Cancel, Escape and the close box exit with 0
// and leave the registry exactly as before. In-process, the run with a
// template the program does not have exits with -1 and still saves.
#include <gtest/gtest.h>

#include <chrono>
#include <cwctype>
#include <map>

#include "driversupport/DSEncryptionUtils.h"
#include "driversupport/DSProductHelper.h"
#include "platform/SettingsStoreFactory.h"
#include "ui/win32/GuiDriver.h"
#include "ui/win32/Win32DialogHost.h"
#include "product/SOProductIdentity.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"

using namespace Tarni;
using Tarni::Testing::GuiDriver;

namespace
{
using Snapshot = std::map<tarni_wstring, tarni_wstring>;

const wchar_t* const TITLE = L"Tarni Spark ODBC Driver Configuration";

class DriverConfigGuiTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        SparkODBC::SOProductIdentity::Register();
        m_location = DriverSupport::DSProductHelper::GetDriverStoreLocation();
    }

    Snapshot Stored() const
    {
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(m_location);
        Snapshot values;
        for (const auto& value : store->ReadAll())
        {
            values[value.name] = value.value;
        }
        return values;
    }

    /// Starts the program, lets in_user act on its main dialog and returns
    /// the exit code (or a failure). in_first acts before the main dialog is
    /// shown (on boxes its initialisation opens).
    DWORD RunProgram(const std::function<void(HWND)>& in_user,
                     const std::function<void(DWORD in_processId)>& in_first = {})
    {
        wchar_t self[MAX_PATH] = {};
        ::GetModuleFileNameW(nullptr, self, MAX_PATH);
        std::wstring program(self);
        program = program.substr(0, program.find_last_of(L"\\/") + 1) + L"TarniSparkDriverConfig.exe";

        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process{};
        std::wstring commandLine = L"\"" + program + L"\"";
        if (!::CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                              &startup, &process))
        {
            ADD_FAILURE() << "cannot start " << std::string(program.begin(), program.end());
            return 9999;
        }
        if (in_first)
        {
            in_first(process.dwProcessId);
        }
        HWND dialog = GuiDriver::WaitForDialog(TITLE, process.dwProcessId);
        EXPECT_NE(dialog, nullptr) << "the main dialog did not appear";
        if (dialog != nullptr)
        {
            in_user(dialog);
        }
        DWORD exitCode = 9999;
        if (::WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0)
        {
            ::GetExitCodeProcess(process.hProcess, &exitCode);
        }
        else
        {
            ::TerminateProcess(process.hProcess, 9998);
            ADD_FAILURE() << "the program did not end";
        }
        ::CloseHandle(process.hThread);
        ::CloseHandle(process.hProcess);
        return exitCode;
    }

    Platform::DriverStoreLocation m_location;
};
}  // namespace

TEST_F(DriverConfigGuiTest, OkWritesTheConfigurationToTheRegistryAndExitsWithOne)
{
    const std::wstring token = L"gui-" + std::to_wstring(std::chrono::steady_clock::now().time_since_epoch().count());
    const DWORD exitCode = RunProgram([&](HWND dialog) {
        EXPECT_EQ(GuiDriver::Text(dialog, IDC_KRB_SERVICE_NAME), L"spark") << "filled from the configuration";
        GuiDriver::Type(dialog, IDC_DELEGATION_UID, token);
        GuiDriver::Select(dialog, IDC_THRIFT_TRANSPORT, L"SASL");
        GuiDriver::Click(dialog, IDOK);
    });
    EXPECT_EQ(exitCode, 1u);
    const Snapshot stored = Stored();
    ASSERT_EQ(stored.count(u"DelegationUID"), 1u);
    EXPECT_EQ(std::wstring(stored.at(u"DelegationUID").begin(), stored.at(u"DelegationUID").end()), token);
    EXPECT_EQ(stored.at(u"ThriftTransport"), u"1");
}

TEST_F(DriverConfigGuiTest, CancelEscapeAndTheCloseBoxLeaveTheRegistryAsItWas)
{
    for (GuiDriver::Closer close : GuiDriver::CLOSERS)
    {
        const Snapshot before = Stored();
        const DWORD exitCode = RunProgram([&](HWND dialog) {
            GuiDriver::Type(dialog, IDC_DELEGATION_UID, L"not to be saved");
            GuiDriver::Select(dialog, IDC_SERVER_TYPE, L"DFI");
            close(dialog);
        });
        EXPECT_EQ(exitCode, 0u);
        EXPECT_EQ(Stored(), before);
    }
}

TEST_F(DriverConfigGuiTest, AMissingTemplateExitsWithMinusOneAndStillSaves)
{
    // The run with a template that no module has: DialogBoxParamW fails, and
    // the configuration is saved as loaded.
    {
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(m_location);
        store->DeleteValue(u"KrbServiceName");
    }
    ASSERT_EQ(Stored().count(u"KrbServiceName"), 0u);
    Platform::Win32DialogHost host;
    SparkODBC::SODriverConfigRun::Options options;
    options.templateId = 4242;
    EXPECT_EQ(SparkODBC::SODriverConfigRun::Run(host, options), -1);
    EXPECT_EQ(Stored().at(u"KrbServiceName"), u"spark");
}

namespace
{
/// Waits for the list box entry with exactly this text; its index or LB_ERR.
LRESULT WaitForListEntry(HWND in_dialog, const std::wstring& in_text)
{
    HWND list = ::GetDlgItem(in_dialog, IDC_PROP_LIST);
    for (int i = 0; i < 200; ++i)
    {
        const LRESULT index =
            ::SendMessageW(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(in_text.c_str()));
        if (index != LB_ERR)
        {
            return index;
        }
        ::Sleep(50);
    }
    return LB_ERR;
}

/// Opens Edit Property with Add, types the pair and presses OK.
void AddProperty(HWND in_list, const std::wstring& in_key, const std::wstring& in_value)
{
    GuiDriver::PostClick(in_list, IDC_PROP_ADD);
    HWND edit = GuiDriver::WaitForDialog(L"Edit Property");
    ASSERT_NE(edit, nullptr);
    EXPECT_FALSE(GuiDriver::Enabled(edit, IDOK)) << "OK waits for a key";
    GuiDriver::Type(edit, IDC_PROP_KEY, in_key);
    GuiDriver::Type(edit, IDC_PROP_VALUE, in_value);
    EXPECT_TRUE(GuiDriver::Enabled(edit, IDOK));
    GuiDriver::Click(edit, IDOK);
    EXPECT_TRUE(GuiDriver::WaitForClose(edit));
}
}  // namespace

TEST_F(DriverConfigGuiTest, AServerSidePropertyAddedThreeDialogsDeepIsStoredUnderItsPrefix)
{
    const std::wstring key = L"gui.ssp." + std::to_wstring(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::u16string storedName = u"SSP_" + std::u16string(key.begin(), key.end());
    const DWORD exitCode = RunProgram([&](HWND main) {
        GuiDriver::PostClick(main, IDC_ADVANCED_OPTIONS);
        HWND advanced = GuiDriver::WaitForDialog(L"Advanced Options");
        ASSERT_NE(advanced, nullptr);
        EXPECT_FALSE(GuiDriver::Enabled(advanced, IDC_ADV_MAX_BYTES_PER_FETCH));
        EXPECT_FALSE(::IsWindowVisible(::GetDlgItem(advanced, IDC_ADV_TEMP_TABLE_CONFIG)));
        EXPECT_EQ(GuiDriver::Text(advanced, IDC_ADV_ROWS_PER_BLOCK), L"10000");
        GuiDriver::PostClick(advanced, IDC_ADV_SERVER_SIDE_PROPERTIES);
        HWND ssp = GuiDriver::WaitForDialog(L"Server Side Properties");
        ASSERT_NE(ssp, nullptr);
        EXPECT_FALSE(GuiDriver::Enabled(ssp, IDC_PROP_EDIT));

        AddProperty(ssp, key, L"8 = eight");
        EXPECT_NE(WaitForListEntry(ssp, key + L"=8 = eight"), LB_ERR);

        // The same key in capitals: the real "Duplicate Error" box, cancelled.
        std::wstring upper = key;
        for (wchar_t& c : upper)
        {
            c = static_cast<wchar_t>(::towupper(c));
        }
        AddProperty(ssp, upper, L"9");
        HWND box = GuiDriver::WaitForDialog(L"Duplicate Error");
        ASSERT_NE(box, nullptr);
        ::PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        EXPECT_TRUE(GuiDriver::WaitForClose(box));

        GuiDriver::Click(ssp, IDOK);
        EXPECT_TRUE(GuiDriver::WaitForClose(ssp));
        GuiDriver::Click(advanced, IDOK);
        EXPECT_TRUE(GuiDriver::WaitForClose(advanced));
        GuiDriver::Click(main, IDOK);
    });
    EXPECT_EQ(exitCode, 1u);
    const Snapshot stored = Stored();
    ASSERT_EQ(stored.count(storedName), 1u);
    EXPECT_EQ(stored.at(storedName), u"8 = eight");
    Platform::SettingsStoreFactory::OpenDriverStore(m_location)->DeleteValue(storedName);
}

TEST_F(DriverConfigGuiTest, AnHttpHeaderWithAnEmptyValueIsStoredWithThePath)
{
    const std::wstring header =
        L"X-Trace-" + std::to_wstring(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::u16string storedName = u"http.header." + std::u16string(header.begin(), header.end());
    const DWORD exitCode = RunProgram([&](HWND main) {
        GuiDriver::Select(main, IDC_THRIFT_TRANSPORT, L"HTTP");
        ASSERT_TRUE(GuiDriver::Enabled(main, IDC_HTTP_OPTIONS));
        GuiDriver::PostClick(main, IDC_HTTP_OPTIONS);
        HWND http = GuiDriver::WaitForDialog(L"HTTP Properties");
        ASSERT_NE(http, nullptr);
        EXPECT_TRUE(GuiDriver::Enabled(http, IDC_HTTP_PATH));
        GuiDriver::Type(http, IDC_HTTP_PATH, L"gui/cliservice");
        AddProperty(http, header, L"");
        EXPECT_NE(WaitForListEntry(http, header + L"="), LB_ERR);
        GuiDriver::Click(http, IDOK);
        EXPECT_TRUE(GuiDriver::WaitForClose(http));
        GuiDriver::Click(main, IDOK);
    });
    EXPECT_EQ(exitCode, 1u);
    const Snapshot stored = Stored();
    ASSERT_EQ(stored.count(storedName), 1u);
    EXPECT_EQ(stored.at(storedName), u"");
    EXPECT_EQ(stored.at(u"HTTPPath"), u"gui/cliservice");
    Platform::SettingsStoreFactory::OpenDriverStore(m_location)->DeleteValue(storedName);
}

TEST_F(DriverConfigGuiTest, SslAndAossOptionsWrittenThroughRealDialogsReachTheRegistry)
{
    wchar_t temp[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, temp);
    const std::wstring caFile = std::wstring(temp) + L"tarni-gui-ca.pem";
    {
        HANDLE file = ::CreateFileW(caFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD written = 0;
        ::WriteFile(file, "-----BEGIN CERTIFICATE-----\n", 28, &written, nullptr);
        ::CloseHandle(file);
    }
    {
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(m_location);
        store->WriteValue(u"SSL", u"0");
        store->WriteValue(u"UseSystemTrustStore", u"0");
        store->WriteValue(u"Min_TLS", u"1.0");
        store->WriteValue(u"ServiceDiscoveryMode", u"AOSS");
        store->WriteValue(u"AOSS_AuthMech", u"0");
    }
    std::wstring chosenPath, tlsShown;
    bool aossOkWithoutPassword = true;
    const DWORD exitCode = RunProgram([&](HWND dialog) {
        DWORD processId = 0;
        ::GetWindowThreadProcessId(dialog, &processId);
        HWND ssl = GuiDriver::OpenFrom(dialog, IDC_SSL_OPTIONS, L"SSL Options", processId);
        ASSERT_NE(ssl, nullptr);
        GuiDriver::Click(ssl, IDC_SSL_ENABLE);
        HWND open = GuiDriver::OpenFrom(ssl, IDC_SSL_BROWSE_TRUSTED_CERTS, L"Open", processId);
        ASSERT_NE(open, nullptr) << "no open-file box";
        EXPECT_TRUE(GuiDriver::ChooseFile(open, caFile)) << "the open-file box stayed";
        chosenPath = GuiDriver::Text(ssl, IDC_SSL_TRUSTED_CERTS);
        tlsShown = GuiDriver::Text(ssl, IDC_SSL_MIN_TLS);
        GuiDriver::Select(ssl, IDC_SSL_MIN_TLS, L"1.2");
        GuiDriver::Click(ssl, IDOK);
        GuiDriver::WaitForClose(ssl);

        HWND aoss = GuiDriver::OpenFrom(dialog, IDC_SERVICE_DISCOVERY_OPTIONS, L"AOSS Options", processId);
        ASSERT_NE(aoss, nullptr);
        GuiDriver::Select(aoss, IDC_AOSS_AUTH_MECH, L"User Name and Password");
        GuiDriver::Type(aoss, IDC_AOSS_USER_NAME, L"watcher");
        GuiDriver::Type(aoss, IDC_AOSS_PASSWORD, L"");  // an earlier run may have stored one
        aossOkWithoutPassword = GuiDriver::Enabled(aoss, IDOK);
        GuiDriver::Type(aoss, IDC_AOSS_PASSWORD, L"aoss-s3cret");
        HWND password = GuiDriver::OpenFrom(aoss, IDC_AOSS_PASSWORD_OPTIONS, L"Password Options", processId);
        ASSERT_NE(password, nullptr);
        GuiDriver::Click(password, IDC_PWD_CURRENT_USER_ONLY);
        GuiDriver::Click(password, IDOK);
        GuiDriver::WaitForClose(password);
        GuiDriver::Click(aoss, IDOK);
        GuiDriver::WaitForClose(aoss);
        GuiDriver::Click(dialog, IDOK);
    });
    EXPECT_EQ(exitCode, 1u);
    EXPECT_EQ(chosenPath, caFile);
    EXPECT_EQ(tlsShown, L"1.0");
    EXPECT_FALSE(aossOkWithoutPassword);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.at(u"SSL"), u"1");
    EXPECT_EQ(std::wstring(stored.at(u"TrustedCerts").begin(), stored.at(u"TrustedCerts").end()), caFile);
    EXPECT_EQ(stored.at(u"Min_TLS"), u"1.2");
    EXPECT_EQ(stored.at(u"AOSS_AuthMech"), u"3");
    EXPECT_EQ(stored.at(u"AOSS_UID"), u"watcher");
    EXPECT_EQ(stored.count(u"AOSS_PWD"), 0u);
    ASSERT_EQ(stored.count(u"AOSS_EncryptedPWD"), 1u);
    EXPECT_EQ(stored.at(u"AOSS_EncryptedPWD").find(u"aoss-s3cret"), tarni_wstring::npos);
    ::DeleteFileW(caFile.c_str());
}

TEST_F(DriverConfigGuiTest, AStoredPasswordThatCannotBeRecoveredSurvivesOkUntilANewOneIsTyped)
{
    // A protected password damaged in the registry (or written elsewhere).
    tarni_wstring damaged = DriverSupport::DSEncryptionUtils::Encrypt(u"s3cret", false, u"EncryptedPWD");
    damaged.pop_back();
    {
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(m_location);
        store->WriteValue(u"AuthMech", u"3");
        store->WriteValue(u"EncryptedPWD", damaged);
    }
    const auto dismissWarning = [](DWORD in_processId) {
        HWND box = GuiDriver::WaitForDialog(L"Stored Credentials Not Recovered", in_processId);
        ASSERT_NE(box, nullptr) << "the warning box did not appear";
        ::PostMessageW(box, WM_COMMAND, IDOK, 0);
        EXPECT_TRUE(GuiDriver::WaitForClose(box));
    };
    EXPECT_EQ(RunProgram([](HWND dialog) { GuiDriver::Click(dialog, IDOK); }, dismissWarning), 1u);
    EXPECT_EQ(Stored().at(u"EncryptedPWD"), damaged);

    EXPECT_EQ(RunProgram(
                  [](HWND dialog) {
                      GuiDriver::Type(dialog, IDC_PASSWORD, L"n3w-pass");
                      GuiDriver::Click(dialog, IDOK);
                  },
                  dismissWarning),
              1u);
    const tarni_wstring replaced = Stored().at(u"EncryptedPWD");
    EXPECT_NE(replaced, damaged);
    EXPECT_EQ(DriverSupport::DSEncryptionUtils::Decrypt(replaced, u"EncryptedPWD").value, u"n3w-pass");
}
