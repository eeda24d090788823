#pragma once
// Every configuration key name, once. The name, including its case, is part
// of the stored format (registry value names, INI keys, export files), so
// code never spells a key any other way. Odd spellings ("supress-...") are
// part of the format too.
#include "core/TarniString.h"

namespace Tarni::DriverSupport::Keys
{
#define TARNI_KEY(name, text) inline constexpr tarni_wstring_view name = text

// Default driver properties, in the order the defaults are built.
TARNI_KEY(Port, u"Port");
TARNI_KEY(Schema, u"Schema");
TARNI_KEY(DefaultStringColumnLength, u"DefaultStringColumnLength");
TARNI_KEY(BinaryColumnLength, u"BinaryColumnLength");
TARNI_KEY(DecimalColumnScale, u"DecimalColumnScale");
TARNI_KEY(FastSQLPrepare, u"FastSQLPrepare");
TARNI_KEY(RowsFetchedPerBlock, u"RowsFetchedPerBlock");
TARNI_KEY(MaxBytesPerFetchRequest, u"MaxBytesPerFetchRequest");
TARNI_KEY(UseNativeQuery, u"UseNativeQuery");
TARNI_KEY(EnableUniqueColumnName, u"EnableUniqueColumnName");
TARNI_KEY(UseOnlySSPI, u"UseOnlySSPI");
TARNI_KEY(ShowSystemTable, u"ShowSystemTable");
TARNI_KEY(UseUnicodeSqlCharacterTypes, u"UseUnicodeSqlCharacterTypes");
TARNI_KEY(FixUnquotedDefaultSchemaNameInQuery, u"FixUnquotedDefaultSchemaNameInQuery");
TARNI_KEY(ServiceDiscoveryMode, u"ServiceDiscoveryMode");
TARNI_KEY(SparkServerType, u"SparkServerType");
TARNI_KEY(AuthMech, u"AuthMech");
TARNI_KEY(KrbHostFQDN, u"KrbHostFQDN");
TARNI_KEY(KrbServiceName, u"KrbServiceName");
TARNI_KEY(DelegateKrbCreds, u"DelegateKrbCreds");
TARNI_KEY(ServicePrincipalCanonicalization, u"ServicePrincipalCanonicalization");
TARNI_KEY(SocketTimeout, u"SocketTimeout");
TARNI_KEY(AsyncExecPollInterval, u"AsyncExecPollInterval");
TARNI_KEY(EnableTempTable, u"EnableTempTable");
TARNI_KEY(WebHDFSPort, u"WebHDFSPort");
TARNI_KEY(HDFSUser, u"HDFSUser");
TARNI_KEY(HDFSTempTableDir, u"HDFSTempTableDir");
TARNI_KEY(TempTableTTL, u"TempTableTTL");
TARNI_KEY(DriverConfigTakePrecedence, u"DriverConfigTakePrecedence");
TARNI_KEY(EnableAsyncExec, u"EnableAsyncExec");
TARNI_KEY(GetTablesWithQuery, u"GetTablesWithQuery");
TARNI_KEY(InvalidSessionAutoRecover, u"InvalidSessionAutoRecover");
TARNI_KEY(AutoReconnect, u"AutoReconnect");
TARNI_KEY(Auth_Flow, u"Auth_Flow");
TARNI_KEY(UseLegacyUserAgent, u"UseLegacyUserAgent");
TARNI_KEY(ApplySSPWithQueries, u"ApplySSPWithQueries");
TARNI_KEY(EnableTranslationForCTAS, u"EnableTranslationForCTAS");
TARNI_KEY(SSOIgnoreDriverNoPrompt, u"SSOIgnoreDriverNoPrompt");
TARNI_KEY(QueryTimeoutOverride, u"QueryTimeoutOverride");

// Data-source settings that never go to the driver-wide store.
TARNI_KEY(Host, u"Host");
TARNI_KEY(DESCRIPTION, u"DESCRIPTION");
TARNI_KEY(DSN, u"DSN");
TARNI_KEY(Driver, u"Driver");

// Credentials.
TARNI_KEY(UID, u"UID");
TARNI_KEY(PWD, u"PWD");
TARNI_KEY(EncryptedPWD, u"EncryptedPWD");
TARNI_KEY(DelegationUID, u"DelegationUID");
TARNI_KEY(DPAPI_, u"DPAPI_");

// Kerberos, SASL and further driver switches edited by the dialogs.
TARNI_KEY(KrbRealm, u"KrbRealm");
TARNI_KEY(SaslPlugDir, u"SaslPlugDir");
TARNI_KEY(ConnectionTestTimeout, u"ConnectionTestTimeout");
TARNI_KEY(TSaslTransportBufSize, u"TSaslTransportBufSize");
TARNI_KEY(SysTblRowLimit, u"SysTblRowLimit");
TARNI_KEY(MaxNumIdleCxns, u"MaxNumIdleCxns");
TARNI_KEY(EnablePKFK, u"EnablePKFK");
TARNI_KEY(GetColumnsWithQuery, u"GetColumnsWithQuery");
TARNI_KEY(SetDatabaseWithQuery, u"SetDatabaseWithQuery");
TARNI_KEY(ForceSynchronousExec, u"ForceSynchronousExec");
TARNI_KEY(EnableMaxRowsInResult, u"EnableMaxRowsInResult");
TARNI_KEY(TableFieldDelimiter, u"TableFieldDelimiter");
TARNI_KEY(TableRowTerminator, u"TableRowTerminator");
TARNI_KEY(WebHDFSHost, u"WebHDFSHost");
TARNI_KEY(URLPatternValidation, u"URLPatternValidation");
TARNI_KEY(EnableAdditionalHttpHeadersForCloudFetch, u"EnableAdditionalHttpHeadersForCloudFetch");
TARNI_KEY(ThriftTransport, u"ThriftTransport");
TARNI_KEY(HTTPPath, u"HTTPPath");
TARNI_KEY(ZKNamespace, u"ZKNamespace");
TARNI_KEY(LCaseSspKeyName, u"LCaseSspKeyName");

// Logging (written by their own step, never by the driver-wide walk).
TARNI_KEY(LogLevel, u"LogLevel");
TARNI_KEY(LogPath, u"LogPath");
TARNI_KEY(LogFileCount, u"LogFileCount");
TARNI_KEY(LogFileSize, u"LogFileSize");
TARNI_KEY(LogNamespace, u"LogNamespace");
TARNI_KEY(LogType, u"LogType");
TARNI_KEY(UseLogPrefix, u"UseLogPrefix");

// HTTP proxy.
TARNI_KEY(UseProxy, u"UseProxy");
TARNI_KEY(ProxyHost, u"ProxyHost");
TARNI_KEY(ProxyPort, u"ProxyPort");
TARNI_KEY(ProxyUID, u"ProxyUID");
TARNI_KEY(ProxyPWD, u"ProxyPWD");
TARNI_KEY(ProxyEncryptedPWD, u"ProxyEncryptedPWD");
TARNI_KEY(UseDefaultSystemProxy, u"UseDefaultSystemProxy");
// Read at connection time as the newer names of ProxyUID and ProxyPWD.
TARNI_KEY(ProxyUsername, u"ProxyUsername");
TARNI_KEY(ProxyPassword, u"ProxyPassword");

// SSL.
TARNI_KEY(SSL, u"SSL");
TARNI_KEY(TrustedCerts, u"TrustedCerts");
TARNI_KEY(AllowHostNameCNMismatch, u"AllowHostNameCNMismatch");
TARNI_KEY(AllowSelfSignedServerCert, u"AllowSelfSignedServerCert");
TARNI_KEY(UseSystemTrustStore, u"UseSystemTrustStore");
TARNI_KEY(CheckCertRevocation, u"CheckCertRevocation");
TARNI_KEY(AllowInvalidCACert, u"AllowInvalidCACert");
TARNI_KEY(TwoWaySSL, u"TwoWaySSL");
TARNI_KEY(Min_TLS, u"Min_TLS");
TARNI_KEY(ClientCert, u"ClientCert");
TARNI_KEY(ClientPrivateKey, u"ClientPrivateKey");
TARNI_KEY(ClientPrivateKeyPWD, u"ClientPrivateKeyPWD");
TARNI_KEY(EncryptedClientPrivateKeyPWD, u"EncryptedClientPrivateKeyPWD");

// OAuth 2.0.
TARNI_KEY(OAuth2AuthorizationEndPoint, u"OAuth2AuthorizationEndPoint");
TARNI_KEY(OAuth2TokenEndPoint, u"OAuth2TokenEndPoint");
TARNI_KEY(OAuth2CodeChallengeMethod, u"OAuth2CodeChallengeMethod");
TARNI_KEY(OAuth2EnableTokenCache, u"OAuth2EnableTokenCache");
TARNI_KEY(OAuthWebserverTimeout, u"OAuthWebserverTimeout");
TARNI_KEY(OAuthWebServerTimeoutTakesPrecedence, u"OAuthWebServerTimeoutTakesPrecedence");
TARNI_KEY(OAuthRequestRetryDelay, u"OAuthRequestRetryDelay");
TARNI_KEY(OAuthRequestRetryMaxTimes, u"OAuthRequestRetryMaxTimes");
TARNI_KEY(OAuthIgnoreDriverNoPrompt, u"OAuthIgnoreDriverNoPrompt");
TARNI_KEY(Auth_Client_ID, u"Auth_Client_ID");
TARNI_KEY(Auth_Client_Secret, u"Auth_Client_Secret");
TARNI_KEY(Auth_Encrypted_Client_Secret, u"Auth_Encrypted_Client_Secret");
TARNI_KEY(Auth_AccessToken, u"Auth_AccessToken");
TARNI_KEY(Auth_Encrypted_Access_Token, u"Auth_Encrypted_Access_Token");
TARNI_KEY(Auth_RefreshToken, u"Auth_RefreshToken");
TARNI_KEY(Auth_Scope, u"Auth_Scope");
TARNI_KEY(Auth_Realm, u"Auth_Realm");
TARNI_KEY(Auth_Type, u"Auth_Type");
TARNI_KEY(Auth_Expires, u"Auth_Expires");
TARNI_KEY(Auth_BaseRedirectUri, u"Auth_BaseRedirectUri");
TARNI_KEY(Auth_CompletedRedirectUri, u"Auth_CompletedRedirectUri");
TARNI_KEY(Auth_WindowWidth, u"Auth_WindowWidth");
TARNI_KEY(Auth_WindowHeight, u"Auth_WindowHeight");

// Service discovery (AOSS keys carry this prefix in front of the credential keys).
TARNI_KEY(AOSS_Prefix, u"AOSS_");
TARNI_KEY(AOSS_AuthMech, u"AOSS_AuthMech");

// DFI and SAML.
TARNI_KEY(OCIConfigFile, u"OCIConfigFile");
TARNI_KEY(OCIProfile, u"OCIProfile");
TARNI_KEY(keyFilePassword, u"keyFilePassword");
TARNI_KEY(EncryptedKeyFilePassword, u"EncryptedKeyFilePassword");
TARNI_KEY(OCIIgnoreDriverNoPrompt, u"OCIIgnoreDriverNoPrompt");
TARNI_KEY(EnableSamlCookieCaching, u"EnableSamlCookieCaching");
// "1": the SAML_2.0 mechanism also takes the user name and password of the data source.
TARNI_KEY(SSOUseCredentials, u"SSOUseCredentials");

// Prefixed property groups.
TARNI_KEY(SSP_Prefix, u"SSP_");
TARNI_KEY(HttpHeaderPrefix, u"http.header.");

#undef TARNI_KEY
}  // namespace Tarni::DriverSupport::Keys
