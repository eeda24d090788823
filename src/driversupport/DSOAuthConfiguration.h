#pragma once
// The OAuth 2.0 settings of a connection over the owner's map: the
// authentication flow ("Auth_Flow") and the values each flow takes, the token
// cache and no-prompt switches, the SSL settings of the identity provider's
// end points (their keys carry the prefix "OAuth_") and the two secrets,
// client secret and access token, which are credentials of their own and
// saved only in protected form.
#include <optional>

#include "driversupport/DSSSLConfiguration.h"
#include "driversupport/DSUidPwdConfiguration.h"

namespace Tarni::DriverSupport
{
class DSOAuthConfiguration : public DSConfigurationComponent
{
public:
    /// The flows, in the order of their display names.
    enum Flow : unsigned
    {
        FLOW_TOKEN_PASSTHROUGH = 0,
        FLOW_CLIENT_CREDENTIALS = 1,
        FLOW_BROWSER = 2,
    };

    /// What a flow may take; FlowUses tells which.
    enum Field
    {
        FIELD_ACCESS_TOKEN,
        FIELD_CLIENT_ID,
        FIELD_CLIENT_SECRET,
        FIELD_AUTHORIZATION_END_POINT,
        FIELD_TOKEN_END_POINT,
        FIELD_SCOPE,
        FIELD_CODE_CHALLENGE_METHOD,
        FIELD_REDIRECT,
        FIELD_WEB_SERVER_TIMEOUT,
        FIELD_WINDOW_SIZE,
        FIELD_TOKEN_CACHE,
    };

    /// The prefix of the end points' SSL keys.
    static constexpr tarni_wstring_view SSL_PREFIX = u"OAuth_";

    /// The two credentials are components of the owner in their own right
    /// (so that every path that handles secrets finds them); this object
    /// edits them and must not outlive them.
    DSOAuthConfiguration(ConfigurationMap& io_map, Support::ILogger* in_logger, unsigned in_configType,
                         DSUidPwdConfiguration& io_clientSecret, DSUidPwdConfiguration& io_accessToken);

    /// The SSL defaults of the end points.
    void GetDefaultDriverProperties(ConfigurationMap& io_defaults) const override;
    void InitializeAfterLoad() override;
    void FinalizeBeforeSave() override;

    /// The display names of the flows, in list order.
    static const std::vector<tarni_wstring>& FlowNames();
    /// Whether the flow takes the field; an unknown flow takes none.
    static bool FlowUses(unsigned in_flow, Field in_field);

    /// The stored flow; nothing when "Auth_Flow" is not a number.
    std::optional<unsigned> GetFlow() const;
    void SetFlow(unsigned in_flow);

    /// Any key of the OAuth settings (end points, scope, switches ...).
    tarni_wstring Get(tarni_wstring_view in_key) const { return m_map.GetValue(in_key); }
    void Set(tarni_wstring_view in_key, tarni_wstring_view in_value) { m_map.SetValue(in_key, in_value); }

    tarni_wstring GetClientId() const { return m_clientSecret.GetUid(); }
    void SetClientId(tarni_wstring_view in_id) { m_clientSecret.SetUid(in_id); }
    tarni_wstring GetClientSecret() const { return m_clientSecret.GetPwd(); }
    void SetClientSecret(tarni_wstring_view in_secret) { m_clientSecret.SetPwd(in_secret); }
    tarni_wstring GetAccessToken() const { return m_accessToken.GetPwd(); }
    void SetAccessToken(tarni_wstring_view in_token) { m_accessToken.SetPwd(in_token); }

    DSUidPwdConfiguration& GetClientSecretCredential() { return m_clientSecret; }
    DSUidPwdConfiguration& GetAccessTokenCredential() { return m_accessToken; }
    DSSSLConfiguration& GetSSLConfiguration() { return m_ssl; }
    Support::ILogger* GetLog() const { return m_logger; }

    /// One choice of encryption covers both secrets: the access token takes
    /// the client secret's flags (the "Encryption Options" edit those).
    void ShareEncryptionOptions();

    // --- checks of what the user typed; each throws an ErrorException whose
    // message names the field (in_label) and the value ---
    /// Empty, or an absolute https URL with a host; plain http only to
    /// localhost, 127.0.0.1 or [::1]. "DSOAuthEndPointErr" / "DSOAuthPlainHttpErr".
    static void CheckEndPoint(tarni_wstring_view in_label, tarni_wstring_view in_value);
    /// Empty, a port from 1 to 65535 on localhost, or an end point as above.
    /// "DSOAuthRedirectPortErr" for a bad port.
    static void CheckRedirect(tarni_wstring_view in_label, tarni_wstring_view in_value);
    /// Empty, or a whole number from 0 to 4294967295. "DSOAuthNumberErr".
    static void CheckNumber(tarni_wstring_view in_label, tarni_wstring_view in_value);

private:
    ConfigurationMap& m_map;
    Support::ILogger* m_logger;
    DSUidPwdConfiguration& m_clientSecret;
    DSUidPwdConfiguration& m_accessToken;
    DSSSLConfiguration m_ssl;
};
}  // namespace Tarni::DriverSupport
