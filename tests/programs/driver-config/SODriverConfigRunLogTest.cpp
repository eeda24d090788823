// The log of the configuration run: it is opened under the product's log name
// with the driver's logging settings from the store, takes the entry lines of
// the run, and a folder that cannot be written does not stop the run.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "programs/driver-config/DriverConfigRunFixture.h"

using namespace Tarni;
using Tarni::Platform::ScriptedDialogWindow;
using Tarni::SparkODBC::SODriverConfigRun;
using Tarni::Support::StringConverter;
using testing::HasSubstr;

namespace
{
class RunLog : public Testing::DriverConfigRunFixture
{
protected:
    void TearDown() override
    {
        // The registry outlives the test: the logging settings go again.
        auto store = Store();
        for (const char16_t* key : {u"LogLevel", u"LogPath"})
        {
            store->DeleteValue(key);
        }
        DriverConfigRunFixture::TearDown();
    }
    int RunAndOk()
    {
        m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) { w.Click(Platform::IDOK); });
        return SODriverConfigRun::Run(m_host, m_options);
    }
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

    const std::string text = Testing::TempDirectory::ReadFile(m_folder / "TarniSparkODBC_DriverConfig.log");
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
