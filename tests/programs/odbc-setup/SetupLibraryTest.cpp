// The setup library as unixODBC's installer reaches it: SQLConfigDataSource
// finds the driver's "Setup" entry in odbcinst.ini, loads the library and
// calls it, in a private installer environment.
#include <gtest/gtest.h>

#include <odbcinst.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "common/TempDirectory.h"

using Tarni::Testing::TempDirectory;

namespace
{
constexpr const char* DRIVER = "Tarni Spark ODBC Driver";

/// An attribute list from "KEY=VALUE" entries: each ends with a NUL, the list with a second.
std::string List(std::initializer_list<std::string> in_entries)
{
    std::string list;
    for (const std::string& entry : in_entries)
    {
        list += entry;
        list.push_back('\0');
    }
    list.push_back('\0');
    return list;
}

std::string Read(const std::filesystem::path& in_path)
{
    return std::filesystem::exists(in_path) ? TempDirectory::ReadFile(in_path) : std::string();
}
}  // namespace

class SetupLibrary : public ::testing::Test
{
protected:
    // unixODBC keeps the system folder it found first for the process: one for the suite.
    static void SetUpTestSuite() { s_system = new TempDirectory(); }
    static void TearDownTestSuite()
    {
        delete s_system;
        s_system = nullptr;
    }

    void SetUp() override
    {
        std::filesystem::create_directories(m_dir / "home");
        TempDirectory::WriteFile(System() / "odbcinst.ini", std::string("[") + DRIVER + "]\nDescription=Spark\n" +
                                                                 "Driver=libtarnisparkodbc.so\nSetup=" +
                                                                 TARNI_SETUP_LIBRARY + "\n");
        TempDirectory::WriteFile(System() / "odbc.ini", "");
        ::setenv("ODBCSYSINI", System().c_str(), 1);
        ::setenv("ODBCINI", UserIni().c_str(), 1);
        ::setenv("HOME", (m_dir / "home").c_str(), 1);
        ::setenv("SPARKINI", (m_dir / "sparkodbc.ini").c_str(), 1);
        ::unsetenv("XDG_CONFIG_HOME");
        SQLSetConfigMode(ODBC_USER_DSN);
    }

    bool Config(WORD in_request, const std::string& in_list)
    {
        return SQLConfigDataSource(nullptr, in_request, DRIVER, in_list.c_str()) != 0;
    }

    /// The installer's first error: its code and text.
    std::pair<DWORD, std::string> Error()
    {
        DWORD code = 0;
        char message[1024] = {};
        WORD length = 0;
        SQLInstallerError(1, &code, message, sizeof(message), &length);
        return {code, message};
    }

    std::string Query()
    {
        std::string output;
        FILE* pipe = ::popen("odbcinst -q -s 2>&1", "r");
        char buffer[256];
        while (pipe != nullptr && std::fgets(buffer, sizeof(buffer), pipe) != nullptr)
        {
            output += buffer;
        }
        if (pipe != nullptr)
        {
            ::pclose(pipe);
        }
        return output;
    }

    std::filesystem::path UserIni() const { return m_dir / "home/.odbc.ini"; }
    static std::filesystem::path System() { return s_system->Path(); }
    static TempDirectory* s_system;
    TempDirectory m_dir;
};

TempDirectory* SetupLibrary::s_system = nullptr;

TEST_F(SetupLibrary, AddConfigureAndRemoveWithoutAWindow)
{
    ASSERT_TRUE(Config(ODBC_ADD_DSN, List({"DSN=Lab", "Host=spark.lab", "Port=10002", "UID=bob",
                                           "PWD=hunter2-secret"})))
        << Error().second;
    EXPECT_NE(std::string::npos, Query().find("[Lab]"));
    std::string ini = Read(UserIni());
    EXPECT_NE(std::string::npos, ini.find("Host=spark.lab")) << ini;
    EXPECT_NE(std::string::npos, ini.find("UID=bob")) << ini;
    EXPECT_NE(std::string::npos, ini.find("EncryptedPWD=")) << ini;
    EXPECT_EQ(std::string::npos, ini.find("hunter2")) << ini;
    EXPECT_EQ(std::string::npos, ini.find("\nPWD=")) << ini;

    // Configure: the attributes given win, everything else stays, the secret too.
    ASSERT_TRUE(Config(ODBC_CONFIG_DSN, List({"DSN=Lab", "Port=10003"}))) << Error().second;
    ini = Read(UserIni());
    EXPECT_NE(std::string::npos, ini.find("Port=10003")) << ini;
    EXPECT_NE(std::string::npos, ini.find("UID=bob")) << ini;
    EXPECT_NE(std::string::npos, ini.find("EncryptedPWD=")) << ini;

    ASSERT_TRUE(Config(ODBC_REMOVE_DSN, List({"DSN=Lab"}))) << Error().second;
    EXPECT_EQ(std::string::npos, Query().find("[Lab]"));
    EXPECT_EQ(std::string::npos, Read(UserIni()).find("Lab"));
}

TEST_F(SetupLibrary, BadNamesAndMalformedListsAreRefusedWithTheirErrorCodes)
{
    for (const std::string& name : {std::string("DSN=a[b"), std::string("DSN="), "DSN=" + std::string(33, 'x')})
    {
        EXPECT_FALSE(Config(ODBC_ADD_DSN, List({name, "Host=h"}))) << name;
        const auto [code, text] = Error();
        EXPECT_EQ(static_cast<DWORD>(ODBC_ERROR_INVALID_NAME), code) << name;
        EXPECT_FALSE(text.empty());
    }
    EXPECT_FALSE(Config(ODBC_ADD_DSN, List({"DSN=Lab", "Host=h", "NoEquals"})));
    EXPECT_EQ(static_cast<DWORD>(ODBC_ERROR_INVALID_KEYWORD_VALUE), Error().first);
    EXPECT_FALSE(Config(ODBC_ADD_DSN, List({"DSN=Lab", "Port=ten"})));
    EXPECT_EQ(static_cast<DWORD>(ODBC_ERROR_INVALID_KEYWORD_VALUE), Error().first);
    EXPECT_FALSE(Config(ODBC_REMOVE_DSN, List({"DSN=Missing"})));
    EXPECT_EQ(static_cast<DWORD>(ODBC_ERROR_INVALID_NAME), Error().first);
    EXPECT_EQ(std::string::npos, Query().find("["));
    EXPECT_EQ(std::string::npos, Read(UserIni()).find("Lab"));
}

TEST_F(SetupLibrary, SystemDataSourcesAreWrittenInTheSystemModeWithMachineWideSecrets)
{
    // unixODBC sets the system mode for a system request and hands the library a plain one.
    ASSERT_TRUE(Config(ODBC_ADD_SYS_DSN, List({"DSN=Shared", "Host=h", "PWD=machine-secret"}))) << Error().second;
    const std::string system = Read(System() / "odbc.ini");
    EXPECT_NE(std::string::npos, system.find("[Shared]")) << system;
    EXPECT_NE(std::string::npos, system.find("EncryptedPWD=")) << system;
    EXPECT_EQ(std::string::npos, system.find("machine-secret")) << system;
    EXPECT_NE(std::string::npos, system.find("AES256_MACHINE:")) << system;
    EXPECT_EQ(std::string::npos, Read(UserIni()).find("Shared"));
    ASSERT_TRUE(Config(ODBC_REMOVE_SYS_DSN, List({"DSN=Shared"}))) << Error().second;
    EXPECT_EQ(std::string::npos, Read(System() / "odbc.ini").find("Shared"));
}

TEST_F(SetupLibrary, ExportsOnlyTheInstallerEntryPointsAndDriverRequestsNeedNothing)
{
    void* library = ::dlopen(TARNI_SETUP_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, library) << ::dlerror();
    for (const char* name : {"ConfigDSN", "ConfigDSNW", "ConfigDriver", "ConfigDriverW"})
    {
        EXPECT_NE(nullptr, ::dlsym(library, name)) << name;
    }
    EXPECT_EQ(nullptr, ::dlsym(library, "_ZN5Tarni9SparkODBC14SOSetupRequest9ConfigDSNEPvtPKDsS4_"));
    using ConfigDriverFunction = int (*)(void*, unsigned short, const char*, const char*, char*, unsigned short,
                                         unsigned short*);
    const auto configDriver = reinterpret_cast<ConfigDriverFunction>(::dlsym(library, "ConfigDriver"));
    ASSERT_NE(nullptr, configDriver);
    char message[16] = "unchanged";
    unsigned short length = 9;
    EXPECT_EQ(1, configDriver(nullptr, ODBC_INSTALL_DRIVER, DRIVER, "", message, sizeof(message), &length));
    EXPECT_EQ(1, configDriver(nullptr, ODBC_REMOVE_DRIVER, DRIVER, "", message, sizeof(message), &length));
    EXPECT_EQ(0, length);
    EXPECT_EQ(0, configDriver(nullptr, 77, DRIVER, "", message, sizeof(message), &length));
    EXPECT_EQ(static_cast<DWORD>(ODBC_ERROR_INVALID_REQUEST_TYPE), Error().first);
    // Configuring the driver without a window has nothing to show.
    EXPECT_EQ(1, configDriver(nullptr, ODBC_CONFIG_DRIVER, DRIVER, "", message, sizeof(message), &length));
    ::dlclose(library);
}
