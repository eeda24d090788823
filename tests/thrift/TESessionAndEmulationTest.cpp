#include <gtest/gtest.h>

#include <regex>

#include "thrift/ErrorCapture.h"
#include "common/RecordingLogger.h"
#include "thrift/TESettings.h"

using namespace Tarni;
using namespace Tarni::ThriftExtension;
using Tarni::Testing::CaptureError;
using Tarni::Testing::RecordingLogger;

TEST(TESessionTagTest, AddedOnlyWhenEnabledAndDifferentPerConnection)
{
    RecordingLogger log;
    TESettings off;
    off.AddSessionTagHeader(&log);
    EXPECT_EQ(off.m_customHttpHeaders.count(TESettings::SESSION_TAG_HEADER), 0u);

    TESettings first;
    TESettings second;
    first.m_httpSettings.m_enableSessionTag = true;
    second.m_httpSettings.m_enableSessionTag = true;
    first.AddSessionTagHeader(&log);
    second.AddSessionTagHeader(&log);
    const std::string tag = first.m_customHttpHeaders.at("X-Thriftserver-Session-Tag");
    const std::regex version4("^[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}$");
    EXPECT_TRUE(std::regex_match(tag, version4)) << tag;
    EXPECT_NE(tag, second.m_customHttpHeaders.at("X-Thriftserver-Session-Tag"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "Setting thrift session tag as: " + tag));

    first.AddSessionTagHeader(&log);
    EXPECT_NE(first.m_customHttpHeaders.at("X-Thriftserver-Session-Tag"), tag);
    EXPECT_EQ(first.m_customHttpHeaders.size(), 1u);
    first.RemoveSessionTagHeader(&log);
    EXPECT_TRUE(first.m_customHttpHeaders.empty());
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "Removing thrift session tag"));
}

TEST(TEHttpApiRetryEmulationTest, CountTwoWithTwoStatusesOverFourCalls)
{
    RecordingLogger log;
    TEHttpApiRetryEmulationTestSetting setting({{503, 503}, {429, 429}}, 2, true, &log);
    TEEmulatedHttpResponse response;

    setting.ApplyEmulationSettings(response);
    EXPECT_TRUE(response.m_isEmulated);
    EXPECT_TRUE(response.m_sendToServer);
    EXPECT_EQ(response.m_statusLine, "HTTP/1.1 503 TEST");
    setting.ApplyEmulationSettings(response);
    EXPECT_EQ(response.m_statusLine, "HTTP/1.1 429 TEST");
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "Applying emulated HTTP status line: HTTP/1.1 429 TEST"));

    setting.ApplyEmulationSettings(response);
    EXPECT_FALSE(response.m_isEmulated);
    EXPECT_EQ(response.m_statusLine, "");
    EXPECT_EQ(setting.GetNumEmulationRemaining(), 2u);
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "The max number of emulation had already been reached.Emulation is not "
                                            "being applied and m_numEmulationRmaining is being reset to 2."));

    setting.ApplyEmulationSettings(response);
    EXPECT_EQ(response.m_statusLine, "HTTP/1.1 503 TEST");
}

TEST(TEHttpApiRetryEmulationTest, StatusCursorWrapsAndRangesExpand)
{
    TEHttpApiRetryEmulationTestSetting setting({{500, 502}, {429, 429}}, 1, false, nullptr);
    std::vector<std::uint16_t> seen;
    for (int i = 0; i < 6; ++i)
    {
        seen.push_back(setting.GetNextHttpStatus());
    }
    EXPECT_EQ(seen, (std::vector<std::uint16_t>{500, 501, 502, 429, 500, 501}));

    const auto empty = CaptureError([] { TEHttpApiRetryEmulationTestSetting({}, 1, false, nullptr); });
    EXPECT_EQ(empty.key, "TETestError");
    EXPECT_EQ(empty.text, "The TEHttpStatusRanges passed in to the TEHttpApiRetryEmulationTestSetting function cannot "
                          "be empty. Please check the HttpApiRetryEmulationTestSettings configuration.");
    EXPECT_EQ(CaptureError([] { TEHttpApiRetryEmulationTestSetting({{0, 65535}, {1, 1}}, 1, false, nullptr); }).key,
              "TETestError");
}

TEST(TEHttpApiRetryEmulationTest, AllAppliesToEveryCall)
{
    TEHttpApiRetryEmulationTestSettings settings;
    settings.AddEmulationSetting("all", TEHttpApiRetryEmulationTestSetting({{503, 503}}, 1, false, nullptr), nullptr);
    ASSERT_NE(settings.GetEmulationSetting("GetTables"), nullptr);
    EXPECT_EQ(settings.GetEmulationSetting("GetTables"), settings.GetEmulationSetting("anything"));
}

TEST(TEHTTPSettingsTest, LogSettingsWritesTheFormatsAsTheyStand)
{
    RecordingLogger log;
    TEHTTPSettings settings;
    settings.m_retriableHttpApiNames = {"OpenSession", "FetchResults"};
    settings.m_maxNumHttpApiRtries = 7;
    settings.m_httpApiRetryInterval = -3;
    settings.m_enableSessionTag = true;
    settings.LogSettings(&log);

    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_retriableHttpApiNames: OpenSession, FetchResults"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_retriableHttpStatusCodes: 400+402+404-406+408-599"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_maxNumHttpApiRtries: 7ll"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_httpApiRetryInterval: -3ll"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_numHttpReqsToTriggerHttpCxnReset: 1000ll"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_enableSessionTag: true"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_isEnableRecreateThriftClientBeforeRetry: false"));
    // Field name lines plus the entry line.
    EXPECT_EQ(log.records.size(), 20u);
}

TEST(TETestClientSettingsTest, FailsTheChosenCallAfterTheSkippedOnes)
{
    RecordingLogger log;
    TETCLIServiceIfTestClientSettings settings;
    settings.m_isEnableSslErrorEmulation = true;
    settings.m_thriftApiForSslErrorEmulation = "FetchResults";
    settings.m_numThriftApiCallsToSkipBeforeSslErrorEmulation = 2;
    settings.m_isDisableSslErrorEmulationAtDestruction = true;

    EXPECT_FALSE(settings.ShouldEmulateSslError("ExecuteStatement", &log));
    EXPECT_FALSE(settings.ShouldEmulateSslError("FetchResults", &log));
    EXPECT_FALSE(settings.ShouldEmulateSslError("fetchresults", &log));
    EXPECT_TRUE(settings.ShouldEmulateSslError("FetchResults", &log));
    EXPECT_TRUE(settings.m_isEmulateSslError);

    settings.LogSettings(&log);
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_thriftApiForSslErrorEmulation: FetchResults"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_numThriftApiCallsToSkipBeforeSslErrorEmulation: 2"));
    EXPECT_TRUE(log.Has(Support::LOG_DEBUG, "m_isEmulateSslError: true"));

    settings.OnClientDestruction(&log);
    EXPECT_FALSE(settings.ShouldEmulateSslError("FetchResults", &log));
}
