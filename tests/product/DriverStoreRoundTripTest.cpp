// Save and load through the platform's real store (the INI file on Linux,
// the registry under Wine on Windows): what one run saves, the next run loads.
#include "common/ProductSettingsFixture.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "platform/SettingsStoreFactory.h"
#include "product/QDCConfiguration.h"

using namespace Tarni;

class DriverStoreRoundTrip : public Testing::ProductSettingsFixture
{
protected:
    Platform::DriverStoreLocation Location() const
    {
        Platform::DriverStoreLocation location;
        location.registryPath = u"SOFTWARE\\Tarni Test\\DriverStoreRoundTrip\\Driver";
        location.iniPath = Support::StringConverter::FromUtf8((m_dir / "odbc.ini").string());
        return location;
    }

    /// One run of the program: open the store, load, let the caller edit, save.
    template <typename Edit>
    DriverSupport::ConfigurationMap Run(Edit in_edit)
    {
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(Location());
        Support::TarniSettingReader::SetStore(store.get());
        DriverSupport::DSServerSidePropertyGroup ssp;
        DriverSupport::DSPrefixedPropertyGroup headers("http.header.");
        SparkODBC::QDCConfiguration config(ssp, headers, nullptr, *store);
        config.Load();
        in_edit(config);
        config.Save();
        Support::TarniSettingReader::SetStore(nullptr);
        return config.GetMap();
    }

    void TearDown() override
    {
        // Leave no test values behind in the store.
        Run([](SparkODBC::QDCConfiguration& io_config) {
            for (const auto& [key, value] : DriverSupport::ConfigurationMap(io_config.GetMap()))
            {
                io_config.UnsetSetting(key);
            }
        });
        ProductSettingsFixture::TearDown();
    }
};

TEST_F(DriverStoreRoundTrip, EveryValueTheRegistryCouldHoldComesBack)
{
    const std::vector<std::pair<tarni_wstring, tarni_wstring>> values = {
        {u"KrbRealm", u"  blanks  "}, {u"HTTPPath", u"a=b"}, {u"HDFSUser", u"J\u00fcrgen \u65e5\u672c"},
        {u"Auth_Scope", u""}, {u"SSP_spark.sql.x", u"8"}, {u"http.header.X-Trace", u"on"}, {u"LogFileSize", u"20"}};
    const auto saved = Run([&](SparkODBC::QDCConfiguration& io_config) {
        for (const auto& [key, value] : values)
        {
            io_config.SetSetting(key, value);
        }
    });
    const auto loaded = Run([](SparkODBC::QDCConfiguration&) {});
    for (const auto& [key, value] : values)
    {
        EXPECT_EQ(value, loaded.GetValue(key)) << Support::StringConverter::ToUtf8(key);
    }
    // The second run also sees what the first save added (logging keys, the
    // SSP switch); everything the first run held comes back unchanged.
    for (const auto& [key, value] : saved)
    {
        EXPECT_EQ(value, loaded.GetValue(key)) << Support::StringConverter::ToUtf8(key);
    }
}
