// The SSL settings model: defaults from the descriptor, the owner's prefix
// and the product settings, the remembered SSL choice, what load and save do
// with the trusted certificates file and the client key password, and where
// the installation folder is.
#include "driversupport/DSSSLConfiguration.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "common/RecordingLogger.h"
#include "common/SecretKeySources.h"
#include "common/TempDirectory.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "platform/DriverInstallation.h"

using namespace Tarni;
using DriverSupport::ConfigurationMap;
using DriverSupport::DSSSLConfiguration;
using DriverSupport::DSSSLKeySetDescriptor;
using DriverSupport::DSUidPwdConfiguration;

namespace
{
class SSLModel : public ::testing::Test
{
protected:
    void SetUp() override { UseProductSettings(""); }
    void TearDown() override
    {
        DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
        DriverSupport::DSProductHelper::LoadProductSettings(Support::StringConverter::FromUtf8((m_dir / "none.did").string()));
    }
    void UseProductSettings(const std::string& in_lines)
    {
        const auto path = m_dir / "SparkODBC.did";
        Testing::TempDirectory::WriteFile(path, in_lines);
        DriverSupport::DSProductHelper::LoadProductSettings(Support::StringConverter::FromUtf8(path.string()));
    }
    DSSSLConfiguration Make(std::optional<DSSSLKeySetDescriptor> in_descriptor, bool in_minTls = true)
    {
        return DSSSLConfiguration(m_map, &m_log, 2, std::move(in_descriptor), in_minTls);
    }
    ConfigurationMap Defaults(std::optional<DSSSLKeySetDescriptor> in_descriptor, bool in_minTls = true)
    {
        ConfigurationMap defaults;
        Make(std::move(in_descriptor), in_minTls).GetDefaultDriverProperties(defaults);
        return defaults;
    }
    Testing::TempDirectory m_dir;
    Testing::SecretKeySources m_secretKeys;
    ConfigurationMap m_map;
    Testing::RecordingLogger m_log;
};
}  // namespace

TEST_F(SSLModel, DefaultsFollowTheDescriptorAndTheProductSettings)
{
    const tarni_wstring certs = DSSSLConfiguration::GetInstallationDirectory() + u"cacerts.pem";
    const ConfigurationMap none = Defaults(std::nullopt, false);
    EXPECT_EQ(none, (ConfigurationMap{{u"SSL", u"0"},
                                      {u"TrustedCerts", certs},
                                      {u"AllowHostNameCNMismatch", u"0"},
                                      {u"AllowSelfSignedServerCert", u"0"},
                                      {u"UseSystemTrustStore", u"0"},
                                      {u"CheckCertRevocation", u"1"},
                                      {u"AllowInvalidCACert", u"0"}}))
        << "no TwoWaySSL without two-way support, no Min_TLS when it is not shown";

    const ConfigurationMap full = Defaults(DSSSLKeySetDescriptor{u"", true, false, true});
    EXPECT_EQ(full.GetValue(u"SSL"), u"1");
    EXPECT_EQ(full.GetValue(u"TwoWaySSL"), u"0");
    EXPECT_EQ(full.GetValue(u"Min_TLS"), u"1.2");

    UseProductSettings("use-system-trust-store=TRUE\ncheck-cert-revocation=0\nAllowInvalidCACert=true\nmin-tls=1.1\n");
    const ConfigurationMap fromSettings = Defaults(DSSSLKeySetDescriptor{u"AOSS_", false, false, false});
    EXPECT_EQ(fromSettings.GetValue(u"AOSS_UseSystemTrustStore"), u"0") << "only \"1\" turns it on";
    EXPECT_EQ(fromSettings.GetValue(u"AOSS_CheckCertRevocation"), u"0");
    EXPECT_EQ(fromSettings.GetValue(u"AOSS_AllowInvalidCACert"), u"1");
    EXPECT_EQ(fromSettings.GetValue(u"AOSS_Min_TLS"), u"1.1");
    EXPECT_EQ(fromSettings.GetValue(u"AOSS_TrustedCerts"), certs);
    EXPECT_FALSE(fromSettings.Contains(u"SSL")) << "every key carries the prefix";

    UseProductSettings("use-system-trust-store=1\nmin-tls=1.3\n");
    const ConfigurationMap odd = Defaults(std::nullopt);
    EXPECT_EQ(odd.GetValue(u"UseSystemTrustStore"), u"1");
    EXPECT_EQ(odd.GetValue(u"Min_TLS"), u"1.2") << "a min-tls setting of no known version gives 1.2";
}

TEST_F(SSLModel, TheLastSslChoiceOfTheUserComesBack)
{
    DSSSLConfiguration ssl = Make(std::nullopt);
    ssl.LoadLastUserSelectedSslConfig();
    EXPECT_FALSE(m_map.Contains(u"SSL")) << "nothing remembered, nothing written";

    m_map.SetValue(u"SSL", u"0");
    ssl.InitializeAfterLoad();  // a loaded "0" is the user's choice
    ssl.SetSsl(u"1", false);    // an owner's own change is not
    ssl.LoadLastUserSelectedSslConfig();
    EXPECT_EQ(ssl.GetSsl(), u"0");

    ssl.SetSsl(u"1", true);
    ssl.SetSsl(u"0", false);
    ssl.LoadLastUserSelectedSslConfig();
    EXPECT_EQ(ssl.GetSsl(), u"1");

    m_map.SetValue(u"SSL", u"yes");
    DSSSLConfiguration loadedOdd = Make(std::nullopt);
    loadedOdd.InitializeAfterLoad();
    loadedOdd.LoadLastUserSelectedSslConfig();
    EXPECT_EQ(loadedOdd.GetSsl(), u"yes") << "an odd stored value is not remembered";
}

TEST_F(SSLModel, LoadAndSaveFillAnEmptyTrustedCertsAndKeepTheKeyPasswordOnlyProtected)
{
    const tarni_wstring certs = DSSSLConfiguration::GetDefaultTrustedCerts();
    DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);

    m_map = {{u"TrustedCerts", u""}, {u"ClientPrivateKeyPWD", u"s3cret"}};
    DSSSLConfiguration twoWay = Make(DSSSLKeySetDescriptor{u"", true, false, false});
    twoWay.InitializeAfterLoad();
    EXPECT_EQ(m_map.GetValue(u"TrustedCerts"), certs);
    twoWay.GetClientKeyCredentials().SetEncryptPwd(true);
    twoWay.SetTrustedCerts(u"");
    twoWay.FinalizeBeforeSave();
    EXPECT_EQ(m_map.GetValue(u"TrustedCerts"), certs);
    EXPECT_FALSE(m_map.Contains(u"ClientPrivateKeyPWD"));
    const tarni_wstring stored = m_map.GetValue(u"EncryptedClientPrivateKeyPWD");
    EXPECT_FALSE(stored.empty());
    EXPECT_EQ(stored.find(u"s3cret"), tarni_wstring::npos);

    DSSSLConfiguration reloaded = Make(DSSSLKeySetDescriptor{u"", true, false, false});
    reloaded.InitializeAfterLoad();
    EXPECT_EQ(reloaded.GetClientPrivateKeyPassword(), u"s3cret");

    m_map = {{u"AOSS_ClientPrivateKeyPWD", u"s3cret"}};
    DSSSLConfiguration oneWay = Make(DSSSLKeySetDescriptor{u"AOSS_", false, false, false});
    oneWay.FinalizeBeforeSave();
    EXPECT_EQ(m_map, (ConfigurationMap{{u"AOSS_TrustedCerts", certs}}))
        << "without two-way SSL the key password is dropped";
}

#ifndef _WIN32
TEST_F(SSLModel, TheInstallationFolderIsThePackagesUnlessOverridden)
{
    ::unsetenv("TARNI_SPARK_DRIVER_DIR");
    const tarni_wstring packaged = Platform::DriverInstallation::GetDirectory();
    EXPECT_EQ(packaged.front(), u'/');
    EXPECT_EQ(packaged.back(), u'/');
    ::setenv("TARNI_SPARK_DRIVER_DIR", "/srv/driver", 1);
    EXPECT_EQ(Platform::DriverInstallation::GetDirectory(), u"/srv/driver/");
    ::setenv("TARNI_SPARK_DRIVER_DIR", "", 1);
    EXPECT_EQ(Platform::DriverInstallation::GetDirectory(), packaged) << "empty is not set";
    ::unsetenv("TARNI_SPARK_DRIVER_DIR");
}
#endif
