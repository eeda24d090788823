// SSL Options on the scripted host, in both variants: how stored values are
// shown (odd switches, the minimum TLS list, forced SSL), which controls the
// clicks enable, Browse, and that OK writes every value while Cancel writes
// nothing.
#include "dialogs/driversupport/DSSSLDialog.h"

#include "common/TempDirectory.h"
#include "dialogs/DialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSProductHelper.h"
#include "support/StringConverter.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::DriverSupport::ConfigurationMap;
using Tarni::DriverSupport::DSSSLConfiguration;
using Tarni::DriverSupport::DSSSLDialog;
using Tarni::DriverSupport::DSSSLKeySetDescriptor;
using Window = ScriptedDialogWindow;
using Items = std::vector<tarni_wstring>;

namespace
{
const DSSSLKeySetDescriptor DRIVER{u"", true, false, false};
const DSSSLKeySetDescriptor AOSS{u"AOSS_", false, false, false};
const DSSSLKeySetDescriptor FORCED{u"", false, true, true};

class DSSSLDialogTest : public Testing::DialogTest
{
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        UseProductSettings("");
    }

    /// Runs the dialog of the descriptor's variant over m_map; the script plays the user.
    bool Run(const DSSSLKeySetDescriptor& in_descriptor, bool in_minTls, ScriptedDialogHost::DialogScript in_script,
             bool in_mayChangeSsl = true)
    {
        m_ssl = std::make_unique<DSSSLConfiguration>(m_map, &m_logger, 2, in_descriptor, in_minTls);
        m_host.ExpectDialog(DSSSLDialog::TemplateOf(*m_ssl), std::move(in_script));
        return DSSSLDialog::Show(nullptr, m_ssl.get(), in_mayChangeSsl);
    }

    ConfigurationMap m_map;
    std::unique_ptr<DSSSLConfiguration> m_ssl;
};
}  // namespace

TEST_F(DSSSLDialogTest, OkWritesEveryValueAlsoThoseOfDisabledControls)
{
    m_map = {{u"SSL", u"1"},          {u"UseSystemTrustStore", u"1"}, {u"TrustedCerts", u"/etc/tarni/ca.pem"},
             {u"Min_TLS", u"1.1"},    {u"CheckCertRevocation", u"1"}, {u"AllowSelfSignedServerCert", u"0"},
             {u"TwoWaySSL", u"0"},    {u"ClientCert", u"/c.pem"}};
    EXPECT_TRUE(Run(DRIVER, true, [](Window& w) {
        EXPECT_EQ(w.GetTitle(), u"SSL Options");
        EXPECT_TRUE(w.Checked(IDC_SSL_ENABLE));
        EXPECT_TRUE(w.Enabled(IDC_SSL_ENABLE));
        EXPECT_EQ(w.Text(IDC_SSL_TRUSTED_CERTS), u"/etc/tarni/ca.pem");
        EXPECT_FALSE(w.Enabled(IDC_SSL_TRUSTED_CERTS)) << "the system trust store is used";
        EXPECT_FALSE(w.Enabled(IDC_SSL_BROWSE_TRUSTED_CERTS));
        EXPECT_TRUE(w.Enabled(IDC_SSL_CHECK_REVOCATION));
        EXPECT_EQ(w.Items(IDC_SSL_MIN_TLS), (Items{u"1.0", u"1.1", u"1.2"}));
        EXPECT_EQ(w.SelectedText(IDC_SSL_MIN_TLS), u"1.1");
        EXPECT_FALSE(w.Enabled(IDC_SSL_CLIENT_CERT)) << "two-way SSL is off";
        w.Click(IDC_SSL_ENABLE);  // off: everything below is disabled ...
        EXPECT_FALSE(w.Enabled(IDC_SSL_MIN_TLS));
        EXPECT_FALSE(w.Enabled(IDC_SSL_CHECK_REVOCATION));
        EXPECT_FALSE(w.Enabled(IDC_SSL_TWO_WAY));
        w.Click(IDOK);  // ... yet written
    }));
    EXPECT_EQ(m_map.GetValue(u"SSL"), u"0");
    EXPECT_EQ(m_map.GetValue(u"TrustedCerts"), u"/etc/tarni/ca.pem");
    EXPECT_EQ(m_map.GetValue(u"UseSystemTrustStore"), u"1");
    EXPECT_EQ(m_map.GetValue(u"CheckCertRevocation"), u"1");
    EXPECT_EQ(m_map.GetValue(u"Min_TLS"), u"1.1");
    EXPECT_EQ(m_map.GetValue(u"ClientCert"), u"/c.pem");
    EXPECT_EQ(m_map.GetValue(u"TwoWaySSL"), u"0");
    EXPECT_EQ(m_map.GetValue(u"AllowHostNameCNMismatch"), u"0");
    m_ssl->SetSsl(u"1", false);
    m_ssl->LoadLastUserSelectedSslConfig();
    EXPECT_EQ(m_map.GetValue(u"SSL"), u"0") << "the click is remembered as the user's choice";
}

TEST_F(DSSSLDialogTest, ClicksDecideWhichControlsApply)
{
    m_map = {{u"SSL", u"1"}, {u"UseSystemTrustStore", u"0"}};
    Run(DRIVER, true, [](Window& w) {
        EXPECT_TRUE(w.Enabled(IDC_SSL_TRUSTED_CERTS));
        EXPECT_TRUE(w.Enabled(IDC_SSL_BROWSE_TRUSTED_CERTS));
        EXPECT_FALSE(w.Enabled(IDC_SSL_CHECK_REVOCATION)) << "only with the system trust store";
        w.Click(IDC_SSL_USE_SYSTEM_TRUST_STORE);
        EXPECT_FALSE(w.Enabled(IDC_SSL_TRUSTED_CERTS));
        EXPECT_TRUE(w.Enabled(IDC_SSL_CHECK_REVOCATION));
        w.Click(IDC_SSL_ALLOW_SELF_SIGNED);
        EXPECT_FALSE(w.Enabled(IDC_SSL_CHECK_REVOCATION)) << "not with self-signed certificates";
        EXPECT_TRUE(w.Enabled(IDC_SSL_TWO_WAY));
        w.Click(IDC_SSL_TWO_WAY);
        for (const int id : {IDC_SSL_CLIENT_CERT, IDC_SSL_BROWSE_CLIENT_CERT, IDC_SSL_CLIENT_KEY,
                             IDC_SSL_BROWSE_CLIENT_KEY, IDC_SSL_CLIENT_KEY_PASSWORD, IDC_SSL_PASSWORD_OPTIONS})
        {
            EXPECT_TRUE(w.Enabled(id)) << id;
        }
        w.Click(IDC_SSL_ENABLE);
        EXPECT_FALSE(w.Enabled(IDC_SSL_CLIENT_CERT)) << "two-way SSL needs SSL";
        EXPECT_FALSE(w.Enabled(IDC_SSL_PASSWORD_OPTIONS));
        EXPECT_FALSE(w.Enabled(IDC_SSL_ALLOW_HOST_MISMATCH));
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(m_map, (ConfigurationMap{{u"SSL", u"1"}, {u"UseSystemTrustStore", u"0"}})) << "Cancel writes nothing";
}

TEST_F(DSSSLDialogTest, ForcedSslIsCheckedAndDisabledAndOkWritesOne)
{
    m_map = {{u"SSL", u"0"}};
    Run(FORCED, false, [](Window& w) {
        EXPECT_TRUE(w.Checked(IDC_SSL_ENABLE));
        EXPECT_FALSE(w.Enabled(IDC_SSL_ENABLE));
        EXPECT_TRUE(w.Enabled(IDC_SSL_USE_SYSTEM_TRUST_STORE));
        w.Click(IDOK);
    });
    EXPECT_EQ(m_map.GetValue(u"SSL"), u"1");

    // An owner that does not let the user switch SSL: the box shows the value, disabled.
    Run(AOSS, false, [](Window& w) {
        EXPECT_FALSE(w.Checked(IDC_SSL_ENABLE));
        EXPECT_FALSE(w.Enabled(IDC_SSL_ENABLE));
        w.Click(IDCANCEL);
    }, false);
}

TEST_F(DSSSLDialogTest, OddStoredValuesOpenWithTheirFallbackAndALogRecord)
{
    m_map = {{u"SSL", u"yes"}, {u"AllowSelfSignedServerCert", u"1"}, {u"CheckCertRevocation", u""},
             {u"Min_TLS", u"unrestricted"}, {u"TrustedCerts", u"/no/such/ca.pem"}};
    Run(DRIVER, true, [](Window& w) {
        EXPECT_FALSE(w.Checked(IDC_SSL_ENABLE));
        EXPECT_TRUE(w.Checked(IDC_SSL_ALLOW_SELF_SIGNED));
        EXPECT_FALSE(w.Checked(IDC_SSL_CHECK_REVOCATION));
        EXPECT_EQ(w.SelectedText(IDC_SSL_MIN_TLS), u"1.2") << "unrestricted is not permitted";
        EXPECT_EQ(w.Text(IDC_SSL_TRUSTED_CERTS), u"/no/such/ca.pem");
        w.Click(IDCANCEL);
    });
    EXPECT_TRUE(m_logger.Has(Support::LOG_WARNING, "Tarni::DriverSupport::DSSSLDialog::Initialize",
                             "Connection string contains invalid data type: SSL."));
    EXPECT_FALSE(m_logger.Has(Support::LOG_WARNING, "Tarni::DriverSupport::DSSSLDialog::Initialize",
                              "invalid data type: CheckCertRevocation")) << "empty is simply unchecked";
    EXPECT_TRUE(m_logger.Has(Support::LOG_WARNING, "Tarni::DriverSupport::DSSSLDialog::Initialize", "Min_TLS \"unrestricted\" is not offered"));
    EXPECT_TRUE(m_logger.Has(Support::LOG_WARNING, "Tarni::DriverSupport::DSSSLConfiguration::WarnIfTrustedCertsMissing",
                             "\"/no/such/ca.pem\" of TrustedCerts does not exist"));

    UseProductSettings("allow-unrestricted-tls=1\nmin-tls=1.0\n");
    Run(DRIVER, true, [](Window& w) {
        EXPECT_EQ(w.Items(IDC_SSL_MIN_TLS), (Items{u"1.0", u"1.1", u"1.2", u"unrestricted"}));
        EXPECT_EQ(w.SelectedText(IDC_SSL_MIN_TLS), u"unrestricted");
        w.Click(IDCANCEL);
    });
    m_map.SetValue(u"Min_TLS", u"TLSv1.3");
    Run(DRIVER, true, [](Window& w) {
        EXPECT_EQ(w.SelectedText(IDC_SSL_MIN_TLS), u"1.0") << "the product's default";
        w.Click(IDOK);
    });
    EXPECT_EQ(m_map.GetValue(u"Min_TLS"), u"1.0");
}

TEST_F(DSSSLDialogTest, BrowseTakesAnExistingFileAndCancelKeepsTheText)
{
    m_map = {{u"SSL", u"1"}, {u"UseSystemTrustStore", u"0"}, {u"TwoWaySSL", u"1"}, {u"TrustedCerts", u"old.pem"}};
    m_host.ExpectOpenFile(std::nullopt);
    m_host.ExpectOpenFile(u"/etc/ssl/ca.pem");
    m_host.ExpectOpenFile(u"/home/me/client.pem");
    Run(DRIVER, true, [](Window& w) {
        w.Click(IDC_SSL_BROWSE_TRUSTED_CERTS);
        EXPECT_EQ(w.Text(IDC_SSL_TRUSTED_CERTS), u"old.pem");
        w.Click(IDC_SSL_BROWSE_TRUSTED_CERTS);
        w.Click(IDC_SSL_BROWSE_CLIENT_CERT);
        w.Click(IDOK);
    });
    EXPECT_EQ(m_map.GetValue(u"TrustedCerts"), u"/etc/ssl/ca.pem");
    EXPECT_EQ(m_map.GetValue(u"ClientCert"), u"/home/me/client.pem");
    ASSERT_EQ(m_host.GetFileChoosers().size(), 3u);
    EXPECT_EQ(m_host.GetFileChoosers()[0].flags, 0x1800u);
    EXPECT_TRUE(m_host.GetFileChoosers()[0].filter.empty());
}

TEST_F(DSSSLDialogTest, TheAossVariantHasNoTwoWaySslAndHidesTheTlsList)
{
    m_map = {{u"SSL", u"1"}, {u"AOSS_SSL", u"0"}, {u"AOSS_TrustedCerts", u"/a.pem"}};
    Run(AOSS, false, [](Window& w) {
        EXPECT_EQ(w.GetTemplateId(), static_cast<unsigned>(IDD_SSL_OPTIONS));
        EXPECT_FALSE(w.Checked(IDC_SSL_ENABLE)) << "the endpoint's own switch";
        EXPECT_FALSE(w.Visible(IDC_SSL_MIN_TLS));
        EXPECT_FALSE(w.Visible(IDC_SSL_MIN_TLS_LABEL));
        w.Click(IDC_SSL_ENABLE);
        w.Click(IDOK);
    });
    EXPECT_EQ(m_map, (ConfigurationMap{{u"SSL", u"1"},
                                       {u"AOSS_SSL", u"1"},
                                       {u"AOSS_TrustedCerts", u"/a.pem"},
                                       {u"AOSS_AllowHostNameCNMismatch", u"0"},
                                       {u"AOSS_AllowSelfSignedServerCert", u"0"},
                                       {u"AOSS_UseSystemTrustStore", u"0"},
                                       {u"AOSS_CheckCertRevocation", u"0"}}));
}

TEST_F(DSSSLDialogTest, AClientKeyPasswordWithoutEncryptionIsAnnouncedAsNotSaved)
{
    m_map = {{u"SSL", u"1"}, {u"TwoWaySSL", u"1"}};
    m_host.ExpectMessageBox(IDOK);
    Run(DRIVER, true, [this](Window& w) {
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](Window& p) {
            p.CheckButton(IDC_PWD_CURRENT_USER_ONLY, false);
            p.CheckButton(IDC_PWD_ALL_USERS, false);
            p.Click(IDOK);
        });
        w.Type(IDC_SSL_CLIENT_KEY_PASSWORD, u"k3y");
        w.Click(IDC_SSL_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    EXPECT_FALSE(m_ssl->GetClientKeyCredentials().IsEncryptPwd());
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    EXPECT_EQ(m_host.GetMessageBoxes()[0].caption, u"Credentials Not Saved");
    EXPECT_NE(m_host.GetMessageBoxes()[0].text.find(u"ClientPrivateKeyPWD configuration is not being saved"),
              tarni_wstring::npos);
    EXPECT_NE(m_host.GetMessageBoxes()[0].text.find(u"SSL Options dialog"), tarni_wstring::npos);
}
