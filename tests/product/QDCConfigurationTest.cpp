#include "common/MemorySettingsStore.h"
#include "common/ProductSettingsFixture.h"
#include "common/RecordingLogger.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "product/QDCConfiguration.h"

using namespace Tarni;
using Testing::MemorySettingsStore;
namespace Keys = DriverSupport::Keys;

class DriverConfiguration : public Testing::ProductSettingsFixture
{
protected:
    std::unique_ptr<SparkODBC::QDCConfiguration> LoadFrom(std::vector<Platform::StoredValue> in_values)
    {
        m_store.values = std::move(in_values);
        Support::TarniSettingReader::SetStore(&m_store);
        auto config = std::make_unique<SparkODBC::QDCConfiguration>(m_ssp, m_headers, &m_log, m_store);
        config->Load();
        return config;
    }
    std::string Stored(tarni_wstring_view in_name) const
    {
        const auto* value = m_store.Find(in_name);
        return value ? Support::StringConverter::ToUtf8(value->value) : "<absent>";
    }

    MemorySettingsStore m_store;
    Testing::RecordingLogger m_log;
    DriverSupport::DSServerSidePropertyGroup m_ssp;
    DriverSupport::DSPrefixedPropertyGroup m_headers{"http.header."};
};

TEST_F(DriverConfiguration, FreshStoreLoadsExactlyTheDefaultsAndDriverAndSaveWritesThem)
{
    auto config = LoadFrom({});
    auto expected = config->GetDefaultDriverProperties();
    expected.SetValue(Keys::Driver, u"Tarni Spark ODBC Driver");
    EXPECT_EQ(expected, config->GetMap());

    config->Save();
    for (const auto& [key, value] : expected)
    {
        const bool driverWide = key != u"Port" && key != u"Schema" && key != u"Driver";
        EXPECT_EQ(driverWide ? Support::StringConverter::ToUtf8(value) : "<absent>", Stored(key))
            << Support::StringConverter::ToUtf8(key);
    }
    EXPECT_EQ("", Stored(Keys::LogLevel));
    EXPECT_EQ("0", Stored(Keys::LogFileSize));
    EXPECT_EQ("1", Stored(Keys::LCaseSspKeyName));
    EXPECT_EQ("commit", m_store.operations.back());
}

TEST_F(DriverConfiguration, DataSourceKeysAreNeitherLoadedNorWrittenBack)
{
    auto config = LoadFrom({{u"Port", u"9999"}, {u"Host", u"spark.example"}, {u"DSN", u"x"},
                            {u"DESCRIPTION", u"d"}, {u"Schema", u"s"}, {u"KrbRealm", u"EXAMPLE.COM"}});
    EXPECT_EQ(u"10000", config->GetValue(Keys::Port));
    EXPECT_EQ(u"default", config->GetValue(Keys::Schema));
    EXPECT_FALSE(config->GetMap().Contains(Keys::Host));
    EXPECT_FALSE(config->GetMap().Contains(Keys::DSN));
    EXPECT_EQ(u"EXAMPLE.COM", config->GetValue(Keys::KrbRealm));

    config->Save();
    for (const char* key : {"write Port=", "write Host=", "write DSN=", "write DESCRIPTION=", "write Schema=",
                            "write Driver="})
    {
        EXPECT_EQ(-1, m_store.IndexOf(key)) << key;
    }
    EXPECT_EQ("9999", Stored(u"Port"));
    EXPECT_EQ("spark.example", Stored(u"Host"));
}

TEST_F(DriverConfiguration, StoredValuesReplaceDefaultsAndClearedKeysStayEmpty)
{
    auto config = LoadFrom({{u"KrbServiceName", u""}, {u"SocketTimeout", u"120"}});
    EXPECT_EQ(u"", config->GetValue(Keys::KrbServiceName));
    EXPECT_EQ(u"120", config->GetValue(Keys::SocketTimeout));

    config->SetValue(Keys::HDFSUser, u"");
    config->Save();
    EXPECT_EQ("", Stored(Keys::HDFSUser));
    EXPECT_EQ("", Stored(Keys::KrbServiceName));
}

TEST_F(DriverConfiguration, PrefixedGroupsLoadTheirEntriesAndDeleteRemovedOnes)
{
    auto config = LoadFrom({{u"SSP_spark.sql.shuffle", u"4"}, {u"SSP_keep", u"k"}, {u"http.header.X-Trace", u""},
                            {u"LCaseSspKeyName", u"0"}});
    EXPECT_EQ(u"4", m_ssp.GetProperties().GetValue(u"spark.sql.shuffle"));
    EXPECT_EQ(u"0", m_ssp.GetLCaseSspKeyName());
    EXPECT_TRUE(m_headers.GetProperties().Contains(u"x-trace"));

    m_ssp.GetProperties().Remove(u"spark.sql.shuffle");
    config->GetMap().Remove(u"SSP_spark.sql.shuffle");
    m_headers.GetProperties().SetValue(u"Accept", u"*/*");
    config->Save();
    EXPECT_EQ("<absent>", Stored(u"SSP_spark.sql.shuffle"));
    EXPECT_EQ("k", Stored(u"SSP_keep"));
    EXPECT_EQ("*/*", Stored(u"http.header.Accept"));
    EXPECT_EQ("0", Stored(u"LCaseSspKeyName"));
    EXPECT_NE(-1, m_store.IndexOf("delete SSP_spark.sql.shuffle"));
}

TEST_F(DriverConfiguration, SaveWritesMapThenLoggingThenGroupsInThatOrder)
{
    auto config = LoadFrom({});
    config->SetSetting(Keys::LogFileSize, u"10");
    config->SetSetting(Keys::LogLevel, u"6");
    config->SetSetting(u"SSP_a", u"1");
    config->Save();

    const int lastMapWrite = m_store.IndexOf("write WebHDFSPort=");
    const int logLevel = m_store.IndexOf("write LogLevel=6");
    const int logPath = m_store.IndexOf("write LogPath=");
    const int logCount = m_store.IndexOf("write LogFileCount=");
    const int logSize = m_store.IndexOf("write LogFileSize=10485760");
    const int lcase = m_store.IndexOf("write LCaseSspKeyName=");
    // The group writes its entries after the logging step (the map walk wrote them once before).
    const int group = m_store.LastIndexOf("write SSP_a=1");
    ASSERT_NE(-1, lastMapWrite);
    EXPECT_LT(lastMapWrite, logLevel);
    EXPECT_LT(logLevel, logPath);
    EXPECT_LT(logPath, logCount);
    EXPECT_LT(logCount, logSize);
    EXPECT_LT(logSize, lcase);
    EXPECT_LT(lcase, group);
}

TEST_F(DriverConfiguration, LogFileSizeIsStoredInBytesAsUnsigned32Bits)
{
    EXPECT_EQ(u"10485760", DriverSupport::DSDSNConfiguration::LogFileSizeToStored(u"10"));
    EXPECT_EQ(u"0", DriverSupport::DSDSNConfiguration::LogFileSizeToStored(u""));
    EXPECT_EQ(u"4293918720", DriverSupport::DSDSNConfiguration::LogFileSizeToStored(u"4095"));
    EXPECT_EQ(u"0", DriverSupport::DSDSNConfiguration::LogFileSizeToStored(u"4096"));
    EXPECT_EQ(u"1048576", DriverSupport::DSDSNConfiguration::LogFileSizeToStored(u"4097"));
    EXPECT_EQ(u"", DriverSupport::DSDSNConfiguration::LogFileSizeFromStored(u"ten"));

    auto config = LoadFrom({});
    config->SetValue(Keys::LogFileSize, u"12 MB");
    EXPECT_THROW(config->Save(), Support::ErrorException);
    EXPECT_TRUE(m_store.operations.empty());
    EXPECT_TRUE(m_store.values.empty());
}

TEST_F(DriverConfiguration, SuppressedServiceDiscoveryKeepsStoredModeAndNamespace)
{
    UseProductSettings("supress-service-discovery=1\n");
    auto config = LoadFrom({{u"ZKNamespace", u"old"}});
    config->SetValue(Keys::ZKNamespace, u"new");
    config->SetValue(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    config->Save();
    EXPECT_EQ("old", Stored(Keys::ZKNamespace));
    EXPECT_EQ("<absent>", Stored(Keys::ServiceDiscoveryMode));
}

TEST_F(DriverConfiguration, AFailedWriteEndsTheSaveAndIsLogged)
{
    auto config = LoadFrom({});
    m_store.failOnWrite = u"AuthMech";
    try
    {
        config->Save();
        FAIL() << "the failing write was not reported";
    }
    catch (const Support::ErrorException& e)
    {
        EXPECT_EQ(Support::DS_ERROR, e.GetComponentId());
        EXPECT_EQ(1010, e.GetNativeErrorCode());
    }
    EXPECT_EQ(-1, m_store.IndexOf("write AutoReconnect="));
    EXPECT_TRUE(m_log.Contains(Support::LOG_ERROR, "DSRegistryWriteErr"));
}

TEST_F(DriverConfiguration, PlainSecretsNeverReachTheStore)
{
    auto config = LoadFrom({});
    config->SetValue(Keys::PWD, u"s3cret");
    config->SetValue(Keys::ProxyPWD, u"s3cret");
    config->SetValue(Keys::keyFilePassword, u"s3cret");
    config->Save();
    for (const auto& value : m_store.values)
    {
        EXPECT_EQ(std::u16string::npos, value.value.find(u"s3cret")) << Support::StringConverter::ToUtf8(value.name);
    }
}

TEST_F(DriverConfiguration, UnsetReturnsOrdinaryKeysToDefaultsAndDropsPrefixedOnes)
{
    auto config = LoadFrom({{u"SSP_a", u"1"}, {u"SocketTimeout", u"5"}, {u"KrbRealm", u"R"}});
    config->UnsetSetting(u"SSP_a");
    config->UnsetSetting(u"sockettimeout");
    config->UnsetSetting(u"KrbRealm");
    config->SetSetting(u"http.header.Accept", u"json");
    config->Save();
    EXPECT_EQ("<absent>", Stored(u"SSP_a"));
    EXPECT_EQ("60", Stored(u"SocketTimeout"));
    EXPECT_EQ("<absent>", Stored(u"KrbRealm"));
    EXPECT_EQ("json", Stored(u"http.header.Accept"));
}

TEST_F(DriverConfiguration, ASaveWritesOnlyTheValuesThatDifferAndNothingWhenNoneDoes)
{
    auto config = LoadFrom({});
    config->Save();
    m_store.operations.clear();
    // Stored in another case and as the logging step stores it: the same values.
    m_store.values[0].name = Support::StringConverter::ToLower(m_store.values[0].name);
    config = LoadFrom(m_store.values);
    EXPECT_TRUE(config->Save().empty());
    EXPECT_TRUE(m_store.operations.empty());

    config->SetSetting(Keys::KrbRealm, u"EXAMPLE.COM");
    config->SetSetting(Keys::LogFileSize, u"3");
    config->UnsetSetting(u"SSP_none");
    config->GetMap().SetValue(u"Stale", u"x");
    m_store.values.push_back({u"Stale", u"x"});
    config->UnsetSetting(u"Stale");
    const auto planned = config->PlanSave();
    EXPECT_TRUE(m_store.operations.empty());
    const auto changes = config->Save();
    ASSERT_EQ(3u, changes.size());
    EXPECT_EQ(u"KrbRealm", changes[0].name);
    EXPECT_EQ(DriverSupport::DSStoreChange::Kind::Added, changes[0].kind);
    EXPECT_EQ(u"Stale", changes[1].name);
    EXPECT_EQ(DriverSupport::DSStoreChange::Kind::Removed, changes[1].kind);
    EXPECT_EQ(u"LogFileSize", changes[2].name);
    EXPECT_EQ(u"3145728", changes[2].after.value_or(u""));
    EXPECT_EQ(planned.size(), changes.size());
    EXPECT_EQ((std::vector<std::string>{"write KrbRealm=EXAMPLE.COM", "delete Stale", "write LogFileSize=3145728",
                                        "commit"}),
              m_store.operations);
}
