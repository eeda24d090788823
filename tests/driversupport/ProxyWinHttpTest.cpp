// The system proxy on Windows (under Wine): a manual proxy written where
// Windows keeps the user's Internet Settings is found through WinHTTP,
// HTTP_PROXY wins over it, ":" means none, and with nothing set and no
// network the automatic discovery answers "none" within WinHTTP's limits.
#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "common/RecordingLogger.h"
#include "driversupport/Proxy.h"
#include "platform/HttpServiceProxy.h"
#include "platform/ProcessEnvironment.h"

using namespace Tarni;
using namespace Tarni::DriverSupport;
using Tarni::Platform::ProcessEnvironment;

namespace
{
const wchar_t* const CONNECTIONS = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections";
const wchar_t* const SETTINGS_VALUE = L"DefaultConnectionSettings";

class ProxyWinHttpTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_savedProxy = ProcessEnvironment::GetVariable(u"HTTP_PROXY");
        ProcessEnvironment::SetVariable(u"HTTP_PROXY", std::nullopt);
    }
    void TearDown() override
    {
        ProcessEnvironment::SetVariable(u"HTTP_PROXY", m_savedProxy);
        RemoveManualProxy();
    }

    /// The manual proxy as Windows keeps it for the user: the connection
    /// settings block (version, counter, flags "direct" and "proxy", then the
    /// proxy list, the bypass list and the script address as counted ANSI
    /// strings).
    static void WriteManualProxy(const std::string& in_list)
    {
        std::vector<BYTE> block;
        const auto addDword = [&](DWORD in_value) {
            const auto* bytes = reinterpret_cast<const BYTE*>(&in_value);
            block.insert(block.end(), bytes, bytes + sizeof(DWORD));
        };
        for (const DWORD value : {DWORD{0x46}, DWORD{1}, DWORD{0x1 | 0x2}, static_cast<DWORD>(in_list.size())})
        {
            addDword(value);
        }
        block.insert(block.end(), in_list.begin(), in_list.end());
        addDword(0);
        addDword(0);
        block.resize(block.size() + 32, 0);
        HKEY key = nullptr;
        ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, CONNECTIONS, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                    nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(::RegSetValueExW(key, SETTINGS_VALUE, 0, REG_BINARY, block.data(), static_cast<DWORD>(block.size())),
                  ERROR_SUCCESS);
        ::RegCloseKey(key);
    }

    static void RemoveManualProxy()
    {
        HKEY key = nullptr;
        if (::RegOpenKeyExW(HKEY_CURRENT_USER, CONNECTIONS, 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS)
        {
            ::RegDeleteValueW(key, SETTINGS_VALUE);
            ::RegCloseKey(key);
        }
    }

    std::optional<tarni_wstring> m_savedProxy;
    Testing::RecordingLogger m_log;
};
}  // namespace

TEST_F(ProxyWinHttpTest, AManualProxyOfTheUserIsFoundAndHttpProxyWinsOverIt)
{
    WriteManualProxy("http=plain.corp:81;https=secure.corp:8443");
    const auto list = Platform::HttpServiceProxy::Query(u"Tarni Spark ODBC Driver", Proxy::PROBE_URL, &m_log);
    ASSERT_TRUE(list.has_value());
    EXPECT_EQ(list->list, u"http=plain.corp:81;https=secure.corp:8443");
    EXPECT_FALSE(list->discovered);
    EXPECT_EQ(Proxy::GetSystemProxy(&m_log).GetAuthority(), u"secure.corp:8443");

    WriteManualProxy("single.corp:3128");
    EXPECT_EQ(Proxy::GetSystemProxy(&m_log).GetAuthority(), u"single.corp:3128");

    ProcessEnvironment::SetVariable(u"HTTP_PROXY", u"http://from-env.corp:8000");
    EXPECT_EQ(Proxy::GetSystemProxy(&m_log).GetAuthority(), u"from-env.corp:8000");
    ProcessEnvironment::SetVariable(u"HTTP_PROXY", std::nullopt);

    WriteManualProxy(":");
    EXPECT_TRUE(Proxy::GetSystemProxy(&m_log).IsEmpty());
}

TEST_F(ProxyWinHttpTest, WithNothingSetTheDiscoveryAnswersNoProxyWithinItsLimits)
{
    RemoveManualProxy();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(Proxy::GetSystemProxy(&m_log).IsEmpty());
    const auto elapsed = std::chrono::steady_clock::now() - start;
    // Each network step of the discovery is limited; four of them bound the whole.
    EXPECT_LT(elapsed, std::chrono::milliseconds(4 * Platform::HttpServiceProxy::STEP_TIMEOUT_MS + 2000));
}
