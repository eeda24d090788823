#include <gtest/gtest.h>

#include <limits>

#include "driversupport/DSBase64.h"
#include "driversupport/DSConnectionUtils.h"
#include "common/MemorySettingsStore.h"
#include "core/ErrorException.h"
#include "support/TarniSettingReader.h"
#include "common/RecordingLogger.h"

using namespace Tarni;
using namespace Tarni::DriverSupport;
using Tarni::Testing::RecordingLogger;

namespace
{
class DSConnectionUtilsTest : public ::testing::Test
{
protected:
    void SetUp() override { Support::TarniSettingReader::Reset(); }
    void TearDown() override
    {
        Support::TarniSettingReader::SetStore(nullptr);
        Support::TarniSettingReader::Reset();
    }
    void UseDriverWide(std::vector<Platform::StoredValue> in_values)
    {
        m_store.values = std::move(in_values);
        Support::TarniSettingReader::Reset();
        Support::TarniSettingReader::SetStore(&m_store);
    }

    RecordingLogger m_log;
    DSWarningList m_warnings;
    Testing::MemorySettingsStore m_store;
};
}  // namespace

TEST_F(DSConnectionUtilsTest, ConnectionValueWinsUnlessDriverConfigTakesPrecedence)
{
    UseDriverWide({{u"Port", u"20000"}, {u"Host", u"driver-host"}});
    ConfigurationMap settings{{u"Port", u"10001"}};
    std::uint16_t port = 0;
    std::string host;

    EXPECT_TRUE(DSConnectionUtils::ReadUInt16Setting(u"Port", settings, port, false, &m_log, m_warnings));
    EXPECT_EQ(port, 10001);
    EXPECT_TRUE(DSConnectionUtils::ReadUTF8StringSetting(u"host", settings, host, false, &m_log, m_warnings));
    EXPECT_EQ(host, "driver-host");  // fallback, key compared without regard to case

    UseDriverWide({{u"Port", u"20000"}, {u"DriverConfigTakePrecedence", u"1"}});
    EXPECT_TRUE(DSConnectionUtils::ReadUInt16Setting(u"Port", settings, port, false, &m_log, m_warnings));
    EXPECT_EQ(port, 20000);
    EXPECT_TRUE(m_warnings.IsEmpty());
}

TEST_F(DSConnectionUtilsTest, BooleansAcceptOneAndTrueInAnyCaseAndOtherTextIsFalseWithAWarning)
{
    ConfigurationMap settings{{u"A", u"TRUE"}, {u"B", u"True"}, {u"C", u"1"}, {u"D", u"0"}, {u"E", u"false"}};
    for (const char16_t* key : {u"A", u"B", u"C", u"D", u"E"})
    {
        bool value = *key > u'C';
        EXPECT_TRUE(DSConnectionUtils::ReadBooleanSetting(key, settings, value, false, &m_log, m_warnings));
        EXPECT_EQ(value, *key <= u'C') << Support::StringConverter::ToUtf8(key);
    }
    EXPECT_TRUE(m_warnings.IsEmpty());

    bool absent = true;
    EXPECT_FALSE(DSConnectionUtils::ReadBooleanSetting(u"Missing", settings, absent, false, &m_log, m_warnings));
    EXPECT_TRUE(absent);

    settings.SetValue(u"UseProxy", u"yes");
    EXPECT_TRUE(DSConnectionUtils::ReadBooleanSetting(u"UseProxy", settings, absent, false, &m_log, m_warnings));
    EXPECT_FALSE(absent);
    ASSERT_EQ(m_warnings.Size(), 1u);
    EXPECT_EQ(m_warnings.GetWarnings()[0].m_messageKey, u"DSInvalidSettingValueWarn");
    EXPECT_EQ(m_warnings.GetWarnings()[0].m_parameters[1], u"yes");
    EXPECT_TRUE(m_log.Has(Support::LOG_WARNING, "Connection string contains invalid data type: UseProxy."));
}

TEST_F(DSConnectionUtilsTest, NumbersThatDoNotConvertLeaveTheDestinationAndWarn)
{
    ConfigurationMap settings{{u"Big", u"65536"},   {u"Neg", u"-1"},  {u"Padded", u" 42\t"}, {u"Empty", u""},
                              {u"Max", u"18446744073709551615"}, {u"Over", u"18446744073709551616"}, {u"Hex", u"0x10"}};
    std::uint16_t small = 7;
    EXPECT_FALSE(DSConnectionUtils::ReadUInt16Setting(u"Big", settings, small, false, &m_log, m_warnings));
    EXPECT_FALSE(DSConnectionUtils::ReadUInt16Setting(u"Neg", settings, small, false, &m_log, m_warnings));
    EXPECT_FALSE(DSConnectionUtils::ReadUInt16Setting(u"Hex", settings, small, false, &m_log, m_warnings));
    EXPECT_EQ(small, 7);
    EXPECT_EQ(m_warnings.Size(), 3u);
    EXPECT_TRUE(m_log.HasFragment("The value \"65536\" of the setting Big cannot be converted into an unsigned 16-bit"));

    std::uint32_t padded = 0;
    EXPECT_TRUE(DSConnectionUtils::ReadUInt32Setting(u"Padded", settings, padded, false, &m_log, m_warnings));
    EXPECT_EQ(padded, 42u);

    // An empty value stands for "not set" and raises nothing.
    std::size_t empty = 5;
    EXPECT_FALSE(DSConnectionUtils::ReadUnsignedNativeSetting(u"Empty", settings, empty, false, &m_log, m_warnings));
    EXPECT_EQ(empty, 5u);

    std::uint64_t wide = 0;
    EXPECT_TRUE(DSConnectionUtils::ReadUInt64Setting(u"Max", settings, wide, false, &m_log, m_warnings));
    EXPECT_EQ(wide, std::numeric_limits<std::uint64_t>::max());
    EXPECT_FALSE(DSConnectionUtils::ReadUInt64Setting(u"Over", settings, wide, false, &m_log, m_warnings));
    EXPECT_EQ(m_warnings.Size(), 4u);
}

TEST_F(DSConnectionUtilsTest, RequiredKeyMissingThrows)
{
    ConfigurationMap settings;
    std::string value;
    try
    {
        DSConnectionUtils::ReadUTF8StringSetting(u"ProxyPort", settings, value, true, &m_log, m_warnings);
        FAIL() << "no exception";
    }
    catch (const Support::ErrorException& e)
    {
        EXPECT_EQ(e.GetMessageKey(), u"DSRequiredSettingNotFound");
        EXPECT_EQ(e.GetParameters(), std::vector<tarni_wstring>{u"ProxyPort"});
    }
}

TEST_F(DSConnectionUtilsTest, PrefixedSettingsMergeBothSources)
{
    UseDriverWide({{u"SSP_a", u"driver"}, {u"SSP_b", u"driver"}, {u"Other", u"x"}});
    ConfigurationMap settings{{u"ssp_B", u"connection"}, {u"SSP_c", u"connection"}};
    ConfigurationMap merged = DSConnectionUtils::GetPrefixedSettings(u"SSP_", settings);
    EXPECT_EQ(merged.size(), 3u);
    EXPECT_EQ(merged.GetValue(u"SSP_a"), u"driver");
    EXPECT_EQ(merged.GetValue(u"SSP_b"), u"connection");
    EXPECT_FALSE(merged.Contains(u"Other"));

    UseDriverWide({{u"SSP_b", u"driver"}, {u"DriverConfigTakePrecedence", u"true"}});
    EXPECT_EQ(DSConnectionUtils::GetPrefixedSettings(u"SSP_", settings).GetValue(u"SSP_b"), u"driver");
}

TEST_F(DSConnectionUtilsTest, UserAgentEntryIsAProductTokenWithOptionalComment)
{
    EXPECT_TRUE(DSConnectionUtils::IsValidUserAgentEntry("MyApp/1.2"));
    EXPECT_TRUE(DSConnectionUtils::IsValidUserAgentEntry("My_App/1.2-beta (Linux; x64)"));
    EXPECT_FALSE(DSConnectionUtils::IsValidUserAgentEntry("MyApp"));
    EXPECT_FALSE(DSConnectionUtils::IsValidUserAgentEntry("My App/1.2"));
    EXPECT_FALSE(DSConnectionUtils::IsValidUserAgentEntry("MyApp/1.2\r\nX-Injected: 1"));
    EXPECT_FALSE(DSConnectionUtils::IsValidUserAgentEntry("MyApp/1.2 (a (b))"));
    EXPECT_FALSE(DSConnectionUtils::IsValidUserAgentEntry(std::string(300, 'a') + "/1"));

    ConfigurationMap settings{{u"UserAgentEntry", u"bad entry"}};
    std::string entry = "unchanged";
    EXPECT_FALSE(DSConnectionUtils::ReadUserAgentEntrySetting(settings, entry, &m_log, m_warnings));
    EXPECT_EQ(entry, "unchanged");
    ASSERT_EQ(m_warnings.Size(), 1u);
    EXPECT_EQ(m_warnings.GetWarnings()[0].m_messageKey, u"DSInvalidUserAgentEntryWarn");
}

TEST(DSBase64Test, DecodesPaddedAndUnpaddedText)
{
    EXPECT_EQ(DSBase64::Decode("aGVsbG8="), "hello");
    EXPECT_EQ(DSBase64::Decode("aGVsbG8"), "hello");
    EXPECT_EQ(DSBase64::Decode("aGk="), "hi");
    EXPECT_EQ(DSBase64::Decode(""), "");
    EXPECT_EQ(DSBase64::Decode("-_8="), DSBase64::Decode("+/8="));
    for (const std::string& bytes : {std::string("\x00\xff\x10", 3), std::string("ab"), std::string("abcd")})
    {
        EXPECT_EQ(DSBase64::Decode(DSBase64::Encode(bytes)), bytes);
    }
    EXPECT_EQ(DSBase64::Encode("hi"), "aGk=");
}

TEST(DSBase64Test, RejectsBadLengthsAndCharacters)
{
    const auto keyOf = [](const std::string& in_text) {
        try
        {
            DSBase64::Decode(in_text);
        }
        catch (const Support::ErrorException& e)
        {
            return e.GetMessageKey();
        }
        return tarni_wstring();
    };
    EXPECT_EQ(keyOf("aGVsb"), u"DSInvalidBase64EncodedStringLenError");
    EXPECT_EQ(keyOf("aGk=="), u"DSInvalidBase64EncodedStringLenError");
    EXPECT_EQ(keyOf("aG*s"), u"DSInvalidBase64EncodedStringCharError");
    EXPECT_EQ(keyOf("a=Gk"), u"DSInvalidBase64EncodedStringCharError");
}
