// Protection and recovery of one secret on whichever platform runs the test
// (DPAPI under Wine, AES on Linux).
#include <gtest/gtest.h>

#include "SecretTestSupport.h"
#include "driversupport/DSEncryptionUtils.h"
#include "platform/SecretProtector.h"

using Tarni::tarni_wstring;
using Tarni::tarni_wstring_view;
using Tarni::DriverSupport::DSEncryptionUtils;
using Tarni::Platform::SecretScope;
using SecretTest::Caught;

namespace
{
class DSEncryptionUtilsTest : public ::testing::Test
{
protected:
    SecretTest::KeySources m_sources;
};

bool IsUpperHex(tarni_wstring_view in_text)
{
    return in_text.find_first_not_of(u"0123456789ABCDEF") == tarni_wstring::npos;
}
}  // namespace

TEST_F(DSEncryptionUtilsTest, RoundTripsInBothScopesBehindALeadingTextNamingMethodAndScope)
{
    const tarni_wstring secret = u"p\u00e4ss w\u00f6rd=\u20ac;\U0001F511";
    for (const bool allUsers : {false, true})
    {
        const tarni_wstring stored = DSEncryptionUtils::Encrypt(secret, allUsers, u"EncryptedPWD");
        ASSERT_TRUE(DSEncryptionUtils::HasProtectedForm(stored));
        const size_t colon = stored.find(u':');
        ASSERT_NE(tarni_wstring::npos, colon);
        const tarni_wstring leading = stored.substr(0, colon + 1);
        EXPECT_EQ(allUsers ? u"_MACHINE:" : u"_USER:", leading.substr(leading.find(u'_')));
        const tarni_wstring body = stored.substr(colon + 1);
        EXPECT_EQ(0u, body.size() % 2);
        EXPECT_TRUE(IsUpperHex(body));
        EXPECT_EQ(tarni_wstring::npos, stored.find(secret));

        const auto recovered = DSEncryptionUtils::Decrypt(stored, u"EncryptedPWD");
        EXPECT_EQ(secret, recovered.value);
        EXPECT_EQ(allUsers ? SecretScope::AllUsers : SecretScope::CurrentUser, recovered.scope);

        // Every protection is fresh: the same secret never gives the same text.
        EXPECT_NE(stored, DSEncryptionUtils::Encrypt(secret, allUsers, u"EncryptedPWD"));
    }
    EXPECT_EQ(u"", DSEncryptionUtils::Encrypt(u"", true, u"EncryptedPWD"));
    EXPECT_EQ(u"", DSEncryptionUtils::Decrypt(u"", u"EncryptedPWD").value);
}

TEST_F(DSEncryptionUtilsTest, RefusesMalformedUnknownAndForeignValuesNamingTheKey)
{
    const tarni_wstring stored = DSEncryptionUtils::Encrypt(u"secret", false, u"ProxyEncryptedPWD");
    const size_t colon = stored.find(u':');
    tarni_wstring lowered = stored;
    for (size_t i = colon + 1; i < lowered.size(); ++i)
    {
        if (lowered[i] >= u'A' && lowered[i] <= u'F') lowered[i] = static_cast<char16_t>(lowered[i] + 32);
    }
    const tarni_wstring foreign = stored.starts_with(u"DPAPI_") ? u"AES256_USER:" + stored.substr(colon + 1)
                                                                : u"DPAPI_USER:" + stored.substr(colon + 1);
    for (const tarni_wstring& bad : {stored.substr(0, stored.size() - 1),   // odd length
                                     stored.substr(0, colon + 1),           // nothing but the leading text
                                     stored.substr(colon + 1),              // no leading text
                                     u"XOR_USER:" + stored.substr(colon + 1),
                                     lowered, foreign, stored + u"GG"})
    {
        const auto error = Caught([&] { DSEncryptionUtils::Decrypt(bad, u"ProxyEncryptedPWD"); });
        EXPECT_EQ(u"DSDecryptError", error.GetMessageKey());
        ASSERT_EQ(2u, error.GetParameters().size());
        EXPECT_EQ(u"ProxyEncryptedPWD", error.GetParameters()[1]);
    }
}
