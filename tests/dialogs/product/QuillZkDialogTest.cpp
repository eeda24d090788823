// ZooKeeper Options on the scripted host: the namespace is shown, OK stays
// disabled while it is empty, OK stores it as typed, Cancel stores nothing.
#include "dialogs/product/QuillZkDialog.h"

#include "dialogs/DialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "product/QuillConfiguration.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
class QuillZkDialogTest : public Testing::DialogTest
{
protected:
    QuillZkDialogTest() : m_configuration(u"", 2, &m_logger) {}
    QuillConfiguration m_configuration;
};
}  // namespace

TEST_F(QuillZkDialogTest, ShowsTheStoredNamespaceAndStoresTheTypedOneOnOk)
{
    m_configuration.SetValue(Keys::ZKNamespace, u"spark-old");
    m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.Text(IDC_ZK_NAMESPACE), u"spark-old");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.Type(IDC_ZK_NAMESPACE, u" hive2 ");
        w.Click(IDOK);
    });
    EXPECT_TRUE(QuillZkDialog::Show(nullptr, &m_configuration));
    EXPECT_EQ(m_configuration.GetValue(Keys::ZKNamespace), u" hive2 ") << "stored as typed";
}

TEST_F(QuillZkDialogTest, OkIsDisabledWhileTheNamespaceIsEmptyAndABlankIsAccepted)
{
    m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.Text(IDC_ZK_NAMESPACE), u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.PressEnter();
        EXPECT_FALSE(w.IsEnded());
        w.Type(IDC_ZK_NAMESPACE, u"x");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.Type(IDC_ZK_NAMESPACE, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.Type(IDC_ZK_NAMESPACE, u" ");
        w.PressEnter();
    });
    EXPECT_TRUE(QuillZkDialog::Show(nullptr, &m_configuration));
    EXPECT_EQ(m_configuration.GetValue(Keys::ZKNamespace), u" ");
}

TEST_F(QuillZkDialogTest, CancelEscapeAndTheCloseBoxLeaveTheNamespace)
{
    m_configuration.SetValue(Keys::ZKNamespace, u"keep");
    for (Testing::CloseAction close : Testing::CLOSERS)
    {
        m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [close](ScriptedDialogWindow& w) {
            w.Type(IDC_ZK_NAMESPACE, u"changed");
            close(w);
        });
        EXPECT_FALSE(QuillZkDialog::Show(nullptr, &m_configuration));
        EXPECT_EQ(m_configuration.GetValue(Keys::ZKNamespace), u"keep");
    }
}
