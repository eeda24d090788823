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
const wchar_t* const INTERNET_SETTINGS = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings";
const wchar_t* const CONNECTIONS = L"Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\Connections";

/// A registry value saved on construction and put back on destruction.
class SavedValue
{
public:
    SavedValue(const wchar_t* in_key, const wchar_t* in_name) : m_key(in_key), m_name(in_name)
    {
        HKEY key = nullptr;
        if (::RegOpenKeyExW(HKEY_CURRENT_USER, in_key, 0, KEY_READ, &key) == ERROR_SUCCESS)
        {
            DWORD size = 0;
            if (::RegQueryValueExW(key, in_name, nullptr, &m_type, nullptr, &size) == ERROR_SUCCESS)
            {
                m_data.resize(size);
                m_present = ::RegQueryValueExW(key, in_name, nullptr, &m_type, m_data.data(), &size) == ERROR_SUCCESS;
            }
            ::RegCloseKey(key);
        }
    }
    ~SavedValue()
    {
        HKEY key = nullptr;
        if (::RegCreateKeyExW(HKEY_CURRENT_USER, m_key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) ==
            ERROR_SUCCESS)
        {
            if (m_present)
            {
                ::RegSetValueExW(key, m_name, 0, m_type, m_data.data(), static_cast<DWORD>(m_data.size()));
            }
            else
            {
                ::RegDeleteValueW(key, m_name);
            }
            ::RegCloseKey(key);
        }
    }

private:
    const wchar_t* m_key;
    const wchar_t* m_name;
    DWORD m_type = REG_NONE;
    std::vector<BYTE> m_data;
    bool m_present = false;
};

class ProxyWinHttpTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_savedProxy = ProcessEnvironment::GetVariable(u"HTTP_PROXY");
        ProcessEnvironment::SetVariable(u"HTTP_PROXY", std::nullopt);
    }
    void TearDown() override { ProcessEnvironment::SetVariable(u"HTTP_PROXY", m_savedProxy); }

    /// The manual proxy as the Internet Settings dialog of Windows writes it:
    /// the connection settings block (version, counter, flags "direct" and
    /// "proxy", then the proxy list and the bypass list as counted ANSI
    /// strings) and the two plain values beside it.
    static void WriteManualProxy(const std::string& in_list)
    {
        std::vector<BYTE> block;
        const auto addDword = [&](DWORD in_value) {
            const auto* bytes = reinterpret_cast<const BYTE*>(&in_value);
            block.insert(block.end(), bytes, bytes + sizeof(DWORD));
        };
        addDword(0x46);
        addDword(1);
        addDword(0x1 | 0x2);
        addDword(static_cast<DWORD>(in_list.size()));
        block.insert(block.end(), in_list.begin(), in_list.end());
        addDword(0);  // no bypass list
        addDword(0);  // no configuration script
        block.resize(block.size() + 32, 0);
        SetValue(CONNECTIONS, L"DefaultConnectionSettings", REG_BINARY, block.data(), block.size());
        const DWORD enable = 1;
        SetValue(INTERNET_SETTINGS, L"ProxyEnable", REG_DWORD, &enable, sizeof(enable));
        const std::wstring wide(in_list.begin(), in_list.end());
        SetValue(INTERNET_SETTINGS, L"ProxyServer", REG_SZ, wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
    }

    static void RemoveManualProxy()
    {
        for (const auto& [key, name] : {std::pair{CONNECTIONS, L"DefaultConnectionSettings"},
                                        std::pair{INTERNET_SETTINGS, L"ProxyEnable"},
                                        std::pair{INTERNET_SETTINGS, L"ProxyServer"}})
        {
            HKEY handle = nullptr;
            if (::RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, KEY_ALL_ACCESS, &handle) == ERROR_SUCCESS)
            {
                ::RegDeleteValueW(handle, name);
                ::RegCloseKey(handle);
            }
        }
    }

    static void SetValue(const wchar_t* in_key, const wchar_t* in_name, DWORD in_type, const void* in_data,
                         size_t in_size)
    {
        HKEY key = nullptr;
        ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, in_key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(::RegSetValueExW(key, in_name, 0, in_type, static_cast<const BYTE*>(in_data),
                                   static_cast<DWORD>(in_size)),
                  ERROR_SUCCESS);
        ::RegCloseKey(key);
    }

    SavedValue m_block{CONNECTIONS, L"DefaultConnectionSettings"};
    SavedValue m_enable{INTERNET_SETTINGS, L"ProxyEnable"};
    SavedValue m_server{INTERNET_SETTINGS, L"ProxyServer"};
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
