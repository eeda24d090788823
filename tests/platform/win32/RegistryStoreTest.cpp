#include <gtest/gtest.h>

#include <map>

#include "platform/win32/RegistryStore.h"
#include "core/ErrorException.h"

using Tarni::Platform::RegistryStore;

namespace
{
// A key of its own per test: CTest runs tests in parallel processes.
std::u16string TestKey()
{
    const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    return u"SOFTWARE\\Tarni Test\\RegistryStoreTest\\" + std::u16string(name.begin(), name.end());
}

class RegistryStoreTest : public ::testing::Test
{
protected:
    void SetUp() override { m_store.DeleteKey(); }
    void TearDown() override { m_store.DeleteKey(); }
    const std::u16string m_key = TestKey();
    RegistryStore m_store{HKEY_LOCAL_MACHINE, m_key};
};
}  // namespace

TEST_F(RegistryStoreTest, RoundTripsRegSzValuesWithTheTerminatorCounted)
{
    EXPECT_TRUE(m_store.ReadAll().empty());
    m_store.WriteValue(u"Host", u" h\u00e9=1 ");
    m_store.WriteValue(u"Empty", u"");
    m_store.WriteValue(u"Lines", u"a\r\nb");

    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, reinterpret_cast<const wchar_t*>(m_key.c_str()), 0,
                                           KEY_READ, &key));
    DWORD type = 0;
    DWORD size = 0;
    ASSERT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, L"Host", nullptr, &type, nullptr, &size));
    RegCloseKey(key);
    EXPECT_EQ(static_cast<DWORD>(REG_SZ), type);
    EXPECT_EQ((6u + 1u) * 2u, size);

    const auto values = m_store.ReadAll();
    ASSERT_EQ(3u, values.size());
    std::map<std::u16string, std::u16string> byName;
    for (const auto& value : values)
    {
        byName[value.name] = value.value;
    }
    EXPECT_EQ(u" h\u00e9=1 ", byName[u"Host"]);
    EXPECT_EQ(u"", byName[u"Empty"]);
    EXPECT_EQ(u"a\r\nb", byName[u"Lines"]);
}

TEST_F(RegistryStoreTest, DeleteRemovesOneValueAndNeedsTheKey)
{
    m_store.WriteValue(u"A", u"1");
    m_store.WriteValue(u"B", u"2");
    m_store.DeleteValue(u"a");
    const auto values = m_store.ReadAll();
    ASSERT_EQ(1u, values.size());
    EXPECT_EQ(u"B", values[0].name);

    m_store.DeleteValue(u"B");
    m_store.DeleteKey();
    try
    {
        m_store.DeleteValue(u"B");
        FAIL() << "deleting under a missing key succeeded";
    }
    catch (const Tarni::Support::ErrorException& e)
    {
        EXPECT_EQ(u"DSRegistryWriteErr", e.GetMessageKey());
        EXPECT_EQ(1010, e.GetNativeErrorCode());
        EXPECT_FALSE(e.GetParameters().at(0).empty());
    }
}

// A key the process may read but not write, as HKEY_LOCAL_MACHINE is to a
// program that was not started as administrator: the save names the key and
// says how to get the rights, not only the system's "Access is denied".
TEST_F(RegistryStoreTest, RefusedWriteSaysToRunAsAdministratorAndNamesTheKey)
{
    const std::u16string path = m_key + u" locked";
    const auto* wpath = reinterpret_cast<const wchar_t*>(path.c_str());
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, wpath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                             nullptr));
    // Everyone may read the key and change its permissions back, nothing more.
    SECURITY_DESCRIPTOR descriptor;
    ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
    PSID everyone = nullptr;
    ASSERT_TRUE(AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everyone));
    alignas(DWORD) BYTE aclBuffer[256];
    auto* acl = reinterpret_cast<PACL>(aclBuffer);
    ASSERT_TRUE(InitializeAcl(acl, sizeof(aclBuffer), ACL_REVISION));
    ASSERT_TRUE(AddAccessAllowedAce(acl, ACL_REVISION, KEY_READ | WRITE_DAC | DELETE, everyone));
    ASSERT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, acl, FALSE));
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &descriptor));
    RegCloseKey(key);

    RegistryStore locked{HKEY_CURRENT_USER, path};
    try
    {
        locked.WriteValue(u"Host", u"h");
        ADD_FAILURE() << "writing to a read-only key succeeded";
    }
    catch (const Tarni::Support::ErrorException& e)
    {
        EXPECT_EQ(u"DSRegistryAccessDeniedErr", e.GetMessageKey());
        EXPECT_EQ(1190, e.GetNativeErrorCode());
        EXPECT_EQ(std::vector<std::u16string>{u"HKEY_CURRENT_USER\\" + path}, e.GetParameters());
    }
    EXPECT_TRUE(locked.ReadAll().empty());
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CURRENT_USER, wpath));
    FreeSid(everyone);
}
