#include "thrift/TEConnectionUtils.h"

#include <boost/lexical_cast.hpp>

#include "driversupport/DSConnectionUtils.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/Proxy.h"
#include "platform/ProcessEnvironment.h"
#include "support/StringConverter.h"
#include "driversupport/ConfigurationKeys.h"
#include "thrift/TEApiCallNames.h"
#include "thrift/TEConnectionKeys.h"
#include "thrift/TEException.h"
#include "thrift/TEOCICredentialsReader.h"

namespace Tarni::ThriftExtension
{
using DriverSupport::ConfigurationMap;
using DriverSupport::DSConnectionUtils;
using DriverSupport::DSWarningList;
using Support::ILogger;
using Support::StringConverter;
namespace DSKeys = DriverSupport::Keys;
namespace TEKeys = ThriftExtension::Keys;

namespace
{
const char* const NS = "Tarni::ThriftExtension";
const char* const CLS = "TEConnectionUtils";

const char* const THRIFT_TOKEN = "Thrift/0.9.0";
const char* const THRIFT_CLIENT_COMMENT = " (C++/THttpClient)";
const char* const OCI_HOST_PREFIX = "dataflowclusters.";
const char* const SAML_AUTH_MECH = "12";

/// The typed readers with this connection's map, logger and warning list.
class SettingReader
{
public:
    SettingReader(const ConfigurationMap& in_settings, ILogger* in_log, DSWarningList& io_warnings)
        : m_settings(in_settings), m_log(in_log), m_warnings(io_warnings)
    {
    }
    bool Bool(tarni_wstring_view in_key, bool& out_value)
    {
        return DSConnectionUtils::ReadBooleanSetting(in_key, m_settings, out_value, false, m_log, m_warnings);
    }
    bool Text(tarni_wstring_view in_key, std::string& out_value)
    {
        return DSConnectionUtils::ReadUTF8StringSetting(in_key, m_settings, out_value, false, m_log, m_warnings);
    }
    bool U16(tarni_wstring_view in_key, std::uint16_t& out_value)
    {
        return DSConnectionUtils::ReadUInt16Setting(in_key, m_settings, out_value, false, m_log, m_warnings);
    }
    bool U32(tarni_wstring_view in_key, std::uint32_t& out_value)
    {
        return DSConnectionUtils::ReadUInt32Setting(in_key, m_settings, out_value, false, m_log, m_warnings);
    }
    bool U64(tarni_wstring_view in_key, std::uint64_t& out_value)
    {
        return DSConnectionUtils::ReadUInt64Setting(in_key, m_settings, out_value, false, m_log, m_warnings);
    }
    bool Native(tarni_wstring_view in_key, std::size_t& out_value)
    {
        return DSConnectionUtils::ReadUnsignedNativeSetting(in_key, m_settings, out_value, false, m_log, m_warnings);
    }

private:
    const ConfigurationMap& m_settings;
    ILogger* m_log;
    DSWarningList& m_warnings;
};

/// Logs the assembled text at ERROR and throws it as the key's diagnostic.
[[noreturn]] void Raise(ILogger* in_log, const char* in_function, const char16_t* in_key, const std::string& in_text)
{
    if (in_log != nullptr)
    {
        in_log->LogError(NS, CLS, in_function, "%s", in_text.c_str());
    }
    throw TEException::WithText(in_key, in_text);
}

std::string_view Trim(std::string_view in_text)
{
    const size_t first = in_text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
    {
        return {};
    }
    const size_t last = in_text.find_last_not_of(" \t");
    return in_text.substr(first, last - first + 1);
}

std::vector<std::string_view> Split(std::string_view in_text, char in_separator)
{
    std::vector<std::string_view> parts;
    size_t start = 0;
    while (true)
    {
        const size_t end = in_text.find(in_separator, start);
        parts.push_back(Trim(in_text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start)));
        if (end == std::string_view::npos)
        {
            return parts;
        }
        start = end + 1;
    }
}

/// Decimal digits to an unsigned number of at most in_max; on failure, the
/// reason for the message.
bool ParseUnsigned(std::string_view in_text, std::uint64_t in_max, std::uint64_t& out_value, std::string& out_detail)
{
    if (in_text.empty())
    {
        out_detail = "the text is empty";
        return false;
    }
    std::uint64_t value = 0;
    for (const char c : in_text)
    {
        if (c < '0' || c > '9')
        {
            out_detail = "the text contains characters other than the decimal digits 0-9";
            return false;
        }
        value = value * 10 + static_cast<unsigned>(c - '0');
        if (value > in_max)
        {
            out_detail = "the value is greater than " + std::to_string(in_max);
            return false;
        }
    }
    out_value = value;
    return true;
}

void LogTestOnlySetting(ILogger* in_log, const char* in_function, const char* in_key, bool in_purposedSpelling)
{
    if (in_log == nullptr)
    {
        return;
    }
    if (in_purposedSpelling)
    {
        in_log->LogWarning(NS, CLS, in_function,
                           "WARNING !!! The %s configuration has been passed in. This configuration should only used "
                           "for testing purposed.",
                           in_key);
    }
    else
    {
        in_log->LogWarning(NS, CLS, in_function,
                           "WARNING !!! The %s configuration has been passed in. This configuration should only used "
                           "for testing purposes.",
                           in_key);
    }
}

bool StartsWithIgnoreAsciiCase(std::string_view in_text, std::string_view in_prefix)
{
    if (in_text.size() < in_prefix.size())
    {
        return false;
    }
    for (size_t i = 0; i < in_prefix.size(); ++i)
    {
        const char a = in_text[i];
        const char b = in_prefix[i];
        if (a != b && !((a | 0x20) == (b | 0x20) && (b | 0x20) >= 'a' && (b | 0x20) <= 'z'))
        {
            return false;
        }
    }
    return true;
}

std::string ToAsciiCase(std::string in_text, bool in_upper)
{
    for (char& c : in_text)
    {
        if (in_upper && c >= 'a' && c <= 'z')
        {
            c = static_cast<char>(c - 'a' + 'A');
        }
        else if (!in_upper && c >= 'A' && c <= 'Z')
        {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return in_text;
}

bool IsTokenCharacter(char in_c)
{
    return (in_c >= 'A' && in_c <= 'Z') || (in_c >= 'a' && in_c <= 'z') || (in_c >= '0' && in_c <= '9') ||
           std::string_view("!#$%&'*+-.^_`|~").find(in_c) != std::string_view::npos;
}
}  // namespace

void TEConnectionUtils::ReadConnectionSetting(const ConfigurationMap& in_settings, TESettings& io_settings,
                                              ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadConnectionSetting");
    SettingReader read(in_settings, in_log, io_warnings);
    TESettings& s = io_settings;

    read.Text(DSKeys::DSN, s.m_dsn);
    read.Text(DSKeys::Host, s.m_host);
    read.U16(DSKeys::Port, s.m_port);
    read.Bool(TEKeys::KrbSpnRdns, s.m_krbSpnRdns);
    read.Bool(TEKeys::CheckHttpConnectionHeader, s.m_checkHttpConnectionHeader);
    read.Bool(TEKeys::EnableTLSSNI, s.m_enableTLSSNI);
    read.Bool(TEKeys::EnableTcpKeepalive, s.m_enableTcpKeepalive);
    if (read.U64(TEKeys::TcpKeepaliveTime, s.m_tcpKeepaliveTime) && s.m_tcpKeepaliveTime == 0 && in_log != nullptr)
    {
        in_log->LogWarning(NS, CLS, "ReadConnectionSetting", "m_tcpKeepaliveTime is 0, will use the system default");
    }
    if (read.U64(TEKeys::TcpKeepaliveInterval, s.m_tcpKeepaliveInterval) && s.m_tcpKeepaliveInterval == 0 &&
        in_log != nullptr)
    {
        in_log->LogWarning(NS, CLS, "ReadConnectionSetting",
                           "m_tcpKeepaliveInterval is 0, will use the system default");
    }
    read.Bool(TEKeys::EnableTStatusLogging, s.m_enableTStatusLogging);
    read.Bool(TEKeys::EnableTEDebugLogging, s.m_enableTEDebugLogging);

    ReadHTTPSettings(in_settings, s, in_log, io_warnings);

    read.Bool(TEKeys::PassMaxProtocolVerInOpenSessionReq, s.m_passMaxProtocolVerInOpenSessionReq);
    read.Bool(TEKeys::EnableFetchHeartbeat, s.m_enableFetchHeartbeat);
    read.U32(TEKeys::FetchHeartbeatInterval, s.m_fetchHeartbeatInterval);
    read.Bool(TEKeys::EnableMultipleCatalogsSupport, s.m_enableMultipleCatalogsSupport);
    read.Bool(TEKeys::IsSyntheticCatalogAllowedInApiCalls, s.m_isSyntheticCatalogAllowedInApiCalls);
    read.Bool(TEKeys::IsSyntheticCatalogAllowedInQuery, s.m_isSyntheticCatalogAllowedInQuery);
    read.Bool(TEKeys::EnableSyntheticCatalogCheckOnMetadataQuery, s.m_enableSyntheticCatalogCheckOnMetadataQuery);
    read.Bool(TEKeys::EnableCurrentCatalogCheckOnMetadataQuery, s.m_enableCurrentCatalogCheckOnMetadataQuery);
    read.Bool(TEKeys::ExcludeEmptyStringCatalogInQuery, s.m_excludeEmptyStringCatalogInQuery);
    read.Bool(TEKeys::IsTempTableAndViewsNotInCatalog, s.m_isTempTableAndViewsNotInCatalog);
    read.Bool(TEKeys::IsEnableTempTableAndViewsEmptyStringCatalogCheck, s.m_isEnableTempTableAndViewsEmptyStringCatalogCheck);
    read.Bool(TEKeys::AllowEmptyStringCurrentCatalog, s.m_allowEmptyStringCurrentCatalog);
    read.Bool(TEKeys::ConvertSyntheticCatalogFilterToNullFilter, s.m_convertSyntheticCatalogFilterToNullFilter);
    read.Bool(TEKeys::ConvertSyntheticCatalogToCurrentCatalogForQuery, s.m_convertSyntheticCatalogToCurrentCatalogForQuery);
    read.Bool(TEKeys::IsSyntheticCatalogValidDriverSideCurrentCatalog, s.m_isSyntheticCatalogValidDriverSideCurrentCatalog);
    read.Bool(TEKeys::IsSyntheticCatalogValidServerSideCurrentCatalog, s.m_isSyntheticCatalogValidServerSideCurrentCatalog);
    s.m_isServerSupportsDatabricksCatalogSspSet =
        read.Bool(TEKeys::ServerSupportsDatabricksCatalogSsp, s.m_serverSupportsDatabricksCatalogSsp);
    s.m_isCatalogSet = read.Text(TEKeys::Catalog, s.m_catalog);
    read.Bool(TEKeys::ForceDatabricksCatalogSspToConfOverlay, s.m_forceDatabricksCatalogSspToConfOverlay);
    read.Bool(TEKeys::ValidateCatalogAgainstServer, s.m_validateCatalogAgainstServer);
    read.Bool(TEKeys::EnableUseCatalogFallback, s.m_enableUseCatalogFallback);
    read.Bool(TEKeys::ResolveSyntheticCatalogToCurrentCatalogWhenMetadataIdTrue,
              s.m_resolveSyntheticCatalogToCurrentCatalogWhenMetadataIdTrue);
    read.Bool(TEKeys::GetMetadataWithQueryFromCurrentCatalogOnly, s.m_getMetadataWithQueryFromCurrentCatalogOnly);
    read.Bool(TEKeys::ShowLocalTempSchemasInSQLTablesSchemasOnly, s.m_showLocalTempSchemasInSQLTablesSchemasOnly);
    read.Bool(TEKeys::ShowGlobalTempSchemasInSQLTablesSchemasOnly, s.m_showGlobalTempSchemasInSQLTablesSchemasOnly);
    read.Bool(TEKeys::UseSqlStateFromServer, s.m_useSqlStateFromServer);
    read.Bool(TEKeys::UseLegacyCatalogAndTempSchemaRemovalLogic, s.m_useLegacyCatalogAndTempSchemaRemovalLogic);
    read.U32(TEKeys::WebServerSocketBindRetryInterval, s.m_webServerSocketBindRetryInterval);
    if (read.Native(DSKeys::QueryTimeoutOverride, s.m_queryTimeoutOverride))
    {
        s.m_isQueryTimeoutOverridden = true;
    }
    read.Bool(TEKeys::EnableRecreateThriftClientBeforeRetry, s.m_enableRecreateThriftClientBeforeRetry);
    s.m_httpSettings.m_isEnableRecreateThriftClientBeforeRetry = s.m_enableRecreateThriftClientBeforeRetry;

    TETCLIServiceIfTestClientSettings& testClient = s.m_testClientSettings;
    read.Bool(TEKeys::EnableSslErrorEmulation, testClient.m_isEnableSslErrorEmulation);
    read.Text(TEKeys::ThriftApiForSslErrorEmulation, testClient.m_thriftApiForSslErrorEmulation);
    read.U32(TEKeys::NumThriftApiCallsToSkipBeforeSslErrorEmulation,
             testClient.m_numThriftApiCallsToSkipBeforeSslErrorEmulation);
    read.Bool(TEKeys::DisableSslErrorEmulationAtDestruction, testClient.m_isDisableSslErrorEmulationAtDestruction);
    if (testClient.m_isEnableSslErrorEmulation)
    {
        const std::vector<std::string> names =
            ParseApiCallNames(testClient.m_thriftApiForSslErrorEmulation, "ThriftApiForSslErrorEmulation", in_log);
        if (names.size() != 1)
        {
            Raise(in_log, "ReadConnectionSetting", u"TEInvalidApiCallNameError",
                  "The value of ThriftApiForSslErrorEmulation must name exactly one API call. Please check your "
                  "configuration.");
        }
        testClient.m_thriftApiForSslErrorEmulation = names.front();
        LogTestOnlySetting(in_log, "ReadConnectionSetting", "EnableSslErrorEmulation", false);
    }
    read.Bool(DSKeys::EnableTranslationForCTAS, s.m_enableTranslationForCTAS);

    ReadHTTPPath(in_settings, s, in_log, io_warnings);
    ReadHttpApiRetrySettings(in_settings, s, in_log, io_warnings);
    ReadHTTPRetrySettings(in_settings, s, in_log, io_warnings);
    ReadHttpApiRetryEmulationTestSettings(in_settings, s, in_log, io_warnings);
    ReadSAMLSettings(in_settings, s, in_log, io_warnings);
    ReadSspSettings(in_settings, s, in_log, io_warnings);
    ReadTransportMode(in_settings, s, in_log, io_warnings);
    ReadProxySettings(in_settings, s, in_log, io_warnings);
    ReadUserAgentSettings(in_settings, s, in_log, io_warnings);
    ReadBinaryAndCharacterDataRetrievalBehaviorSettings(in_settings, s, in_log, io_warnings);
    s.m_isOCIConnection = IsOCIConnection(in_settings);
    if (s.m_isOCIConnection)
    {
        ReadOCISettings(in_settings, s, in_log, io_warnings);
    }

    s.m_httpSettings.LogSettings(in_log);
    if (testClient.m_isEnableSslErrorEmulation)
    {
        testClient.LogSettings(in_log);
    }
}

void TEConnectionUtils::UpdateConnectionSettings(const ConfigurationMap& in_settings, TESettings& io_settings,
                                                 ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "UpdateConnectionSettings");
    SettingReader read(in_settings, in_log, io_warnings);
    read.Bool(TEKeys::KrbSpnRdns, io_settings.m_krbSpnRdns);
    read.Bool(DSKeys::ApplySSPWithQueries, io_settings.m_applySSPWithQueries);
    read.Bool(DSKeys::LCaseSspKeyName, io_settings.m_lCaseSspKeyName);
    read.Bool(TEKeys::UCaseSspKeyName, io_settings.m_uCaseSspKeyName);
    read.Bool(DSKeys::EnableSamlCookieCaching, io_settings.m_enableSamlCookieCaching);
}

void TEConnectionUtils::ReadHTTPSettings(const ConfigurationMap& in_settings, TESettings& io_settings, ILogger* in_log,
                                         DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadHTTPSettings");
    SettingReader read(in_settings, in_log, io_warnings);
    TEHTTPSettings& http = io_settings.m_httpSettings;

    read.Bool(TEKeys::EnableResetHttpConnectionWithApiInterval, http.m_enableResetHttpConnectionWithApiInterval);
    read.U64(TEKeys::ResetHttpConnectionInterval, http.m_resetHttpConnectionInterval);
    read.Bool(TEKeys::EnableHttpConnectionResetWithHttpReqCount, http.m_enableHttpConnectionResetWithHttpReqCount);
    read.U64(TEKeys::NumHttpReqsToTriggerHttpCxnReset, http.m_numHttpReqsToTriggerHttpCxnReset);
    read.Bool(TEKeys::EnableHttpApiIdleEmulationTest, http.m_enableHttpApiIdleEmulationTest);
    read.U64(TEKeys::HttpEmulatedApiIdleTime, http.m_httpEmulatedApiIdleTime);
    if (http.m_enableHttpApiIdleEmulationTest && in_log != nullptr)
    {
        in_log->LogWarning(NS, CLS, "ReadHTTPSettings",
                           "Idle emulation is enabled!!!, there driver will enable a waiting time of %s seconds "
                           "before sending an API call.",
                           std::to_string(http.m_httpEmulatedApiIdleTime).c_str());
    }
    if (read.Text(TEKeys::ExpectedAuthCookiesForTesting, io_settings.m_expectedAuthCookiesForTesting))
    {
        LogTestOnlySetting(in_log, "ReadHTTPSettings", "ExpectedAuthCookiesForTesting", false);
    }
    if (read.Text(TEKeys::ExpectedSspForTesting, io_settings.m_expectedSspForTesting))
    {
        LogTestOnlySetting(in_log, "ReadHTTPSettings", "ExpectedSspForTesting", true);
    }

    const tarni_wstring_view prefix = DSKeys::HttpHeaderPrefix;
    for (const auto& [key, value] : DSConnectionUtils::GetPrefixedSettings(prefix, in_settings))
    {
        const std::string name = StringConverter::ToUtf8(tarni_wstring_view(key).substr(prefix.size()));
        if (!name.empty())
        {
            io_settings.m_customHttpHeaders[name] = StringConverter::ToUtf8(value);
        }
    }
}

void TEConnectionUtils::ReadHTTPPath(const ConfigurationMap& in_settings, TESettings& io_settings, ILogger* in_log,
                                     DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadHTTPPath");
    SettingReader read(in_settings, in_log, io_warnings);
    std::string path;
    if (read.Text(DSKeys::HTTPPath, path))
    {
        // The path goes into the request line, which needs it absolute.
        if (!path.empty() && path.front() != '/')
        {
            path.insert(path.begin(), '/');
        }
        io_settings.m_httpPath = path;
    }
}

void TEConnectionUtils::ReadHttpApiRetrySettings(const ConfigurationMap& in_settings, TESettings& io_settings,
                                                 ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadHttpApiRetrySettings");
    SettingReader read(in_settings, in_log, io_warnings);
    TEHTTPSettings& http = io_settings.m_httpSettings;

    read.Bool(TEKeys::EnableHttpApiRetry, http.m_enableHttpApiRetry);
    read.U64(TEKeys::MaxNumHttpApiRetries, http.m_maxNumHttpApiRtries);

    std::string interval;
    if (read.Text(TEKeys::HttpApiRetryInterval, interval) && !Trim(interval).empty())
    {
        try
        {
            http.m_httpApiRetryInterval = boost::lexical_cast<std::int64_t>(Trim(interval));
        }
        catch (const std::exception& e)
        {
            io_warnings.Add(Support::TE_ERROR, u"TEHttpApiRetryIntervalConversionWarn",
                            {StringConverter::FromUtf8(interval), StringConverter::FromUtf8(e.what())});
            if (in_log != nullptr)
            {
                in_log->LogWarning(NS, CLS, "ReadHttpApiRetrySettings",
                                   "Unable to convert the value, %s, for the HttpApiRetryInterval configuration into "
                                   "a 64-bit integer. Error detail: %s",
                                   interval.c_str(), e.what());
            }
        }
        catch (...)
        {
            io_warnings.Add(Support::TE_ERROR, u"TEHttpApiRetryIntervalUnknownConversionWarn",
                            {StringConverter::FromUtf8(interval)});
            if (in_log != nullptr)
            {
                in_log->LogWarning(NS, CLS, "ReadHttpApiRetrySettings",
                                   "Unable to convert the value, %s, for the HttpApiRetryInterval configuration into "
                                   "a 64-bit integer. An unknown error occurred while performing the conversion.",
                                   interval.c_str());
            }
        }
    }

    std::string names;
    if (read.Text(TEKeys::RetriableHttpApiNames, names))
    {
        http.m_retriableHttpApiNames = ParseApiCallNames(names, "RetriableHttpApiNames", in_log);
    }

    std::string ranges;
    if (read.Text(TEKeys::RetriableHttpStatusCodeRanges, ranges))
    {
        TEHttpStatusRanges parsed;
        ParseHttpStatusRanges(ranges, parsed, in_log);
        http.m_retriableHttpStatusCodes = std::move(parsed);
    }
}

void TEConnectionUtils::ReadHTTPRetrySettings(const ConfigurationMap& in_settings, TESettings& io_settings,
                                              ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadHTTPRetrySettings");
    SettingReader read(in_settings, in_log, io_warnings);

    std::string names;
    if (read.Text(TEKeys::ApiCallsAllowingDefaultRetryAfterVal, names))
    {
        io_settings.m_apiCallsAllowingDefaultRetryAfterVal =
            ParseApiCallNames(names, "ApiCallsAllowingDefaultRetryAfterVal", in_log);
    }
    std::string codes;
    if (read.Text(TEKeys::HttpRespCodesAllowingDefaultRetryAfterVal, codes))
    {
        TEHttpStatusRanges parsed;
        ParseHttpStatusRanges(codes, parsed, in_log);
        io_settings.m_httpRespCodesAllowingDefaultRetryAfterVal = std::move(parsed);
    }
    read.U32(TEKeys::DefaultRetryAfterVal, io_settings.m_defaultRetryAfterVal);

    std::string emulatedCall;
    if (read.Text(TEKeys::ApiCallForHttpRespCodeEmulation, emulatedCall) && !emulatedCall.empty())
    {
        const std::vector<std::string> parsed =
            ParseApiCallNames(emulatedCall, "ApiCallForHttpRespCodeEmulation", in_log);
        if (parsed.size() != 1)
        {
            Raise(in_log, "ReadHTTPRetrySettings", u"TEInvalidApiCallNameError",
                  "The value of ApiCallForHttpRespCodeEmulation must name exactly one API call. Please check your "
                  "configuration.");
        }
        io_settings.m_apiCallForHttpRespCodeEmulation = parsed.front();
    }
    if (read.U16(TEKeys::EmulatedHttpRespCode, io_settings.m_emulatedHttpRespCode))
    {
        LogTestOnlySetting(in_log, "ReadHTTPRetrySettings", "EmulatedHttpRespCode", false);
    }

    ReadHTTPRetrySetting(TERetryAfterKind::TemporarilyUnavailable, in_settings, io_settings, in_log, io_warnings);
    ReadHTTPRetrySetting(TERetryAfterKind::RateLimit, in_settings, io_settings, in_log, io_warnings);
}

void TEConnectionUtils::ReadHTTPRetrySetting(TERetryAfterKind in_kind, const ConfigurationMap& in_settings,
                                             TESettings& io_settings, ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadHTTPRetrySetting");
    tarni_wstring_view retryKey;
    tarni_wstring_view timeoutKey;
    switch (in_kind)
    {
        case TERetryAfterKind::TemporarilyUnavailable:
            retryKey = TEKeys::TemporarilyUnavailableRetry;
            timeoutKey = TEKeys::TemporarilyUnavailableRetryTimeout;
            break;
        case TERetryAfterKind::RateLimit:
            retryKey = TEKeys::RateLimitRetry;
            timeoutKey = TEKeys::RateLimitRetryTimeout;
            break;
    }
    if (retryKey.empty())
    {
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "ReadHTTPRetrySetting",
                             "Attempting to read settings into an unsupported HTTP retry after response (%u)",
                             static_cast<unsigned>(in_kind));
        }
        return;
    }
    SettingReader read(in_settings, in_log, io_warnings);
    TEHttpRetryAfterSetting& setting = io_settings.m_retryAfterSettings[in_kind];
    read.Bool(retryKey, setting.m_isRetryEnabled);
    read.U32(timeoutKey, setting.m_retryTimeout);
}

void TEConnectionUtils::ReadHttpApiRetryEmulationTestSettings(const ConfigurationMap& in_settings,
                                                              TESettings& io_settings, ILogger* in_log,
                                                              DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadHttpApiRetryEmulationTestSettings");
    SettingReader read(in_settings, in_log, io_warnings);
    TEHTTPSettings& http = io_settings.m_httpSettings;

    read.Bool(TEKeys::EnableHttpApiRetryEmulationTest, http.m_enableHttpApiRetryEmulationTest);
    std::string value;
    const bool isGiven = read.Text(TEKeys::HttpApiRetryEmulationTestSettings, value);
    read.Bool(TEKeys::StartHttpApiRetryEmulationAfterConnected, io_settings.m_startHttpApiRetryEmulationAfterConnected);

    if (isGiven && !http.m_enableHttpApiRetryEmulationTest)
    {
        Raise(in_log, "ReadHttpApiRetryEmulationTestSettings", u"TETestError",
              "The HttpApiRetryEmulationTestSettings is passed in via the connection string/DSN but the "
              "EnableHttpApiRetryEmulationTest is not enabled. Please check your configuration.");
    }
    if (!http.m_enableHttpApiRetryEmulationTest)
    {
        return;
    }
    if (!isGiven)
    {
        Raise(in_log, "ReadHttpApiRetryEmulationTestSettings", u"TETestError",
              "The EnableHttpApiRetryEmulationTest is enabled but the HttpApiRetryEmulationTestSettings is not passed "
              "in. Please check your configuration.");
    }
    TEHttpApiRetryEmulationTestSettings parsed;
    ParseHttpStatusEmulationSettings(value, parsed, in_log);
    io_settings.m_httpApiRetryEmulationTestSettings = std::move(parsed);
}

void TEConnectionUtils::ReadSAMLSettings(const ConfigurationMap& in_settings, TESettings& io_settings, ILogger* in_log,
                                         DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadSAMLSettings");
    SettingReader read(in_settings, in_log, io_warnings);
    read.Text(TEKeys::SSOClientIdentifierHeader, io_settings.m_ssoClientIdentifierHeader);
    read.Text(TEKeys::SSOTokenResponsePortHeader, io_settings.m_ssoTokenResponsePortHeader);
    read.U16(TEKeys::SSOWebServerPort, io_settings.m_ssoWebServerPort);
    read.U32(TEKeys::SSOWebServerTimeout, io_settings.m_ssoWebServerTimeout);
    read.Bool(TEKeys::SSOWebServerTimeoutTakesPrecedence, io_settings.m_ssoWebServerTimeoutTakesPrecedence);
    read.Bool(TEKeys::SSOTestingAllowNonSSL, io_settings.m_ssoTestingAllowNonSSL);
    read.Bool(DSKeys::SSOIgnoreDriverNoPrompt, io_settings.m_ssoIgnoreDriverNoPrompt);
    read.Bool(TEKeys::SSOResetHttpTransportAfterBrowserAuth, io_settings.m_ssoResetHttpTransportAfterBrowserAuth);
    read.Bool(TEKeys::SSOEnableNonIdempotentApiCallRetryOnTokenExpired,
              io_settings.m_ssoEnableNonIdempotentApiCallRetryOnTokenExpired);
    read.Bool(DSKeys::EnableSamlCookieCaching, io_settings.m_enableSamlCookieCaching);

    // The browser flow hands the token back in HTTP headers, so SAML works
    // only over the HTTP transport.
    // AuthMech itself is read (and warned about) by the authentication code.
    const std::optional<tarni_wstring> authMech = DSConnectionUtils::GetSettingValue(DSKeys::AuthMech, in_settings);
    if (!authMech || Trim(StringConverter::ToUtf8(*authMech)) != SAML_AUTH_MECH)
    {
        return;
    }
    std::optional<tarni_wstring> transport = DSConnectionUtils::GetSettingValue(TEKeys::TransportMode, in_settings);
    if (!transport)
    {
        transport = DSConnectionUtils::GetSettingValue(DSKeys::ThriftTransport, in_settings);
    }
    if (transport && !transport->empty() && *transport != u"2" &&
        !StringConverter::EqualsIgnoreCase(*transport, u"HTTP"))
    {
        Raise(in_log, "ReadSAMLSettings", u"TEInvalidSAMLAuthFlow",
              "The SAML 2.0 authentication flow needs the HTTP transport, but the transport " +
                  StringConverter::ToUtf8(*transport) + " is configured. Please check your configuration.");
    }
}

void TEConnectionUtils::ReadSspSettings(const ConfigurationMap& in_settings, TESettings& io_settings, ILogger* in_log,
                                        DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadSspSettings");
    SettingReader read(in_settings, in_log, io_warnings);
    read.Bool(DSKeys::ApplySSPWithQueries, io_settings.m_applySSPWithQueries);
    read.Bool(DSKeys::LCaseSspKeyName, io_settings.m_lCaseSspKeyName);
    read.Bool(TEKeys::UCaseSspKeyName, io_settings.m_uCaseSspKeyName);
    read.Bool(TEKeys::EnableBdsSspHandling, io_settings.m_enableBdsSspHandling);

    // Lower case wins when both conversions are asked for.
    const auto convert = [&](std::string in_name) {
        if (io_settings.m_lCaseSspKeyName)
        {
            return ToAsciiCase(std::move(in_name), false);
        }
        if (io_settings.m_uCaseSspKeyName)
        {
            return ToAsciiCase(std::move(in_name), true);
        }
        return in_name;
    };
    const auto addBds = [&](const std::string& in_rest, const tarni_wstring& in_value) {
        if (!in_rest.empty())
        {
            io_settings.m_bdsServerSideProperties["BDS_" + convert(in_rest)] = StringConverter::ToUtf8(in_value);
        }
    };

    for (const auto& [key, value] : DSConnectionUtils::GetPrefixedSettings(DSKeys::SSP_Prefix, in_settings))
    {
        const std::string rest = StringConverter::ToUtf8(tarni_wstring_view(key).substr(4));
        if (rest.empty())
        {
            continue;
        }
        if (io_settings.m_enableBdsSspHandling && StartsWithIgnoreAsciiCase(rest, "BDS_"))
        {
            addBds(rest.substr(4), value);
            continue;
        }
        io_settings.m_serverSideProperties[convert(rest)] = StringConverter::ToUtf8(value);
    }
    if (io_settings.m_enableBdsSspHandling)
    {
        for (const auto& [key, value] : DSConnectionUtils::GetPrefixedSettings(TEKeys::BDS_Prefix, in_settings))
        {
            addBds(StringConverter::ToUtf8(tarni_wstring_view(key).substr(4)), value);
        }
    }
}

void TEConnectionUtils::ReadProxySettings(const ConfigurationMap& in_settings, TESettings& io_settings,
                                          ILogger* in_log, DSWarningList&)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadProxySettings");
    // Only the HTTP transport goes through a proxy; the others ignore the
    // proxy settings, so a broken HTTP_PROXY cannot stop them.
    io_settings.m_proxy = io_settings.m_transportMode == TETransportMode::HTTP
                              ? DriverSupport::Proxy::ReadProxyConnectionSettings(in_settings, in_log)
                              : DriverSupport::DSProxyDescription();
}

void TEConnectionUtils::ReadTransportMode(const ConfigurationMap& in_settings, TESettings& io_settings,
                                          ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadTransportMode");
    // "TransportMode" names the transport directly; the dialogs store it as
    // "ThriftTransport", which is read when the first is not given.
    tarni_wstring_view key = TEKeys::TransportMode;
    std::optional<tarni_wstring> value = DSConnectionUtils::GetSettingValue(key, in_settings);
    if (!value)
    {
        key = DSKeys::ThriftTransport;
        value = DSConnectionUtils::GetSettingValue(key, in_settings);
    }
    if (!value || value->empty())
    {
        return;
    }
    static const std::pair<const char16_t*, TETransportMode> modes[] = {
        {u"0", TETransportMode::Binary}, {u"1", TETransportMode::SASL}, {u"2", TETransportMode::HTTP},
        {u"Binary", TETransportMode::Binary}, {u"SASL", TETransportMode::SASL}, {u"HTTP", TETransportMode::HTTP},
    };
    for (const auto& [name, mode] : modes)
    {
        if (StringConverter::EqualsIgnoreCase(*value, name))
        {
            io_settings.m_transportMode = mode;
            return;
        }
    }
    io_warnings.Add(Support::DS_ERROR, u"DSInvalidSettingValueWarn",
                    {tarni_wstring(key), *value, u"a Thrift transport (0 Binary, 1 SASL, 2 HTTP)"});
    if (in_log != nullptr)
    {
        in_log->LogWarning(NS, CLS, "ReadTransportMode",
                           "The value \"%s\" of the setting %s is not a Thrift transport; the setting is ignored.",
                           StringConverter::ToUtf8(*value).c_str(), StringConverter::ToUtf8(key).c_str());
    }
}

void TEConnectionUtils::ReadUserAgentSettings(const ConfigurationMap& in_settings, TESettings& io_settings,
                                              ILogger* in_log, DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadUserAgentSettings");
    SettingReader read(in_settings, in_log, io_warnings);
    read.Bool(DSKeys::UseLegacyUserAgent, io_settings.m_useLegacyUserAgent);
    DSConnectionUtils::ReadUserAgentEntrySetting(in_settings, io_settings.m_userAgentEntry, in_log, io_warnings);
    io_settings.m_userAgent =
        BuildUserAgent(GetProductToken(), io_settings.m_userAgentEntry, io_settings.m_useLegacyUserAgent);
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, "ReadUserAgentSettings", "User agent: %s", io_settings.m_userAgent.c_str());
    }
}

void TEConnectionUtils::ReadBinaryAndCharacterDataRetrievalBehaviorSettings(const ConfigurationMap& in_settings,
                                                                             TESettings& io_settings, ILogger* in_log,
                                                                             DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadBinaryAndCharacterDataRetrievalBehaviorSettings");
    SettingReader read(in_settings, in_log, io_warnings);
    // The keys are spelt so in every configuration that sets them.
    read.Bool(TEKeys::UseLegacyBinaryDataRetrievalBehaivor, io_settings.m_useLegacyBinaryDataRetrievalBehavior);
    read.Bool(TEKeys::UseLegacyCharacterDataRetrievalBehaivor, io_settings.m_useLegacyCharacterDataRetrievalBehavior);
}

bool TEConnectionUtils::IsOCIConnection(const ConfigurationMap& in_settings)
{
    const std::optional<tarni_wstring> region = DSConnectionUtils::GetSettingValue(TEKeys::OCIRegion, in_settings);
    if (region && !region->empty())
    {
        return true;
    }
    const std::optional<tarni_wstring> host = DSConnectionUtils::GetSettingValue(DSKeys::Host, in_settings);
    return host && StartsWithIgnoreAsciiCase(StringConverter::ToUtf8(*host), OCI_HOST_PREFIX);
}

std::string TEConnectionUtils::OCIDomainFromHost(std::string_view in_host)
{
    const bool clusterHost = !ExtractOCIRegionFromHost(in_host).empty();
    size_t start = in_host.find('.');
    if (clusterHost && start != std::string_view::npos)
    {
        start = in_host.find('.', start + 1);
    }
    return start == std::string_view::npos ? std::string(in_host) : std::string(in_host.substr(start + 1));
}

std::string TEConnectionUtils::ExtractOCIRegionFromHost(std::string_view in_host)
{
    if (!StartsWithIgnoreAsciiCase(in_host, OCI_HOST_PREFIX))
    {
        return {};
    }
    std::string_view rest = in_host.substr(std::string_view(OCI_HOST_PREFIX).size());
    const std::string_view region = rest.substr(0, rest.find('.'));
    for (const char c : region)
    {
        const bool isRegionCharacter =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
        if (!isRegionCharacter)
        {
            return {};
        }
    }
    return ToAsciiCase(std::string(region), false);
}

void TEConnectionUtils::ReadOCISettings(const ConfigurationMap& in_settings, TESettings& io_settings, ILogger* in_log,
                                        DSWarningList& io_warnings)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadOCISettings");
    SettingReader read(in_settings, in_log, io_warnings);
    TEOCISettings& oci = io_settings.m_ociSettings;

    if (!read.Text(TEKeys::OCIRegion, oci.m_region) || oci.m_region.empty())
    {
        oci.m_region = ExtractOCIRegionFromHost(io_settings.m_host);
        if (oci.m_region.empty())
        {
            Raise(in_log, "ReadOCISettings", u"TECouldNotExtractOCIRegion",
                  "Could not extract the OCI region from the host \"" + io_settings.m_host +
                      "\". The host of a data flow cluster has the form dataflowclusters.<region>.<domain>; otherwise "
                      "give the region with the OCIRegion configuration.");
        }
    }
    read.U32(TEKeys::OCITokenRefreshBuffer, oci.m_tokenRefreshBuffer);
    read.Bool(DSKeys::OCIIgnoreDriverNoPrompt, oci.m_ignoreDriverNoPrompt);
    read.U32(TEKeys::OCIWebServerTimeout, oci.m_webServerTimeout);
    read.Bool(TEKeys::OCIWebServerTimeoutTakesPrecedence, oci.m_webServerTimeoutTakesPrecedence);

    if (!read.Text(DSKeys::OCIConfigFile, oci.m_configFile) || oci.m_configFile.empty())
    {
        const std::string separator = StringConverter::ToUtf8(tarni_wstring(1, Platform::ProcessEnvironment::PathSeparator()));
        std::string home = StringConverter::ToUtf8(Platform::ProcessEnvironment::GetHomeDirectory());
        if (!home.empty() && home.back() != separator.front())
        {
            home += separator;
        }
        oci.m_configFile = home + ".oci" + separator + "config";
    }
    std::string profile;
    if (read.Text(DSKeys::OCIProfile, profile) && !profile.empty())
    {
        oci.m_profile = profile;
        if (in_log != nullptr)
        {
            in_log->LogInfo(NS, CLS, "ReadOCISettings", "Using the %s profile specified by the user.", profile.c_str());
        }
    }
    else
    {
        oci.m_profile = "DEFAULT";
        if (in_log != nullptr)
        {
            in_log->LogInfo(NS, CLS, "ReadOCISettings", "Using the DEFAULT profile.");
        }
    }
    read.U64(TEKeys::OCIMaxTokenSize, oci.m_maxTokenSize);

    // Endpoints of the region's identity service unless given explicitly:
    // "auth." + region + the cloud's domain, which is taken from the cluster
    // host itself (the part after its first two labels, or after its first
    // label when the region was configured rather than taken from the host).
    const std::string domain = OCIDomainFromHost(io_settings.m_host);
    if (!read.Text(TEKeys::OCIAuthURL, oci.m_authURL) || oci.m_authURL.empty())
    {
        oci.m_authURL = "https://auth." + oci.m_region + "." + domain + "/v1/oauth2/authorize";
    }
    if (!read.Text(TEKeys::OCITokenRefreshURL, oci.m_tokenRefreshURL) || oci.m_tokenRefreshURL.empty())
    {
        oci.m_tokenRefreshURL = "https://auth." + oci.m_region + "." + domain + "/v1/oauth2/token";
    }

    TEOCICredentialsReader::ReadCredentials(oci, in_log);
}

void TEConnectionUtils::ParseHttpStatusRanges(std::string_view in_text, TEHttpStatusRanges& out_ranges,
                                              ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ParseHttpStatusRanges");
    const std::string text(in_text);
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, "ParseHttpStatusRanges", "Parsing HTTP status code ranges string: %s", text.c_str());
    }
    TEHttpStatusRanges ranges;
    for (const std::string_view piece : Split(in_text, '+'))
    {
        if (piece.empty())
        {
            continue;
        }
        const std::string pieceText(piece);
        if (in_log != nullptr)
        {
            in_log->LogDebug(NS, CLS, "ParseHttpStatusRanges", "Parsing HTTP status code range string: %s",
                             pieceText.c_str());
        }
        const std::vector<std::string_view> parts = Split(piece, '-');
        if (parts.size() != 1 && parts.size() != 2)
        {
            Raise(in_log, "ParseHttpStatusRanges", u"TEStatusRangesParsingError",
                  "The expected number of sub components in a HTTP status code range is either " + std::string("1") +
                      " or " + std::string("2") + ", but " + std::to_string(parts.size()) +
                      " was found. Please check your configuration.");
        }
        std::uint16_t numbers[2] = {0, 0};
        for (size_t i = 0; i < parts.size(); ++i)
        {
            std::uint64_t value = 0;
            std::string detail;
            if (!ParseUnsigned(parts[i], 0xFFFF, value, detail))
            {
                Raise(in_log, "ParseHttpStatusRanges", u"TEStatusRangesParsingError",
                      "Unable to convert the HTTP status code string '" + std::string(parts[i]) +
                          "' into an unsigned integer. Please check your configuration. Detailed error: " + detail +
                          ".");
            }
            numbers[i] = static_cast<std::uint16_t>(value);
        }
        if (parts.size() == 1)
        {
            ranges.emplace_back(numbers[0], numbers[0]);
            continue;
        }
        if (numbers[1] < numbers[0])
        {
            Raise(in_log, "ParseHttpStatusRanges", u"TEStatusRangesParsingError",
                  "The second number in the HTTP status code range " + std::to_string(numbers[1]) +
                      " should not be smaller than the first number in the HTTP status code range " +
                      std::to_string(numbers[0]) + ". Please check your configuration.");
        }
        ranges.emplace_back(numbers[0], numbers[1]);
    }
    if (ranges.empty())
    {
        Raise(in_log, "ParseHttpStatusRanges", u"TEStatusRangesParsingError",
              "Unable to find any valid HTTP status code ranges. Please check your configuration.");
    }
    out_ranges.insert(out_ranges.end(), ranges.begin(), ranges.end());
}

void TEConnectionUtils::ParseHttpApiRetryEmulationTestSetting(std::string_view in_text,
                                                              TEHttpApiRetryEmulationTestSettings& io_settings,
                                                              ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ParseHttpApiRetryEmulationTestSetting");
    const char* const FN = "ParseHttpApiRetryEmulationTestSetting";
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, FN, "Parsing HTTP API retry test emulation setting string: %s",
                         std::string(in_text).c_str());
    }
    const size_t MIN_COMPONENTS = 3;
    const size_t MAX_COMPONENTS = 4;
    const std::vector<std::string_view> parts = Split(in_text, ':');
    if (parts.size() < MIN_COMPONENTS || parts.size() > MAX_COMPONENTS)
    {
        Raise(in_log, FN, u"TETestError",
              "The expected number of components in an emulation setting is " + std::to_string(MIN_COMPONENTS) +
                  " to " + std::to_string(MAX_COMPONENTS) + " but the actual number of components is " +
                  std::to_string(parts.size()) + ". Please check your configuration.");
    }
    if (parts[0].empty())
    {
        Raise(in_log, FN, u"TEEmptyApiCallNameError",
              "An emulation setting in the value of HttpApiRetryEmulationTestSettings has an empty API call name. "
              "Please check your configuration.");
    }
    std::uint64_t count = 0;
    std::string detail;
    if (!ParseUnsigned(parts[1], 0xFFFFFFFFu, count, detail))
    {
        Raise(in_log, FN, u"TETestError",
              "Unable to convert the emulation count string '" + std::string(parts[1]) +
                  "' into an unsigned integer. Please check your configuration.");
    }
    TEHttpStatusRanges ranges;
    ParseHttpStatusRanges(parts[2], ranges, in_log);
    bool sendToServer = false;
    if (parts.size() == MAX_COMPONENTS)
    {
        if (parts[3] != "0" && parts[3] != "1")
        {
            Raise(in_log, FN, u"TETestError",
                  "Unable to convert the send to server string '" + std::string(parts[3]) +
                      "' into boolean. The valid value is 0 or 1. Please check your configuration.");
        }
        sendToServer = parts[3] == "1";
    }
    io_settings.AddEmulationSetting(
        parts[0], TEHttpApiRetryEmulationTestSetting(ranges, static_cast<std::uint32_t>(count), sendToServer, in_log),
        in_log);
}

void TEConnectionUtils::ParseHttpStatusEmulationSettings(std::string_view in_text,
                                                         TEHttpApiRetryEmulationTestSettings& io_settings,
                                                         ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ParseHttpStatusEmulationSettings");
    if (in_log != nullptr)
    {
        in_log->LogDebug(NS, CLS, "ParseHttpStatusEmulationSettings",
                         "Parsing HttpApiRetryEmulationTestSettings configuration value: %s",
                         std::string(in_text).c_str());
    }
    size_t numParsed = 0;
    for (const std::string_view setting : Split(in_text, ';'))
    {
        if (!setting.empty())
        {
            ParseHttpApiRetryEmulationTestSetting(setting, io_settings, in_log);
            ++numParsed;
        }
    }
    if (numParsed == 0)
    {
        Raise(in_log, "ParseHttpStatusEmulationSettings", u"TETestError",
              "The value of HttpApiRetryEmulationTestSettings does not contain any valid emulation settings. Please "
              "check your configuration.");
    }
}

std::vector<std::string> TEConnectionUtils::ParseApiCallNames(std::string_view in_text,
                                                              std::string_view in_settingName, ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ParseApiCallNames");
    std::vector<std::string> names;
    for (const std::string_view name : Split(in_text, ','))
    {
        if (name.empty())
        {
            Raise(in_log, "ParseApiCallNames", u"TEEmptyApiCallNameError",
                  "The value of " + std::string(in_settingName) +
                      " contains an empty API call name. Please check your configuration.");
        }
        const std::optional<std::string> canonical = TEApiCallNames::Canonicalize(name);
        if (!canonical)
        {
            Raise(in_log, "ParseApiCallNames", u"TEInvalidApiCallNameError",
                  "The API call name \"" + std::string(name) + "\" in the value of " + std::string(in_settingName) +
                      " is not valid. The valid API call names are (" + TEApiCallNames::Join(TEApiCallNames::GetAll()) +
                      "). Please check your configuration.");
        }
        names.push_back(*canonical);
    }
    return names;
}

std::string TEConnectionUtils::ReadEnvVar(const std::string& in_name, ILogger* in_log)
{
    TARNI_LOG_ENTRY(in_log, NS, CLS, "ReadEnvVar");
    try
    {
        const std::optional<tarni_wstring> value =
            Platform::ProcessEnvironment::GetVariable(StringConverter::FromUtf8(in_name));
        const std::string text = value ? StringConverter::ToUtf8(*value) : std::string();
        if (in_log != nullptr)
        {
            in_log->LogDebug(NS, CLS, "ReadEnvVar", "Value read for the environment variable %s is: %s",
                             in_name.c_str(), text.c_str());
        }
        return text;
    }
    catch (const std::exception& e)
    {
        if (in_log != nullptr)
        {
            in_log->LogError(NS, CLS, "ReadEnvVar",
                             "An error occurred while attempting to read the environment variable %s. Error detail: "
                             "%s",
                             in_name.c_str(), e.what());
        }
        return {};
    }
}

std::string TEConnectionUtils::GetProductToken()
{
    const DriverSupport::ProductIdentity identity = DriverSupport::DSProductHelper::GetProductIdentity();
    std::string name;
    for (const char c : StringConverter::ToUtf8(DriverSupport::DSProductHelper::GetDriverName()))
    {
        if (IsTokenCharacter(c))
        {
            name += c;
        }
    }
    return name + "/" + StringConverter::ToUtf8(identity.version);
}

std::string TEConnectionUtils::BuildUserAgent(const std::string& in_productToken, const std::string& in_userAgentEntry,
                                              bool in_useLegacy)
{
    const std::string thriftClient = std::string(THRIFT_TOKEN) + THRIFT_CLIENT_COMMENT;
    if (in_useLegacy)
    {
        std::string agent = thriftClient + " " + in_productToken;
        if (!in_userAgentEntry.empty())
        {
            agent += ";" + in_userAgentEntry;
        }
        return agent;
    }
    std::string agent = in_productToken + " " + thriftClient;
    if (!in_userAgentEntry.empty())
    {
        agent += " " + in_userAgentEntry;
    }
    return agent;
}
}  // namespace Tarni::ThriftExtension
