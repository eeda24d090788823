// Change reports, --check, JSON output and diff for a data source, through
// the installer's real store: odbc.ini through unixODBC on Linux, the
// registry through Wine's installer under Wine.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>

#ifdef _WIN32
#include <windows.h>

#include "common/ProductSettingsFixture.h"
#else
#include <unistd.h>

#include "common/OdbcInstallerFixture.h"
#endif

#include "programs/ConfigCliFixture.h"

using namespace Tarni;
using Support::StringConverter;

namespace
{
#ifdef _WIN32
using InstallerFixture = Testing::ProductSettingsFixture;
#else
using InstallerFixture = Testing::OdbcInstallerFixture;
#endif

// The data sources' store holds the settings: no --ini.
class DsnFleetCommands : public Testing::ConfigCliFixture<InstallerFixture>
{
protected:
    void SetUp() override
    {
        ConfigCliFixture::SetUp();
        m_ini.clear();
#ifdef _WIN32
        const auto process = static_cast<unsigned long>(::GetCurrentProcessId());
#else
        const auto process = static_cast<unsigned long>(::getpid());
#endif
        // Names of their own: under Wine the registry is shared by the
        // tests, which CTest runs in parallel processes, and unixODBC keeps
        // what it read of a user file for the rest of the process.
        static int test = 0;
        m_dsn = "Fleet" + std::to_string(process) + "-" + std::to_string(++test);
        m_driver = "Fleet DSN " + m_dsn;
        UseProductSettings("vendor-name=Tarni Test\ndriver-name=" + m_driver + "\n");
        Run({"dsn", "remove", m_dsn});
    }
    void TearDown() override
    {
        Run({"dsn", "remove", m_dsn});
        ConfigCliFixture::TearDown();
    }
    /// Runs a command on the fixture's data source.
    int RunOn(std::vector<std::string> in_arguments, const std::string& in_input = "")
    {
        in_arguments.insert(in_arguments.begin(), {"--dsn", m_dsn});
        return Run(in_arguments, in_input);
    }
    /// What a command on the data source that must succeed prints.
    std::string Out(const std::vector<std::string>& in_arguments, const std::string& in_input = "")
    {
        EXPECT_EQ(0, RunOn(in_arguments, in_input)) << in_arguments[0] << ": " << m_err.str();
        return m_out.str();
    }
    /// A data source with these settings; the report of its creation.
    nlohmann::json Add(std::vector<std::string> in_settings)
    {
        in_settings.insert(in_settings.begin(), {"--json", "dsn", "add", m_dsn});
        EXPECT_EQ(0, Run(in_settings)) << m_err.str();
        return Parse(m_out.str());
    }
    /// The data source's stored entries and when its store was last
    /// written: the user file's bytes and modification time, or the
    /// registry key's values and write time.
    std::string Fingerprint() const
    {
#ifdef _WIN32
        std::string print;
        for (const std::wstring& path : {L"Software\\ODBC\\ODBC.INI\\" + Wide(m_dsn),
                                         std::wstring(L"Software\\ODBC\\ODBC.INI\\ODBC Data Sources")})
        {
            HKEY key = nullptr;
            if (::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) continue;
            FILETIME written{};
            ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, &written);
            for (DWORD index = 0;; ++index)
            {
                wchar_t name[256] = {};
                wchar_t data[4096] = {};
                DWORD nameLength = 256, dataBytes = sizeof(data);
                if (::RegEnumValueW(key, index, name, &nameLength, nullptr, nullptr, reinterpret_cast<BYTE*>(data),
                                    &dataBytes) != ERROR_SUCCESS)
                    break;
                print += StringConverter::ToUtf8(reinterpret_cast<const char16_t*>(name)) + "=" +
                         StringConverter::ToUtf8(reinterpret_cast<const char16_t*>(data)) + "\n";
            }
            print += std::to_string(written.dwHighDateTime) + ":" + std::to_string(written.dwLowDateTime) + "\n";
            ::RegCloseKey(key);
        }
        return print;
#else
        if (!std::filesystem::exists(UserIni())) return {};
        return Read(UserIni()) + "@" +
               std::to_string(std::filesystem::last_write_time(UserIni()).time_since_epoch().count());
#endif
    }
    /// Moves the file's modification time back, so a rewrite would show
    /// even within the clock's resolution.
    void Age()
    {
#ifndef _WIN32
        if (std::filesystem::exists(UserIni()))
            std::filesystem::last_write_time(UserIni(),
                                             std::filesystem::last_write_time(UserIni()) - std::chrono::hours(1));
#else
        // Registry write times are kept to 100 ns; let the clock move on.
        ::Sleep(20);
#endif
    }
#ifdef _WIN32
    static std::wstring Wide(const std::string& in_text)
    {
        return std::wstring(in_text.begin(), in_text.end());
    }
#endif
    static nlohmann::json Parse(const std::string& in_text)
    {
        return nlohmann::json::parse(in_text);
    }

    std::string m_dsn;
    std::string m_driver;
};
}  // namespace

TEST_F(DsnFleetCommands, SetOfTheStoredValueWritesNothingAndSaysUnchanged)
{
    const auto added = Add({"Host=h"});
    EXPECT_EQ(true, added["changed"]);
    EXPECT_NE(added["keys"].end(), std::find(added["keys"].begin(), added["keys"].end(), "Host")) << added;

    EXPECT_EQ("changed: HTTPPath, SocketTimeout\n", Out({"set", "HTTPPath=sales", "SocketTimeout=61"}));
    Age();
    const std::string stored = Fingerprint();
    EXPECT_EQ("unchanged\n", Out({"set", "SocketTimeout=61", "HTTPPath=sales"}));
    EXPECT_EQ("unchanged\n", Out({"set", "HTTPPath=sales"}));
    EXPECT_EQ(stored, Fingerprint());

    EXPECT_EQ(Parse(R"({"changed": true, "keys": ["Port"]})"),
              Parse(Out({"set", "HTTPPath=sales", "Port=10001", "--json"})));
    EXPECT_EQ(Parse(R"({"changed": false, "keys": []})"), Parse(Out({"--json", "unset", "SSP_absent"})));
    EXPECT_EQ("changed: HTTPPath\n", Out({"unset", "HTTPPath"}));
}

TEST_F(DsnFleetCommands, SetSecretComparesWithTheRecoveredSecret)
{
    Add({"Host=h"});
    EXPECT_EQ("changed: PWD\n", Out({"set-secret", "PWD"}, "first secret\n"));
    Age();
    const std::string stored = Fingerprint();
    EXPECT_EQ("unchanged\n", Out({"set-secret", "PWD"}, "first secret\n"));
    EXPECT_EQ(stored, Fingerprint());

    EXPECT_EQ(Parse(R"({"changed": true, "keys": ["PWD"]})"),
              Parse(Out({"set-secret", "PWD", "--json"}, "second secret\n")));
    // The same secret for every user of the machine is stored differently.
    EXPECT_EQ("changed: PWD\n", Out({"set-secret", "PWD", "--scope", "machine"}, "second secret\n"));
    EXPECT_EQ("unchanged\n", Out({"set-secret", "PWD", "--scope", "machine"}, "second secret\n"));
    EXPECT_EQ(std::string::npos, Fingerprint().find("secret"));
}

TEST_F(DsnFleetCommands, CheckWritesNothingAndReportsWhatTheRealRunThenChanges)
{
    const std::string file = (m_dir / "import.sdc").string();
    Testing::TempDirectory::WriteFile(file, "Host=i\nHTTPPath=imported\nSSP_b=2\n");
    struct Step
    {
        std::vector<std::string> arguments;
        std::string input;
        std::string refusal;  ///< what the error names when the command is refused
    };
    const Step steps[] = {
        {{"dsn", "add", m_dsn, "Host=h", "SSP_a=1"}, "", ""},
        {{"--dsn", m_dsn, "set", "Port=443", "HDFSUser=someone"}, "", ""},
        {{"--dsn", m_dsn, "unset", "SSP_a", "Port"}, "", ""},
        {{"--dsn", m_dsn, "set-secret", "Auth_Client_Secret"}, "client secret\n", ""},
        {{"--dsn", m_dsn, "import", file}, "", ""},
        {{"--dsn", m_dsn, "import", file}, "", ""},
        {{"--dsn", m_dsn, "set", "HTTPPath=x", "SocketTimeout=soon"}, "", "\"soon\""},
        {{"--dsn", m_dsn, "--json", "set", "SocketTimeout=soon"}, "", "\"soon\""},
        {{"dsn", "add", m_dsn}, "", "exists already"},
        {{"--dsn", "Nowhere", "--json", "set", "Port=1"}, "", "\"Nowhere\""},
        {{"dsn", "remove", m_dsn}, "", ""},
    };
    for (const Step& step : steps)
    {
        const std::string what = step.arguments[0] + " " + step.arguments[2];
        const std::string before = Fingerprint();
        std::vector<std::string> checked = step.arguments;
        checked.push_back("--check");
        const int result = Run(checked, step.input);
        const std::string predicted = m_out.str();
        EXPECT_EQ(before, Fingerprint()) << what;
        if (!step.refusal.empty())
        {
            // Refused: exit 1 with the refusal named (as JSON under --json), nothing written.
            for (const auto& arguments : {checked, step.arguments})
            {
                EXPECT_EQ(1, Run(arguments, step.input)) << what;
                EXPECT_EQ("", m_out.str());
                const bool json = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
                const std::string error = json ? Parse(m_err.str())["error"].get<std::string>() : m_err.str();
                EXPECT_NE(std::string::npos, error.find(step.refusal)) << error;
                EXPECT_EQ(before, Fingerprint()) << what;
            }
            continue;
        }
        ASSERT_EQ(0, result) << what << m_err.str();
        ASSERT_EQ(0, Run(step.arguments, step.input)) << what << m_err.str();
        EXPECT_EQ(predicted, m_out.str()) << what;
    }
    EXPECT_NE(std::string::npos, m_out.str().find("Host")) << m_out.str();
    EXPECT_EQ(2, Run({"dsn", "list", "--check"}));
}

TEST_F(DsnFleetCommands, ShowGetAndListAsJsonCarryNoSecret)
{
    Add({"Host=h", "HDFSUser=Juergen \"J\"", "http.header.X-Q=\"quoted\" \\ back"});
    Out({"set-secret", "PWD"}, "hunter2-secret\n");
    Out({"set-secret", "ProxyPWD", "--scope", "machine"}, "proxy-secret\n");
    const std::string text = Out({"show", "--json"});
    EXPECT_EQ(std::string::npos, text.find("secret"));
    EXPECT_EQ(std::string::npos, text.find("AES256"));
    const auto shown = Parse(text);
    EXPECT_EQ(Parse(R"({"protected": true})"), shown["PWD"]);
    EXPECT_EQ(Parse(R"({"protected": true})"), shown["ProxyPWD"]);
    EXPECT_EQ("Juergen \"J\"", shown["HDFSUser"]);
    EXPECT_EQ("\"quoted\" \\ back", shown["http.header.X-Q"]);
    EXPECT_EQ("h", shown["Host"]);
    EXPECT_EQ(Parse(R"({"PWD": {"protected": true}})"), Parse(Out({"get", "pwd", "--json"})));

    EXPECT_EQ(1, RunOn({"get", "NoSuchKey", "--json"}));
    EXPECT_EQ("", m_out.str());
    EXPECT_NE(std::string::npos, Parse(m_err.str())["error"].get<std::string>().find("NoSuchKey"));
#ifndef _WIN32
    // (Wine's installer cannot list data sources.)
    ASSERT_EQ(0, Run({"dsn", "list", "--json"})) << m_err.str();
    EXPECT_EQ(
        Parse(R"({"dataSources": [{"name": ")" + m_dsn + R"(", "driver": ")" + m_driver + R"(", "system": false}]})"),
        Parse(m_out.str()));
#endif
}

TEST_F(DsnFleetCommands, DiffOfAFreshExportIsEmptyAndOtherwiseKeyByKey)
{
    Add({"Host=h", "HTTPPath=p", "SSP_a=1"});
    const std::string file = (m_dir / "export.sdc").string();
    Out({"export", file});
    const std::string stored = Fingerprint();
    EXPECT_EQ("", Out({"diff", file}));
    EXPECT_EQ(Parse(R"({"changed": false, "keys": [], "changes": []})"), Parse(Out({"diff", file, "--json"})));
    EXPECT_EQ(stored, Fingerprint());

    Out({"set", "HTTPPath=q", "SSP_b=2"});
    Out({"set-secret", "PWD"}, "pw-secret\n");
    const auto diff = Parse(Out({"diff", file, "--json"}));
    // In the order the save touches them, which for removals is the store's.
    EXPECT_EQ(Parse(R"({"key": "HTTPPath", "change": "~", "before": "q", "after": "p"})"), diff["changes"][0]);
    EXPECT_EQ(3u, diff["changes"].size()) << diff;
    const std::string text = Out({"diff", file});
    EXPECT_EQ(0u, text.find("~ HTTPPath=p (was q)\n")) << text;
    EXPECT_NE(std::string::npos, text.find("\n- SSP_b=2\n")) << text;
    EXPECT_NE(std::string::npos, text.find("\n- PWD\n")) << text;
    EXPECT_EQ(std::string::npos, text.find("pw-secret"));
}
