#include "product/SOKeyCatalogue.h"

#include <map>

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSSSLConfiguration.h"
#include "driversupport/DSSetupException.h"
#include "driversupport/ProductSettingKeys.h"
#include "product/SOConfigurationTables.h"
#include "product/SOProductSettings.h"
#include "support/CaseInsensitiveLess.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using DriverSupport::DSKeyDescription;
namespace Keys = DriverSupport::Keys;
using Support::StringConverter;

namespace
{
constexpr unsigned long long UINT32_LIMIT = 4294967295ULL;
constexpr unsigned long long PORT_LIMIT = 65535ULL;
constexpr unsigned long long INT32_LIMIT = 2147483647ULL;

// A table whose stored value is the position (plus in_offset) of the name.
std::vector<DSKeyDescription::ChoiceEntry> Numbered(const std::vector<tarni_wstring>& in_names, unsigned in_offset,
                                                    size_t in_count)
{
    std::vector<DSKeyDescription::ChoiceEntry> choices;
    for (size_t i = 0; i < in_count && i < in_names.size(); ++i)
    {
        choices.emplace_back(StringConverter::FromNumber(static_cast<unsigned long long>(i + in_offset)), in_names[i]);
    }
    return choices;
}

std::vector<DSKeyDescription> Build()
{
    using D = DSKeyDescription;
    const auto number = [](unsigned long long in_value) { return StringConverter::FromNumber(in_value); };
    const auto& modes = SOConfigurationTables::ServiceDiscoveryModeNames();
    using Tls = DriverSupport::DSSSLConfiguration;

    std::vector<D> all;
    // The driver's defaults, in the order they are built.
    all.push_back(D::Number(Keys::Port, 1, PORT_LIMIT).Default([number] {
        return number(SOProductSettings::GetDefaultPort());
    }));
    all.push_back(D::Text(Keys::Schema).Default(u"default"));
    all.push_back(D::Number(Keys::DefaultStringColumnLength, 1, INT32_LIMIT).Default([number] {
        return number(SOProductSettings::GetDefaultStringColumnLength());
    }));
    all.push_back(D::Number(Keys::BinaryColumnLength, 0, INT32_LIMIT).Default(u"32767"));
    all.push_back(D::Number(Keys::DecimalColumnScale, 0, 38).Default(u"10"));
    all.push_back(D::Switch(Keys::FastSQLPrepare).Default(u"0"));
    all.push_back(D::Number(Keys::RowsFetchedPerBlock, 1, UINT32_LIMIT).Default(u"10000"));
    // Interpreted by the driver ("300 MB"): kept as typed.
    all.push_back(D::Text(Keys::MaxBytesPerFetchRequest).Default(u"300 MB"));
    all.push_back(D::Switch(Keys::UseNativeQuery).Default(u"0"));
    all.push_back(D::Switch(Keys::EnableUniqueColumnName).Default(u"1"));
    all.push_back(D::Switch(Keys::UseOnlySSPI).Default(u"0"));
    all.push_back(D::Switch(Keys::ShowSystemTable).Default(u"0"));
    all.push_back(D::Switch(Keys::UseUnicodeSqlCharacterTypes).Default(u"0"));
    all.push_back(D::Switch(Keys::FixUnquotedDefaultSchemaNameInQuery).Default(u"1"));
    // Stored as the mode's name; "0" also reads as the first mode.
    all.push_back(D::Choice(Keys::ServiceDiscoveryMode,
                            {{modes[SOConfigurationTables::SD_NONE], u""},
                             {modes[SOConfigurationTables::SD_ZOOKEEPER], u""},
                             {modes[SOConfigurationTables::SD_AOSS], u""},
                             {u"0", modes[SOConfigurationTables::SD_NONE]}})
                      .Default(modes[SOConfigurationTables::SD_NONE]));
    all.push_back(D::Choice(Keys::SparkServerType, Numbered(SOConfigurationTables::ServerTypeNames(), 1, 4))
                      .Default([number] { return number(SOProductSettings::GetDefaultServerType()); }));
    all.push_back(D::Choice(Keys::AuthMech,
                            Numbered(SOConfigurationTables::AuthMechNames(), 0, SOConfigurationTables::AUTH_END))
                      .Default([number] { return number(SOProductSettings::GetDefaultAuthMech()); }));
    all.push_back(D::Text(Keys::KrbHostFQDN).Default(u"_HOST"));
    all.push_back(D::Text(Keys::KrbServiceName).Default(u"spark"));
    all.push_back(D::Switch(Keys::DelegateKrbCreds).Default(u"0"));
    all.push_back(D::Switch(Keys::ServicePrincipalCanonicalization).Default(u"1"));
    all.push_back(D::Number(Keys::SocketTimeout, 0, UINT32_LIMIT).Default(u"60"));
    all.push_back(D::Number(Keys::AsyncExecPollInterval, 0, UINT32_LIMIT).Default(u"100"));
    all.push_back(D::Switch(Keys::EnableTempTable).Default(u"0"));
    all.push_back(D::Number(Keys::WebHDFSPort, 1, PORT_LIMIT).Default(u"50070"));
    all.push_back(D::Text(Keys::HDFSUser).Default(u"hdfs"));
    all.push_back(D::Text(Keys::HDFSTempTableDir).Default(u"/tmp/tarni"));
    all.push_back(D::Number(Keys::TempTableTTL, 0, UINT32_LIMIT).Default(u"10"));
    all.push_back(D::Switch(Keys::DriverConfigTakePrecedence).Default(u"0"));
    all.push_back(D::Switch(Keys::EnableAsyncExec).Default(u"0"));
    all.push_back(D::Switch(Keys::GetTablesWithQuery).Default([] {
        return tarni_wstring(
            SOProductSettings::GetBoolean(DriverSupport::ProductSettingKeys::GetTblsWithQuery) ? u"1" : u"0");
    }));
    all.push_back(D::Switch(Keys::InvalidSessionAutoRecover).Default(u"1"));
    all.push_back(D::Switch(Keys::AutoReconnect).Default(u"1"));
    all.push_back(D::Choice(Keys::Auth_Flow, Numbered(SOConfigurationTables::OAuthFlowNames(), 0, 3)).Default(u"0"));
    all.push_back(D::Switch(Keys::UseLegacyUserAgent).Default(u"0"));
    all.push_back(D::Switch(Keys::ApplySSPWithQueries).Default(u"1"));
    all.push_back(D::Switch(Keys::EnableTranslationForCTAS).Default(u"1"));
    all.push_back(D::Switch(Keys::SSOIgnoreDriverNoPrompt).Default(u"1"));
    all.push_back(D::Number(Keys::QueryTimeoutOverride, 0, UINT32_LIMIT).EmptyAllowed().Default(u""));

    // Data-source settings.
    for (const tarni_wstring_view key : {Keys::Host, Keys::DESCRIPTION, Keys::DSN, Keys::Driver})
    {
        all.push_back(D::Text(key));
    }
    // Credentials (the plain secrets and their protected forms).
    for (const tarni_wstring_view key : {Keys::UID, Keys::DelegationUID, Keys::ProxyUID, Keys::Auth_Client_ID})
    {
        all.push_back(D::Text(key));
    }
    for (const tarni_wstring_view key :
         {Keys::PWD, Keys::EncryptedPWD, Keys::ProxyPWD, Keys::ProxyEncryptedPWD, Keys::ClientPrivateKeyPWD,
          Keys::EncryptedClientPrivateKeyPWD, Keys::Auth_Client_Secret, Keys::Auth_Encrypted_Client_Secret,
          Keys::Auth_AccessToken, Keys::Auth_Encrypted_Access_Token, Keys::keyFilePassword,
          Keys::EncryptedKeyFilePassword})
    {
        all.push_back(D::Secret(key));
    }
    // Further keys the dialogs edit.
    for (const tarni_wstring_view key :
         {Keys::KrbRealm, Keys::SaslPlugDir, Keys::TableFieldDelimiter, Keys::TableRowTerminator, Keys::WebHDFSHost,
          Keys::HTTPPath, Keys::ZKNamespace, Keys::LogPath, Keys::ProxyHost, Keys::TrustedCerts, Keys::ClientCert,
          Keys::ClientPrivateKey, Keys::OAuth2AuthorizationEndPoint, Keys::OAuth2TokenEndPoint,
          Keys::OAuth2CodeChallengeMethod, Keys::Auth_RefreshToken, Keys::Auth_Scope, Keys::Auth_Realm,
          Keys::Auth_Type, Keys::Auth_Expires, Keys::Auth_BaseRedirectUri, Keys::Auth_CompletedRedirectUri,
          Keys::OCIConfigFile, Keys::OCIProfile})
    {
        all.push_back(D::Text(key));
    }
    for (const tarni_wstring_view key :
         {Keys::EnablePKFK, Keys::GetColumnsWithQuery, Keys::SetDatabaseWithQuery, Keys::ForceSynchronousExec,
          Keys::EnableMaxRowsInResult, Keys::URLPatternValidation, Keys::EnableAdditionalHttpHeadersForCloudFetch,
          Keys::LCaseSspKeyName, Keys::UseProxy, Keys::UseDefaultSystemProxy, Keys::SSL,
          Keys::AllowHostNameCNMismatch, Keys::AllowSelfSignedServerCert, Keys::UseSystemTrustStore,
          Keys::CheckCertRevocation, Keys::AllowInvalidCACert, Keys::TwoWaySSL, Keys::OAuth2EnableTokenCache,
          Keys::OAuthWebServerTimeoutTakesPrecedence, Keys::OAuthIgnoreDriverNoPrompt, Keys::OCIIgnoreDriverNoPrompt,
          Keys::EnableSamlCookieCaching, Keys::SSOUseCredentials, Keys::UseLogPrefix})
    {
        all.push_back(D::Switch(key));
    }
    for (const tarni_wstring_view key :
         {Keys::ConnectionTestTimeout, Keys::TSaslTransportBufSize, Keys::SysTblRowLimit, Keys::MaxNumIdleCxns,
          Keys::OAuthWebserverTimeout, Keys::OAuthRequestRetryDelay, Keys::OAuthRequestRetryMaxTimes,
          Keys::Auth_WindowWidth, Keys::Auth_WindowHeight})
    {
        all.push_back(D::Number(key, 0, UINT32_LIMIT));
    }
    all.push_back(D::Number(Keys::ProxyPort, 1, PORT_LIMIT));
    all.push_back(D::Choice(Keys::ThriftTransport, Numbered(SOConfigurationTables::TransportNames(), 0, 3)));
    all.push_back(D::Choice(Keys::Min_TLS, {{Tls::MinTlsText(Tls::TLS_1_0), u""},
                                            {Tls::MinTlsText(Tls::TLS_1_1), u""},
                                            {Tls::MinTlsText(Tls::TLS_1_2), u""},
                                            {Tls::MinTlsText(Tls::TLS_UNRESTRICTED), u""}}));
    // Logging: the level is the index of its name; the setters' codes for the rotation limits.
    all.push_back(D::Choice(Keys::LogLevel, Numbered({u"LOG_OFF", u"LOG_FATAL", u"LOG_ERROR", u"LOG_WARNING",
                                                      u"LOG_INFO", u"LOG_DEBUG", u"LOG_TRACE"},
                                                     0, 7)));
    all.push_back(D::Number(Keys::LogFileCount, 0, UINT32_LIMIT)
                      .EmptyAllowed()
                      .SetupErrorCode(DriverSupport::SETUP_INVALID_LOG_FILE_COUNT));
    all.push_back(D::Number(Keys::LogFileSize, 0, 4096).EmptyAllowed().SetupErrorCode(
        DriverSupport::SETUP_INVALID_LOG_FILE_SIZE));
    return all;
}
}  // namespace

const std::vector<DSKeyDescription>& SOKeyCatalogue::All()
{
    static const std::vector<DSKeyDescription> all = Build();
    return all;
}

const DSKeyDescription* SOKeyCatalogue::Find(tarni_wstring_view in_key)
{
    static const std::map<tarni_wstring, size_t, Support::CaseInsensitiveLess> index = [] {
        std::map<tarni_wstring, size_t, Support::CaseInsensitiveLess> built;
        for (size_t i = 0; i < All().size(); ++i)
        {
            built.emplace(All()[i].GetName(), i);
        }
        return built;
    }();
    const auto it = index.find(in_key);
    return it == index.end() ? nullptr : &All()[it->second];
}

bool SOKeyCatalogue::IsPrefixedKey(tarni_wstring_view in_key)
{
    for (const tarni_wstring_view prefix : {Keys::SSP_Prefix, Keys::HttpHeaderPrefix})
    {
        if (in_key.size() >= prefix.size() && StringConverter::EqualsIgnoreCase(in_key.substr(0, prefix.size()), prefix))
        {
            return true;
        }
    }
    return false;
}

void SOKeyCatalogue::Check(tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    if (const DSKeyDescription* description = Find(in_key))
    {
        description->Check(in_value);
        return;
    }
    for (const tarni_wstring_view prefix : {Keys::SSP_Prefix, Keys::HttpHeaderPrefix})
    {
        if (StringConverter::EqualsIgnoreCase(in_key, prefix))
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          u"DSSettingEmptyPropertyNameErr", {tarni_wstring(in_key)});
        }
    }
}
}  // namespace Tarni::SparkODBC
