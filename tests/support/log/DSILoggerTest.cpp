#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

#include "CapturingLogger.h"
#include "TestFiles.h"
#include "platform/ProcessInfo.h"
#include "core/SupportException.h"
#include "support/messages/DSIMessageManager.h"
#include "core/NullLogger.h"

using namespace Tarni::Support;
using TarniTest::CapturingLogger;

TEST(DSILogger, WritesTimeLevelThreadPlaceAndMessage)
{
    CapturingLogger logger(LOG_INFO);
    logger.LogInfo("Tarni::DriverSupport", "DSDSNConfiguration", "Load", "loaded %d values from %s", 42, "store");
    logger.LogFatal("Tarni::X", "C", "F", "%s", "fatal");
    const std::vector<std::string> lines = logger.Lines();
    ASSERT_EQ(2U, lines.size());
    const std::regex format(R"(^[A-Z][a-z]{2} \d{2} \d{2}:\d{2}:\d{2}\.\d{3} INFO  (\d+) )"
                            R"(Tarni::DriverSupport::DSDSNConfiguration::Load: loaded 42 values from store$)");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(lines[0], match, format)) << lines[0];
    EXPECT_EQ(std::to_string(Tarni::Platform::ProcessInfo::CurrentThreadId()), match[1].str());
    EXPECT_NE(std::string::npos, lines[1].find(" FATAL "));
}

TEST(DSILogger, WritesOnlyAtOrBelowItsLevel)
{
    CapturingLogger logger(LOG_WARNING);
    logger.LogError("N", "C", "F", "error");
    logger.LogWarning("N", "C", "F", "warning");
    logger.LogInfo("N", "C", "F", "info");
    logger.LogFunctionEntrance("N", "C", "F");
    EXPECT_EQ(2U, logger.Lines().size());

    logger.SetLogLevel(LOG_TRACE);
    logger.LogFunctionEntrance("Tarni::Support", "DriverLog", "ApplySettings");
    EXPECT_THAT(logger.Lines().back(),
                testing::EndsWith(" TRACE " + std::to_string(Tarni::Platform::ProcessInfo::CurrentThreadId()) +
                                  " Tarni::Support::DriverLog::ApplySettings: +++++ enter +++++"));

    logger.SetLogLevel(LOG_OFF);
    logger.LogFatal("N", "C", "F", "fatal");
    EXPECT_EQ(3U, logger.Lines().size());
}

TEST(DSILogger, NamespaceFilterComparesTheStartOfTheNamespace)
{
    CapturingLogger logger(LOG_TRACE);
    logger.SetNamespaceFilter("Tarni::Driver");
    logger.LogInfo("Tarni::DriverSupport", "C", "F", "kept");
    logger.LogInfo("Tarni::Support", "C", "F", "dropped");
    logger.LogInfo("Tarni", "C", "F", "dropped");
    logger.SetNamespaceFilter("");
    logger.LogInfo("Anything", "C", "F", "kept");
    ASSERT_EQ(2U, logger.Lines().size());
    EXPECT_FALSE(logger.Contains("dropped"));
}

TEST(DSILogger, LongMessagesAreWrittenWhole)
{
    CapturingLogger logger(LOG_INFO);
    const std::string text(100000, 'x');
    logger.LogInfo("N", "C", "F", "<%s>", text.c_str());
    EXPECT_THAT(logger.Lines().at(0), testing::EndsWith("N::C::F: <" + text + ">"));
}

namespace
{
class ThrowingLogger : public DSILogger
{
public:
    ThrowingLogger() : DSILogger(LOG_TRACE) {}

protected:
    void WriteLine(LogLevel, const std::string&) override { throw std::runtime_error("disk on fire"); }
};
}  // namespace

TEST(DSILogger, PassesAnExceptionFromTheSinkToTheCaller)
{
    ThrowingLogger logger;
    EXPECT_THROW(logger.LogWarning("N", "C", "F", "%s %d", "x", 1), std::runtime_error);
}

TEST(DSILogger, LogsAnErrorExceptionWithTheTextOfTheCatalogue)
{
    TarniTest::ScratchFolder folder;
    TarniTest::WriteAll(folder / "en-US" / "CSCommonMessages.xml",
                        "<Messages><Package ID='2' DefaultComponent='Support'>"
                        "<Error Key='LogTestErr' NativeErrorCode='9'>Cannot open %1%: %2%</Error>"
                        "</Package></Messages>");
    auto source = std::make_shared<DSIMessageSource>();
    source->NotifySettingChanged(u"ERRORMESSAGESPATH", TarniTest::Wide(folder.Path()));
    DSIMessageManager catalogue(source);

    CapturingLogger logger(LOG_ERROR);
    logger.LogError("Tarni::Support", "C", "F", SupportException(u"LogTestErr", {u"a.ini", u"denied"}), &catalogue);
    ASSERT_EQ(1U, logger.Lines().size());
    EXPECT_THAT(logger.Lines()[0], testing::EndsWith(" ERROR " +
                                                     std::to_string(Tarni::Platform::ProcessInfo::CurrentThreadId()) +
                                                     " Tarni::Support::C::F: Cannot open a.ini: denied"));
}

#if GTEST_HAS_DEATH_TEST
TEST(DSILoggerDeathTest, RejectsALevelOutsideTheTableAndAMissingMessageSource)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(CapturingLogger(static_cast<LogLevel>(7)), "Invalid Log Level");
    EXPECT_DEATH(
        {
            CapturingLogger logger(LOG_ERROR);
            logger.LogError("N", "C", "F", SupportException(u"X"), nullptr);
        },
        "msgSource");
}
#endif
