// HTTP Proxy Options in the Linux dialog program on the terminal host,
// driven through tmux in an 80x24 terminal with the keyboard only: the
// fields follow "Use Proxy", OK waits for host and port, Password Options
// chooses the scope, and the INI file ends up with host, port, user and only
// the protected password; unchecking later keeps host and port.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "TmuxSession.h"

namespace Tarni::Testing
{
namespace
{
constexpr const char* TITLE = "Tarni Spark ODBC Driver Configuration";
constexpr const char* PROXY_TITLE = "HTTP Proxy Options";

std::string LastLine(const std::string& in_screen)
{
    std::string trimmed = in_screen;
    while (!trimmed.empty() && trimmed.back() == '\n')
    {
        trimmed.pop_back();
    }
    return trimmed.substr(trimmed.rfind('\n') + 1);
}

class ProxyOptionsTerminalTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        m_folder = std::filesystem::temp_directory_path() /
                   ("tarni-proxy-terminal-" + std::to_string(::getpid()) + "-" + info->name());
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder / "config");
    }
    void TearDown() override
    {
        m_session.reset();
        std::filesystem::remove_all(m_folder);
    }

    void Start(const std::string& in_ini)
    {
        std::ofstream(m_folder / "odbc.ini", std::ios::binary) << in_ini;
        m_session = std::make_unique<TmuxSession>(
            m_folder.string(),
            "export SPARKINI=\"$PWD/odbc.ini\" XDG_CONFIG_HOME=\"$PWD/config\" HOME=\"$PWD\"\n"
            "'" + std::string(TARNI_DRIVER_CONFIG_EXE) + "'\n"
            "echo \"EXIT=$?\"\n"
            "echo RUN-DONE\n"
            "sleep 600\n");
        ASSERT_TRUE(m_session->WaitForText(TITLE)) << m_session->Screen();
    }

    int Finish()
    {
        EXPECT_TRUE(m_session->WaitForText("RUN-DONE")) << m_session->Screen();
        const std::string screen = m_session->Screen();
        const auto at = screen.find("EXIT=");
        return at == std::string::npos ? -1000 : std::stoi(screen.substr(at + 5));
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

    void OpenProxyOptions()
    {
        FocusButton("Proxy Options...");
        m_session->Key("Enter");
        ASSERT_TRUE(m_session->WaitForText(PROXY_TITLE)) << m_session->Screen();
    }

    void WaitUntilGone(const std::string& in_text)
    {
        ASSERT_TRUE(m_session->WaitFor([&](const std::string& s) { return s.find(in_text) == std::string::npos; }))
            << m_session->Screen();
    }

    std::string Ini() const
    {
        std::ifstream in(m_folder / "odbc.ini", std::ios::binary);
        std::ostringstream out;
        out << in.rdbuf();
        return out.str();
    }

    std::filesystem::path m_folder;
    std::unique_ptr<TmuxSession> m_session;
};
}  // namespace

TEST_F(ProxyOptionsTerminalTest, TheProxyIsEnteredWithTheKeyboardAndStoredProtected)
{
    Start("[Driver]\nSparkServerType=3\nAuthMech=3\nUID=alice\n");
    OpenProxyOptions();
    ASSERT_NE(m_session->LineWith("[ ] Use Proxy"), "") << m_session->Screen();

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
    EXPECT_NE(m_session->LineWith("[8080"), "") << m_session->Screen();

    FocusButton("Password Options...");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText("All Users of this Machine")) << m_session->Screen();
    m_session->Key("Space");  // the focus starts on "Current User Only"
    ASSERT_TRUE(m_session->WaitForText("(*) Current User Only")) << m_session->Screen();
    m_session->Key("Enter");
    WaitUntilGone("All Users of this Machine");

    FocusButton("OK");
    m_session->Key("Enter");
    WaitUntilGone(PROXY_TITLE);
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);

    const std::string ini = Ini();
    for (const char* line : {"UseProxy=1\n", "ProxyHost=proxy.corp\n", "ProxyPort=8080\n", "ProxyUID=bob\n",
                             "ProxyEncryptedPWD="})
    {
        EXPECT_NE(ini.find(line), std::string::npos) << line << "\n" << ini;
    }
    EXPECT_EQ(ini.find("ProxyPWD="), std::string::npos) << ini;
    EXPECT_EQ(ini.find("pr0xy-pw"), std::string::npos) << ini;
}

TEST_F(ProxyOptionsTerminalTest, OkGreysOutWithoutHostAndUncheckingKeepsHostAndPort)
{
    Start("[Driver]\nSparkServerType=3\nUseProxy=1\nProxyHost=old.corp\nProxyPort=3128\n");
    OpenProxyOptions();
    ASSERT_NE(m_session->LineWith("[x] Use Proxy"), "");
    ASSERT_NE(m_session->LineWith("[old.corp"), "");

    // Emptied host: OK cannot be pressed, Enter does nothing.
    m_session->Key("M-h");
    m_session->Key("C-u");
    m_session->Key("Enter");
    ASSERT_TRUE(m_session->WaitForText(PROXY_TITLE));
    EXPECT_TRUE(m_session->WaitFor([](const std::string& s) { return s.find("[old.corp") == std::string::npos; }));
    EXPECT_NE(m_session->Screen().find(PROXY_TITLE), std::string::npos) << "OK is disabled while the host is empty";

    // Unchecked, OK is back and writes only the switch.
    m_session->Key("M-x");
    ASSERT_TRUE(m_session->WaitForText("[ ] Use Proxy"));
    m_session->Key("Enter");
    WaitUntilGone(PROXY_TITLE);
    FocusButton("OK");
    m_session->Key("Enter");
    EXPECT_EQ(Finish(), 1);
    const std::string ini = Ini();
    EXPECT_NE(ini.find("UseProxy=0\n"), std::string::npos) << ini;
    EXPECT_NE(ini.find("ProxyHost=old.corp\n"), std::string::npos) << ini;
    EXPECT_NE(ini.find("ProxyPort=3128\n"), std::string::npos) << ini;
}
}  // namespace Tarni::Testing
