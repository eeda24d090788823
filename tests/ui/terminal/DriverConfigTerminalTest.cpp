// The Linux dialog program on the terminal host, driven through tmux in an
// 80x24 terminal as a user would drive it: the main dialog, Cancel and OK,
// Password Options, ZooKeeper Options and HTTP Proxy Options with the
// keyboard, and the terminal given back after every way out, signals included.
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "TmuxSession.h"

namespace Tarni::Testing
{
namespace
{
constexpr const char* TITLE = "Tarni Spark ODBC Driver Configuration";

std::string ReadFile(const std::filesystem::path& in_path)
{
    std::ifstream in(in_path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

int RowOf(const std::string& in_screen, const std::string& in_text)
{
    std::istringstream in(in_screen);
    std::string line;
    for (int row = 0; std::getline(in, line); ++row)
    {
        if (line.find(in_text) != std::string::npos)
        {
            return row;
        }
    }
    return -1;
}

std::string LastLine(const std::string& in_screen)
{
    std::string trimmed = in_screen;
    while (!trimmed.empty() && trimmed.back() == '\n')
    {
        trimmed.pop_back();
    }
    return trimmed.substr(trimmed.rfind('\n') + 1);
}

class DriverConfigTerminalTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        m_folder = std::filesystem::temp_directory_path() /
                   ("tarni-terminal-" + std::to_string(::getpid()) + "-" + info->name());
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder / "config");
    }
    void TearDown() override
    {
        m_session.reset();
        std::filesystem::remove_all(m_folder);
    }

    /// Writes the INI file and starts the program on it. With in_productData
    /// the program runs from a copy beside a product data file of that text.
    void Start(const std::string& in_ini, const std::string& in_productData = {})
    {
        std::ofstream(m_folder / "odbc.ini", std::ios::binary) << in_ini;
        std::string program = TARNI_DRIVER_CONFIG_EXE;
        if (!in_productData.empty())
        {
            std::filesystem::copy_file(program, m_folder / "tarni-spark-driver-config");
            std::ofstream(m_folder / "SparkODBC.did") << in_productData;
            program = (m_folder / "tarni-spark-driver-config").string();
        }
        m_session = std::make_unique<TmuxSession>(
            m_folder.string(),
            "export SPARKINI=\"$PWD/odbc.ini\" XDG_CONFIG_HOME=\"$PWD/config\" HOME=\"$PWD\"\n"
            "echo BEFORE-RUN\n"
            "stty -g > stty-before.txt\n"
            "'" + program + "'\n"
            "echo \"EXIT=$?\"\n"
            "stty -g > stty-after.txt\n"
            "echo RUN-DONE\n"
            "sleep 600\n");
        ASSERT_TRUE(m_session->WaitForText(TITLE)) << m_session->Screen();
    }

    /// Waits for the program to end; its exit code.
    int Finish()
    {
        EXPECT_TRUE(m_session->WaitForText("RUN-DONE")) << m_session->Screen();
        const std::string screen = m_session->Screen();
        const auto at = screen.find("EXIT=");
        return at == std::string::npos ? -1000 : std::stoi(screen.substr(at + 5));
    }

    /// The terminal is as it was before the program: its modes, and the
    /// shell's screen instead of the dialog.
    void ExpectTerminalRestored()
    {
        EXPECT_EQ(ReadFile(m_folder / "stty-before.txt"), ReadFile(m_folder / "stty-after.txt"));
        const std::string screen = m_session->Screen();
        EXPECT_NE(screen.find("BEFORE-RUN"), std::string::npos) << screen;
        EXPECT_EQ(screen.find(TITLE), std::string::npos) << screen;
    }

    /// Tabs until the caret is in the edit field on the row of the label.
    void FocusFieldOf(const std::string& in_label)
    {
        for (int i = 0; i < 40; ++i)
        {
            const int row = RowOf(m_session->Screen(), in_label);
            ASSERT_GE(row, 0) << in_label;
            if (m_session->CursorRow() == row)
            {
                return;
            }
            m_session->Key("Tab");
        }
        FAIL() << "the field of " << in_label << " never took the focus:\n" << m_session->Screen();
    }

    /// Tabs until the status line names the button.
    void FocusButton(const std::string& in_label)
    {
        for (int i = 0; i < 40; ++i)
        {
            if (LastLine(m_session->Screen()).rfind(" " + in_label, 0) == 0)
            {
                return;
            }
            m_session->Key("Tab");
        }
        FAIL() << in_label << " never took the focus:\n" << m_session->Screen();
    }

    std::string Ini() const { return ReadFile(m_folder / "odbc.ini"); }

    std::filesystem::path m_folder;
    std::unique_ptr<TmuxSession> m_session;
};
}  // namespace

TEST_F(DriverConfigTerminalTest, EscapeCancelsWithoutTouchingTheStoreAndRestoresTheTerminal)
{
    const std::string ini = "; kept as it is\n[ODBC]\nTrace=no\n\n[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n";
    Start(ini);
    const std::string screen = m_session->Screen();
    for (const char* text : {"Spark Server Type:", "SparkThriftServer (Spark 1.1 and later)", "Authentication",
                             "User Name and Password", "[alice", "<< OK >>", "< Cancel >"})
    {
        EXPECT_NE(screen.find(text), std::string::npos) << text << "\n" << screen;
    }
    // Nothing of the frame leaves an 80x24 terminal.
    EXPECT_NE(RowOf(screen, TITLE), -1);
    m_session->Key("Escape");
    EXPECT_EQ(Finish(), 0);
    EXPECT_EQ(Ini(), ini);
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, EnterOnOkWritesTheConfigurationAndExitsWithOne)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n");
    FocusFieldOf("User Name:");
    m_session->Key("C-u");
    m_session->Type("bob smith");
    ASSERT_TRUE(m_session->WaitForText("[bob smith"));
    FocusFieldOf("Delegation UID:");
    m_session->Type("proxy-user");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    EXPECT_NE(ini.find("UID=bob smith\n"), std::string::npos) << ini;
    EXPECT_NE(ini.find("DelegationUID=proxy-user\n"), std::string::npos) << ini;
    EXPECT_NE(ini.find("SparkServerType=3\n"), std::string::npos) << ini;
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, PasswordOptionsChooseTheScopeWithTheKeyboard)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n");
    FocusFieldOf("Password:");
    m_session->Type("s3cret");
    ASSERT_TRUE(m_session->WaitForText("[******"));
    EXPECT_EQ(m_session->Screen().find("s3cret"), std::string::npos);

    // Cancel leaves the choice as it was.
    FocusButton("Password Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("All Users of this Machine")) << m_session->Screen();
    const std::string before = m_session->LineWith("Current User Only") + m_session->LineWith("All Users");
    m_session->Key("Down");
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("(*) All Users of this Machine")) << m_session->Screen();
    m_session->Key("Escape");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("All Users of") == std::string::npos; }));
    m_session->Key("Enter");  // the button still has the focus
    ASSERT_TRUE(m_session->WaitForText("All Users of this Machine"));
    EXPECT_EQ(m_session->LineWith("Current User Only") + m_session->LineWith("All Users"), before);

    // OK keeps it, and the main dialog's OK stores the password protected.
    m_session->Key("Down");
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("(*) All Users of this Machine"));
    EXPECT_NE(m_session->LineWith("( ) Current User Only"), "");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("All Users of") == std::string::npos; }));
    m_session->Key("Escape");  // Cancel of the main dialog stores nothing at all
    EXPECT_EQ(Finish(), 0);
    EXPECT_EQ(Ini().find("PWD"), std::string::npos);
}

TEST_F(DriverConfigTerminalTest, AStoredPasswordThatCannotBeRecoveredSurvivesOkUntilANewOneIsTyped)
{
    // Protected for a user whose key this one does not have.
    const std::string stored = "AES256_USER:" + std::string(120, 'A');
    const std::string ini = "[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\nEncryptedPWD=" + stored + "\n";
    Start(ini);
    ASSERT_TRUE(m_session->WaitForText("Stored Credentials Not Recovered")) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("EncryptedPWD"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Not Recovered") == std::string::npos; }));
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    EXPECT_NE(Ini().find("EncryptedPWD=" + stored + "\n"), std::string::npos) << Ini();

    // Typing a password replaces it, protected.
    m_session.reset();
    Start(Ini());
    ASSERT_TRUE(m_session->WaitForText("Stored Credentials Not Recovered"));
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Not Recovered") == std::string::npos; }));
    FocusFieldOf("Password:");
    m_session->Type("n3w-pass");
    ASSERT_TRUE(m_session->WaitForText("[********"));
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string after = Ini();
    EXPECT_EQ(after.find(stored), std::string::npos) << after;
    EXPECT_NE(after.find("EncryptedPWD=AES256_"), std::string::npos) << after;
    EXPECT_EQ(after.find("n3w-pass"), std::string::npos);
}

TEST_F(DriverConfigTerminalTest, PasswordOptionsShowTheChoiceMadeBeforeWhenOpenedAgain)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n");
    FocusButton("Password Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("All Users of this Machine"));
    // Tab leaves the group of radio buttons for OK; Shift-Tab comes back to it.
    m_session->Key("Tab");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return LastLine(s).rfind(" OK ", 0) == 0; }))
        << m_session->Screen();
    m_session->Key("BTab");
    m_session->Key("Down");
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("(*) All Users of this Machine"));
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("All Users of") == std::string::npos; }));
    m_session->Key("Enter");  // the button still has the focus
    ASSERT_TRUE(m_session->WaitForText("(*) All Users of this Machine")) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("( ) Current User Only"), "");
    m_session->Key("Escape");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("All Users of") == std::string::npos; }));
    m_session->Key("Escape");
    EXPECT_EQ(Finish(), 0);
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, ZooKeeperOkGreysOutWhileTheNamespaceIsEmpty)
{
    Start("[Driver]\nSparkServerType=3\nServiceDiscoveryMode=ZooKeeper\nZKNamespace=ns1\n",
          "supported-service-discovery-modes=ZooKeeper,AOSS\n");
    FocusButton("Service Discovery Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("ZooKeeper Namespace:")) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("ZooKeeper Namespace:").find("[ns1"), std::string::npos);

    // The first OK from the top is the ZooKeeper dialog's: dim while empty.
    auto firstOk = [](const std::string& in_screen) {
        const auto at = in_screen.find("<< OK >>");
        return at == std::string::npos ? std::string() : in_screen.substr(at < 8 ? 0 : at - 8, 16);
    };
    m_session->Key("C-u");
    ASSERT_TRUE(m_session->WaitFor([&](const std::string& s) { return firstOk(s).find("\x1b[2m") != std::string::npos; },
                                   true))
        << m_session->Screen(true);
    // A disabled OK does nothing, and the status line does not offer it.
    EXPECT_EQ(m_session->LineWith("Esc: Cancel").find("Enter: OK"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_NE(m_session->Screen().find("ZooKeeper Namespace:"), std::string::npos);

    m_session->Type("prod");
    ASSERT_TRUE(m_session->WaitFor([&](const std::string& s) { return firstOk(s).find("\x1b[2m") == std::string::npos; },
                                   true));
    EXPECT_NE(m_session->LineWith("Esc: Cancel").find("Enter: OK"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("ZooKeeper Namespace:") == std::string::npos; }));
    // Escape in the dialog keeps the namespace: open it again and cancel.
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("ZooKeeper Namespace:"));
    EXPECT_NE(m_session->LineWith("ZooKeeper Namespace:").find("[prod"), std::string::npos);
    m_session->Key("C-u");
    m_session->Key("Escape");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("ZooKeeper Namespace:") == std::string::npos; }));
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    EXPECT_NE(Ini().find("ZKNamespace=prod\n"), std::string::npos) << Ini();
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, ADropDownListChoosesWithTheKeyboardAndTheDialogFollowsAtOnce)
{
    const std::string ini = "[Driver]\nSparkServerType=3\n";
    Start(ini, "supported-service-discovery-modes=ZooKeeper,AOSS\n");
    // The first drop-down has the focus; the next one is Service Discovery Mode.
    ASSERT_EQ(LastLine(m_session->Screen()).rfind(" Space: open list", 0), 0u) << m_session->Screen();
    for (int i = 0; i < 10; ++i)
    {
        m_session->Key("Tab");
        if (LastLine(m_session->Screen()).rfind(" Space: open list", 0) == 0)
        {
            break;
        }
    }
    auto optionsDim = [this]() {
        return m_session->LineWith("Service Discovery Op", true).find("\x1b[2m<Service") != std::string::npos;
    };
    EXPECT_TRUE(optionsDim()) << m_session->LineWith("Service Discovery Op", true);

    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("AOSS")) << m_session->Screen();
    m_session->Key("Down");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("AOSS") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("Service Discovery Mode:").find("[ZooKeeper"), std::string::npos);
    EXPECT_FALSE(optionsDim()) << "CBN_SELCHANGE reached the dialog, which enabled the options";

    // Escape closes the list without a choice, also after moving in it.
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("AOSS"));
    m_session->Key("a");
    m_session->Key("Escape");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("AOSS") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("Service Discovery Mode:").find("[ZooKeeper"), std::string::npos);
    m_session->Key("Escape");
    EXPECT_EQ(Finish(), 0);
    EXPECT_EQ(Ini(), ini);
}

TEST_F(DriverConfigTerminalTest, TerminatingSignalsGiveTheTerminalBack)
{
    for (const int signal : {SIGTERM, SIGINT})
    {
        const std::string ini = "[Driver]\nSparkServerType=3\n";
        Start(ini);
        const int pid = m_session->ChildPid();
        ASSERT_GT(pid, 0);
        ASSERT_EQ(::kill(pid, signal), 0);
        EXPECT_EQ(Finish(), 128 + signal);
        EXPECT_EQ(Ini(), ini);
        ExpectTerminalRestored();
        m_session.reset();
        std::filesystem::remove(m_folder / "session.sh");
    }
}

TEST_F(DriverConfigTerminalTest, FollowsAResizeOfTheTerminal)
{
    Start("[Driver]\nSparkServerType=3\n");
    // Narrower and lower than the dialog: it is scaled to the width and scrolls.
    m_session->Resize(60, 16);
    auto fits = [](const std::string& in_screen) {
        std::istringstream in(in_screen);
        std::string line;
        int rows = 0;
        while (std::getline(in, line))
        {
            ++rows;
            // Display width: count the characters, not the bytes of UTF-8.
            const auto width = std::count_if(line.begin(), line.end(), [](char c) { return (c & 0xC0) != 0x80; });
            if (width > 60)
            {
                return false;
            }
        }
        return rows <= 16 && in_screen.find(TITLE) != std::string::npos;
    };
    ASSERT_TRUE(m_session->WaitFor(fits)) << m_session->Screen();
    EXPECT_EQ(m_session->Screen().find("< Cancel >"), std::string::npos) << m_session->Screen();
    // Shift-Tab from the first control reaches Cancel at the bottom, which scrolls into view.
    m_session->Key("BTab");
    EXPECT_TRUE(m_session->WaitForText("Cancel>>")) << m_session->Screen();
    m_session->Resize(80, 24);
    EXPECT_TRUE(m_session->WaitForText("Spark Server Type:"));
    m_session->Key("Escape");
    EXPECT_EQ(Finish(), 0);
}
}  // namespace Tarni::Testing

namespace Tarni::Testing
{
TEST_F(DriverConfigTerminalTest, SwitchingToDfiAndBackRestoresMechanismAndTransport)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=1\nThriftTransport=2\n");
    // The server type list has the focus; DFI is the entry after the current one.
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("SharkServer2")) << m_session->Screen();
    m_session->Key("Down");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("SharkServer2") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("Spark Server Type:").find("[DFI"), std::string::npos) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("Mechanism:").find("[User Name and Password"), std::string::npos);
    EXPECT_NE(m_session->LineWith("Thrift Transport:").find("[HTTP"), std::string::npos);

    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("SharkServer2"));
    m_session->Key("Up");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("SharkServer2") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("Mechanism:").find("[Kerberos"), std::string::npos) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("Thrift Transport:").find("[HTTP"), std::string::npos);
    m_session->Key("Enter");  // the default button: OK
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    for (const char* line : {"SparkServerType=3\n", "AuthMech=1\n", "ThriftTransport=2\n"})
    {
        EXPECT_NE(ini.find(line), std::string::npos) << line << ini;
    }
    ExpectTerminalRestored();
}
TEST_F(DriverConfigTerminalTest, TheProxyIsEnteredWithTheKeyboardAndStoredProtected)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n");
    const auto proxyGone = [](const std::string& s) { return s.find("HTTP Proxy Options") == std::string::npos; };
    FocusButton("Proxy Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("[ ] Use Proxy")) << m_session->Screen();
    // Alt plus the underlined letter: the switch, then each field by its label.
    m_session->Key("M-x");
    ASSERT_TRUE(m_session->WaitForText("[x] Use Proxy")) << m_session->Screen();
    m_session->Key("M-h");
    m_session->Type("proxy.corp");
    m_session->Key("M-o");
    m_session->Type("80a80");  // digits only: the letter is refused
    m_session->Key("M-n");
    m_session->Type("bob");
    m_session->Key("M-w");
    m_session->Type("pr0xy-pw");
    ASSERT_TRUE(m_session->WaitForText("[********")) << m_session->Screen();
    EXPECT_EQ(m_session->Screen().find("pr0xy-pw"), std::string::npos);
    EXPECT_NE(m_session->LineWith("[8080 "), "") << m_session->Screen();

    FocusButton("Password Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("All Users of this Machine")) << m_session->Screen();
    m_session->Key("Space");  // the focus starts on "Current User Only"
    ASSERT_TRUE(m_session->WaitForText("(*) Current User Only")) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("All Users of") == std::string::npos; }));
    FocusButton("OK");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor(proxyGone)) << m_session->Screen();
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    std::string ini = Ini();
    for (const char* line : {"UseProxy=1\n", "ProxyHost=proxy.corp\n", "ProxyPort=8080\n", "ProxyUID=bob\n",
                             "ProxyEncryptedPWD="})
    {
        EXPECT_NE(ini.find(line), std::string::npos) << line << ini;
    }
    EXPECT_EQ(ini.find("ProxyPWD="), std::string::npos) << ini;
    EXPECT_EQ(ini.find("pr0xy-pw"), std::string::npos) << ini;

    // Unchecked, OK writes only the switch and keeps host and port.
    m_session.reset();
    Start(ini);
    FocusButton("Proxy Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("[x] Use Proxy")) << m_session->Screen();
    m_session->Key("M-x");
    ASSERT_TRUE(m_session->WaitForText("[ ] Use Proxy"));
    FocusButton("OK");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor(proxyGone)) << m_session->Screen();
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    ini = Ini();
    for (const char* line : {"UseProxy=0\n", "ProxyHost=proxy.corp\n", "ProxyPort=8080\n", "ProxyUID=bob\n"})
    {
        EXPECT_NE(ini.find(line), std::string::npos) << line << ini;
    }
}
}  // namespace Tarni::Testing

namespace Tarni::Testing
{
namespace
{
/// What `tarni-spark-config show` prints for the INI file.
std::string ShowConfiguration(const std::filesystem::path& in_ini)
{
    const std::string command = "'" + std::string(TARNI_CONFIG_CLI_EXE) + "' --ini '" + in_ini.string() + "' show";
    std::string output;
    if (FILE* pipe = ::popen(command.c_str(), "r"))
    {
        char buffer[4096];
        std::size_t read = 0;
        while ((read = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0)
        {
            output.append(buffer, read);
        }
        ::pclose(pipe);
    }
    return output;
}

bool Without(const std::string& in_screen, const std::string& in_text)
{
    return in_screen.find(in_text) == std::string::npos;
}
}  // namespace

TEST_F(DriverConfigTerminalTest, AServerSidePropertyIsAddedAndEditedThreeDialogsDeep)
{
    Start("[Driver]\nSparkServerType=3\n");
    FocusButton("Advanced Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Rows fetched per block:")) << m_session->Screen();
    FocusButton("Server Side Properties");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Convert Key Name to Lower Case")) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("< Edit >", true).find("\x1b[2m"), std::string::npos) << "Edit is dim without a selection";

    FocusButton("Add...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Key:")) << m_session->Screen();
    m_session->Type("spark.sql.shuffle.partitions");
    m_session->Key("Tab");
    m_session->Type("8 = eight é");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("spark.sql.shuffle.partitions=8 = eight é")) << m_session->Screen();

    // The same key in other case is a duplicate; Cancel gives up the addition.
    m_session->Key("Enter");  // Add still has the focus
    ASSERT_TRUE(m_session->WaitForText("Key:"));
    m_session->Type("SPARK.SQL.SHUFFLE.PARTITIONS");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Duplicate key detected")) << m_session->Screen();
    m_session->Key("Escape");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return Without(s, "Duplicate key") && Without(s, "Key:"); }))
        << m_session->Screen();

    // Down selects the entry, Enter on it edits (the double click).
    for (int i = 0; i < 10 && LastLine(m_session->Screen()).rfind(" Up/Down: select", 0) != 0; ++i)
    {
        m_session->Key("Tab");
    }
    m_session->Key("Down");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Key:")) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("Key:").find("[spark.sql.shuffle.partitions"), std::string::npos);
    m_session->Key("Tab");
    m_session->Key("C-u");
    m_session->Type("16");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("spark.sql.shuffle.partitions=16")) << m_session->Screen();

    FocusButton("OK");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return Without(s, "Convert Key Name"); }));
    FocusButton("OK");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return Without(s, "Rows fetched per block"); }));
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    EXPECT_NE(Ini().find("\nSSP_spark.sql.shuffle.partitions=16\n"), std::string::npos) << Ini();
    EXPECT_NE(ShowConfiguration(m_folder / "odbc.ini").find("\nSSP_spark.sql.shuffle.partitions=16\n"),
              std::string::npos);
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, AnHttpHeaderWithAnEmptyValueIsSavedWithThePath)
{
    Start("[Driver]\nSparkServerType=3\nThriftTransport=2\n");
    FocusButton("HTTP Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Custom HTTP Headers")) << m_session->Screen();
    FocusFieldOf("HTTP Path:");
    m_session->Type("cliservice");
    FocusButton("Add...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Key:"));
    m_session->Type("X-Trace");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("X-Trace=")) << m_session->Screen();
    FocusButton("OK");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return Without(s, "Custom HTTP Headers"); }));
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    EXPECT_NE(ini.find("\nhttp.header.X-Trace=\n"), std::string::npos) << ini;
    EXPECT_NE(ini.find("\nHTTPPath=cliservice\n"), std::string::npos) << ini;
    ExpectTerminalRestored();
}
}  // namespace Tarni::Testing

namespace Tarni::Testing
{
TEST_F(DriverConfigTerminalTest, DfiAndSamlOptionsOfTheDfiServerTypeWithTheKeyboard)
{
    std::ofstream(m_folder / "oci-config") << "[DEFAULT]\n";
    const std::string configFile = (m_folder / "oci-config").string();
    Start("[Driver]\nSparkServerType=4\nAuthMech=3\nThriftTransport=2\n");
    FocusButton("DFI Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("OCI Config File:")) << m_session->Screen();

    // A file that does not exist is refused; the dialog keeps what was typed.
    FocusFieldOf("OCI Config File:");
    m_session->Type(configFile + ".typo");
    FocusFieldOf("OCI Profile:");
    m_session->Type("analytics");
    FocusFieldOf("Key File Password:");
    m_session->Type("k3y-pass");
    ASSERT_TRUE(m_session->WaitForText("[********"));
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("DSN Configuration Error")) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("DFI Options: the OCI Config File"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Configuration Error") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("OCI Profile:").find("[analytics"), std::string::npos) << m_session->Screen();

    FocusFieldOf("OCI Config File:");
    m_session->Key("C-u");
    m_session->Type(configFile);
    FocusButton("Password Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("All Users of this Machine")) << m_session->Screen();
    m_session->Key("Down");
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("(*) All Users of this Machine"));
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("All Users of") == std::string::npos; }));
    FocusButton("OK");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("OCI Profile:") == std::string::npos; }))
        << m_session->Screen();

    // SAML Options: the flow is fixed on "browser".
    FocusButton("SAML Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Enable Auth Cookie Caching")) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("Authentication Flow:").find("[browser"), std::string::npos) << m_session->Screen();
    // The disabled flow list takes no focus: the first check box has it, Tab goes to the second.
    m_session->Key("Tab");
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("[x] Enable Auth Cookie Caching")) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Cookie Caching") == std::string::npos; }));

    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    for (const std::string& line : {"OCIConfigFile=" + configFile + "\n", std::string("OCIProfile=analytics\n"),
                                   std::string("EnableSamlCookieCaching=1\n"), std::string("EncryptedKeyFilePassword=")})
    {
        EXPECT_NE(ini.find(line), std::string::npos) << line << ini;
    }
    EXPECT_EQ(ini.find("keyFilePassword="), std::string::npos) << ini;
    EXPECT_EQ(ini.find("k3y-pass"), std::string::npos) << ini;
    ExpectTerminalRestored();
}
}  // namespace Tarni::Testing

namespace Tarni::Testing
{
TEST_F(DriverConfigTerminalTest, SslAndAossOptionsWithTheKeyboardReachTheStore)
{
    Start("[Driver]\nSparkServerType=3\nServiceDiscoveryMode=AOSS\nSSL=0\nUseSystemTrustStore=0\nMin_TLS=1.0\n",
          "supported-service-discovery-modes=ZooKeeper,AOSS\n");
    const std::string caFile = (m_folder / "ca.pem").string();
    std::ofstream(caFile) << "-----BEGIN CERTIFICATE-----\n";

    // SSL Options: the focus starts on "Enable SSL".
    FocusButton("SSL Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("[ ] Enable SSL")) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("Client Certificate File:"), std::string::npos) << "the two-way variant";
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("[x] Enable SSL")) << m_session->Screen();

    // Browse: the path prompt takes an existing file only.
    FocusButton("Browse...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Tab: complete")) << m_session->Screen();
    m_session->Key("C-u");
    m_session->Type((m_folder / "missing.pem").string());
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("The file does not exist.")) << m_session->Screen();
    m_session->Key("C-u");
    m_session->Type(caFile);
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Tab: complete") == std::string::npos; }))
        << m_session->Screen();

    // Minimum TLS Version: from 1.0 two entries down.
    for (int i = 0; i < 20 && LastLine(m_session->Screen()).rfind(" Space: open list", 0) != 0; ++i)
    {
        m_session->Key("Tab");
    }
    EXPECT_NE(m_session->LineWith("Minimum TLS Version:").find("[1.0"), std::string::npos) << m_session->Screen();
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("1.1")) << m_session->Screen();
    m_session->Key("Down");
    m_session->Key("Down");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("1.1") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("Minimum TLS Version:").find("[1.2"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");  // OK, the default button
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Enable SSL") == std::string::npos; }));

    // AOSS Options: OK stays dim until user name and password are typed.
    FocusButton("Service Discovery Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Status Endpoint Authentication:")) << m_session->Screen();
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("User Name and Password")) << m_session->Screen();
    m_session->Key("Down");
    m_session->Key("Enter");
    auto okDim = [this]() { return m_session->LineWith("<< OK >>", true).find("\x1b[2m<< OK") != std::string::npos; };
    ASSERT_TRUE(m_session->WaitFor([&](const std::string&) { return okDim(); }, true)) << m_session->Screen(true);
    m_session->Key("Tab");
    m_session->Type("watcher");
    m_session->Key("Tab");
    m_session->Type("aoss-s3cret");
    ASSERT_TRUE(m_session->WaitForText("[***********")) << m_session->Screen();
    EXPECT_EQ(m_session->Screen().find("aoss-s3cret"), std::string::npos);
    EXPECT_FALSE(okDim());
    FocusButton("Password Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Current User Only")) << m_session->Screen();
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("(*) Current User Only")) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Current User Only") == std::string::npos; }));
    FocusButton("OK");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) {
        return s.find("Status Endpoint Authentication:") == std::string::npos;
    }));

    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    for (const std::string& line : std::vector<std::string>{"SSL=1\n", "TrustedCerts=" + caFile + "\n", "Min_TLS=1.2\n", "AOSS_AuthMech=3\n",
                                   "AOSS_UID=watcher\n", "AOSS_EncryptedPWD="})
    {
        EXPECT_NE(ini.find(line), std::string::npos) << line << ini;
    }
    EXPECT_EQ(ini.find("AOSS_PWD"), std::string::npos) << ini;
    EXPECT_EQ(ini.find("aoss-s3cret"), std::string::npos) << ini;
    ExpectTerminalRestored();
}
}  // namespace Tarni::Testing

namespace Tarni::Testing
{
TEST_F(DriverConfigTerminalTest, LoggingOptionsTakeALevelAFolderAndLimits)
{
    std::filesystem::create_directories(m_folder / "logs");
    Start("[Driver]\nSparkServerType=3\n");
    FocusButton("Logging Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Logging Options")) << m_session->Screen();
    ASSERT_TRUE(m_session->WaitForText("Max Number Files:"));
    // No level stored: LOG_OFF, with the folder and the limits dim.
    EXPECT_NE(m_session->LineWith("Log Level:").find("[LOG_OFF"), std::string::npos) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("Browse", true).find("\x1b[2m"), std::string::npos);

    // The level list has the focus: LOG_DEBUG is five entries down.
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("LOG_TRACE")) << m_session->Screen();
    for (int i = 0; i < 5; ++i)
    {
        m_session->Key("Down");
    }
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("LOG_TRACE") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("Log Level:").find("[LOG_DEBUG"), std::string::npos) << m_session->Screen();

    // Browse: the folder prompt completes folders only and takes one.
    FocusButton("Browse...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Choose log file target directory.")) << m_session->Screen();
    m_session->Key("C-u");
    m_session->Type("lo");
    m_session->Key("Tab");
    ASSERT_TRUE(m_session->WaitForText("logs/")) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor(
        [](const std::string& s) { return s.find("Choose log file target directory.") == std::string::npos; }));
    EXPECT_NE(m_session->LineWith("Log Path:").find("logs"), std::string::npos) << m_session->Screen();

    FocusFieldOf("Max Number Files:");
    m_session->Type("7");
    FocusFieldOf("Max File Size (MB):");
    m_session->Type("12");
    m_session->Key("Enter");  // OK, the default button
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Max Number Files:") == std::string::npos; }))
        << m_session->Screen();
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    const std::string logs = (std::filesystem::canonical(m_folder) / "logs").string();
    for (const std::string& line : std::vector<std::string>{"LogLevel=5\n", "LogPath=" + logs + "\n", "LogFileCount=7\n",
                                                            "LogFileSize=12582912\n"})
    {
        EXPECT_NE(ini.find(line), std::string::npos) << line << ini;
    }
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, ExportAndImportThroughThePathPrompts)
{
    std::filesystem::create_directories(m_folder / "Papers");
    std::ofstream(m_folder / "config" / "user-dirs.dirs") << "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n";
    std::ofstream(m_folder / "Papers" / "other.sdc") << "SparkServerType=3\r\nAuthMech=3\r\nUID=bob\r\n";
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\nLogLevel=4\n");
    FocusButton("Logging Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Max Number Files:")) << m_session->Screen();

    // Export: the name offered is backup.sdc in the documents folder.
    FocusButton("Export Configuration...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Choose Export Target File")) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("DSN Definition (*.sdc)"), std::string::npos) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("Papers/backup.sdc"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Choose Export") == std::string::npos; }));
    const std::string exported = ReadFile(m_folder / "Papers" / "backup.sdc");
    EXPECT_NE(exported.find("\nUID=alice\n"), std::string::npos) << exported;
    EXPECT_EQ(exported.find("LogLevel"), std::string::npos) << exported;

    // Import another file: the main dialog shows what it brought.
    FocusButton("Import Configuration...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("Choose Import Target File")) << m_session->Screen();
    m_session->Key("C-u");
    m_session->Type("Papers/oth");
    m_session->Key("Tab");
    ASSERT_TRUE(m_session->WaitForText("other.sdc")) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Choose Import") == std::string::npos; }));
    m_session->Key("Escape");  // the logging fields are as they were; the import stays
    ASSERT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("Max Number Files:") == std::string::npos; }));
    ASSERT_TRUE(m_session->WaitForText("[bob")) << m_session->Screen();
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    EXPECT_NE(ini.find("UID=bob\n"), std::string::npos) << ini;
    EXPECT_NE(ini.find("LogLevel=4\n"), std::string::npos) << ini;
    ExpectTerminalRestored();
}
}  // namespace Tarni::Testing
