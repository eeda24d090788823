// The log of a configuration run: a full load, edit and save at TRACE level
// writes the entry line of every operation into the run's log file under the
// product's log name, and no secret.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/MemorySettingsStore.h"
#include "common/ProductSettingsFixture.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "product/QDCConfiguration.h"
#include "support/log/DriverLog.h"

using namespace Tarni;
using DriverSupport::DSUidPwdConfiguration;
using testing::HasSubstr;

namespace
{
constexpr const char16_t* PASSWORD = u"s3cr\u00e9t-Pa55";
constexpr const char16_t* PROXY_PASSWORD = u"proxy-Pa55-9876";

class DriverConfigLog : public Testing::ProductSettingsFixture
{
protected:
    void SetUp() override
    {
        ProductSettingsFixture::SetUp();
        DSUidPwdConfiguration::SetEncryptionOptionsEnabled(true);
        DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
        Support::TarniSettingReader::Reset();
        Support::TarniSettingReader::SetStore(&m_store);
    }
    void TearDown() override
    {
        DSUidPwdConfiguration::SetEncryptionOptionsEnabled(false);
        DSUidPwdConfiguration::SetDropPlainPasswordOnSave(false);
        ProductSettingsFixture::TearDown();
    }

    std::unique_ptr<Support::DriverLog> OpenLog()
    {
        const tarni_wstring folder = Support::StringConverter::FromUtf8(m_dir.Path().string());
        return std::make_unique<Support::DriverLog>(
            DriverSupport::DSProductHelper::GetLogName() + u"_DriverConfig.log",
            [folder](tarni_wstring_view in_name) -> std::optional<tarni_wstring> {
                if (in_name == u"LogLevel") return u"LOG_TRACE";
                if (in_name == u"LogPath") return folder;
                return std::nullopt;
            });
    }

    Testing::MemorySettingsStore m_store;
    DriverSupport::DSServerSidePropertyGroup m_ssp;
    DriverSupport::DSPrefixedPropertyGroup m_headers{"http.header."};
};
}  // namespace

TEST_F(DriverConfigLog, AFullRunLogsEveryEntryAndNoSecret)
{
    auto log = OpenLog();
    {
        SparkODBC::QDCConfiguration config(m_ssp, m_headers, log.get(), m_store);
        config.Load();
        config.SetSetting(u"UID", u"alice");
        config.SetSetting(u"PWD", PASSWORD);
        config.SetSetting(u"SSP_spark.sql.shuffle.partitions", u"8");
        config.SetSetting(u"http.header.Authorization", PROXY_PASSWORD);
        DSUidPwdConfiguration* proxy = config.FindCredentialBySecretKey(u"ProxyPWD");
        ASSERT_NE(nullptr, proxy);
        proxy->SetPwd(PROXY_PASSWORD);
        proxy->SetEncryptPwd(true);
        config.FindCredentialBySecretKey(u"PWD")->SetEncryptPwd(true);
        config.Save();
    }
    log.reset();

    const std::string text = Testing::TempDirectory::ReadFile(m_dir / "TarniSparkODBC_DriverConfig.log");
    for (const char* entry : {"Tarni::SparkODBC::QDCConfiguration::Load: +++++ enter +++++",
                              "Tarni::SparkODBC::QDCConfiguration::Save: +++++ enter +++++",
                              "Tarni::SparkODBC::QDCConfiguration::SetSetting: +++++ enter +++++",
                              "Tarni::DriverSupport::DSUidPwdConfiguration::FinalizeBeforeSave: +++++ enter +++++",
                              "Tarni::DriverSupport::DSServerSidePropertyGroup::Save: +++++ enter +++++",
                              "Tarni::DriverSupport::DSPrefixedPropertyGroup::WriteOne: +++++ enter +++++"})
    {
        EXPECT_THAT(text, HasSubstr(entry));
    }
    for (const char16_t* secret : {PASSWORD, PROXY_PASSWORD})
    {
        EXPECT_EQ(std::string::npos, text.find(Support::StringConverter::ToUtf8(secret)))
            << Support::StringConverter::ToUtf8(secret);
    }
}

TEST_F(DriverConfigLog, AStoreThatCannotBeReadIsLoggedWhereItIsRaised)
{
    struct UnreadableStore : Testing::MemorySettingsStore
    {
        std::vector<Platform::StoredValue> ReadAll() override
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSIniReadErr",
                                          {u"/etc/odbc.ini", u"Permission denied"});
        }
    } unreadable;
    Support::TarniSettingReader::SetStore(&unreadable);
    auto log = OpenLog();
    SparkODBC::QDCConfiguration config(m_ssp, m_headers, log.get(), unreadable);
    EXPECT_THROW(config.Load(), Support::ErrorException);
    log.reset();
    EXPECT_THAT(Testing::TempDirectory::ReadFile(m_dir / "TarniSparkODBC_DriverConfig.log"),
                HasSubstr(" Tarni::SparkODBC::QDCConfiguration::Load: Cannot read the settings file \"/etc/odbc.ini\": "
                          "Permission denied."));
}
