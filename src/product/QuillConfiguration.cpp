#include "product/QuillConfiguration.h"

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/ProductSettingKeys.h"
#include "product/SOConfigurationTables.h"
#include "product/SOProductSettings.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using DriverSupport::ConfigurationMap;
namespace Keys = DriverSupport::Keys;
using Support::StringConverter;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillConfiguration";
}  // namespace

QuillConfiguration::QuillConfiguration(tarni_wstring in_dsnName, unsigned in_configType,
                                       Support::ILogger* in_logger)
    : DSDSNConfiguration(std::move(in_dsnName), in_configType, in_logger)
{
    TARNI_LOG_ENTRY(in_logger, NS, CLS, "QuillConfiguration");
    using DriverSupport::DSUidPwdKeySet;
    const auto key = [](tarni_wstring_view in_key) { return tarni_wstring(in_key); };
    m_aossCredentials = AddCredential(
        DSUidPwdKeySet{key(Keys::UID), key(Keys::PWD), key(Keys::EncryptedPWD), key(Keys::AOSS_Prefix)},
        u"AOSS Options dialog");
    m_oauthClientSecret = AddCredential(DSUidPwdKeySet{key(Keys::Auth_Client_ID), key(Keys::Auth_Client_Secret),
                                                       key(Keys::Auth_Encrypted_Client_Secret), u""},
                                        u"OAuth Options dialog");
    m_oauthAccessToken = AddCredential(
        DSUidPwdKeySet{u"", key(Keys::Auth_AccessToken), key(Keys::Auth_Encrypted_Access_Token), u""},
        u"OAuth Options dialog");
    m_oauthClientSecret->SetPasswordOptionsButtonName(u"Encryption Options button");
    m_oauthAccessToken->SetPasswordOptionsButtonName(u"Encryption Options button");
    m_dfiKeyFilePassword = AddCredential(
        DSUidPwdKeySet{u"", key(Keys::keyFilePassword), key(Keys::EncryptedKeyFilePassword), u""}, u"DFI Options");
    auto aossSsl = std::make_unique<DriverSupport::DSSSLConfiguration>(
        m_map, in_logger, in_configType, DriverSupport::DSSSLKeySetDescriptor{key(Keys::AOSS_Prefix), false, false, false},
        false);
    aossSsl->GetClientKeyCredentials().SetParentDlgName(u"SSL Options dialog in the AOSS Options dialog");
    m_aossSsl = aossSsl.get();
    AddComponent(std::move(aossSsl));
}

DriverSupport::DSUidPwdConfiguration* QuillConfiguration::AddCredential(DriverSupport::DSUidPwdKeySet in_keys,
                                                                        tarni_wstring_view in_parentDlgName)
{
    auto credential =
        std::make_unique<DriverSupport::DSUidPwdConfiguration>(m_map, m_logger, m_configType, std::move(in_keys));
    credential->SetParentDlgName(in_parentDlgName);
    // Each of these may legitimately be empty (no AOSS authentication, an
    // OAuth flow without that secret, an unencrypted key file).
    credential->SetPwdOptional();
    DriverSupport::DSUidPwdConfiguration* raw = credential.get();
    AddComponent(std::move(credential));
    return raw;
}

std::vector<std::pair<tarni_wstring, tarni_wstring>> QuillConfiguration::GetOrderedDriverDefaults()
{
    const auto number = [](unsigned long long in_value) { return StringConverter::FromNumber(in_value); };
    const auto sdNone = SOConfigurationTables::ServiceDiscoveryModeNames()[SOConfigurationTables::SD_NONE];
    return {
        {tarni_wstring(Keys::Port), number(SOProductSettings::GetDefaultPort())},
        {tarni_wstring(Keys::Schema), u"default"},
        {tarni_wstring(Keys::DefaultStringColumnLength), number(SOProductSettings::GetDefaultStringColumnLength())},
        {tarni_wstring(Keys::BinaryColumnLength), u"32767"},
        {tarni_wstring(Keys::DecimalColumnScale), u"10"},
        {tarni_wstring(Keys::FastSQLPrepare), u"0"},
        {tarni_wstring(Keys::RowsFetchedPerBlock), u"10000"},
        {tarni_wstring(Keys::MaxBytesPerFetchRequest), u"300 MB"},
        {tarni_wstring(Keys::UseNativeQuery), u"0"},
        {tarni_wstring(Keys::EnableUniqueColumnName), u"1"},
        {tarni_wstring(Keys::UseOnlySSPI), u"0"},
        {tarni_wstring(Keys::ShowSystemTable), u"0"},
        {tarni_wstring(Keys::UseUnicodeSqlCharacterTypes), u"0"},
        {tarni_wstring(Keys::FixUnquotedDefaultSchemaNameInQuery), u"1"},
        {tarni_wstring(Keys::ServiceDiscoveryMode), sdNone},
        {tarni_wstring(Keys::SparkServerType), number(SOProductSettings::GetDefaultServerType())},
        {tarni_wstring(Keys::AuthMech), number(SOProductSettings::GetDefaultAuthMech())},
        {tarni_wstring(Keys::KrbHostFQDN), u"_HOST"},
        {tarni_wstring(Keys::KrbServiceName), u"spark"},
        {tarni_wstring(Keys::DelegateKrbCreds), u"0"},
        {tarni_wstring(Keys::ServicePrincipalCanonicalization), u"1"},
        {tarni_wstring(Keys::SocketTimeout), u"60"},
        {tarni_wstring(Keys::AsyncExecPollInterval), u"100"},
        {tarni_wstring(Keys::EnableTempTable), u"0"},
        {tarni_wstring(Keys::WebHDFSPort), u"50070"},
        {tarni_wstring(Keys::HDFSUser), u"hdfs"},
        {tarni_wstring(Keys::HDFSTempTableDir), u"/tmp/tarni"},
        {tarni_wstring(Keys::TempTableTTL), u"10"},
        {tarni_wstring(Keys::DriverConfigTakePrecedence), u"0"},
        {tarni_wstring(Keys::EnableAsyncExec), u"0"},
        {tarni_wstring(Keys::GetTablesWithQuery),
         SOProductSettings::GetBoolean(DriverSupport::ProductSettingKeys::GetTblsWithQuery) ? u"1" : u"0"},
        {tarni_wstring(Keys::InvalidSessionAutoRecover), u"1"},
        {tarni_wstring(Keys::AutoReconnect), u"1"},
        {tarni_wstring(Keys::Auth_Flow), u"0"},
        {tarni_wstring(Keys::UseLegacyUserAgent), u"0"},
        {tarni_wstring(Keys::ApplySSPWithQueries), u"1"},
        {tarni_wstring(Keys::EnableTranslationForCTAS), u"1"},
        {tarni_wstring(Keys::SSOIgnoreDriverNoPrompt), u"1"},
        {tarni_wstring(Keys::QueryTimeoutOverride), u""},
    };
}

ConfigurationMap QuillConfiguration::GetDefaultDriverProperties() const
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "GetDefaultDriverProperties");
    ConfigurationMap defaults;
    for (const auto& [key, value] : GetOrderedDriverDefaults())
    {
        defaults.SetValue(key, value);
    }
    for (const auto& [key, value] : DSDSNConfiguration::GetDefaultDriverProperties())
    {
        defaults.SetValue(key, value);
    }
    return defaults;
}
}  // namespace Tarni::SparkODBC
