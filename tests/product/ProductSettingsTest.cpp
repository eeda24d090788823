#include "common/ProductSettingsFixture.h"
#include "driversupport/ConfigurationKeys.h"
#include "product/QuillConfiguration.h"
#include "product/SOConfigurationTables.h"
#include "product/SOProductSettings.h"
#include "core/ErrorException.h"
#include "core/ProductException.h"
#include "support/messages/DSIMessageManager.h"

#include <filesystem>

using namespace Tarni;
using SparkODBC::SOProductSettings;
using Tables = SparkODBC::SOConfigurationTables;

class ProductSettings : public Testing::ProductSettingsFixture
{
};

TEST_F(ProductSettings, WithoutAnySettingTheBuiltInDefaultsApply)
{
    EXPECT_EQ(10000u, SOProductSettings::GetDefaultPort());
    EXPECT_EQ(3u, SOProductSettings::GetDefaultServerType());
    EXPECT_EQ(2u, SOProductSettings::GetDefaultAuthMech());
    EXPECT_EQ(255u, SOProductSettings::GetDefaultStringColumnLength());
    EXPECT_TRUE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_NONE));
    EXPECT_FALSE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_ZOOKEEPER));
    EXPECT_TRUE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_AOSS));

    SparkODBC::QuillConfiguration config(u"", 2, nullptr);
    const auto defaults = config.GetDefaultDriverProperties();
    EXPECT_EQ(u"10000", defaults.GetValue(DriverSupport::Keys::Port));
    EXPECT_EQ(u"3", defaults.GetValue(DriverSupport::Keys::SparkServerType));
    EXPECT_EQ(u"2", defaults.GetValue(DriverSupport::Keys::AuthMech));
    EXPECT_EQ(u"255", defaults.GetValue(DriverSupport::Keys::DefaultStringColumnLength));
    EXPECT_EQ(u"0", defaults.GetValue(DriverSupport::Keys::GetTablesWithQuery));
}

TEST_F(ProductSettings, NumericSettingsAreUsedOnlyWhenTheyConvert)
{
    UseProductSettings("dsn-port=443\ndsn-auth-mech=13\ndsn-hs-type=4\ndefault-string-column-length=1024\n");
    EXPECT_EQ(443u, SOProductSettings::GetDefaultPort());
    EXPECT_EQ(13u, SOProductSettings::GetDefaultAuthMech());
    EXPECT_EQ(4u, SOProductSettings::GetDefaultServerType());
    EXPECT_EQ(1024u, SOProductSettings::GetDefaultStringColumnLength());

    UseProductSettings("dsn-port=4x3\ndsn-auth-mech=14\ndsn-hs-type=5\n");
    EXPECT_EQ(10000u, SOProductSettings::GetDefaultPort());
    EXPECT_EQ(2u, SOProductSettings::GetDefaultAuthMech());
    EXPECT_EQ(3u, SOProductSettings::GetDefaultServerType());

    UseProductSettings("dsn-auth-mech=abc\ndsn-hs-type=0\ndsn-port=-1\n");
    EXPECT_EQ(2u, SOProductSettings::GetDefaultAuthMech());
    EXPECT_EQ(3u, SOProductSettings::GetDefaultServerType());
    EXPECT_EQ(10000u, SOProductSettings::GetDefaultPort());
}

TEST_F(ProductSettings, BooleanSettingsAcceptOneAndTrueOnly)
{
    UseProductSettings("get-tbls-with-query=true\n");
    EXPECT_TRUE(SOProductSettings::GetBoolean(u"get-tbls-with-query"));
    SparkODBC::QuillConfiguration config(u"", 2, nullptr);
    EXPECT_EQ(u"1", config.GetDefaultDriverProperties().GetValue(DriverSupport::Keys::GetTablesWithQuery));

    UseProductSettings("get-tbls-with-query=yes\n");
    EXPECT_FALSE(SOProductSettings::GetBoolean(u"get-tbls-with-query"));
    EXPECT_FALSE(DriverSupport::DSProductHelper::GetBoolSetting(u"get-tbls-with-query").has_value());
}

TEST_F(ProductSettings, ServiceDiscoveryModeListIsSplitAtCommasWithoutTrimming)
{
    UseProductSettings("supported-service-discovery-modes=ZooKeeper,AOSS\n");
    EXPECT_TRUE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_ZOOKEEPER));
    EXPECT_TRUE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_AOSS));

    UseProductSettings("supported-service-discovery-modes=ZooKeeper, AOSS\n");
    EXPECT_TRUE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_ZOOKEEPER));
    EXPECT_FALSE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_AOSS));

    UseProductSettings("supported-service-discovery-modes=zookeeper\n");
    EXPECT_FALSE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_ZOOKEEPER));

    UseProductSettings("suppress-aoss=1\n");
    EXPECT_FALSE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_AOSS));

    UseProductSettings("supported-service-discovery-modes=ZooKeeper,AOSS\nsupress-service-discovery=1\n");
    EXPECT_TRUE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_NONE));
    EXPECT_FALSE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_ZOOKEEPER));
    EXPECT_FALSE(SOProductSettings::IsServiceDiscoveryModeSupported(Tables::SD_AOSS));
}

TEST_F(ProductSettings, MalformedProductFileNamesFileAndLine)
{
    try
    {
        UseProductSettings("# comment\n\ndsn-port=1\nno equals sign\n");
        FAIL() << "a line without '=' was accepted";
    }
    catch (const Support::ErrorException& e)
    {
        EXPECT_EQ(u"DSProductFileErr", e.GetMessageKey());
        ASSERT_EQ(2u, e.GetParameters().size());
        EXPECT_NE(std::u16string::npos, e.GetParameters()[0].find(u"SparkODBC.did"));
        EXPECT_EQ(u"4", e.GetParameters()[1]);
    }
}

TEST_F(ProductSettings, AProductFileThatCannotBeReadIsAProductErrorWithItsText)
{
    // A folder where the file should be cannot be read (a missing file is
    // only "no settings").
    const auto folder = m_dir / "SparkODBC-folder.did";
    std::filesystem::create_directories(folder);
    const tarni_wstring path = Support::StringConverter::FromUtf8(folder.string());
    try
    {
        DriverSupport::DSProductHelper::LoadProductSettings(path);
        FAIL() << "a folder was read as the product file";
    }
    catch (const Support::ProductException& e)
    {
        EXPECT_EQ(u"GetFileErr", e.GetMessageKey());
        EXPECT_EQ(Support::PRODUCT_ERROR, e.GetComponentId());
        const tarni_wstring text = Support::DSIMessageManager::GetDisplayText(e);
        EXPECT_NE(tarni_wstring::npos, text.find(u"Cannot read the product settings file \"" + path + u"\": "))
            << Support::StringConverter::ToUtf8(text);
    }
}
