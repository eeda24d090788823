// TarniSparkDriverConfig.exe under Wine and an X server, driven from outside
// through window messages as a user would: OK writes the configuration to
// the registry and exits with 1; Cancel, Escape and the close box exit with 0
// and leave the registry exactly as before. In-process, the run with a
// template the program does not have exits with -1 and still saves.
#include <gtest/gtest.h>

#include <chrono>
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
    using Closer = void (*)(HWND);
    const Closer closers[] = {[](HWND d) { GuiDriver::Click(d, IDCANCEL); }, &GuiDriver::PressEscape,
                              &GuiDriver::PressCloseBox};
    for (Closer close : closers)
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
