#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>
#include <thread>

#include "TestFiles.h"
#include "platform/ProcessEnvironment.h"
#include "platform/ProcessInfo.h"
#include "support/StringConverter.h"
#include "support/log/DriverLog.h"
#include "support/log/ETWLogger.h"

using namespace Tarni::Support;
using Tarni::tarni_wstring;
using TarniTest::ReadAll;
using TarniTest::ScratchFolder;
using TarniTest::Wide;
namespace fs = std::filesystem;

namespace
{
constexpr const char16_t* BASE_NAME = u"TarniSparkODBC_DriverConfig.log";

// The driver's settings as a test sets them.
class Settings
{
public:
    std::map<tarni_wstring, tarni_wstring> values;

    DriverLog::SettingReader Reader()
    {
        return [this](Tarni::tarni_wstring_view in_name) -> std::optional<tarni_wstring> {
            const auto found = values.find(tarni_wstring(in_name));
            return found == values.end() ? std::nullopt : std::optional<tarni_wstring>(found->second);
        };
    }
};

bool EndsWith(const tarni_wstring& in_text, const tarni_wstring& in_end)
{
    return in_text.size() >= in_end.size() && in_text.compare(in_text.size() - in_end.size(), in_end.size(), in_end) == 0;
}

std::vector<std::string> SplitLines(const std::string& in_text)
{
    std::vector<std::string> lines;
    std::istringstream stream(in_text);
    for (std::string line; std::getline(stream, line);)
    {
        if (!line.empty() && line.back() == '\r')
        {
            line.pop_back();
        }
        lines.push_back(line);
    }
    return lines;
}
}  // namespace

TEST(DriverLog, AppliesLevelFolderAndNameFromTheSettings)
{
    ScratchFolder folder;
    Settings settings;
    settings.values = {{u"LogLevel", u"LOG_debug"}, {u"LogPath", Wide(folder.Path())}};
    DriverLog log(BASE_NAME, settings.Reader());

    EXPECT_EQ(LOG_DEBUG, log.GetLogLevel());
    EXPECT_FALSE(log.IsUsingETW());
    const fs::path file = folder / "TarniSparkODBC_DriverConfig.log";
    EXPECT_EQ(Wide(folder.Path()) + Tarni::Platform::ProcessEnvironment::PathSeparator() + BASE_NAME,
              log.GetLogFilePath());

    log.LogDebug("Tarni::DriverSupport", "QDCConfiguration", "Load", "%s", "debug line");
    log.LogFunctionEntrance("Tarni::DriverSupport", "QDCConfiguration", "Load");
    const std::vector<std::string> lines = SplitLines(ReadAll(file));
    ASSERT_EQ(1U, lines.size());
    EXPECT_THAT(lines[0], testing::EndsWith(" Tarni::DriverSupport::QDCConfiguration::Load: debug line"));

    // Applying again takes a new level at once.
    settings.values[u"LogLevel"] = u"6";
    log.ApplySettings();
    log.LogFunctionEntrance("Tarni::DriverSupport", "QDCConfiguration", "Save");
    EXPECT_THAT(ReadAll(file), testing::HasSubstr("QDCConfiguration::Save: +++++ enter +++++"));
}

TEST(DriverLog, AnEmptyLogPathMeansTheCurrentFolder)
{
    Settings settings;
    DriverLog log(BASE_NAME, settings.Reader());
    EXPECT_EQ(LOG_OFF, log.GetLogLevel());
    EXPECT_EQ(tarni_wstring(u".") + Tarni::Platform::ProcessEnvironment::PathSeparator() + BASE_NAME,
              log.GetLogFilePath());
}

TEST(DriverLog, UseLogPrefixAddsUserAndProcessAndKeepsItWhileAbsent)
{
    ScratchFolder folder;
    Settings settings;
    settings.values = {{u"LogPath", Wide(folder.Path()) + u"/"}, {u"UseLogPrefix", u"1"}};
    DriverLog log(BASE_NAME, settings.Reader());

    std::string user;
    std::string error;
    ASSERT_TRUE(Tarni::Platform::ProcessInfo::GetCurrentUserName(user, error)) << error;
    const tarni_wstring prefix = Tarni::Support::StringConverter::FromUtf8(user) + u"_" +
                                 Tarni::Support::StringConverter::FromNumber(
                                     static_cast<unsigned long long>(Tarni::Platform::ProcessInfo::CurrentProcessId())) +
                                 u"_";
    EXPECT_EQ(prefix, log.GetLogPrefix());
    EXPECT_TRUE(EndsWith(log.GetLogFilePath(), prefix + BASE_NAME));

    settings.values.erase(u"UseLogPrefix");
    log.ApplySettings();
    EXPECT_EQ(prefix, log.GetLogPrefix());

    settings.values[u"UseLogPrefix"] = u"0";
    log.ApplySettings();
    EXPECT_EQ(u"", log.GetLogPrefix());
    EXPECT_TRUE(EndsWith(log.GetLogFilePath(),
                         tarni_wstring(1, Tarni::Platform::ProcessEnvironment::PathSeparator()) + BASE_NAME));
}

TEST(DriverLog, RotatesWithTheConfiguredSizeAndCount)
{
    ScratchFolder folder;
    Settings settings;
    settings.values = {{u"LogLevel", u"INFO"},
                       {u"LogPath", Wide(folder.Path())},
                       {u"LogFileSize", u"1k"},
                       {u"LogFileCount", u"2"}};
    DriverLog log(u"rotate.log", settings.Reader());
    for (int i = 0; i < 100; ++i)
    {
        log.LogInfo("N", "C", "F", "line %03d of a log that outgrows its limit", i);
    }
    EXPECT_TRUE(fs::exists(folder / "rotate.log"));
    EXPECT_TRUE(fs::exists(folder / "rotate.1.log"));
    EXPECT_FALSE(fs::exists(folder / "rotate.2.log"));
    EXPECT_LT(fs::file_size(folder / "rotate.1.log"), 1024U + 200U);
    EXPECT_THAT(ReadAll(folder / "rotate.log") + ReadAll(folder / "rotate.1.log"),
                testing::Not(testing::HasSubstr("line 000 ")));
}

TEST(DriverLog, EventTracingWithoutAPublisherFallsBackToTheFile)
{
    ScratchFolder folder;
    Settings settings;
    settings.values = {{u"LogLevel", u"4"}, {u"LogType", u"etw"}, {u"LogPath", Wide(folder.Path())}};
    ETWLogger::SetPublisherId(std::nullopt);
    DriverLog log(BASE_NAME, settings.Reader());
    EXPECT_FALSE(log.IsUsingETW());
    log.LogInfo("N", "C", "F", "to the file");
    EXPECT_THAT(ReadAll(folder / "TarniSparkODBC_DriverConfig.log"), testing::HasSubstr("to the file"));

    // With a publisher, event tracing replaces the file where the platform has it.
    ETWLogger::SetPublisherId(Tarni::Platform::EventPublisherId{0x1234, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}});
    log.ApplySettings();
    EXPECT_EQ(Tarni::Platform::EventTraceSink::IsSupported(), log.IsUsingETW());
    log.LogInfo("N", "C", "F", "to the events");
    ETWLogger::SetPublisherId(std::nullopt);
    const bool inFile = ReadAll(folder / "TarniSparkODBC_DriverConfig.log").find("to the events") != std::string::npos;
    EXPECT_NE(Tarni::Platform::EventTraceSink::IsSupported(), inFile);
}

TEST(DriverLog, AFolderThatCannotBeWrittenIsReportedOnceAndLoggingGoesOn)
{
    ScratchFolder folder;
    Settings settings;
    settings.values = {{u"LogLevel", u"TRACE"}, {u"LogPath", Wide(folder / "missing" / "deeper")}};
    DriverLog log(BASE_NAME, settings.Reader());
    testing::internal::CaptureStderr();
    for (int i = 0; i < 5; ++i)
    {
        EXPECT_NO_THROW(log.LogError("N", "C", "F", "line %d", i));
    }
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_THAT(errors, testing::HasSubstr("Cannot write the log file"));
    EXPECT_EQ(errors.find("Cannot write"), errors.rfind("Cannot write"));
}

TEST(DriverLog, LinesFromSeveralThreadsStayWholeWhileSettingsChange)
{
    ScratchFolder folder;
    Settings settings;
    settings.values = {{u"LogLevel", u"INFO"}, {u"LogPath", Wide(folder.Path())}, {u"LogFileSize", u"8k"},
                       {u"LogFileCount", u"50"}};
    DriverLog log(u"threads.log", settings.Reader());
    std::vector<std::thread> writers;
    for (int t = 0; t < 4; ++t)
    {
        writers.emplace_back([&log, t] {
            for (int i = 0; i < 300; ++i)
            {
                log.LogInfo("N", "C", "F", "writer %d line %d end", t, i);
            }
        });
    }
    for (int i = 0; i < 20; ++i)
    {
        log.ApplySettings();
    }
    for (std::thread& writer : writers)
    {
        writer.join();
    }

    const std::regex whole(R"(^.* INFO  \d+ N::C::F: writer \d line \d+ end$)");
    size_t count = 0;
    for (const auto& entry : fs::directory_iterator(folder.Path()))
    {
        for (const std::string& line : SplitLines(ReadAll(entry.path())))
        {
            EXPECT_TRUE(std::regex_match(line, whole)) << line;
            ++count;
        }
    }
    EXPECT_EQ(1200U, count);
}
