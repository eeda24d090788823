#pragma once
#include "driversupport/DSDSNConfiguration.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "driversupport/DSOAuthConfiguration.h"
#include "thrift/TEDFIConfiguration.h"

namespace Tarni::SparkODBC
{
/// The product's configuration: a data-source configuration with the Spark
/// driver's keys and defaults.
class QuillConfiguration : public DriverSupport::DSDSNConfiguration
{
public:
    QuillConfiguration(tarni_wstring in_dsnName, unsigned in_configType, Support::ILogger* in_logger);

    /// The driver's defaults in their fixed order, then those of the
    /// credential, SSL and proxy components and the further components.
    DriverSupport::ConfigurationMap GetDefaultDriverProperties() const override;

    /// The default properties as an ordered list (the order they are built
    /// in), for documentation and tests of that order.
    static std::vector<std::pair<tarni_wstring, tarni_wstring>> GetOrderedDriverDefaults();

    /// Credentials of the further components, each saved only in protected
    /// form: the AOSS status endpoint ("AOSS_UID", "AOSS_PWD" /
    /// "AOSS_EncryptedPWD"), the OAuth client secret ("Auth_Client_Secret" /
    /// "Auth_Encrypted_Client_Secret") and access token ("Auth_AccessToken" /
    /// "Auth_Encrypted_Access_Token"), and the DFI key file password
    /// ("keyFilePassword" / "EncryptedKeyFilePassword", held by the DFI
    /// configuration).
    DriverSupport::DSUidPwdConfiguration& GetAOSSCredentials() { return *m_aossCredentials; }
    DriverSupport::DSUidPwdConfiguration& GetOAuthClientSecret() { return *m_oauthClientSecret; }
    DriverSupport::DSUidPwdConfiguration& GetOAuthAccessToken() { return *m_oauthAccessToken; }
    DriverSupport::DSUidPwdConfiguration& GetDFIKeyFilePassword() { return *m_dfi; }

    /// The OAuth 2.0 settings of the OAuth Options dialog (over the two OAuth credentials above).
    DriverSupport::DSOAuthConfiguration& GetOAuthConfiguration() { return *m_oauth; }
    /// The DFI settings of the DFI Options dialog.
    ThriftExtension::TEDFIConfiguration& GetDFIConfiguration() { return *m_dfi; }

    /// The server-side properties ("SSP_") and HTTP headers ("http.header.")
    /// that the dialogs edit. A data source keeps its own; the driver-wide
    /// configuration answers with the groups it was given.
    virtual DriverSupport::DSServerSidePropertyGroup& GetServerSidePropertyGroup() { return m_ownServerSideProperties; }
    virtual DriverSupport::DSPrefixedPropertyGroup& GetHttpHeaderGroup() { return m_ownHttpHeaders; }
    /// The SSL settings of the AOSS status endpoint: every key with the
    /// prefix "AOSS_", no two-way SSL and no minimum TLS version of their own.
    DriverSupport::DSSSLConfiguration& GetAOSSSSLConfiguration() { return *m_aossSsl; }

private:
    DriverSupport::DSUidPwdConfiguration* AddCredential(DriverSupport::DSUidPwdKeySet in_keys,
                                                        tarni_wstring_view in_parentDlgName);

    DriverSupport::DSUidPwdConfiguration* m_aossCredentials = nullptr;
    DriverSupport::DSUidPwdConfiguration* m_oauthClientSecret = nullptr;
    DriverSupport::DSUidPwdConfiguration* m_oauthAccessToken = nullptr;
    DriverSupport::DSOAuthConfiguration* m_oauth = nullptr;
    ThriftExtension::TEDFIConfiguration* m_dfi = nullptr;
    DriverSupport::DSServerSidePropertyGroup m_ownServerSideProperties;
    DriverSupport::DSPrefixedPropertyGroup m_ownHttpHeaders{"http.header."};
    DriverSupport::DSSSLConfiguration* m_aossSsl = nullptr;
};
}  // namespace Tarni::SparkODBC
