// The DSN setup dialog on the terminal host, driven through tmux as a user
// would: opened by the dialog program (--dsn NAME) and by the setup library
// when unixODBC's installer is asked to configure a data source with a window
// from a program that runs in a terminal. OK writes the data source, Escape
// writes nothing.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "common/TempDirectory.h"
#include "ui/terminal/TmuxSession.h"

namespace
{
using Tarni::Testing::TmuxSession;

constexpr const char* TITLE = "Tarni Spark ODBC Driver DSN Setup";

class SetupTerminal : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(m_folder / "etc");
        std::filesystem::create_directories(m_folder / "home");
        std::ofstream(m_folder / "etc/odbcinst.ini")
            << "[Tarni Spark ODBC Driver]\nDescription=Spark\nSetup=" << TARNI_SETUP_LIBRARY << "\n";
        std::ofstream(m_folder / "etc/odbc.ini") << "";
    }
    /// Creates the data source with the command-line tool, then runs the command in tmux.
    void Start(const std::string& in_command)
    {
        m_session = std::make_unique<TmuxSession>(
            m_folder.string(),
            "export ODBCSYSINI=\"$PWD/etc\" ODBCINI=\"$PWD/home/.odbc.ini\" HOME=\"$PWD/home\" "
            "SPARKINI=\"$PWD/spark.ini\"\n"
            "'" + std::string(TARNI_CONFIG_CLI_EXE) + "' dsn add Sales Host=spark.example.com Port=10001 UID=alice\n" +
                in_command + "\necho \"EXIT=$?\"\necho RUN-DONE\nsleep 600\n");
        ASSERT_TRUE(m_session->WaitForText(TITLE)) << m_session->Screen();
    }

    std::string Finish()
    {
        EXPECT_TRUE(m_session->WaitForText("RUN-DONE")) << m_session->Screen();
        return m_session->Screen();
    }

    std::string UserIni() const { return Tarni::Testing::TempDirectory::ReadFile(m_folder / "home/.odbc.ini"); }

    Tarni::Testing::TempDirectory m_dir;
    const std::filesystem::path m_folder = m_dir.Path();
    std::unique_ptr<TmuxSession> m_session;  // ends before the folder goes
};
}  // namespace

TEST_F(SetupTerminal, TheDialogProgramEditsTheDataSourceNamedOnItsCommandLine)
{
    Start("'" + std::string(TARNI_DRIVER_CONFIG_EXE) + "' --dsn Sales");
    EXPECT_NE(std::string::npos, m_session->LineWith("Host(s):").find("spark.example.com"));
    EXPECT_NE(std::string::npos, m_session->LineWith("User Name:").find("alice"));
    ASSERT_TRUE(m_session->FocusField("Port:")) << m_session->Screen();
    m_session->Key("C-u");
    m_session->Type("10009");
    ASSERT_TRUE(m_session->WaitForText("[10009"));
    m_session->Key("Enter");
    EXPECT_NE(std::string::npos, Finish().find("EXIT=1"));
    EXPECT_NE(std::string::npos, UserIni().find("Port=10009")) << UserIni();
}

TEST_F(SetupTerminal, TheSetupLibraryShowsTheDialogForAnInstallerRequestWithAWindow)
{
    Start("'" + std::string(TARNI_SETUP_CALLER) + "' config Sales Port=10002");
    // The attributes of the request win over the stored values.
    EXPECT_NE(std::string::npos, m_session->LineWith("Port:").find("10002")) << m_session->Screen();
    m_session->Key("Escape");
    std::string screen = Finish();
    EXPECT_NE(std::string::npos, screen.find("RESULT=0")) << screen;
    EXPECT_NE(std::string::npos, UserIni().find("Port=10001")) << UserIni();

    m_session.reset();
    Start("'" + std::string(TARNI_SETUP_CALLER) + "' config Sales Port=10002");
    m_session->Key("Enter");
    screen = Finish();
    EXPECT_NE(std::string::npos, screen.find("RESULT=1")) << screen;
    EXPECT_NE(std::string::npos, UserIni().find("Port=10002")) << UserIni();
}
