// The DSN setup dialog over a data source on the scripted host, with
// unixODBC's installer in a private environment: a new data source named in
// the dialog (a refused name keeps the dialog open), an existing one shown
// with its stored and inherited values and written on OK, Cancel writing
// nothing, and a system data source's password kept only once a scope is chosen.
#include "programs/driver-config/SODataSourceDialogRun.h"

#include <gtest/gtest.h>

#include "common/OdbcInstallerFixture.h"
#include "product/SODataSourceConfiguration.h"
#include "ui/DialogConstants.h"
#include "ui/scripted/ScriptedDialogHost.h"
#include "resource.h"

using namespace Tarni;
using Platform::ScriptedDialogHost;
using Platform::ScriptedDialogWindow;
using Platform::IDCANCEL;
using Platform::IDOK;
using SparkODBC::SODataSourceDialogRun;
using Testing::TempDirectory;

class SODataSourceDialogRunTest : public Testing::OdbcInstallerFixture
{
protected:
    int Run(SODataSourceDialogRun::Options in_options)
    {
        const int result = SODataSourceDialogRun::Run(m_host, in_options);
        m_host.VerifyAllUsed();
        return result;
    }
    ScriptedDialogHost m_host;
};

TEST_F(SODataSourceDialogRunTest, ANewDataSourceIsNamedInTheDialogAndARefusedNameKeepsItOpen)
{
    TempDirectory::WriteFile(DriverIni(), "[Driver]\nHTTPPath=cliservice\n");
    m_host.ExpectDialog(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        EXPECT_TRUE(w.Enabled(IDC_DSN_NAME));
        w.Type(IDC_DSN_NAME, u"bad(name)");
        w.Type(IDC_HOSTS, u"spark.example.com");
        w.Type(IDC_PORT, u"10001");
        w.Click(IDOK);
        w.Type(IDC_DSN_NAME, u"Fresh");
        w.Click(IDOK);
    });
    m_host.ExpectMessageBox(IDOK);  // "Invalid Data Source Name"
    SODataSourceDialogRun::Options options;
    options.nameEditable = true;
    options.systemMode = false;
    ASSERT_EQ(1, Run(options));
    const std::string ini = Read(UserIni());
    EXPECT_EQ(std::string::npos, ini.find("bad(name)")) << ini;
    EXPECT_NE(std::string::npos, ini.find("[Fresh]\n")) << ini;
    EXPECT_NE(std::string::npos, ini.find("Host=spark.example.com\n")) << ini;
    EXPECT_EQ(std::string::npos, ini.find("HTTPPath")) << ini;
}

TEST_F(SODataSourceDialogRunTest, AnExistingDataSourceIsShownAndOkWritesItCancelWritesNothing)
{
    TempDirectory::WriteFile(UserIni(), "[Sales]\nDriver=Tarni Spark ODBC Driver\nHost=h1\nPort=10005\nUID=bob\n"
                                        "Custom=kept\n");
    const std::string before = Read(UserIni());
    SODataSourceDialogRun::Options options;
    options.dsnName = u"Sales";
    options.systemMode = false;
    m_host.ExpectDialog(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        EXPECT_FALSE(w.Enabled(IDC_DSN_NAME));
        EXPECT_EQ(u"h1", w.GetItemText(IDC_HOSTS, 256));
        EXPECT_EQ(u"bob", w.GetItemText(IDC_USER_NAME, 256));
        w.Type(IDC_PORT, u"20000");
        w.Click(IDCANCEL);
    });
    ASSERT_EQ(0, Run(options));
    EXPECT_EQ(before, Read(UserIni()));

    options.prepare = [](SparkODBC::SODataSourceConfiguration& io_config) { io_config.SetSetting(u"Host", u"h2"); };
    m_host.ExpectDialog(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(u"h2", w.GetItemText(IDC_HOSTS, 256));
        w.Type(IDC_PORT, u"20000");
        w.Click(IDOK);
    });
    ASSERT_EQ(1, Run(options));
    const std::string ini = Read(UserIni());
    EXPECT_NE(std::string::npos, ini.find("Host=h2\n")) << ini;
    EXPECT_NE(std::string::npos, ini.find("Port=20000\n")) << ini;
    EXPECT_NE(std::string::npos, ini.find("Custom=kept\n")) << ini;
}

TEST_F(SODataSourceDialogRunTest, ASystemDataSourceKeepsAPasswordOnlyOnceAScopeIsChosen)
{
    SODataSourceDialogRun::Options options;
    options.dsnName = u"Shared";
    options.systemMode = true;
    m_host.ExpectDialog(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        w.Type(IDC_HOSTS, u"h");
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_USER_NAME, u"carol");
        w.Type(IDC_PASSWORD, u"typed-secret");
        w.Click(IDOK);
    });
    m_host.ExpectMessageBox(IDOK);  // "Credentials Not Saved"
    ASSERT_EQ(1, Run(options));
    std::string system = Read(SystemIni());
    EXPECT_NE(std::string::npos, system.find("[Shared]")) << system;
    EXPECT_EQ(std::string::npos, system.find("PWD")) << system;

    m_host.ExpectDialog(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        w.Type(IDC_PASSWORD, u"typed-secret");
        w.Click(IDC_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_ALL_USERS);
        w.Click(IDOK);
    });
    ASSERT_EQ(1, Run(options));
    system = Read(SystemIni());
    EXPECT_NE(std::string::npos, system.find("EncryptedPWD=")) << system;
    EXPECT_EQ(std::string::npos, system.find("typed-secret")) << system;
    EXPECT_EQ(std::string::npos, Read(UserIni()).find("Shared"));
}
