// The main dialog's "SSL Options..." and, in AOSS mode, "Service Discovery
// Options...": DFI's forced SSL, the user's own SSL choice coming back after
// DFI, and a read-only run that lets no one switch SSL or the AOSS mechanism.
#include "dialogs/MainDialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
using Window = ScriptedDialogWindow;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
using QuillConfigurationDialogSslTest = Testing::MainDialogTest;
}  // namespace

TEST_F(QuillConfigurationDialogSslTest, DfiForcesSslAndLeavingItBringsBackTheUsersChoice)
{
    Set(u"SSL", u"0");
    Run(IDD_DRIVER_CONFIG, [this](Window& w) {
        const auto toggleSsl = [this, &w] {
            m_host.ExpectDialog(IDD_SSL_OPTIONS_TWO_WAY, [](Window& s) {
                EXPECT_EQ(s.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
                EXPECT_TRUE(s.Enabled(IDC_SSL_ENABLE));
                EXPECT_TRUE(s.Visible(IDC_SSL_MIN_TLS));
                s.Click(IDC_SSL_ENABLE);
                s.Click(IDOK);
            });
            w.Click(IDC_SSL_OPTIONS);
        };
        toggleSsl();
        EXPECT_EQ(Get(u"SSL"), u"1");
        toggleSsl();
        EXPECT_EQ(Get(u"SSL"), u"0");

        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        EXPECT_EQ(Get(u"SSL"), u"1");
        m_host.ExpectDialog(IDD_SSL_OPTIONS_TWO_WAY, [](Window& s) {
            EXPECT_TRUE(s.Checked(IDC_SSL_ENABLE));
            EXPECT_FALSE(s.Enabled(IDC_SSL_ENABLE)) << "DFI connects over HTTPS only";
            s.Click(IDOK);
        });
        w.Click(IDC_SSL_OPTIONS);
        EXPECT_EQ(Get(u"SSL"), u"1");

        w.SelectCombo(IDC_SERVER_TYPE, u"SparkThriftServer (Spark 1.1 and later)");
        EXPECT_EQ(Get(u"SSL"), u"0") << "the user's last choice";
        w.Click(IDCANCEL);
    });
}

TEST_F(QuillConfigurationDialogSslTest, AReadOnlyRunLetsNoOneSwitchSslOrTheAossMechanism)
{
    Set(Keys::ServiceDiscoveryMode, u"AOSS");
    Run(
        IDD_DRIVER_CONFIG,
        [this](Window& w) {
            m_host.ExpectDialog(IDD_SSL_OPTIONS_TWO_WAY, [](Window& s) {
                EXPECT_FALSE(s.Enabled(IDC_SSL_ENABLE));
                s.Click(IDCANCEL);
            });
            w.Click(IDC_SSL_OPTIONS);
            m_host.ExpectDialog(IDD_AOSS_OPTIONS, [](Window& a) {
                EXPECT_FALSE(a.Enabled(IDC_AOSS_AUTH_MECH));
                a.Click(IDCANCEL);
            });
            w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
            w.Click(IDCANCEL);
        },
        [](QuillConfigurationDialog& d) { d.SetAllowEditing(false); });
}
