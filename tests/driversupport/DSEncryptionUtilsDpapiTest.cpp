// The Windows method: the data protection API in both scopes.
#include <gtest/gtest.h>

#include "SecretTestSupport.h"
#include "driversupport/DSEncryptionUtils.h"
#include "core/DSITypeUtilities.h"

using Tarni::tarni_wstring;
using Tarni::DriverSupport::DSEncryptionUtils;
using Tarni::Platform::SecretScope;
using SecretTest::Caught;

// The system authenticates the protected part of its blob; a few header
// fields are outside that. A flipped digit is therefore either refused or
// recovers the very same secret, never something else.
TEST(DpapiSecret, RoundTripsInBothScopesAndNeverRecoversGarbage)
{
    for (const bool allUsers : {false, true})
    {
        const tarni_wstring stored = DSEncryptionUtils::Encrypt(u"Pa55\u00fcw0rd", allUsers, u"EncryptedPWD");
        EXPECT_TRUE(stored.starts_with(allUsers ? u"DPAPI_MACHINE:" : u"DPAPI_USER:"));
        const auto recovered = DSEncryptionUtils::Decrypt(stored, u"EncryptedPWD");
        EXPECT_EQ(u"Pa55\u00fcw0rd", recovered.value);
        EXPECT_EQ(allUsers ? SecretScope::AllUsers : SecretScope::CurrentUser, recovered.scope);

        size_t refused = 0;
        const size_t body = stored.find(u':') + 1;
        for (size_t i = body; i < stored.size(); ++i)
        {
            tarni_wstring flipped = stored;
            flipped[i] = flipped[i] == u'0' ? u'8' : u'0';
            try
            {
                EXPECT_EQ(u"Pa55\u00fcw0rd", DSEncryptionUtils::Decrypt(flipped, u"EncryptedPWD").value) << i;
            }
            catch (const Tarni::Support::ErrorException& e)
            {
                EXPECT_EQ(u"DSDecryptError", e.GetMessageKey());
                ++refused;
            }
        }
        EXPECT_GT(refused, (stored.size() - body) / 2);
    }
}

TEST(DpapiSecret, DPAPIEncryptProtectsTheTextWithItsTerminatingZero)
{
    const tarni_wstring body = DSEncryptionUtils::DPAPIEncrypt(u"abc", false);
    const tarni_wstring stored = u"DPAPI_USER:" + body;
    // The recovered bytes are UTF-16 "abc" and a zero: six bytes of which
    // every second one is zero, which is also valid UTF-8.
    const auto recovered = DSEncryptionUtils::Decrypt(stored, u"x");
    EXPECT_EQ(tarni_wstring(u"a\0b\0c\0\0\0", 8), recovered.value);
}
