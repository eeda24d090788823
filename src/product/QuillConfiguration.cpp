#include "product/QuillConfiguration.h"

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/ProductSettingKeys.h"
#include "product/SOKeyCatalogue.h"
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
    // The OAuth settings edit the two credentials above and add the SSL
    // settings of the identity provider's end points.
    auto oauth = std::make_unique<DriverSupport::DSOAuthConfiguration>(m_map, m_logger, m_configType,
                                                                       *m_oauthClientSecret, *m_oauthAccessToken);
    m_oauth = oauth.get();
    AddComponent(std::move(oauth));
    auto dfi = std::make_unique<ThriftExtension::TEDFIConfiguration>(m_map, m_logger, m_configType);
    m_dfi = dfi.get();
    AddComponent(std::move(dfi));
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
    // The keys with a default of their own, in the catalogue's order.
    std::vector<std::pair<tarni_wstring, tarni_wstring>> defaults;
    for (const DriverSupport::DSKeyDescription& description : SOKeyCatalogue::All())
    {
        if (description.HasDefault())
        {
            defaults.emplace_back(description.GetName(), description.GetDefault());
        }
    }
    return defaults;
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
