#include <gtest/gtest.h>

#include "support/TarniSettingReader.h"
#include "thrift/ErrorCapture.h"
#include "common/RecordingLogger.h"
#include "thrift/TEConnectionUtils.h"

using namespace Tarni;
using namespace Tarni::ThriftExtension;
using DriverSupport::ConfigurationMap;
using Tarni::Testing::CaptureError;
using Tarni::Testing::RecordingLogger;

namespace
{
class TEConnectionUtilsTest : public ::testing::Test
{
protected:
    void SetUp() override { Support::TarniSettingReader::Reset(); }

    void Read(const ConfigurationMap& in_settings) { TEConnectionUtils::ReadConnectionSetting(in_settings, m_settings, &m_log, m_warnings); }

    TEHttpStatusRanges Ranges(const std::string& in_text)
    {
        TEHttpStatusRanges ranges;
        TEConnectionUtils::ParseHttpStatusRanges(in_text, ranges, &m_log);
        return ranges;
    }

    TESettings m_settings;
    RecordingLogger m_log;
    DriverSupport::DSWarningList m_warnings;
};

bool Retriable(const TEHttpStatusRanges& in_ranges, unsigned in_status)
{
    for (const auto& [first, last] : in_ranges)
    {
        if (in_status >= first && in_status <= last) return true;
    }
    return false;
}
}  // namespace

TEST_F(TEConnectionUtilsTest, StatusRangesParseSinglesAndRanges)
{
    EXPECT_EQ(Ranges("500"), (TEHttpStatusRanges{{500, 500}}));
    EXPECT_EQ(Ranges(" 400 + 404 - 406 "), (TEHttpStatusRanges{{400, 400}, {404, 406}}));
    EXPECT_TRUE(m_log.Has(Support::LOG_DEBUG, "Parsing HTTP status code ranges string: 500"));
    EXPECT_TRUE(m_log.Has(Support::LOG_DEBUG, "Parsing HTTP status code range string: 404 - 406"));

    // The default leaves out 401, 403 and 407 on purpose.
    const TEHttpStatusRanges defaults = Ranges("400+402+404-406+408-599");
    EXPECT_EQ(defaults, TESettings().m_httpSettings.m_retriableHttpStatusCodes);
    for (unsigned status : {400u, 402u, 404u, 405u, 406u, 408u, 503u, 599u})
    {
        EXPECT_TRUE(Retriable(defaults, status)) << status;
    }
    for (unsigned status : {401u, 403u, 407u, 399u, 600u})
    {
        EXPECT_FALSE(Retriable(defaults, status)) << status;
    }
}

TEST_F(TEConnectionUtilsTest, StatusRangeErrorsCarryTheirTexts)
{
    const auto parse = [&](const std::string& in_text) { return CaptureError([&] { Ranges(in_text); }); };

    auto error = parse("500-400");
    EXPECT_EQ(error.key, "TEStatusRangesParsingError");
    EXPECT_EQ(error.text, "The second number in the HTTP status code range 400 should not be smaller than the first "
                          "number in the HTTP status code range 500. Please check your configuration.");
    error = parse("5xx");
    EXPECT_EQ(error.key, "TEStatusRangesParsingError");
    EXPECT_EQ(error.text.rfind("Unable to convert the HTTP status code string '5xx' into an unsigned integer. Please "
                               "check your configuration. Detailed error: ", 0), 0u);
    error = parse("1-2-3");
    EXPECT_EQ(error.text, "The expected number of sub components in a HTTP status code range is either 1 or 2, but 3 "
                          "was found. Please check your configuration.");
    for (const char* empty : {"", "+", " + "})
    {
        EXPECT_EQ(parse(empty).text, "Unable to find any valid HTTP status code ranges. Please check your configuration.");
    }
    EXPECT_NE(parse("70000").text.find("greater than 65535"), std::string::npos);
    EXPECT_NE(parse("500-").text.find("'' into an unsigned integer"), std::string::npos);
    EXPECT_TRUE(m_log.HasFragment("1-2-3"));
}

TEST_F(TEConnectionUtilsTest, RecordKeepsDefaultsForAbsentKeysAndFlagsGivenOnes)
{
    Read({{u"Host", u"h"}, {u"Port", u"443"}, {u"TcpKeepaliveTime", u"0"}, {u"Catalog", u""},
          {u"QueryTimeoutOverride", u""}});
    EXPECT_EQ(m_settings.m_host, "h");
    EXPECT_EQ(m_settings.m_port, 443);
    EXPECT_EQ(m_settings.m_tcpKeepaliveTime, 0u);
    EXPECT_TRUE(m_log.Has(Support::LOG_WARNING, "m_tcpKeepaliveTime is 0, will use the system default"));
    EXPECT_FALSE(m_log.HasFragment("m_tcpKeepaliveInterval is 0"));
    // An empty override is the stored default "": not an override.
    EXPECT_FALSE(m_settings.m_isQueryTimeoutOverridden);
    EXPECT_TRUE(m_settings.m_isCatalogSet);
    EXPECT_FALSE(m_settings.m_isServerSupportsDatabricksCatalogSspSet);
    EXPECT_TRUE(m_settings.m_enableTranslationForCTAS);
    EXPECT_TRUE(m_warnings.IsEmpty());

    TESettings second;
    second.m_queryTimeoutOverride = 30;
    TEConnectionUtils::ReadConnectionSetting({{u"ServerSupportsDatabricksCatalogSsp", u"0"}}, second, &m_log, m_warnings);
    EXPECT_FALSE(second.m_isQueryTimeoutOverridden);
    EXPECT_TRUE(second.m_isServerSupportsDatabricksCatalogSspSet);
    EXPECT_FALSE(second.m_serverSupportsDatabricksCatalogSsp);

    TEConnectionUtils::ReadConnectionSetting({{u"QueryTimeoutOverride", u"0"}}, second, &m_log, m_warnings);
    EXPECT_TRUE(second.m_isQueryTimeoutOverridden);
    EXPECT_EQ(second.m_queryTimeoutOverride, 0u);
}

TEST_F(TEConnectionUtilsTest, HttpRetrySettings)
{
    Read({{u"HttpApiRetryInterval", u"abc"}, {u"RetriableHttpApiNames", u"ExecuteStatement, fetchresults"},
          {u"RetriableHttpStatusCodeRanges", u"503"}, {u"TemporarilyUnavailableRetry", u"0"},
          {u"RateLimitRetryTimeout", u"30"}, {u"http.header.X-Custom", u"v"}});
    const TEHTTPSettings& http = m_settings.m_httpSettings;
    EXPECT_EQ(http.m_httpApiRetryInterval, 1);  // default kept
    ASSERT_EQ(m_warnings.Size(), 1u);
    EXPECT_EQ(m_warnings.GetWarnings()[0].m_messageKey, u"TEHttpApiRetryIntervalConversionWarn");
    EXPECT_TRUE(m_log.HasFragment("Unable to convert the value, abc, for the HttpApiRetryInterval configuration into a "
                                  "64-bit integer. Error detail: "));
    EXPECT_EQ(http.m_retriableHttpApiNames, (std::vector<std::string>{"ExecuteStatement", "FetchResults"}));
    EXPECT_EQ(http.m_retriableHttpStatusCodes, (TEHttpStatusRanges{{503, 503}}));
    EXPECT_FALSE(m_settings.m_retryAfterSettings[TERetryAfterKind::TemporarilyUnavailable].m_isRetryEnabled);
    EXPECT_EQ(m_settings.m_retryAfterSettings[TERetryAfterKind::RateLimit].m_retryTimeout, 30u);
    EXPECT_EQ(m_settings.m_customHttpHeaders.at("X-Custom"), "v");

    TESettings negative;
    TEConnectionUtils::ReadConnectionSetting({{u"HttpApiRetryInterval", u"-5"}}, negative, &m_log, m_warnings);
    EXPECT_EQ(negative.m_httpSettings.m_httpApiRetryInterval, -5);

    EXPECT_EQ(CaptureError([&] { Read({{u"RetriableHttpApiNames", u"OpenSession,,CloseSession"}}); }).key,
              "TEEmptyApiCallNameError");
    const auto invalid = CaptureError([&] { Read({{u"RetriableHttpApiNames", u"OpenSesion"}}); });
    EXPECT_EQ(invalid.key, "TEInvalidApiCallNameError");
    EXPECT_NE(invalid.text.find("\"OpenSesion\""), std::string::npos);

    TEConnectionUtils::ReadHTTPRetrySetting(static_cast<TERetryAfterKind>(7), {}, m_settings, &m_log, m_warnings);
    EXPECT_TRUE(m_log.Has(Support::LOG_ERROR, "Attempting to read settings into an unsupported HTTP retry after response (7)"));
}

TEST_F(TEConnectionUtilsTest, TestOnlySettingsAreLoggedAsWarnings)
{
    Read({{u"ExpectedAuthCookiesForTesting", u"c"}, {u"ExpectedSspForTesting", u"s"}, {u"EmulatedHttpRespCode", u"503"},
          {u"EnableHttpApiIdleEmulationTest", u"1"}, {u"HttpEmulatedApiIdleTime", u"12"}});
    EXPECT_TRUE(m_log.Has(Support::LOG_WARNING, "WARNING !!! The ExpectedAuthCookiesForTesting configuration has been "
                                                "passed in. This configuration should only used for testing purposes."));
    EXPECT_TRUE(m_log.Has(Support::LOG_WARNING, "WARNING !!! The ExpectedSspForTesting configuration has been passed "
                                                "in. This configuration should only used for testing purposed."));
    EXPECT_TRUE(m_log.HasFragment("The EmulatedHttpRespCode configuration has been passed in."));
    EXPECT_TRUE(m_log.Has(Support::LOG_WARNING, "Idle emulation is enabled!!!, there driver will enable a waiting time "
                                                "of 12 seconds before sending an API call."));
    EXPECT_EQ(m_settings.m_emulatedHttpRespCode, 503);
}

TEST_F(TEConnectionUtilsTest, RetryEmulationNeedsBothSwitchAndValue)
{
    auto error = CaptureError([&] { Read({{u"HttpApiRetryEmulationTestSettings", u"ALL:1:503"}}); });
    EXPECT_EQ(error.key, "TETestError");
    EXPECT_EQ(error.text, "The HttpApiRetryEmulationTestSettings is passed in via the connection string/DSN but the "
                          "EnableHttpApiRetryEmulationTest is not enabled. Please check your configuration.");
    error = CaptureError([&] { Read({{u"EnableHttpApiRetryEmulationTest", u"1"}}); });
    EXPECT_EQ(error.text, "The EnableHttpApiRetryEmulationTest is enabled but the HttpApiRetryEmulationTestSettings is "
                          "not passed in. Please check your configuration.");

    Read({{u"EnableHttpApiRetryEmulationTest", u"1"},
          {u"HttpApiRetryEmulationTestSettings", u"ExecuteStatement:2:503+429; fetchResults:1:500-501:1;"}});
    TEHttpApiRetryEmulationTestSettings& emulation = m_settings.m_httpApiRetryEmulationTestSettings;
    ASSERT_EQ(emulation.Size(), 2u);
    EXPECT_EQ(emulation.GetEmulationSetting("ExecuteStatement")->GetHttpStatusCodes(),
              (std::vector<std::uint16_t>{503, 429}));
    EXPECT_TRUE(emulation.GetEmulationSetting("FetchResults")->IsSendToServer());
    EXPECT_EQ(emulation.GetEmulationSetting("OpenSession"), nullptr);
    EXPECT_TRUE(m_log.HasFragment("Parsing HttpApiRetryEmulationTestSettings configuration value: ExecuteStatement:2"));
}

TEST_F(TEConnectionUtilsTest, EmulationSettingErrors)
{
    const auto parse = [&](const std::string& in_text) {
        return CaptureError([&] {
            TEHttpApiRetryEmulationTestSettings settings;
            TEConnectionUtils::ParseHttpStatusEmulationSettings(in_text, settings, &m_log);
        });
    };
    EXPECT_EQ(parse(" ; ;").text, "The value of HttpApiRetryEmulationTestSettings does not contain any valid emulation "
                                  "settings. Please check your configuration.");
    EXPECT_EQ(parse("ALL:1").text, "The expected number of components in an emulation setting is 3 to 4 but the actual "
                                   "number of components is 2. Please check your configuration.");
    EXPECT_EQ(parse(":1:503").key, "TEEmptyApiCallNameError");
    EXPECT_EQ(parse("ALL:two:503").text, "Unable to convert the emulation count string 'two' into an unsigned integer. "
                                         "Please check your configuration.");
    EXPECT_EQ(parse("ALL:1:5x").key, "TEStatusRangesParsingError");
    EXPECT_EQ(parse("ALL:1:503:2").text, "Unable to convert the send to server string '2' into boolean. The valid value "
                                         "is 0 or 1. Please check your configuration.");
    EXPECT_EQ(parse("GetTables:1:503;gettables:2:500").text,
              "There are more than one emulation configurations defined for the API call \"GetTables\" in the value of "
              "HttpApiRetryEmulationTestSettings. There can be at most one emulation configuration specified for an "
              "API call in the value of HttpApiRetryEmulationTestSettings. Please check your configuration.");
    const std::string allWithOther = parse("GetTables:1:503;ALL:2:500").text;
    EXPECT_EQ(allWithOther.rfind("If emulation test settings is specified for all API calls", 0), 0u);
    EXPECT_EQ(parse("ALL:2:500;GetTables:1:503").text, allWithOther);
    const std::string unknown = parse("Nope:1:503").text;
    EXPECT_EQ(unknown.rfind("The API call name \"Nope\" passed in is not valid. The valid API call names are (ALL, "
                            "OpenSession, ", 0), 0u);
    EXPECT_NE(unknown.find("RenewDelegationToken).  Please check your configuration."), std::string::npos);
}

TEST_F(TEConnectionUtilsTest, ServerSidePropertiesAndTransport)
{
    Read({{u"SSP_Spark.Sql.Mode", u"ansi"}, {u"BDS_Bds.Key", u"1"}, {u"SSP_BDS_Other", u"2"},
          {u"ThriftTransport", u"2"}});
    EXPECT_EQ(m_settings.m_serverSideProperties, (std::map<std::string, std::string>{
                                                     {"spark.sql.mode", "ansi"}, {"bds_other", "2"}}));
    EXPECT_TRUE(m_settings.m_bdsServerSideProperties.empty());
    EXPECT_EQ(m_settings.m_transportMode, TETransportMode::HTTP);

    TESettings bds;
    TEConnectionUtils::ReadConnectionSetting({{u"EnableBdsSspHandling", u"1"}, {u"LCaseSspKeyName", u"0"},
                                              {u"UCaseSspKeyName", u"1"}, {u"SSP_a", u"x"}, {u"BDS_b", u"1"},
                                              {u"SSP_BDS_c", u"2"}, {u"TransportMode", u"sasl"}},
                                             bds, &m_log, m_warnings);
    EXPECT_EQ(bds.m_serverSideProperties, (std::map<std::string, std::string>{{"A", "x"}}));
    EXPECT_EQ(bds.m_bdsServerSideProperties, (std::map<std::string, std::string>{{"BDS_B", "1"}, {"BDS_C", "2"}}));
    EXPECT_EQ(bds.m_transportMode, TETransportMode::SASL);

    TESettings invalid;
    TEConnectionUtils::ReadConnectionSetting({{u"TransportMode", u"udp"}}, invalid, &m_log, m_warnings);
    EXPECT_EQ(invalid.m_transportMode, TETransportMode::Binary);
    EXPECT_EQ(m_warnings.Size(), 1u);
}

TEST_F(TEConnectionUtilsTest, SamlNeedsTheHttpTransport)
{
    Read({{u"AuthMech", u"12"}, {u"ThriftTransport", u"2"}, {u"SSOClientIdentifierHeader", u"X-Id"}});
    EXPECT_EQ(m_settings.m_ssoClientIdentifierHeader, "X-Id");
    EXPECT_EQ(m_settings.m_ssoTokenResponsePortHeader, "X-Hive-Token-Response-Port");
    EXPECT_EQ(CaptureError([&] { Read({{u"AuthMech", u"12"}, {u"ThriftTransport", u"1"}}); }).key,
              "TEInvalidSAMLAuthFlow");
}

TEST_F(TEConnectionUtilsTest, UserAgentArrangements)
{
    EXPECT_EQ(TEConnectionUtils::BuildUserAgent("Drv/1.0", "", false), "Drv/1.0 Thrift/0.9.0 (C++/THttpClient)");
    EXPECT_EQ(TEConnectionUtils::BuildUserAgent("Drv/1.0", "App/2", false),
              "Drv/1.0 Thrift/0.9.0 (C++/THttpClient) App/2");
    EXPECT_EQ(TEConnectionUtils::BuildUserAgent("Drv/1.0", "App/2", true),
              "Thrift/0.9.0 (C++/THttpClient) Drv/1.0;App/2");
    EXPECT_EQ(TEConnectionUtils::GetProductToken(), "TarniSparkODBCDriver/2.7.5.1012");

    Read({{u"UserAgentEntry", u"App/2 (ci)"}, {u"UseLegacyUserAgent", u"true"}});
    EXPECT_EQ(m_settings.m_userAgent, "Thrift/0.9.0 (C++/THttpClient) TarniSparkODBCDriver/2.7.5.1012;App/2 (ci)");
}

TEST_F(TEConnectionUtilsTest, UpdateRereadsOnlyTheChangeableSettings)
{
    Read({{u"Port", u"1"}, {u"KrbSpnRdns", u"0"}});
    TEConnectionUtils::UpdateConnectionSettings({{u"Port", u"2"}, {u"KrbSpnRdns", u"1"}, {u"ApplySSPWithQueries", u"0"},
                                                 {u"LCaseSspKeyName", u"0"}, {u"UCaseSspKeyName", u"1"},
                                                 {u"EnableSamlCookieCaching", u"1"}, {u"SSOWebServerPort", u"9"}},
                                                m_settings, &m_log, m_warnings);
    EXPECT_EQ(m_settings.m_port, 1);
    EXPECT_EQ(m_settings.m_ssoWebServerPort, 0);
    EXPECT_TRUE(m_settings.m_krbSpnRdns);
    EXPECT_FALSE(m_settings.m_applySSPWithQueries);
    EXPECT_FALSE(m_settings.m_lCaseSspKeyName);
    EXPECT_TRUE(m_settings.m_uCaseSspKeyName);
    EXPECT_TRUE(m_settings.m_enableSamlCookieCaching);
}

TEST_F(TEConnectionUtilsTest, ReadEnvVarLogsTheValue)
{
    Support::TarniSettingReader::Reset();
    EXPECT_EQ(TEConnectionUtils::ReadEnvVar("TARNI_TE_SURELY_UNSET_VARIABLE", &m_log), "");
    EXPECT_TRUE(m_log.Has(Support::LOG_DEBUG, "Value read for the environment variable TARNI_TE_SURELY_UNSET_VARIABLE is: "));
    EXPECT_EQ(TEConnectionUtils::ReadEnvVar("bad\xff", &m_log), "");
    EXPECT_TRUE(m_log.HasFragment("An error occurred while attempting to read the environment variable bad"));
}

TEST_F(TEConnectionUtilsTest, OciRegionProfileAndEndpoints)
{
    EXPECT_EQ(TEConnectionUtils::ExtractOCIRegionFromHost("DataFlowClusters.US-Ashburn-1.oci.example.com"),
              "us-ashburn-1");
    EXPECT_EQ(TEConnectionUtils::ExtractOCIRegionFromHost("dataflowclusters..x"), "");
    EXPECT_EQ(TEConnectionUtils::ExtractOCIRegionFromHost("cluster.us-ashburn-1.example.com"), "");

    Read({{u"Host", u"dataflowclusters.eu-frankfurt-1.example.com"}, {u"OCIConfigFile", u"/nonexistent/oci-config"}});
    EXPECT_TRUE(m_settings.m_isOCIConnection);
    const TEOCISettings& oci = m_settings.m_ociSettings;
    EXPECT_EQ(oci.m_region, "eu-frankfurt-1");
    EXPECT_EQ(oci.m_authURL, "https://auth.eu-frankfurt-1.example.com/v1/oauth2/authorize");
    EXPECT_EQ(TEConnectionUtils::OCIDomainFromHost("cluster.example.org"), "example.org");
    EXPECT_EQ(oci.m_profile, "DEFAULT");
    EXPECT_TRUE(oci.m_useBrowserFlow);
    EXPECT_TRUE(m_log.Has(Support::LOG_INFO, "Using the DEFAULT profile."));
    EXPECT_TRUE(m_log.Has(Support::LOG_ERROR, "Unable to open the config file /nonexistent/oci-config."));

    TESettings named;
    TEConnectionUtils::ReadConnectionSetting({{u"Host", u"10.0.0.1"}, {u"OCIRegion", u"ap-tokyo-1"},
                                              {u"OCIProfile", u"work"}, {u"OCITokenRefreshURL", u"https://t/refresh"},
                                              {u"OCIConfigFile", u"/nonexistent/oci-config"}},
                                             named, &m_log, m_warnings);
    EXPECT_EQ(named.m_ociSettings.m_region, "ap-tokyo-1");
    EXPECT_EQ(named.m_ociSettings.m_tokenRefreshURL, "https://t/refresh");
    EXPECT_TRUE(m_log.Has(Support::LOG_INFO, "Using the work profile specified by the user."));

    TESettings plain;
    TEConnectionUtils::ReadConnectionSetting({{u"Host", u"spark.example.com"}}, plain, &m_log, m_warnings);
    EXPECT_FALSE(plain.m_isOCIConnection);

    plain.m_host = "spark.example.com";
    EXPECT_EQ(CaptureError([&] { TEConnectionUtils::ReadOCISettings({}, plain, &m_log, m_warnings); }).key,
              "TECouldNotExtractOCIRegion");
}
