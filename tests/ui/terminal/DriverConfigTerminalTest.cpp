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
#include "common/TempDirectory.h"

namespace Tarni::Testing
{
namespace
{
constexpr const char* TITLE = "Tarni Spark ODBC Driver Configuration";

class DriverConfigTerminalTest : public ::testing::Test
{
protected:
    void SetUp() override { std::filesystem::create_directories(m_folder / "config"); }

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
        EXPECT_EQ(TempDirectory::ReadFile(m_folder / "stty-before.txt"),
                  TempDirectory::ReadFile(m_folder / "stty-after.txt"));
        const std::string screen = m_session->Screen();
        EXPECT_NE(screen.find("BEFORE-RUN"), std::string::npos) << screen;
        EXPECT_EQ(screen.find(TITLE), std::string::npos) << screen;
    }

    void FocusFieldOf(const std::string& in_label)
    {
        EXPECT_TRUE(m_session->FocusField(in_label)) << in_label << " never took the focus:\n" << m_session->Screen();
    }
    void FocusButton(const std::string& in_label)
    {
        EXPECT_TRUE(m_session->FocusStatus(" " + in_label)) << in_label << " never took the focus:\n"
                                                            << m_session->Screen();
    }

    /// Tabs to the button and presses Enter.
    void PressButton(const std::string& in_label)
    {
        FocusButton(in_label);
        m_session->Key("Enter");
    }

    /// Waits until the screen shows the text; a failure shows the screen.
    bool Shown(const std::string& in_text)
    {
        if (m_session->WaitForText(in_text))
        {
            return true;
        }
        ADD_FAILURE() << "\"" << in_text << "\" never appeared:\n" << m_session->Screen();
        return false;
    }

    /// Waits until the text has left the screen (its dialog or list closed).
    bool Gone(const std::string& in_text)
    {
        if (m_session->WaitFor([&](const std::string& s) { return s.find(in_text) == std::string::npos; }))
        {
            return true;
        }
        ADD_FAILURE() << "\"" << in_text << "\" stayed:\n" << m_session->Screen();
        return false;
    }

    std::string Ini() const { return TempDirectory::ReadFile(m_folder / "odbc.ini"); }

    /// The INI file holds each of the texts.
    void ExpectIniHas(const std::vector<std::string>& in_texts) const
    {
        const std::string ini = Ini();
        for (const std::string& text : in_texts)
        {
            EXPECT_NE(ini.find(text), std::string::npos) << text << "\n" << ini;
        }
    }
    /// The INI file holds none of the texts (a plain secret, say).
    void ExpectIniLacks(const std::vector<std::string>& in_texts) const
    {
        const std::string ini = Ini();
        for (const std::string& text : in_texts)
        {
            EXPECT_EQ(ini.find(text), std::string::npos) << text << "\n" << ini;
        }
    }

    TempDirectory m_dir;
    const std::filesystem::path m_folder = m_dir.Path();
    std::unique_ptr<TmuxSession> m_session;  // ends before the folder goes
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
    EXPECT_NE(m_session->RowOf(TITLE), -1);
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
    ExpectIniHas({"UID=bob smith\n", "DelegationUID=proxy-user\n", "SparkServerType=3\n"});
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, PasswordOptionsChooseTheScopeWithTheKeyboardAndShowItAgain)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n");
    FocusFieldOf("Password:");
    m_session->Type("s3cret");
    ASSERT_TRUE(m_session->WaitForText("[******"));
    EXPECT_EQ(m_session->Screen().find("s3cret"), std::string::npos);

    // Cancel leaves the choice as it was.
    PressButton("Password Options...");
    ASSERT_TRUE(Shown("All Users of this Machine"));
    const std::string before = m_session->LineWith("Current User Only") + m_session->LineWith("All Users");
    m_session->Key("Down");
    m_session->Key("Space");
    ASSERT_TRUE(Shown("(*) All Users of this Machine"));
    m_session->Key("Escape");
    ASSERT_TRUE(Gone("All Users of"));
    m_session->Key("Enter");  // the button still has the focus
    ASSERT_TRUE(m_session->WaitForText("All Users of this Machine"));
    EXPECT_EQ(m_session->LineWith("Current User Only") + m_session->LineWith("All Users"), before);

    // Tab leaves the group of radio buttons for OK; Shift-Tab comes back to it.
    m_session->Key("Tab");
    ASSERT_TRUE(m_session->WaitFor(
        [](const std::string& s) { return TmuxSession::StatusLine(s).rfind(" OK ", 0) == 0; }))
        << m_session->Screen();
    m_session->Key("BTab");
    // OK keeps the choice: opened again, the dialog shows it.
    m_session->Key("Down");
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("(*) All Users of this Machine"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("All Users of"));
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("(*) All Users of this Machine"));
    EXPECT_NE(m_session->LineWith("( ) Current User Only"), "");
    m_session->Key("Escape");
    ASSERT_TRUE(Gone("All Users of"));
    m_session->Key("Escape");  // Cancel of the main dialog stores nothing at all
    EXPECT_EQ(Finish(), 0);
    EXPECT_EQ(Ini().find("PWD"), std::string::npos);
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, AStoredPasswordThatCannotBeRecoveredSurvivesOkUntilANewOneIsTyped)
{
    // Protected for a user whose key this one does not have.
    const std::string stored = "AES256_USER:" + std::string(120, 'A');
    const std::string ini = "[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\nEncryptedPWD=" + stored + "\n";
    Start(ini);
    ASSERT_TRUE(Shown("Stored Credentials Not Recovered"));
    EXPECT_NE(m_session->Screen().find("EncryptedPWD"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Not Recovered"));
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    EXPECT_NE(Ini().find("EncryptedPWD=" + stored + "\n"), std::string::npos) << Ini();

    // Typing a password replaces it, protected.
    m_session.reset();
    Start(Ini());
    ASSERT_TRUE(m_session->WaitForText("Stored Credentials Not Recovered"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Not Recovered"));
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

TEST_F(DriverConfigTerminalTest, ZooKeeperOkGreysOutWhileTheNamespaceIsEmpty)
{
    Start("[Driver]\nSparkServerType=3\nServiceDiscoveryMode=ZooKeeper\nZKNamespace=ns1\n",
          "supported-service-discovery-modes=ZooKeeper,AOSS\n");
    PressButton("Service Discovery Options...");
    ASSERT_TRUE(Shown("ZooKeeper Namespace:"));
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
    ASSERT_TRUE(Gone("ZooKeeper Namespace:"));
    // Escape in the dialog keeps the namespace: open it again and cancel.
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("ZooKeeper Namespace:"));
    EXPECT_NE(m_session->LineWith("ZooKeeper Namespace:").find("[prod"), std::string::npos);
    m_session->Key("C-u");
    m_session->Key("Escape");
    ASSERT_TRUE(Gone("ZooKeeper Namespace:"));
    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    EXPECT_NE(Ini().find("ZKNamespace=prod\n"), std::string::npos) << Ini();
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, ADropDownListChoosesWithTheKeyboardAndTheDialogFollowsAtOnce)
{
    const std::string ini = "[Driver]\nSparkServerType=3\n";
    Start(ini, "supported-service-discovery-modes=ZooKeeper,AOSS\n");
    // The first drop-down has the focus; the next one is Service Discovery Mode.
    ASSERT_EQ(TmuxSession::StatusLine(m_session->Screen()).rfind(" Space: open list", 0), 0u) << m_session->Screen();
    m_session->Key("Tab");
    ASSERT_TRUE(m_session->FocusStatus(" Space: open list"));
    auto optionsDim = [this]() {
        return m_session->LineWith("Service Discovery Op", true).find("\x1b[2m<Service") != std::string::npos;
    };
    EXPECT_TRUE(optionsDim()) << m_session->LineWith("Service Discovery Op", true);

    m_session->Key("Space");
    ASSERT_TRUE(Shown("AOSS"));
    m_session->Key("Down");
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("AOSS"));
    EXPECT_NE(m_session->LineWith("Service Discovery Mode:").find("[ZooKeeper"), std::string::npos);
    EXPECT_FALSE(optionsDim()) << "CBN_SELCHANGE reached the dialog, which enabled the options";

    // Escape closes the list without a choice, also after moving in it.
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("AOSS"));
    m_session->Key("a");
    m_session->Key("Escape");
    ASSERT_TRUE(Gone("AOSS"));
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

TEST_F(DriverConfigTerminalTest, TheProxyIsEnteredWithTheKeyboardAndStoredProtected)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n");
    PressButton("Proxy Options...");
    ASSERT_TRUE(Shown("[ ] Use Proxy"));
    // Alt plus the underlined letter: the switch, then each field by its label.
    m_session->Key("M-x");
    ASSERT_TRUE(Shown("[x] Use Proxy"));
    m_session->Key("M-h");
    m_session->Type("proxy.corp");
    m_session->Key("M-o");
    m_session->Type("80a80");  // digits only: the letter is refused
    m_session->Key("M-n");
    m_session->Type("bob");
    m_session->Key("M-w");
    m_session->Type("pr0xy-pw");
    ASSERT_TRUE(Shown("[********"));
    EXPECT_EQ(m_session->Screen().find("pr0xy-pw"), std::string::npos);
    EXPECT_NE(m_session->LineWith("[8080 "), "") << m_session->Screen();

    PressButton("Password Options...");
    ASSERT_TRUE(Shown("All Users of this Machine"));
    m_session->Key("Space");  // the focus starts on "Current User Only"
    ASSERT_TRUE(Shown("(*) Current User Only"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("All Users of"));
    PressButton("OK");
    ASSERT_TRUE(Gone("HTTP Proxy Options"));
    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    ExpectIniHas({"UseProxy=1\n", "ProxyHost=proxy.corp\n", "ProxyPort=8080\n", "ProxyUID=bob\n",
                  "ProxyEncryptedPWD="});
    ExpectIniLacks({"ProxyPWD=", "pr0xy-pw"});

    // Unchecked, OK writes only the switch and keeps host and port.
    m_session.reset();
    Start(Ini());
    PressButton("Proxy Options...");
    ASSERT_TRUE(Shown("[x] Use Proxy"));
    m_session->Key("M-x");
    ASSERT_TRUE(m_session->WaitForText("[ ] Use Proxy"));
    PressButton("OK");
    ASSERT_TRUE(Gone("HTTP Proxy Options"));
    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    ExpectIniHas({"UseProxy=0\n", "ProxyHost=proxy.corp\n", "ProxyPort=8080\n", "ProxyUID=bob\n"});
}

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
}  // namespace

TEST_F(DriverConfigTerminalTest, AServerSidePropertyIsAddedAndEditedThreeDialogsDeep)
{
    Start("[Driver]\nSparkServerType=3\n");
    PressButton("Advanced Options...");
    ASSERT_TRUE(Shown("Rows fetched per block:"));
    PressButton("Server Side Properties");
    ASSERT_TRUE(Shown("Convert Key Name to Lower Case"));
    EXPECT_NE(m_session->LineWith("< Edit >", true).find("\x1b[2m"), std::string::npos) << "Edit is dim without a selection";

    PressButton("Add...");
    ASSERT_TRUE(Shown("Key:"));
    m_session->Type("spark.sql.shuffle.partitions");
    m_session->Key("Tab");
    m_session->Type("8 = eight é");
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("spark.sql.shuffle.partitions=8 = eight é"));

    // The same key in other case is a duplicate; Cancel gives up the addition.
    m_session->Key("Enter");  // Add still has the focus
    ASSERT_TRUE(m_session->WaitForText("Key:"));
    m_session->Type("SPARK.SQL.SHUFFLE.PARTITIONS");
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("Duplicate key detected"));
    m_session->Key("Escape");
    ASSERT_TRUE(Gone("Duplicate key"));
    ASSERT_TRUE(Gone("Key:"));

    // Down selects the entry, Enter on it edits (the double click).
    ASSERT_TRUE(m_session->FocusStatus(" Up/Down: select"));
    m_session->Key("Down");
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("Key:"));
    EXPECT_NE(m_session->LineWith("Key:").find("[spark.sql.shuffle.partitions"), std::string::npos);
    m_session->Key("Tab");
    m_session->Key("C-u");
    m_session->Type("16");
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("spark.sql.shuffle.partitions=16"));

    PressButton("OK");
    ASSERT_TRUE(Gone("Convert Key Name"));
    PressButton("OK");
    ASSERT_TRUE(Gone("Rows fetched per block"));
    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    EXPECT_NE(Ini().find("\nSSP_spark.sql.shuffle.partitions=16\n"), std::string::npos) << Ini();
    EXPECT_NE(ShowConfiguration(m_folder / "odbc.ini").find("\nSSP_spark.sql.shuffle.partitions=16\n"),
              std::string::npos);
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, AnHttpHeaderWithAnEmptyValueIsSavedWithThePath)
{
    Start("[Driver]\nSparkServerType=3\nThriftTransport=2\n");
    PressButton("HTTP Options...");
    ASSERT_TRUE(Shown("Custom HTTP Headers"));
    FocusFieldOf("HTTP Path:");
    m_session->Type("cliservice");
    PressButton("Add...");
    ASSERT_TRUE(m_session->WaitForText("Key:"));
    m_session->Type("X-Trace");
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("X-Trace="));
    PressButton("OK");
    ASSERT_TRUE(Gone("Custom HTTP Headers"));
    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    ExpectIniHas({"\nhttp.header.X-Trace=\n", "\nHTTPPath=cliservice\n"});
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, DfiAndSamlOptionsOfTheDfiServerTypeWithTheKeyboard)
{
    std::ofstream(m_folder / "oci-config") << "[DEFAULT]\n";
    const std::string configFile = (m_folder / "oci-config").string();
    Start("[Driver]\nSparkServerType=4\nAuthMech=3\nThriftTransport=2\n");
    PressButton("DFI Options...");
    ASSERT_TRUE(Shown("OCI Config File:"));

    // A file that does not exist is refused; the dialog keeps what was typed.
    FocusFieldOf("OCI Config File:");
    m_session->Type(configFile + ".typo");
    FocusFieldOf("OCI Profile:");
    m_session->Type("analytics");
    FocusFieldOf("Key File Password:");
    m_session->Type("k3y-pass");
    ASSERT_TRUE(m_session->WaitForText("[********"));
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("DSN Configuration Error"));
    EXPECT_NE(m_session->Screen().find("DFI Options: the OCI Config File"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Configuration Error"));
    EXPECT_NE(m_session->LineWith("OCI Profile:").find("[analytics"), std::string::npos) << m_session->Screen();

    FocusFieldOf("OCI Config File:");
    m_session->Key("C-u");
    m_session->Type(configFile);
    PressButton("Password Options...");
    ASSERT_TRUE(Shown("All Users of this Machine"));
    m_session->Key("Down");
    m_session->Key("Space");
    ASSERT_TRUE(m_session->WaitForText("(*) All Users of this Machine"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("All Users of"));
    PressButton("OK");
    ASSERT_TRUE(Gone("OCI Profile:"));

    // SAML Options: the flow is fixed on "browser".
    PressButton("SAML Options...");
    ASSERT_TRUE(Shown("Enable Auth Cookie Caching"));
    EXPECT_NE(m_session->LineWith("Authentication Flow:").find("[browser"), std::string::npos) << m_session->Screen();
    // The disabled flow list takes no focus: the first check box has it, Tab goes to the second.
    m_session->Key("Tab");
    m_session->Key("Space");
    ASSERT_TRUE(Shown("[x] Enable Auth Cookie Caching"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Cookie Caching"));

    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    ExpectIniHas({"OCIConfigFile=" + configFile + "\n", "OCIProfile=analytics\n", "EnableSamlCookieCaching=1\n",
                  "EncryptedKeyFilePassword="});
    ExpectIniLacks({"keyFilePassword=", "k3y-pass"});
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, SslAndAossOptionsWithTheKeyboardReachTheStore)
{
    Start("[Driver]\nSparkServerType=3\nServiceDiscoveryMode=AOSS\nSSL=0\nUseSystemTrustStore=0\nMin_TLS=1.0\n",
          "supported-service-discovery-modes=ZooKeeper,AOSS\n");
    const std::string caFile = (m_folder / "ca.pem").string();
    std::ofstream(caFile) << "-----BEGIN CERTIFICATE-----\n";

    // SSL Options: the focus starts on "Enable SSL".
    PressButton("SSL Options...");
    ASSERT_TRUE(Shown("[ ] Enable SSL"));
    EXPECT_NE(m_session->Screen().find("Client Certificate File:"), std::string::npos) << "the two-way variant";
    m_session->Key("Space");
    ASSERT_TRUE(Shown("[x] Enable SSL"));

    // Browse: the path prompt takes an existing file only.
    PressButton("Browse...");
    ASSERT_TRUE(Shown("Tab: complete"));
    m_session->Key("C-u");
    m_session->Type((m_folder / "missing.pem").string());
    m_session->Key("Enter");
    ASSERT_TRUE(Shown("The file does not exist."));
    m_session->Key("C-u");
    m_session->Type(caFile);
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Tab: complete"));

    // Minimum TLS Version: from 1.0 two entries down.
    ASSERT_TRUE(m_session->FocusStatus(" Space: open list"));
    EXPECT_NE(m_session->LineWith("Minimum TLS Version:").find("[1.0"), std::string::npos) << m_session->Screen();
    m_session->Key("Space");
    ASSERT_TRUE(Shown("1.1"));
    m_session->Key("Down");
    m_session->Key("Down");
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("1.1"));
    EXPECT_NE(m_session->LineWith("Minimum TLS Version:").find("[1.2"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");  // OK, the default button
    ASSERT_TRUE(Gone("Enable SSL"));

    // AOSS Options: OK stays dim until user name and password are typed.
    PressButton("Service Discovery Options...");
    ASSERT_TRUE(Shown("Status Endpoint Authentication:"));
    m_session->Key("Space");
    ASSERT_TRUE(Shown("User Name and Password"));
    m_session->Key("Down");
    m_session->Key("Enter");
    auto okDim = [this]() { return m_session->LineWith("<< OK >>", true).find("\x1b[2m<< OK") != std::string::npos; };
    ASSERT_TRUE(m_session->WaitFor([&](const std::string&) { return okDim(); }, true)) << m_session->Screen(true);
    m_session->Key("Tab");
    m_session->Type("watcher");
    m_session->Key("Tab");
    m_session->Type("aoss-s3cret");
    ASSERT_TRUE(Shown("[***********"));
    EXPECT_EQ(m_session->Screen().find("aoss-s3cret"), std::string::npos);
    EXPECT_FALSE(okDim());
    PressButton("Password Options...");
    ASSERT_TRUE(Shown("Current User Only"));
    m_session->Key("Space");
    ASSERT_TRUE(Shown("(*) Current User Only"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Current User Only"));
    PressButton("OK");
    ASSERT_TRUE(Gone("Status Endpoint Authentication:"));

    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    ExpectIniHas({"SSL=1\n", "TrustedCerts=" + caFile + "\n", "Min_TLS=1.2\n", "AOSS_AuthMech=3\n",
                  "AOSS_UID=watcher\n", "AOSS_EncryptedPWD="});
    ExpectIniLacks({"AOSS_PWD", "aoss-s3cret"});
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, LoggingOptionsTakeALevelAFolderAndLimits)
{
    std::filesystem::create_directories(m_folder / "logs");
    Start("[Driver]\nSparkServerType=3\n");
    PressButton("Logging Options...");
    ASSERT_TRUE(Shown("Logging Options"));
    ASSERT_TRUE(m_session->WaitForText("Max Number Files:"));
    // No level stored: LOG_OFF, with the folder and the limits dim.
    EXPECT_NE(m_session->LineWith("Log Level:").find("[LOG_OFF"), std::string::npos) << m_session->Screen();
    EXPECT_NE(m_session->LineWith("Browse", true).find("\x1b[2m"), std::string::npos);

    // The level list has the focus: LOG_DEBUG is five entries down.
    m_session->Key("Space");
    ASSERT_TRUE(Shown("LOG_TRACE"));
    for (int i = 0; i < 5; ++i)
    {
        m_session->Key("Down");
    }
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("LOG_TRACE"));
    EXPECT_NE(m_session->LineWith("Log Level:").find("[LOG_DEBUG"), std::string::npos) << m_session->Screen();

    // Browse: the folder prompt completes folders only and takes one.
    PressButton("Browse...");
    ASSERT_TRUE(Shown("Choose log file target directory."));
    m_session->Key("C-u");
    m_session->Type("lo");
    m_session->Key("Tab");
    ASSERT_TRUE(Shown("logs/"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Choose log file target directory."));
    EXPECT_NE(m_session->LineWith("Log Path:").find("logs"), std::string::npos) << m_session->Screen();

    FocusFieldOf("Max Number Files:");
    m_session->Type("7");
    FocusFieldOf("Max File Size (MB):");
    m_session->Type("12");
    m_session->Key("Enter");  // OK, the default button
    ASSERT_TRUE(Gone("Max Number Files:"));
    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    const std::string logs = (std::filesystem::canonical(m_folder) / "logs").string();
    ExpectIniHas({"LogLevel=5\n", "LogPath=" + logs + "\n", "LogFileCount=7\n", "LogFileSize=12582912\n"});
    ExpectTerminalRestored();
}

TEST_F(DriverConfigTerminalTest, ExportAndImportThroughThePathPrompts)
{
    std::filesystem::create_directories(m_folder / "Papers");
    std::ofstream(m_folder / "config" / "user-dirs.dirs") << "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n";
    std::ofstream(m_folder / "Papers" / "other.sdc") << "SparkServerType=3\r\nAuthMech=3\r\nUID=bob\r\n";
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\nLogLevel=4\n");
    PressButton("Logging Options...");
    ASSERT_TRUE(Shown("Max Number Files:"));

    // Export: the name offered is backup.sdc in the documents folder.
    PressButton("Export Configuration...");
    ASSERT_TRUE(Shown("Choose Export Target File"));
    EXPECT_NE(m_session->Screen().find("DSN Definition (*.sdc)"), std::string::npos) << m_session->Screen();
    EXPECT_NE(m_session->Screen().find("Papers/backup.sdc"), std::string::npos) << m_session->Screen();
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Choose Export"));
    const std::string exported = TempDirectory::ReadFile(m_folder / "Papers" / "backup.sdc");
    EXPECT_NE(exported.find("\nUID=alice\n"), std::string::npos) << exported;
    EXPECT_EQ(exported.find("LogLevel"), std::string::npos) << exported;

    // Import another file: the main dialog shows what it brought.
    PressButton("Import Configuration...");
    ASSERT_TRUE(Shown("Choose Import Target File"));
    m_session->Key("C-u");
    m_session->Type("Papers/oth");
    m_session->Key("Tab");
    ASSERT_TRUE(Shown("other.sdc"));
    m_session->Key("Enter");
    ASSERT_TRUE(Gone("Choose Import"));
    m_session->Key("Escape");  // the logging fields are as they were; the import stays
    ASSERT_TRUE(Gone("Max Number Files:"));
    ASSERT_TRUE(Shown("[bob"));
    PressButton("OK");
    EXPECT_EQ(Finish(), 1);
    ExpectIniHas({"UID=bob\n", "LogLevel=4\n"});
    ExpectTerminalRestored();
}
}  // namespace Tarni::Testing
