// The key descriptions: every default passes its own checks, the dialogs'
// setters get their setup codes, and the checks catch what they should.
#include <gtest/gtest.h>

#include "common/ProductSettingsFixture.h"
#include "core/ErrorException.h"
#include "driversupport/DSSetupException.h"
#include "product/QuillConfiguration.h"
#include "product/SOKeyCatalogue.h"

using namespace Tarni;
using DriverSupport::DSKeyDescription;
using SparkODBC::SOKeyCatalogue;

class KeyCatalogue : public Testing::ProductSettingsFixture
{
};

TEST_F(KeyCatalogue, EveryDefaultOfTheModelPassesItsKeysChecks)
{
    // Product settings that move defaults, within what the keys accept.
    UseProductSettings("dsn-port=443\ndsn-hs-type=4\ndsn-auth-mech=13\ndefault-string-column-length=4000\n");
    SparkODBC::QuillConfiguration config(u"", 2, nullptr);
    size_t described = 0;
    for (const auto& [key, value] : config.GetDefaultDriverProperties())
    {
        if (const DSKeyDescription* description = SOKeyCatalogue::Find(key))
        {
            EXPECT_TRUE(description->Accepts(value)) << Support::StringConverter::ToUtf8(key) << "="
                                                     << Support::StringConverter::ToUtf8(value);
            ++described;
        }
    }
    EXPECT_GE(described, 45u);
    EXPECT_EQ(u"443", config.GetDefaultDriverProperties().GetValue(u"Port"));
}

TEST_F(KeyCatalogue, ChecksOfEachForm)
{
    const auto accepts = [](tarni_wstring_view in_key, tarni_wstring_view in_value) {
        return SOKeyCatalogue::Find(in_key)->Accepts(in_value);
    };
    EXPECT_TRUE(accepts(u"ssl", u"1"));  // keys are found ignoring case
    EXPECT_FALSE(accepts(u"SSL", u"true"));
    EXPECT_FALSE(accepts(u"SSL", u" 1"));
    EXPECT_TRUE(accepts(u"Port", u"65535"));
    EXPECT_FALSE(accepts(u"Port", u"65536"));
    EXPECT_FALSE(accepts(u"Port", u""));
    EXPECT_FALSE(accepts(u"SocketTimeout", u"+5"));
    EXPECT_FALSE(accepts(u"SocketTimeout", u"18446744073709551616"));  // past 64 bits
    EXPECT_TRUE(accepts(u"QueryTimeoutOverride", u""));
    EXPECT_TRUE(accepts(u"AuthMech", u"0"));
    EXPECT_FALSE(accepts(u"AuthMech", u"Kerberos"));  // the stored number, not the display name
    EXPECT_TRUE(accepts(u"ServiceDiscoveryMode", u"0"));
    EXPECT_TRUE(accepts(u"Min_TLS", u"unrestricted"));
    EXPECT_FALSE(accepts(u"Min_TLS", u"1.3"));
    EXPECT_EQ(nullptr, SOKeyCatalogue::Find(u"NotAKeyOfTheModel"));
    EXPECT_NO_THROW(SOKeyCatalogue::Check(u"NotAKeyOfTheModel", u"anything"));
    EXPECT_NO_THROW(SOKeyCatalogue::Check(u"ssp_x", u"anything"));
    EXPECT_THROW(SOKeyCatalogue::Check(u"ssp_", u"1"), Support::ErrorException);
}

TEST_F(KeyCatalogue, LoggingSettersRaiseTheirSetupCodes)
{
    const auto code = [](tarni_wstring_view in_key, tarni_wstring_view in_value) -> int {
        try
        {
            SOKeyCatalogue::Find(in_key)->CheckForSetter(in_value);
            return -1;
        }
        catch (const DriverSupport::DSSetupException& e)
        {
            return static_cast<int>(e.GetErrorCode());
        }
    };
    EXPECT_EQ(9, code(u"LogFileSize", u"4097"));
    EXPECT_EQ(-1, code(u"LogFileSize", u"4096"));
    EXPECT_EQ(8, code(u"LogFileCount", u"4294967296"));
    EXPECT_EQ(-1, code(u"LogFileCount", u"4294967295"));
    // Without a setup code a setter gets the same error as the command line.
    EXPECT_THROW(SOKeyCatalogue::Find(u"LogLevel")->CheckForSetter(u"7"), Support::ErrorException);
}
