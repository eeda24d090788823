// The log of the configuration run: it is opened under the product's log name
// with the driver's logging settings from the store, takes the entry lines of
// the run, and a folder that cannot be written does not stop the run.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "driversupport/DSProductHelper.h"
#include "platform/SettingsStoreFactory.h"
#include "ui/DialogConstants.h"
#include "ui/scripted/ScriptedDialogHost.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"
#include "support/StringConverter.h"

using namespace Tarni;
using Tarni::DriverSupport::DSProductHelper;
using Tarni::Platform::ScriptedDialogHost;
using Tarni::Platform::ScriptedDialogWindow;
using Tarni::SparkODBC::SODriverConfigRun;
using Tarni::Support::StringConverter;
using testing::HasSubstr;

namespace
{
class RunLog : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
        m_folder = std::filesystem::temp_directory_path() / ("tarni-runlog-" + std::to_string(stamp));
        std::filesystem::create_directories(m_folder);
        m_options.iniPath = StringConverter::FromUtf8((m_folder / "odbc.ini").string());
    }
    void TearDown() override
    {
        // The registry outlives the test: the logging settings go again.
        auto store = Store();
        for (const char16_t* key : {u"LogLevel", u"LogPath"})
        {
            store->DeleteValue(key);
        }
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    std::unique_ptr<Platform::ISettingsStore> Store() const
    {
        return Platform::SettingsStoreFactory::OpenDriverStore(DSProductHelper::GetDriverStoreLocation(m_options.iniPath));
    }
    int RunAndOk()
    {
        m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) { w.Click(Platform::IDOK); });
        return SODriverConfigRun::Run(m_host, m_options);
    }
    static std::string ReadFile(const std::filesystem::path& in_path)
    {
        std::ifstream in(in_path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    std::filesystem::path m_folder;
    SODriverConfigRun::Options m_options;
    ScriptedDialogHost m_host;
};
}  // namespace

TEST_F(RunLog, TheRunLogsUnderTheProductLogNameWithTheStoredSettings)
{
    {
        auto store = Store();
        store->WriteValue(u"LogLevel", u"TRACE");
        store->WriteValue(u"LogPath", StringConverter::FromUtf8(m_folder.string()));
    }
    EXPECT_EQ(u"TarniSparkODBC_DriverConfig.log", SODriverConfigRun::GetLogFileName());
    EXPECT_EQ(1, RunAndOk());

    const std::string text = ReadFile(m_folder / "TarniSparkODBC_DriverConfig.log");
    for (const char* entry : {"Tarni::SparkODBC::SODriverConfigRun::Run: +++++ enter +++++",
                              "Tarni::SparkODBC::QDCConfiguration::Load: +++++ enter +++++",
                              "Tarni::SparkODBC::QDCConfiguration::Save: +++++ enter +++++"})
    {
        EXPECT_THAT(text, HasSubstr(entry));
    }
}

TEST_F(RunLog, AFolderThatCannotBeWrittenIsReportedOnceAndTheRunGoesOn)
{
    {
        auto store = Store();
        store->WriteValue(u"LogLevel", u"TRACE");
        store->WriteValue(u"LogPath", StringConverter::FromUtf8((m_folder / "missing" / "deeper").string()));
        store->WriteValue(u"DelegationUID", u"kept-after-a-failed-log");
    }
    testing::internal::CaptureStderr();
    const int result = RunAndOk();
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(1, result);
    EXPECT_THAT(errors, HasSubstr("Cannot write the log file"));
    EXPECT_EQ(errors.find("Cannot write the log file"), errors.rfind("Cannot write the log file"));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "missing"));
    bool saved = false;
    for (const auto& value : Store()->ReadAll())
    {
        saved = saved || (value.name == u"DelegationUID" && value.value == u"kept-after-a-failed-log");
    }
    EXPECT_TRUE(saved);
}
