#pragma once
// The settings record of the Thrift connection layer, filled from the
// connection's configuration by TEConnectionUtils::ReadConnectionSetting. The
// initial values below are the defaults: a key that is not given keeps them.
// Text fields hold UTF-8.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/ILogger.h"
#include "driversupport/DSProxyDescription.h"
#include "thrift/TEHTTPSettings.h"
#include "thrift/TEHttpApiRetryEmulationTestSettings.h"
#include "thrift/TEHttpRetryAfterSetting.h"
#include "thrift/TEOCISettings.h"
#include "thrift/TERetryAfterKind.h"
#include "thrift/TETCLIServiceIfTestClientSettings.h"
#include "thrift/TETransportMode.h"

namespace Tarni::ThriftExtension
{
class TESettings
{
public:
    /// The header that carries the session tag.
    static constexpr const char* SESSION_TAG_HEADER = "X-Thriftserver-Session-Tag";

    /// With m_httpSettings.m_enableSessionTag, tags the connection with a new
    /// random version-4 UUID in the custom header SESSION_TAG_HEADER (an
    /// earlier tag is replaced). Does nothing when the switch is off.
    void AddSessionTagHeader(Support::ILogger* in_log);

    /// Removes the session tag header.
    void RemoveSessionTagHeader(Support::ILogger* in_log);

    // Connection.
    std::string m_dsn;
    std::string m_host;
    std::uint16_t m_port = 10000;
    bool m_krbSpnRdns = false;
    bool m_checkHttpConnectionHeader = true;
    bool m_enableTLSSNI = true;
    bool m_enableTcpKeepalive = true;
    /// Seconds; 0 uses the system default.
    std::uint64_t m_tcpKeepaliveTime = 0;
    /// Seconds; 0 uses the system default.
    std::uint64_t m_tcpKeepaliveInterval = 0;
    bool m_enableTStatusLogging = false;
    bool m_enableTEDebugLogging = false;

    TEHTTPSettings m_httpSettings;
    /// "http.header." entries, the prefix removed.
    std::map<std::string, std::string> m_customHttpHeaders;
    std::string m_expectedAuthCookiesForTesting;
    std::string m_expectedSspForTesting;

    bool m_passMaxProtocolVerInOpenSessionReq = false;
    bool m_enableFetchHeartbeat = false;
    /// Seconds.
    std::uint32_t m_fetchHeartbeatInterval = 60;

    // Catalogs.
    bool m_enableMultipleCatalogsSupport = false;
    bool m_isSyntheticCatalogAllowedInApiCalls = false;
    bool m_isSyntheticCatalogAllowedInQuery = false;
    bool m_enableSyntheticCatalogCheckOnMetadataQuery = false;
    bool m_enableCurrentCatalogCheckOnMetadataQuery = false;
    bool m_excludeEmptyStringCatalogInQuery = false;
    bool m_isTempTableAndViewsNotInCatalog = false;
    bool m_isEnableTempTableAndViewsEmptyStringCatalogCheck = false;
    bool m_allowEmptyStringCurrentCatalog = false;
    bool m_convertSyntheticCatalogFilterToNullFilter = false;
    bool m_convertSyntheticCatalogToCurrentCatalogForQuery = false;
    bool m_isSyntheticCatalogValidDriverSideCurrentCatalog = false;
    bool m_isSyntheticCatalogValidServerSideCurrentCatalog = false;
    bool m_serverSupportsDatabricksCatalogSsp = false;
    bool m_isServerSupportsDatabricksCatalogSspSet = false;
    std::string m_catalog;
    bool m_isCatalogSet = false;
    bool m_forceDatabricksCatalogSspToConfOverlay = false;
    bool m_validateCatalogAgainstServer = false;
    bool m_enableUseCatalogFallback = false;
    bool m_resolveSyntheticCatalogToCurrentCatalogWhenMetadataIdTrue = false;
    bool m_getMetadataWithQueryFromCurrentCatalogOnly = false;
    bool m_showLocalTempSchemasInSQLTablesSchemasOnly = false;
    bool m_showGlobalTempSchemasInSQLTablesSchemasOnly = false;
    bool m_useSqlStateFromServer = false;
    bool m_useLegacyCatalogAndTempSchemaRemovalLogic = false;

    /// Seconds.
    std::uint32_t m_webServerSocketBindRetryInterval = 1;
    /// Seconds; meaningful only with m_isQueryTimeoutOverridden.
    std::size_t m_queryTimeoutOverride = 0;
    bool m_isQueryTimeoutOverridden = false;
    bool m_enableRecreateThriftClientBeforeRetry = false;
    TETCLIServiceIfTestClientSettings m_testClientSettings;
    bool m_enableTranslationForCTAS = true;

    // HTTP path and retry-after handling.
    std::string m_httpPath;
    std::vector<std::string> m_apiCallsAllowingDefaultRetryAfterVal;
    TEHttpStatusRanges m_httpRespCodesAllowingDefaultRetryAfterVal = {{429, 429}, {503, 503}};
    /// Seconds, used when a reply of an allowed call and status has no Retry-After.
    std::uint32_t m_defaultRetryAfterVal = 1;
    std::string m_apiCallForHttpRespCodeEmulation;
    /// 0: no emulation.
    std::uint16_t m_emulatedHttpRespCode = 0;
    std::map<TERetryAfterKind, TEHttpRetryAfterSetting> m_retryAfterSettings = {
        {TERetryAfterKind::TemporarilyUnavailable, {true, 900}},
        {TERetryAfterKind::RateLimit, {true, 120}},
    };

    // HTTP retry emulation (tests only).
    TEHttpApiRetryEmulationTestSettings m_httpApiRetryEmulationTestSettings;
    bool m_startHttpApiRetryEmulationAfterConnected = false;

    // SAML browser flow.
    std::string m_ssoClientIdentifierHeader = "X-Hive-Client-Identifier";
    std::string m_ssoTokenResponsePortHeader = "X-Hive-Token-Response-Port";
    /// 0: any free port.
    std::uint16_t m_ssoWebServerPort = 0;
    /// Seconds.
    std::uint32_t m_ssoWebServerTimeout = 120;
    bool m_ssoWebServerTimeoutTakesPrecedence = false;
    bool m_ssoTestingAllowNonSSL = false;
    bool m_ssoIgnoreDriverNoPrompt = true;
    bool m_ssoResetHttpTransportAfterBrowserAuth = false;
    bool m_ssoEnableNonIdempotentApiCallRetryOnTokenExpired = false;
    bool m_enableSamlCookieCaching = false;

    // Server-side properties.
    bool m_applySSPWithQueries = true;
    bool m_lCaseSspKeyName = true;
    bool m_uCaseSspKeyName = false;
    bool m_enableBdsSspHandling = false;
    /// "SSP_" entries, the prefix removed, names case-converted.
    std::map<std::string, std::string> m_serverSideProperties;
    /// With m_enableBdsSspHandling: "BDS_" and "SSP_BDS_" entries, named
    /// "BDS_" + rest.
    std::map<std::string, std::string> m_bdsServerSideProperties;

    TETransportMode m_transportMode = TETransportMode::Binary;
    /// The proxy of an HTTP connection; empty for none.
    DriverSupport::DSProxyDescription m_proxy;

    // User agent.
    bool m_useLegacyUserAgent = false;
    std::string m_userAgentEntry;
    std::string m_userAgent;

    bool m_useLegacyBinaryDataRetrievalBehavior = false;
    bool m_useLegacyCharacterDataRetrievalBehavior = false;

    /// Filled only for OCI connections.
    TEOCISettings m_ociSettings;
    bool m_isOCIConnection = false;
};
}  // namespace Tarni::ThriftExtension
