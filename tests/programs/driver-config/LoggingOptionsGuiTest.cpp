// Logging Options as real Win32 dialogs under Wine and an X server, driven
// through window messages from a second thread: the run's main dialog opens
// it, the shell's folder chooser picks the log folder, OK and OK write the
// settings to the registry; export and import go through the common file
// dialogs. Buttons that open a modal window are posted, not sent, so that
// the driving thread is never blocked by the window it is to drive.
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <map>

#include "dialogs/driversupport/DSLoggingDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "platform/InitializePlatform.h"
#include "platform/SettingsStoreFactory.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"
#include "ui/win32/GuiDriver.h"
#include "ui/win32/Win32DialogHost.h"

using namespace Tarni;
using Tarni::Testing::GuiDriver;

namespace
{
/// Types the path into the file dialog that in_owner opened and presses its OK.
void ChooseFile(HWND in_owner, const std::wstring& in_path)
{
    HWND chooser = GuiDriver::WaitForOwnedDialog(in_owner);
    ASSERT_NE(chooser, nullptr) << "no file dialog";
    EXPECT_TRUE(GuiDriver::ChooseFile(chooser, in_path));
}

/// A fresh folder under Wine's temporary folder.
std::wstring MakeFolder(const std::wstring& in_name)
{
    wchar_t temp[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, temp);
    const std::wstring folder = std::wstring(temp) + in_name + L"-" + std::to_wstring(::GetCurrentProcessId());
    ::CreateDirectoryW(folder.c_str(), nullptr);
    return folder;
}

tarni_wstring Units(const std::wstring& in_text) { return tarni_wstring(in_text.begin(), in_text.end()); }
}  // namespace

TEST(LoggingOptionsGuiTest, LevelFolderAndLimitsReachTheRegistryThroughTheMainDialog)
{
    SparkODBC::SOProductIdentity::Register();
    const std::wstring logs = L"C:\\tarni-logs-" + std::to_wstring(::GetCurrentProcessId());
    ::CreateDirectoryW(logs.c_str(), nullptr);
    std::wstring shownFolder;
    std::wstring errorText;
    Platform::Win32DialogHost host;
    const int result = GuiDriver::WhileModal(
        [&] {
            HWND main = GuiDriver::WaitForDialog(L"Tarni Spark ODBC Driver Configuration", ::GetCurrentProcessId());
            ASSERT_NE(main, nullptr);
            GuiDriver::PostClick(main, IDC_LOGGING_OPTIONS);
            HWND logging = GuiDriver::WaitForDialog(L"Logging Options", ::GetCurrentProcessId());
            ASSERT_NE(logging, nullptr);
            EXPECT_EQ(GuiDriver::Text(logging, IDC_LOG_BROWSE), L"Browse...");
            GuiDriver::Select(logging, IDC_LOG_LEVEL, L"LOG_DEBUG");
            EXPECT_TRUE(GuiDriver::Enabled(logging, IDC_LOG_BROWSE));

            // The shell's folder chooser, told which folder to select.
            GuiDriver::PostClick(logging, IDC_LOG_BROWSE);
            HWND chooser = GuiDriver::WaitForOwnedDialog(logging);
            ASSERT_NE(chooser, nullptr) << "no folder chooser";
            ::Sleep(1000);  // let the chooser fill its tree before it is told what to select
            ::SendMessageW(chooser, BFFM_SETSELECTIONW, TRUE, reinterpret_cast<LPARAM>(logs.c_str()));
            ::Sleep(500);
            GuiDriver::PostClick(chooser, IDOK);
            EXPECT_TRUE(GuiDriver::WaitForClose(chooser));
            for (int i = 0; i < 100 && GuiDriver::Text(logging, IDC_LOG_PATH).empty(); ++i)
            {
                ::Sleep(50);
            }
            shownFolder = GuiDriver::Text(logging, IDC_LOG_PATH);

            GuiDriver::Type(logging, IDC_LOG_MAX_FILE_COUNT, L"9");
            GuiDriver::Type(logging, IDC_LOG_MAX_FILE_SIZE, L"4097");
            GuiDriver::PostClick(logging, IDOK);  // refused: an error box over the dialog
            HWND box = GuiDriver::WaitForOwnedDialog(logging);
            ASSERT_NE(box, nullptr);
            wchar_t text[512] = {};
            ::GetDlgItemTextW(box, 0xFFFF, text, 512);
            errorText = text;
            GuiDriver::PostClick(box, IDOK);
            EXPECT_TRUE(GuiDriver::WaitForClose(box));
            GuiDriver::Type(logging, IDC_LOG_MAX_FILE_SIZE, L"16");
            GuiDriver::PostClick(logging, IDOK);
            EXPECT_TRUE(GuiDriver::WaitForClose(logging));
            GuiDriver::PostClick(main, IDOK);
        },
        [&] { return SparkODBC::SODriverConfigRun::Run(host); });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(_wcsicmp(shownFolder.c_str(), logs.c_str()), 0) << std::string(shownFolder.begin(), shownFolder.end());
    EXPECT_NE(errorText.find(L"[0, 4096]"), std::wstring::npos) << std::string(errorText.begin(), errorText.end());

    auto store =
        Platform::SettingsStoreFactory::OpenDriverStore(DriverSupport::DSProductHelper::GetDriverStoreLocation());
    std::map<tarni_wstring, tarni_wstring> stored;
    for (const auto& value : store->ReadAll())
    {
        stored[value.name] = value.value;
    }
    EXPECT_EQ(stored[u"LogLevel"], u"5");
    EXPECT_EQ(stored[u"LogPath"], Units(shownFolder));
    EXPECT_EQ(stored[u"LogFileCount"], u"9");
    EXPECT_EQ(stored[u"LogFileSize"], u"16777216");
}

TEST(LoggingOptionsGuiTest, ExportAndImportThroughTheCommonFileDialogs)
{
    SparkODBC::SOProductIdentity::Register();
    Platform::InitializePlatform(0, Platform::PLATFORM_APARTMENT_SINGLE_THREADED);
    Platform::Win32DialogHost host;
    DriverSupport::DSDialogModule::SetHost(&host);
    SparkODBC::QuillConfiguration configuration(u"", 2, nullptr);
    configuration.LoadDefaults();
    configuration.SetValue(DriverSupport::Keys::UID, u"alice");
    configuration.SetValue(DriverSupport::Keys::LogLevel, u"3");
    const std::wstring folder = MakeFolder(L"tarni-sdc");
    const std::wstring exported = folder + L"\\exported.sdc";
    const std::wstring imported = folder + L"\\imported.sdc";
    ::DeleteFileW(exported.c_str());  // no question about replacing it
    std::ofstream(imported.c_str(), std::ios::binary) << "\xEF\xBB\xBFUID=bob\r\nHost=a=b\r\n";

    const bool ok = GuiDriver::WhileModal(
        [&] {
            HWND logging = GuiDriver::WaitForDialog(L"Logging Options", ::GetCurrentProcessId());
            ASSERT_NE(logging, nullptr);
            GuiDriver::PostClick(logging, IDC_LOG_EXPORT);
            ChooseFile(logging, exported);
            GuiDriver::PostClick(logging, IDC_LOG_IMPORT);
            ChooseFile(logging, imported);
            ::Sleep(300);
            GuiDriver::PostClick(logging, IDCANCEL);
            EXPECT_TRUE(GuiDriver::WaitForClose(logging));
        },
        [&] { return DriverSupport::DSLoggingDialog::Show(nullptr, &configuration); });
    EXPECT_FALSE(ok);
    std::ifstream file(exported.c_str(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.find("\nUID=alice\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("LogLevel"), std::string::npos) << text;
    EXPECT_EQ(text.find('\r'), std::string::npos) << "LF line ends";
    EXPECT_EQ(configuration.GetValue(DriverSupport::Keys::UID), u"bob");
    EXPECT_EQ(configuration.GetValue(DriverSupport::Keys::Host), u"a=b");
    EXPECT_EQ(configuration.GetValue(DriverSupport::Keys::LogLevel), u"3");
    DriverSupport::DSDialogModule::SetHost(nullptr);
    Platform::UninitializePlatform();
}
