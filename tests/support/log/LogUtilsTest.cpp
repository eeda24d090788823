#include <gtest/gtest.h>

#include <limits>

#include "support/log/LogUtils.h"

using Tarni::Support::LogUtils;
using namespace Tarni::Support;

TEST(LogUtils, ToLogLevelAcceptsNamesDigitsAndThePrefix)
{
    for (const char* debug : {"log_debug", "DEBUG", "debug", "5", "LOG_DEBUG"})
    {
        EXPECT_EQ(LOG_DEBUG, LogUtils::ToLogLevel(std::string_view(debug))) << debug;
    }
    EXPECT_EQ(LOG_WARNING, LogUtils::ToLogLevel(std::string_view("Log_Warning")));
    EXPECT_EQ(LOG_TRACE, LogUtils::ToLogLevel(u"trace"));
    EXPECT_EQ(LOG_FATAL, LogUtils::ToLogLevel(std::string_view("LOG_1")));
    // Only the table's names count: an abbreviation is unreadable.
    EXPECT_EQ(LOG_OFF, LogUtils::ToLogLevel(std::string_view("Warn")));
}

TEST(LogUtils, ToLogLevelClampsNumbersAndRejectsTheRest)
{
    EXPECT_EQ(LOG_OFF, LogUtils::ToLogLevel(std::string_view("LOG_")));
    EXPECT_EQ(LOG_TRACE, LogUtils::ToLogLevel(std::string_view("9")));
    EXPECT_EQ(LOG_TRACE, LogUtils::ToLogLevel(std::string_view("99999999999999999999999")));
    EXPECT_EQ(LOG_OFF, LogUtils::ToLogLevel(std::string_view("-3")));
    EXPECT_EQ(LOG_OFF, LogUtils::ToLogLevel(std::string_view("abc")));
    EXPECT_EQ(LOG_OFF, LogUtils::ToLogLevel(std::string_view("")));
    EXPECT_EQ(LOG_OFF, LogUtils::ToLogLevel(std::string_view("4x")));
    EXPECT_EQ(LOG_OFF, LogUtils::ToLogLevel(u"d\u00E9bug"));
}

TEST(LogUtils, LevelTextsAreFiveCharacters)
{
    const char* expected[] = {"OFF  ", "FATAL", "ERROR", "WARN ", "INFO ", "DEBUG", "TRACE"};
    for (int level = 0; level <= 6; ++level)
    {
        EXPECT_STREQ(expected[level], LogUtils::GetLevelText(level));
    }
    EXPECT_STREQ("UNKWN", LogUtils::GetLevelText(7));
    EXPECT_STREQ("UNKWN", LogUtils::GetLevelText(-1));
}

TEST(LogUtils, LogFileSizeReadsUnitsFractionsAndFallsBackToTwentyMegabytes)
{
    EXPECT_EQ(10485760ULL, LogUtils::ParseLogFileSize(std::string_view("10 MB")));
    EXPECT_EQ(524288ULL, LogUtils::ParseLogFileSize(std::string_view("512k")));
    EXPECT_EQ(1572864ULL, LogUtils::ParseLogFileSize(std::string_view("1.5M")));
    EXPECT_EQ(2147483648ULL, LogUtils::ParseLogFileSize(u"2g  "));
    EXPECT_EQ(4096ULL, LogUtils::ParseLogFileSize(std::string_view("4096b")));
    EXPECT_EQ(100ULL, LogUtils::ParseLogFileSize(std::string_view("100")));
    EXPECT_EQ(0ULL, LogUtils::ParseLogFileSize(std::string_view("0")));
    for (const char* fallback : {"", "-1", "abc", "1e3", "K", "1.2.3M", "10 M B"})
    {
        EXPECT_EQ(20971520ULL, LogUtils::ParseLogFileSize(std::string_view(fallback))) << fallback;
    }
    const unsigned long long max = std::numeric_limits<unsigned long long>::max();
    EXPECT_EQ(max, LogUtils::ParseLogFileSize(std::string_view("17179869184G")));
    EXPECT_EQ(max, LogUtils::ParseLogFileSize(std::string_view("99999999999999999999999")));
    EXPECT_EQ(max - 107, LogUtils::ParseLogFileSize(std::string_view("17179869183.9999999G")));
    EXPECT_EQ(max, LogUtils::ParseLogFileSize(std::string_view("17179869183.99999999999G")));
}

TEST(LogUtils, LogFileCountFallsBackToFifty)
{
    EXPECT_EQ(3, LogUtils::ParseLogFileCount(std::string_view("3")));
    EXPECT_EQ(7, LogUtils::ParseLogFileCount(u" 7 "));
    for (const char* fallback : {"0", "", "x", "-2", "3.5", "99999999999"})
    {
        EXPECT_EQ(50, LogUtils::ParseLogFileCount(std::string_view(fallback))) << fallback;
    }
}

TEST(LogUtils, LogPathEndsInExactlyOneSeparator)
{
    EXPECT_EQ(u"D:/logs\\", LogUtils::NormalizeLogPath(u"D:/logs/", u'\\'));
    EXPECT_EQ(u"D:\\logs\\", LogUtils::NormalizeLogPath(u"D:\\logs", u'\\'));
    EXPECT_EQ(u".\\", LogUtils::NormalizeLogPath(u"", u'\\'));
    EXPECT_EQ(u"./", LogUtils::NormalizeLogPath(u"", u'/'));
    EXPECT_EQ(u"/var/log/", LogUtils::NormalizeLogPath(u"/var/log\\", u'/'));
}
