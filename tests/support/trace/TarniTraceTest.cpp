#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <regex>
#include <thread>

#include "TestFiles.h"
#include "platform/ProcessInfo.h"
#include "support/trace/TarniTrace.h"

using namespace Tarni::Support;
using TarniTest::ReadAll;
using TarniTest::ScratchFolder;
using testing::HasSubstr;

namespace
{
// Every test sets the trace up itself and switches it off afterwards.
class TarniTrace : public testing::Test
{
protected:
    void TearDown() override { _tarni_trace_configure(nullptr); }

    std::string Configure(const std::string& in_flags, const std::string& in_file)
    {
        m_value = in_flags + ":" + (m_folder / in_file).string();
        _tarni_trace_configure(m_value.c_str());
        return m_value;
    }

    // The trace file is a text file: on Windows its lines end in "\r\n".
    std::string Trace(const std::string& in_file)
    {
        tarni_trace_flush();
        std::string text = ReadAll(m_folder / in_file);
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text;
    }

    ScratchFolder m_folder;
    std::string m_value;
};

std::string Pid()
{
    return std::to_string(Tarni::Platform::ProcessInfo::CurrentProcessId());
}

std::string ThreadStamp()
{
    const unsigned long id = Tarni::Platform::ProcessInfo::CurrentThreadId();
    char stamp[16];
    std::snprintf(stamp, sizeof(stamp), "#%04X", static_cast<unsigned>(((id >> 16) ^ id) & 0xFFFF));
    return stamp;
}
}  // namespace

TEST_F(TarniTrace, WritesLinesUpToItsLevelWithProcessAndThreadIds)
{
    const std::string value = Configure("2pt", "trace");
    EXPECT_EQ(2 | TRACE_PID | TRACE_THREAD, g_tarniTraceState.load());
    TARNI_TRACE(1, "first %d", 1);
    TARNI_TRACE(2, "second %s", "two");
    TARNI_TRACE(3, "%s", "not written");

    const std::string text = Trace("trace.log");
    EXPECT_THAT(text, HasSubstr("_tarni_trace_check:"));
    EXPECT_THAT(text, HasSubstr("\tStarting to trace with TR4CE=\"" + value + "\" from PID=" + Pid() + "\t"));
    EXPECT_THAT(text, testing::Not(HasSubstr("not written")));
    const std::regex line("^TestBody:\\d+\\t(first 1|second two)\\t #" + ThreadStamp().substr(1) +
                          " pid:" + Pid() + " TarniTraceTest\\.cpp$");
    int matches = 0;
    std::istringstream lines(text);
    for (std::string each; std::getline(lines, each);)
    {
        matches += std::regex_match(each, line) ? 1 : 0;
    }
    EXPECT_EQ(2, matches) << text;
}

TEST_F(TarniTrace, FlagsDecorateAndTheNFlagDropsFileNameAndStartupLine)
{
    Configure("1nsT", "plain.LOG");
    TARNI_TRACE(1, "message");
    const std::string text = Trace("plain.LOG");
    EXPECT_FALSE(std::filesystem::exists(m_folder / "plain.LOG.log"));
    EXPECT_THAT(text, testing::Not(HasSubstr("Starting to trace")));
    EXPECT_TRUE(std::regex_match(text, std::regex("TestBody:\\d+\\tmessage\\t \\d{2}:\\d{2}:\\d{2} @\\d+\\.\\d{5}\\n")))
        << text;

    // Without decoration the line carries neither a tab nor a file name.
    Configure("1f", "bare");
    TARNI_TRACE(1, "bare line");
    EXPECT_THAT(Trace("bare.log"), testing::EndsWith("\tbare line\n"));
}

TEST_F(TarniTrace, AddsTheErrorTextAndLeavesErrnoAsItWas)
{
    Configure("1", "errno");
    errno = ENOENT;
    TARNI_TRACE(1, "open failed: ");
    EXPECT_EQ(ENOENT, errno);
    tarni_trace_set_tag("tagged");
    TARNI_TRACE(1, "with tag");
    tarni_trace_set_tag(nullptr);
    const std::string text = Trace("errno.log");
    EXPECT_THAT(text, HasSubstr("open failed: " + std::string(std::strerror(ENOENT)) + "\n"));
    EXPECT_THAT(text, HasSubstr("\twith tag\t tagged TarniTraceTest.cpp\n"));
}

TEST_F(TarniTrace, ANetworkPathOrAnUnopenableFileFallsBackToStandardError)
{
    testing::internal::CaptureStderr();
    _tarni_trace_configure("1:\\\\server\\share\\trace");
    TARNI_TRACE(1, "on stderr");
    std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_THAT(errors, HasSubstr("\"\\\\server\\share\\trace.log\" is a network path for TR4CE, reverting to stderr.\n"));
    EXPECT_THAT(errors, HasSubstr("on stderr"));
    EXPECT_STREQ("stderr", tarni_trace_path());

    const std::string missing = (m_folder / "absent" / "x").string();
    testing::internal::CaptureStderr();
    _tarni_trace_configure(("1l:" + missing).c_str());
    errors = testing::internal::GetCapturedStderr();
    EXPECT_THAT(errors, HasSubstr("Failed to open \"" + missing + ".log\" for TR4CE, reverting to stderr: "));
    EXPECT_EQ(0, g_tarniTraceState.load() & TRACE_LOCK);
}

TEST_F(TarniTrace, ALevelOfZeroOrNoValueIsOff)
{
    EXPECT_EQ(0, _tarni_trace_configure("0pt"));
    EXPECT_EQ(0, _tarni_trace_configure(nullptr));
    EXPECT_EQ(0, tarni_trace_level());
}

TEST_F(TarniTrace, DumpsNumbersSixteenToARowInAWidthFromTheirBits)
{
    Configure("1f", "dump");
    const std::uint32_t small[] = {1, 2, 3, 255};
    tarni_tdump(1, small, 4);
    std::uint32_t many[17];
    for (std::uint32_t i = 0; i < 17; ++i)
    {
        many[i] = i;
    }
    tarni_tdump(1, many, 17);
    tarni_tdump(2, small, 4);  // above the level
    EXPECT_EQ("   1   2   3 255\n"
              "  0  1  2  3  4  5  6  7  8  9 10 11 12 13 14 15\n"
              " 16\n",
              Trace("dump.log").substr(Trace("dump.log").find("   1")));
}

TEST_F(TarniTrace, WritesTheStackAndTheModuleList)
{
    Configure("1f", "stack");
    tarni_trace_stack(1);
    tarni_trace_modules(1);
    const std::string text = Trace("stack.log");
    const size_t stack = text.find("Current stack trace:\n  #");
    const size_t modules = text.find("Loaded modules:\n  0x");
    EXPECT_NE(std::string::npos, stack) << text;
    EXPECT_NE(std::string::npos, modules) << text;
}

TEST_F(TarniTrace, SharedFileLinesStayWholeAcrossThreads)
{
    Configure("1ln", "shared");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back([t] {
            for (int i = 0; i < 200; ++i)
            {
                TARNI_TRACE(1, "thread %d line %d", t, i);
            }
        });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    std::istringstream lines(Trace("shared.log"));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
    {
        EXPECT_TRUE(std::regex_match(line, std::regex("operator\\(\\):\\d+\\tthread \\d line \\d+\\t"))) << line;
    }
    EXPECT_EQ(800, count);
}
