// The OAuth settings' checks of what the user typed (end points, redirect,
// numbers), the flow table and the end points' prefixed SSL defaults.
#include "driversupport/DSOAuthConfiguration.h"

#include <gtest/gtest.h>

#include "core/ErrorException.h"
#include "driversupport/ConfigurationKeys.h"
#include "support/StringConverter.h"

using namespace Tarni;
using namespace Tarni::DriverSupport;

namespace
{
/// The message key the check throws, or "" when it accepts the value.
template <typename Check>
std::string Refusal(Check in_check, tarni_wstring_view in_value)
{
    try
    {
        in_check(u"Field", in_value);
        return "";
    }
    catch (const Support::ErrorException& e)
    {
        EXPECT_EQ(e.GetParameters(), (std::vector<tarni_wstring>{u"Field", tarni_wstring(in_value)}));
        return Support::StringConverter::ToUtf8(e.GetMessageKey());
    }
}
}  // namespace

TEST(DSOAuthConfigurationTest, EndPointsAreHttpsUrlsAndPlainHttpOnlyToThisMachine)
{
    const std::pair<tarni_wstring_view, std::string> cases[] = {
        {u"", ""},
        {u"https://login.example.com/oauth2/v2.0/token", ""},
        {u"HTTPS://Login.Example.com:8443/token?tenant=a", ""},
        {u"http://localhost:8080/token", ""},
        {u"http://LOCALHOST/token", ""},
        {u"http://127.0.0.1:9000/token", ""},
        {u"http://[::1]:9000/token", ""},
        {u"http://login.example.com/token", "DSOAuthPlainHttpErr"},
        {u"http://localhost.example.com/token", "DSOAuthPlainHttpErr"},
        {u"http://10.0.0.1/token", "DSOAuthPlainHttpErr"},
        {u"login.example.com/token", "DSOAuthEndPointErr"},
        {u"/oauth2/token", "DSOAuthEndPointErr"},
        {u"https://", "DSOAuthEndPointErr"},
        {u"https:///token", "DSOAuthEndPointErr"},
        {u"ftp://login.example.com/token", "DSOAuthEndPointErr"},
        {u"https://login example.com/token", "DSOAuthEndPointErr"},
    };
    for (const auto& [value, refusal] : cases)
    {
        EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckEndPoint, value), refusal)
            << Support::StringConverter::ToUtf8(value);
    }
}

TEST(DSOAuthConfigurationTest, ARedirectIsAPortOrAnEndPointAndNumbersAreWhole)
{
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckRedirect, u"8050"), "");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckRedirect, u"65535"), "");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckRedirect, u"0"), "DSOAuthRedirectPortErr");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckRedirect, u"65536"), "DSOAuthRedirectPortErr");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckRedirect, u"99999999999999999999999"), "DSOAuthRedirectPortErr");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckRedirect, u"http://localhost:8050/callback"), "");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckRedirect, u"http://app.example.com/cb"), "DSOAuthPlainHttpErr");

    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckNumber, u""), "");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckNumber, u"4294967295"), "");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckNumber, u"4294967296"), "DSOAuthNumberErr");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckNumber, u"12 "), "DSOAuthNumberErr");
    EXPECT_EQ(Refusal(&DSOAuthConfiguration::CheckNumber, u"1e3"), "DSOAuthNumberErr");
}

TEST(DSOAuthConfigurationTest, TheEndPointsSslSettingsCarryTheirPrefixAndKeepNoClientKeyPassword)
{
    ConfigurationMap map;
    DSUidPwdConfiguration secret(map, nullptr, 2, {u"Auth_Client_ID", u"Auth_Client_Secret", u"Auth_Encrypted_Client_Secret", u""});
    DSUidPwdConfiguration token(map, nullptr, 2, {u"", u"Auth_AccessToken", u"Auth_Encrypted_Access_Token", u""});
    DSOAuthConfiguration oauth(map, nullptr, 2, secret, token);

    ConfigurationMap defaults;
    oauth.GetDefaultDriverProperties(defaults);
    EXPECT_EQ(defaults.GetValue(u"OAuth_SSL"), u"1") << "the identity provider is reached over TLS by default";
    EXPECT_TRUE(defaults.Contains(u"OAuth_TrustedCerts"));
    EXPECT_FALSE(defaults.Contains(u"SSL")) << "no key without the prefix";

    map.SetValue(u"OAuth_ClientPrivateKeyPWD", u"never stored");
    oauth.FinalizeBeforeSave();
    EXPECT_FALSE(map.Contains(u"OAuth_ClientPrivateKeyPWD"));

    oauth.SetFlow(DSOAuthConfiguration::FLOW_BROWSER);
    EXPECT_EQ(map.GetValue(Keys::Auth_Flow), u"2");
    map.SetValue(Keys::Auth_Flow, u"two");
    EXPECT_FALSE(oauth.GetFlow().has_value());
    EXPECT_FALSE(DSOAuthConfiguration::FlowUses(3, DSOAuthConfiguration::FIELD_CLIENT_ID));
    EXPECT_TRUE(DSOAuthConfiguration::FlowUses(DSOAuthConfiguration::FLOW_BROWSER,
                                               DSOAuthConfiguration::FIELD_CLIENT_SECRET));
}
