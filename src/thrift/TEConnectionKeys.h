#pragma once
// Key names read only by the Thrift connection layer. Keys that the dialogs
// edit as well are in driversupport/ConfigurationKeys.h. The name, including
// its case and odd spellings ("Behaivor"), is the stored format.
#include "core/TarniString.h"

namespace Tarni::ThriftExtension::Keys
{
#define TARNI_KEY(name, text) inline constexpr tarni_wstring_view name = text

// Connection.
TARNI_KEY(KrbSpnRdns, u"KrbSpnRdns");
TARNI_KEY(CheckHttpConnectionHeader, u"CheckHttpConnectionHeader");
TARNI_KEY(EnableTLSSNI, u"EnableTLSSNI");
TARNI_KEY(EnableTcpKeepalive, u"EnableTcpKeepalive");
TARNI_KEY(TcpKeepaliveTime, u"TcpKeepaliveTime");
TARNI_KEY(TcpKeepaliveInterval, u"TcpKeepaliveInterval");
TARNI_KEY(EnableTStatusLogging, u"EnableTStatusLogging");
TARNI_KEY(EnableTEDebugLogging, u"EnableTEDebugLogging");
TARNI_KEY(PassMaxProtocolVerInOpenSessionReq, u"PassMaxProtocolVerInOpenSessionReq");
TARNI_KEY(EnableFetchHeartbeat, u"EnableFetchHeartbeat");
TARNI_KEY(FetchHeartbeatInterval, u"FetchHeartbeatInterval");

// Catalogs and temporary schemas.
TARNI_KEY(EnableMultipleCatalogsSupport, u"EnableMultipleCatalogsSupport");
TARNI_KEY(IsSyntheticCatalogAllowedInApiCalls, u"IsSyntheticCatalogAllowedInApiCalls");
TARNI_KEY(IsSyntheticCatalogAllowedInQuery, u"IsSyntheticCatalogAllowedInQuery");
TARNI_KEY(EnableSyntheticCatalogCheckOnMetadataQuery, u"EnableSyntheticCatalogCheckOnMetadataQuery");
TARNI_KEY(EnableCurrentCatalogCheckOnMetadataQuery, u"EnableCurrentCatalogCheckOnMetadataQuery");
TARNI_KEY(ExcludeEmptyStringCatalogInQuery, u"ExcludeEmptyStringCatalogInQuery");
TARNI_KEY(IsTempTableAndViewsNotInCatalog, u"IsTempTableAndViewsNotInCatalog");
TARNI_KEY(IsEnableTempTableAndViewsEmptyStringCatalogCheck, u"IsEnableTempTableAndViewsEmptyStringCatalogCheck");
TARNI_KEY(AllowEmptyStringCurrentCatalog, u"AllowEmptyStringCurrentCatalog");
TARNI_KEY(ConvertSyntheticCatalogFilterToNullFilter, u"ConvertSyntheticCatalogFilterToNullFilter");
TARNI_KEY(ConvertSyntheticCatalogToCurrentCatalogForQuery, u"ConvertSyntheticCatalogToCurrentCatalogForQuery");
TARNI_KEY(IsSyntheticCatalogValidDriverSideCurrentCatalog, u"IsSyntheticCatalogValidDriverSideCurrentCatalog");
TARNI_KEY(IsSyntheticCatalogValidServerSideCurrentCatalog, u"IsSyntheticCatalogValidServerSideCurrentCatalog");
TARNI_KEY(ServerSupportsDatabricksCatalogSsp, u"ServerSupportsDatabricksCatalogSsp");
TARNI_KEY(Catalog, u"Catalog");
TARNI_KEY(ForceDatabricksCatalogSspToConfOverlay, u"ForceDatabricksCatalogSspToConfOverlay");
TARNI_KEY(ValidateCatalogAgainstServer, u"ValidateCatalogAgainstServer");
TARNI_KEY(EnableUseCatalogFallback, u"EnableUseCatalogFallback");
TARNI_KEY(ResolveSyntheticCatalogToCurrentCatalogWhenMetadataIdTrue,
          u"ResolveSyntheticCatalogToCurrentCatalogWhenMetadataIdTrue");
TARNI_KEY(GetMetadataWithQueryFromCurrentCatalogOnly, u"GetMetadataWithQueryFromCurrentCatalogOnly");
TARNI_KEY(ShowLocalTempSchemasInSQLTablesSchemasOnly, u"ShowLocalTempSchemasInSQLTablesSchemasOnly");
TARNI_KEY(ShowGlobalTempSchemasInSQLTablesSchemasOnly, u"ShowGlobalTempSchemasInSQLTablesSchemasOnly");
TARNI_KEY(UseSqlStateFromServer, u"UseSqlStateFromServer");
TARNI_KEY(UseLegacyCatalogAndTempSchemaRemovalLogic, u"UseLegacyCatalogAndTempSchemaRemovalLogic");
TARNI_KEY(WebServerSocketBindRetryInterval, u"WebServerSocketBindRetryInterval");
TARNI_KEY(EnableRecreateThriftClientBeforeRetry, u"EnableRecreateThriftClientBeforeRetry");

// Test client (tests only).
TARNI_KEY(EnableSslErrorEmulation, u"EnableSslErrorEmulation");
TARNI_KEY(ThriftApiForSslErrorEmulation, u"ThriftApiForSslErrorEmulation");
TARNI_KEY(NumThriftApiCallsToSkipBeforeSslErrorEmulation, u"NumThriftApiCallsToSkipBeforeSslErrorEmulation");
TARNI_KEY(DisableSslErrorEmulationAtDestruction, u"DisableSslErrorEmulationAtDestruction");

// HTTP.
TARNI_KEY(EnableResetHttpConnectionWithApiInterval, u"EnableResetHttpConnectionWithApiInterval");
TARNI_KEY(ResetHttpConnectionInterval, u"ResetHttpConnectionInterval");
TARNI_KEY(EnableHttpConnectionResetWithHttpReqCount, u"EnableHttpConnectionResetWithHttpReqCount");
TARNI_KEY(NumHttpReqsToTriggerHttpCxnReset, u"NumHttpReqsToTriggerHttpCxnReset");
TARNI_KEY(EnableHttpApiIdleEmulationTest, u"EnableHttpApiIdleEmulationTest");
TARNI_KEY(HttpEmulatedApiIdleTime, u"HttpEmulatedApiIdleTime");
TARNI_KEY(ExpectedAuthCookiesForTesting, u"ExpectedAuthCookiesForTesting");
TARNI_KEY(ExpectedSspForTesting, u"ExpectedSspForTesting");
TARNI_KEY(EnableHttpApiRetry, u"EnableHttpApiRetry");
TARNI_KEY(MaxNumHttpApiRetries, u"MaxNumHttpApiRetries");
TARNI_KEY(HttpApiRetryInterval, u"HttpApiRetryInterval");
TARNI_KEY(RetriableHttpApiNames, u"RetriableHttpApiNames");
TARNI_KEY(RetriableHttpStatusCodeRanges, u"RetriableHttpStatusCodeRanges");
TARNI_KEY(ApiCallsAllowingDefaultRetryAfterVal, u"ApiCallsAllowingDefaultRetryAfterVal");
TARNI_KEY(HttpRespCodesAllowingDefaultRetryAfterVal, u"HttpRespCodesAllowingDefaultRetryAfterVal");
TARNI_KEY(DefaultRetryAfterVal, u"DefaultRetryAfterVal");
TARNI_KEY(ApiCallForHttpRespCodeEmulation, u"ApiCallForHttpRespCodeEmulation");
TARNI_KEY(EmulatedHttpRespCode, u"EmulatedHttpRespCode");
TARNI_KEY(TemporarilyUnavailableRetry, u"TemporarilyUnavailableRetry");
TARNI_KEY(TemporarilyUnavailableRetryTimeout, u"TemporarilyUnavailableRetryTimeout");
TARNI_KEY(RateLimitRetry, u"RateLimitRetry");
TARNI_KEY(RateLimitRetryTimeout, u"RateLimitRetryTimeout");
TARNI_KEY(EnableHttpApiRetryEmulationTest, u"EnableHttpApiRetryEmulationTest");
TARNI_KEY(HttpApiRetryEmulationTestSettings, u"HttpApiRetryEmulationTestSettings");
TARNI_KEY(StartHttpApiRetryEmulationAfterConnected, u"StartHttpApiRetryEmulationAfterConnected");

// SAML browser flow.
TARNI_KEY(SSOClientIdentifierHeader, u"SSOClientIdentifierHeader");
TARNI_KEY(SSOTokenResponsePortHeader, u"SSOTokenResponsePortHeader");
TARNI_KEY(SSOWebServerPort, u"SSOWebServerPort");
TARNI_KEY(SSOWebServerTimeout, u"SSOWebServerTimeout");
TARNI_KEY(SSOWebServerTimeoutTakesPrecedence, u"SSOWebServerTimeoutTakesPrecedence");
TARNI_KEY(SSOTestingAllowNonSSL, u"SSOTestingAllowNonSSL");
TARNI_KEY(SSOResetHttpTransportAfterBrowserAuth, u"SSOResetHttpTransportAfterBrowserAuth");
TARNI_KEY(SSOEnableNonIdempotentApiCallRetryOnTokenExpired, u"SSOEnableNonIdempotentApiCallRetryOnTokenExpired");

// Server-side properties.
TARNI_KEY(UCaseSspKeyName, u"UCaseSspKeyName");
TARNI_KEY(EnableBdsSspHandling, u"EnableBdsSspHandling");
TARNI_KEY(BDS_Prefix, u"BDS_");

// Transport, user agent, data retrieval.
TARNI_KEY(TransportMode, u"TransportMode");
TARNI_KEY(UseLegacyBinaryDataRetrievalBehaivor, u"UseLegacyBinaryDataRetrievalBehaivor");
TARNI_KEY(UseLegacyCharacterDataRetrievalBehaivor, u"UseLegacyCharacterDataRetrievalBehaivor");

// OCI data flow clusters.
TARNI_KEY(OCIRegion, u"OCIRegion");
TARNI_KEY(OCITokenRefreshBuffer, u"OCITokenRefreshBuffer");
TARNI_KEY(OCIWebServerTimeout, u"OCIWebServerTimeout");
TARNI_KEY(OCIWebServerTimeoutTakesPrecedence, u"OCIWebServerTimeoutTakesPrecedence");
TARNI_KEY(OCIMaxTokenSize, u"OCIMaxTokenSize");
TARNI_KEY(OCIAuthURL, u"OCIAuthURL");
TARNI_KEY(OCITokenRefreshURL, u"OCITokenRefreshURL");

#undef TARNI_KEY
}  // namespace Tarni::ThriftExtension::Keys
