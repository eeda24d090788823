// What configuration management relies on: change reports, --check, JSON
// output and diff, against the platform's real store (the INI file on
// Linux, the registry under Wine).
#include <gtest/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>

#ifdef _WIN32
#include <windows.h>
#endif

#include "platform/SettingsStoreFactory.h"
#include "programs/ConfigCliFixture.h"

using namespace Tarni;
using Support::StringConverter;

namespace
{
class FleetCommands : public Testing::ConfigCliFixture<>
{
protected:
    void SetUp() override
    {
        ConfigCliFixture::SetUp();
        // A registry key of its own per test: CTest runs tests in parallel processes.
        UseProductSettings(std::string("vendor-name=Tarni Test\ndriver-name=Fleet ") +
                           ::testing::UnitTest::GetInstance()->current_test_info()->name() + "\n");
        m_location = DriverSupport::DSProductHelper::GetDriverStoreLocation(StringConverter::FromUtf8(m_ini.string()));
        m_store = Platform::SettingsStoreFactory::OpenDriverStore(m_location);
        Clear();
    }
    void TearDown() override
    {
        Clear();
        ConfigCliFixture::TearDown();
    }
    void Clear()
    {
        for (const auto& value : m_store->ReadAll()) m_store->DeleteValue(value.name);
    }
    /// The stored values, and when they were last written: the file's bytes
    /// and modification time, or the registry key's values and write time.
    std::string Fingerprint() const
    {
        std::string print;
        for (const auto& value : m_store->ReadAll())
            print += StringConverter::ToUtf8(value.name + u"=" + value.value) + "\n";
#ifdef _WIN32
        HKEY key = nullptr;
        FILETIME written{};
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, reinterpret_cast<const wchar_t*>(m_location.registryPath.c_str()), 0,
                          KEY_READ, &key) == ERROR_SUCCESS)
        {
            RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, &written);
            RegCloseKey(key);
        }
        print += std::to_string(written.dwHighDateTime) + ":" + std::to_string(written.dwLowDateTime);
#else
        if (std::filesystem::exists(m_ini))
        {
            print += Testing::TempDirectory::ReadFile(m_ini) + "@" +
                     std::to_string(std::filesystem::last_write_time(m_ini).time_since_epoch().count());
        }
#endif
        return print;
    }
    /// Moves the file's modification time back, so a rewrite would show
    /// even within the clock's resolution.
    void Age()
    {
        if (std::filesystem::exists(m_ini))
            std::filesystem::last_write_time(m_ini, std::filesystem::last_write_time(m_ini) - std::chrono::hours(1));
    }
    static nlohmann::json Parse(const std::string& in_text)
    {
        // One document: a second one or trailing text would fail here.
        return nlohmann::json::parse(in_text);
    }

    Platform::DriverStoreLocation m_location;
    std::unique_ptr<Platform::ISettingsStore> m_store;
};
}  // namespace

TEST_F(FleetCommands, SetOfTheStoredValueWritesNothingAndSaysUnchanged)
{
    ASSERT_EQ(0, Run({"set", "KrbRealm=EXAMPLE.COM", "SocketTimeout=60"})) << m_err.str();
    EXPECT_EQ(0u, m_out.str().rfind("changed: ", 0)) << m_out.str();
    Age();
    const std::string before = Fingerprint();
    for (int i = 0; i < 2; ++i)
    {
        ASSERT_EQ(0, Run({"set", "KrbRealm=EXAMPLE.COM", "SocketTimeout=60"})) << m_err.str();
        EXPECT_EQ("unchanged\n", m_out.str());
        EXPECT_EQ(before, Fingerprint());
    }
    ASSERT_EQ(0, Run({"set", "SocketTimeout=60", "KrbRealm=OTHER", "--json"}));
    EXPECT_EQ(Parse(R"({"changed": true, "keys": ["KrbRealm"]})"), Parse(m_out.str()));
    ASSERT_EQ(0, Run({"--json", "unset", "SSP_absent"}));
    EXPECT_EQ(Parse(R"({"changed": false, "keys": []})"), Parse(m_out.str()));
    ASSERT_EQ(0, Run({"unset", "KrbRealm"}));
    EXPECT_EQ("changed: KrbRealm\n", m_out.str());
}

TEST_F(FleetCommands, SetSecretComparesWithTheRecoveredSecret)
{
    ASSERT_EQ(0, Run({"set-secret", "PWD"}, "first secret\n")) << m_err.str();
    EXPECT_NE(std::string::npos, m_out.str().find("PWD"));
    EXPECT_EQ(std::string::npos, m_out.str().find("EncryptedPWD"));
    Age();
    const std::string before = Fingerprint();
    ASSERT_EQ(0, Run({"set-secret", "PWD"}, "first secret\n")) << m_err.str();
    EXPECT_EQ("unchanged\n", m_out.str());
    EXPECT_EQ(before, Fingerprint());

    ASSERT_EQ(0, Run({"set-secret", "PWD", "--json"}, "second secret\n")) << m_err.str();
    EXPECT_EQ(Parse(R"({"changed": true, "keys": ["PWD"]})"), Parse(m_out.str()));
    // The same secret for all users of the machine is stored differently.
    ASSERT_EQ(0, Run({"set-secret", "PWD", "--scope", "machine"}, "second secret\n"));
    EXPECT_EQ("changed: PWD\n", m_out.str());
    EXPECT_EQ(std::string::npos, Fingerprint().find("secret"));

    // A stored value that cannot be recovered is replaced, and that is a change.
    m_store->WriteValue(u"ProxyEncryptedPWD", u"AES256_USER:AAAA");
    ASSERT_EQ(0, Run({"set-secret", "ProxyPWD"}, "proxy secret\n"));
    EXPECT_EQ("changed: ProxyPWD\n", m_out.str());
}

TEST_F(FleetCommands, CheckWritesNothingAndReportsWhatTheRealRunThenChanges)
{
    ASSERT_EQ(0, Run({"set", "KrbRealm=R", "SSP_a=1", "http.header.X-A=1"}));
    const std::string file = std::filesystem::path(m_dir.Path() / "import.sdc").string();
    Testing::TempDirectory::WriteFile(file, "KrbRealm=Q\nSSP_b=2\n");
    const std::vector<std::pair<std::vector<std::string>, std::string>> commands = {
        {{"set", "KrbRealm=R", "SocketTimeout=7", "HDFSUser=J\xC3\xBCrgen"}, ""},
        {{"unset", "SSP_a", "SocketTimeout", "http.header.X-A"}, ""},
        {{"set-secret", "Auth_Client_Secret"}, "client secret\n"},
        {{"import", file}, ""},
        {{"import", file}, ""},
    };
    for (const auto& [arguments, input] : commands)
    {
        const std::string before = Fingerprint();
        std::vector<std::string> checked = arguments;
        checked.push_back("--check");
        ASSERT_EQ(0, Run(checked, input)) << arguments[0] << m_err.str();
        const std::string predicted = m_out.str();
        EXPECT_EQ(before, Fingerprint()) << arguments[0];
        ASSERT_EQ(0, Run(arguments, input)) << arguments[0] << m_err.str();
        EXPECT_EQ(predicted, m_out.str()) << arguments[0];
    }
    EXPECT_EQ("unchanged\n", m_out.str());

    // A value that would be refused: exit 1, the refusal named, nothing written.
    const std::string before = Fingerprint();
    EXPECT_EQ(1, Run({"--check", "set", "KrbRealm=X", "SocketTimeout=soon"}));
    EXPECT_NE(std::string::npos, m_err.str().find("SocketTimeout"));
    EXPECT_EQ("", m_out.str());
    EXPECT_EQ(1, Run({"set", "SocketTimeout=soon", "--json", "--check"}));
    const auto error = Parse(m_err.str());
    EXPECT_NE(std::string::npos, error["error"].get<std::string>().find("\"soon\""));
    EXPECT_EQ(1, error["exit"]);
    EXPECT_EQ(before, Fingerprint());
    EXPECT_EQ(2, Run({"--check", "show"}));
}

TEST_F(FleetCommands, ShowAndGetAsJsonCarryNoSecret)
{
    ASSERT_EQ(0, Run({"set", "HDFSUser=J\xC3\xBCrgen \xE6\x97\xA5", "http.header.X-Q=\"quoted\" \\ back"}));
    ASSERT_EQ(0, Run({"set-secret", "PWD"}, "hunter2-secret\n"));
    ASSERT_EQ(0, Run({"set-secret", "AOSS_PWD", "--scope", "machine"}, "aoss-secret\n"));
    // A refresh token the driver stored after an OAuth sign-in.
    ASSERT_EQ(0, Run({"set", "Auth_RefreshToken=refresh-secret"}));
    ASSERT_EQ(0, Run({"show", "--json"})) << m_err.str();
    const std::string text = m_out.str();
    EXPECT_EQ(std::string::npos, text.find("secret"));
    EXPECT_EQ(std::string::npos, text.find("AES256"));
    const auto shown = nlohmann::ordered_json::parse(text);
    EXPECT_EQ(nlohmann::ordered_json::parse(R"({"protected": true})"), shown["PWD"]);
    EXPECT_EQ(nlohmann::ordered_json::parse(R"({"protected": true})"), shown["AOSS_PWD"]);
    EXPECT_EQ(nlohmann::ordered_json::parse(R"({"protected": true})"), shown["Auth_RefreshToken"]);
    EXPECT_EQ("J\xC3\xBCrgen \xE6\x97\xA5", shown["HDFSUser"]);
    EXPECT_EQ("\"quoted\" \\ back", shown["http.header.X-Q"]);

    // The keys in the order of the plain show.
    ASSERT_EQ(0, Run({"show"}));
    std::istringstream lines(m_out.str());
    auto item = shown.items().begin();
    size_t count = 0;
    for (std::string line; std::getline(lines, line); ++item, ++count)
    {
        ASSERT_NE(shown.items().end(), item);
        EXPECT_EQ(line.substr(0, line.find('=')), item.key());
    }
    EXPECT_EQ(shown.size(), count);

    ASSERT_EQ(0, Run({"get", "pwd", "--json"}));
    EXPECT_EQ(Parse(R"({"PWD": {"protected": true}})"), Parse(m_out.str()));
    ASSERT_EQ(0, Run({"--json", "get", "HDFSUser"}));
    EXPECT_EQ(Parse(R"({"HDFSUser": "J\u00fcrgen \u65e5"})"), Parse(m_out.str()));
    EXPECT_EQ(1, Run({"get", "NoSuchKey", "--json"}));
    EXPECT_EQ("", m_out.str());
    EXPECT_NE(std::string::npos, Parse(m_err.str())["error"].get<std::string>().find("NoSuchKey"));
}

TEST_F(FleetCommands, DiffOfAFreshExportIsEmptyAndOtherwiseKeyByKey)
{
    ASSERT_EQ(0, Run({"set", "KrbRealm=R", "SSP_a=1", "HTTPPath=cliservice", "LogLevel=4"}));
    const std::string file = std::filesystem::path(m_dir.Path() / "export.sdc").string();
    ASSERT_EQ(0, Run({"export", file}));
    const std::string before = Fingerprint();
    ASSERT_EQ(0, Run({"diff", file})) << m_err.str();
    EXPECT_EQ("", m_out.str());
    ASSERT_EQ(0, Run({"diff", file, "--json"}));
    EXPECT_EQ(Parse(R"({"changed": false, "keys": [], "changes": []})"), Parse(m_out.str()));

    ASSERT_EQ(0, Run({"set", "KrbRealm=S", "SSP_b=2", "http.header.X-A=v"}));
    ASSERT_EQ(0, Run({"set-secret", "ProxyPWD"}, "proxy-secret\n"));
    ASSERT_EQ(0, Run({"diff", file}));
    EXPECT_EQ("~ KrbRealm=R (was S)\n- http.header.X-A=v\n- SSP_b=2\n- ProxyPWD\n", m_out.str());
    ASSERT_EQ(0, Run({"diff", "-", "--json"}, "SSP_b=3\nHTTPPath=cliservice\nKrbRealm=S\nSSP_a=1\n"));
    const auto diff = Parse(m_out.str());
    EXPECT_EQ(Parse(R"(["SSP_b", "http.header.X-A", "ProxyPWD"])"), diff["keys"]);
    EXPECT_EQ(Parse(R"({"key": "SSP_b", "change": "~", "before": "2", "after": "3"})"), diff["changes"][0]);
    EXPECT_EQ(Parse(R"({"key": "ProxyPWD", "change": "-", "protected": true})"), diff["changes"][2]);
    EXPECT_EQ(std::string::npos, m_out.str().find("proxy-secret"));
    EXPECT_EQ(2, Run({"diff"}));
}

TEST_F(FleetCommands, OutputThatCannotBeWrittenIsAnErrorWithoutAPartialDocument)
{
    ASSERT_EQ(0, Run({"set", "KrbRealm=R"}));
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"show"}, {"get", "Port"}, {"show", "--json"}, {"set", "KrbRealm=Q", "--json"},
          {"--check", "unset", "KrbRealm"}})
    {
        std::ostream closed(nullptr);  // every write fails, as on a full disk
        EXPECT_EQ(1, Run(arguments, "", &closed)) << arguments[0];
        EXPECT_NE(std::string::npos, m_err.str().find("cannot write to standard output")) << m_err.str();
    }
}
