#include <gtest/gtest.h>

#include <string>

#include "platform/SystemLibraryNames.h"
#include "support/StringConverter.h"
#include "core/SupportException.h"
#include "support/crypto/LibCrypto.h"

using Tarni::tarni_wstring;
using Tarni::Support::LibCrypto;
using Tarni::Support::SupportException;

namespace
{
// The platform's library, or a skip where the test machine may lack it.
std::shared_ptr<const LibCrypto> PlatformLibrary()
{
    try
    {
        return LibCrypto::Get();
    }
    catch (const SupportException& e)
    {
#if !defined(TARNI_TEST_EXPECT_LIBCRYPTO)
        if (e.GetMessageKey() == u"CryptoLibraryLoadErr") return nullptr;
#endif
        throw;
    }
}

SupportException LoadError(const tarni_wstring& in_name)
{
    try
    {
        LibCrypto::Load(in_name);
    }
    catch (const SupportException& e)
    {
        return e;
    }
    ADD_FAILURE() << "loading succeeded";
    return SupportException(u"none");
}
}  // namespace

TEST(LibCrypto, ResolvesWorkingFunctionsOfVersionThree)
{
    const auto crypto = PlatformLibrary();
    if (crypto == nullptr) GTEST_SKIP() << "libcrypto is not installed on this machine";
    EXPECT_GE(crypto->GetVersionNumber(), LibCrypto::MINIMUM_VERSION);
    EXPECT_EQ(LibCrypto::GetLibraryName(), crypto->GetName());

    // HMAC-SHA-256 test case 2 of RFC 4231: proves the pointers reach the
    // right functions with the right signatures.
    const std::string key = "Jefe";
    const std::string data = "what do ya want for nothing?";
    unsigned char mac[32] = {};
    unsigned int length = 0;
    ASSERT_NE(nullptr, crypto->HMAC(crypto->EVP_sha256(), key.data(), static_cast<int>(key.size()),
                                    reinterpret_cast<const unsigned char*>(data.data()), data.size(), mac, &length));
    ASSERT_EQ(32u, length);
    const unsigned char expected[4] = {0x5b, 0xdc, 0xc1, 0x46};
    EXPECT_EQ(0, crypto->CRYPTO_memcmp(mac, expected, sizeof(expected)));
    EXPECT_EQ(u"no details", crypto->TakeErrorText());
}

TEST(LibCrypto, NamesTheLibraryWhenItIsMissingOrNotLibcrypto)
{
    const SupportException missing = LoadError(u"libtarni-no-such-crypto.so.3");
    EXPECT_EQ(u"CryptoLibraryLoadErr", missing.GetMessageKey());
    ASSERT_EQ(2u, missing.GetParameters().size());
    EXPECT_EQ(u"libtarni-no-such-crypto.so.3", missing.GetParameters()[0]);
    EXPECT_FALSE(missing.GetParameters()[1].empty());

    // A library that loads but is not OpenSSL counts as too old.
    const tarni_wstring other = Tarni::Platform::SystemLibraryNames::OdbcInstallerLibrary();
    const SupportException notCrypto = LoadError(other);
    if (notCrypto.GetMessageKey() == u"CryptoLibraryLoadErr") GTEST_SKIP() << "no installer library to stand in";
    EXPECT_EQ(u"CryptoLibraryVersionErr", notCrypto.GetMessageKey());
    ASSERT_EQ(3u, notCrypto.GetParameters().size());
    EXPECT_EQ(other, notCrypto.GetParameters()[0]);
    EXPECT_EQ(u"3.0.0", notCrypto.GetParameters()[2]);
}

TEST(LibCrypto, ProcessWideInstanceFollowsTheConfiguredNameAndRetriesAfterFailure)
{
    LibCrypto::SetLibraryName(u"libtarni-no-such-crypto.so.3");
    try
    {
        LibCrypto::Get();
        ADD_FAILURE() << "the missing library loaded";
    }
    catch (const SupportException& e)
    {
        EXPECT_EQ(u"CryptoLibraryLoadErr", e.GetMessageKey());
    }
    LibCrypto::SetLibraryName(u"");
    EXPECT_EQ(Tarni::Platform::SystemLibraryNames::CryptoLibrary(), LibCrypto::GetLibraryName());
    if (PlatformLibrary() == nullptr) GTEST_SKIP() << "libcrypto is not installed on this machine";
    EXPECT_NE(nullptr, LibCrypto::Get());
}

TEST(LibCrypto, FormatsBothVersionNumberingSchemes)
{
    EXPECT_EQ(u"3.0.11", LibCrypto::FormatVersion(0x300000B0UL));
    EXPECT_EQ(u"3.2.1", LibCrypto::FormatVersion(0x30200010UL));
    EXPECT_EQ(u"1.1.1", LibCrypto::FormatVersion(0x1010117fUL));
}
