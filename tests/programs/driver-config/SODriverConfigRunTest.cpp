// The configuration run on the scripted host over the platform's real store
// (the INI file on Linux, Wine's registry under the mingw build): OK saves and
// exits with 1; Cancel, Escape and the close box exit with 0 and leave the
// store exactly as it was; a missing template exits with -1 and still saves;
// the proxy of Proxy Options is stored with only its protected password.
#include "programs/driver-config/SODriverConfigRun.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <optional>

#include "common/MemorySettingsStore.h"
#include "driversupport/DSEncryptionUtils.h"
#include "platform/ProcessEnvironment.h"
#include "programs/driver-config/DriverConfigRunFixture.h"

using namespace Tarni;
using namespace Tarni::Platform;
using Tarni::SparkODBC::SODriverConfigRun;
using Tarni::Support::StringConverter;

namespace
{
// The run owns the store it opens; this one lends a test's store to it.
class LentStore : public ISettingsStore
{
public:
    explicit LentStore(ISettingsStore& in_store) : m_store(in_store) {}
    tarni_wstring GetLocation() const override { return m_store.GetLocation(); }
    std::vector<StoredValue> ReadAll() override { return m_store.ReadAll(); }
    void WriteValue(tarni_wstring_view in_name, tarni_wstring_view in_value) override
    {
        m_store.WriteValue(in_name, in_value);
    }
    void DeleteValue(tarni_wstring_view in_name) override { m_store.DeleteValue(in_name); }
    void BeginUpdate() override { m_store.BeginUpdate(); }
    void CommitUpdate() override { m_store.CommitUpdate(); }
    void AbortUpdate() override { m_store.AbortUpdate(); }

private:
    ISettingsStore& m_store;
};

class SODriverConfigRunTest : public Testing::DriverConfigRunFixture
{
protected:
    int Run(ScriptedDialogHost::DialogScript in_script)
    {
        m_host.ExpectDialog(IDD_DRIVER_CONFIG, std::move(in_script));
        return SODriverConfigRun::Run(m_host, m_options);
    }

    // A value of this run only: under Wine the registry outlives a test run.
    const tarni_wstring m_token =
        StringConverter::FromAscii("uid-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
};
}  // namespace

TEST_F(SODriverConfigRunTest, TheMainDialogShowsTheConfigurationAndOkSavesIt)
{
    // The registry outlives a test run: start from known stored values.
    {
        auto store = Store();
        const std::pair<const char16_t*, const char16_t*> known[] = {
            {u"SparkServerType", u"3"}, {u"AuthMech", u"2"}, {u"ThriftTransport", u"0"},
            {u"ServiceDiscoveryMode", u"No Service Discovery"}, {u"KrbServiceName", u"spark"},
            {u"KrbHostFQDN", u"_HOST"}, {u"ServicePrincipalCanonicalization", u"1"}};
        for (const auto& [name, value] : known)
        {
            store->WriteValue(name, value);
        }
    }
    const int result = Run([&](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetTitle(), u"Tarni Spark ODBC Driver Configuration");
        EXPECT_EQ(w.Items(IDC_SERVER_TYPE).size(), 4u);
        EXPECT_EQ(w.SelectedText(IDC_SERVER_TYPE), u"SparkThriftServer (Spark 1.1 and later)");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"User Name");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"No Service Discovery");
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"Binary");
        EXPECT_EQ(w.Text(IDC_KRB_SERVICE_NAME), u"spark");
        EXPECT_EQ(w.Text(IDC_KRB_HOST_FQDN), u"_HOST");
        EXPECT_EQ(w.Text(IDC_VERSION_LABEL), u"v2.7.5.1012 (64 bit)");
        EXPECT_TRUE(w.Checked(IDC_CANONICALIZE_PRINCIPAL));
        w.Type(IDC_DELEGATION_UID, m_token);
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        w.Click(IDOK);
    });
    EXPECT_EQ(result, 1);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.at(u"DelegationUID"), m_token);
    EXPECT_EQ(stored.at(u"ThriftTransport"), u"2");
    EXPECT_EQ(stored.at(u"SparkServerType"), u"3");
}

TEST_F(SODriverConfigRunTest, CancelEscapeAndTheCloseBoxExitWithZeroAndWriteNothing)
{
    ASSERT_EQ(Run([&](ScriptedDialogWindow& w) {
                  w.Type(IDC_DELEGATION_UID, m_token);
                  w.Click(IDOK);
              }),
              1);
    const Snapshot before = Stored();
    const std::filesystem::path ini = m_folder / "odbc.ini";
    const bool haveFile = std::filesystem::exists(ini);
    std::string bytesBefore;
    if (haveFile)
    {
        std::ifstream in(ini, std::ios::binary);
        bytesBefore.assign(std::istreambuf_iterator<char>(in), {});
    }

    using Action = void (*)(ScriptedDialogWindow&);
    const Action closers[] = {[](ScriptedDialogWindow& w) { w.Click(IDCANCEL); },
                              [](ScriptedDialogWindow& w) { w.PressEscape(); },
                              [](ScriptedDialogWindow& w) { w.PressCloseBox(); }};
    for (Action close : closers)
    {
        EXPECT_EQ(Run([close](ScriptedDialogWindow& w) {
                      w.Type(IDC_DELEGATION_UID, u"changed");
                      w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
                      close(w);
                  }),
                  0);
        EXPECT_EQ(Stored(), before);
        if (haveFile)
        {
            std::ifstream in(ini, std::ios::binary);
            EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), bytesBefore);
        }
    }
}

TEST_F(SODriverConfigRunTest, AMissingTemplateExitsWithMinusOneAndStillSaves)
{
    m_options.templateId = 4242;
    EXPECT_EQ(SODriverConfigRun::Run(m_host, m_options), -1);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.count(u"SparkServerType"), 1u);
    EXPECT_EQ(stored.count(u"KrbServiceName"), 1u);
}

TEST_F(SODriverConfigRunTest, ZooKeeperAndPasswordOptionsOpenFromTheMainDialog)
{
    UseProductSettings("supported-service-discovery-modes=ZooKeeper,AOSS\n");

    // Dialogs open in this order: the main dialog, then the two it opens.
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.Items(IDC_SERVICE_DISCOVERY_MODE),
                  (std::vector<tarni_wstring>{u"No Service Discovery", u"ZooKeeper", u"AOSS"}));
        EXPECT_FALSE(w.Enabled(IDC_SERVICE_DISCOVERY_OPTIONS));
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"ZooKeeper");
        w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_USER_NAME, u"alice");
        w.Type(IDC_PASSWORD, u"s3cret");
        w.Click(IDC_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
        w.Type(IDC_ZK_NAMESPACE, u"hiveserver2");
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_ALL_USERS);
        w.Click(IDOK);
    });
    const int result = SODriverConfigRun::Run(m_host, m_options);
    EXPECT_EQ(result, 1);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.at(u"ServiceDiscoveryMode"), u"ZooKeeper");
    EXPECT_EQ(stored.at(u"ZKNamespace"), u"hiveserver2");
    EXPECT_EQ(stored.at(u"AuthMech"), u"3");
    EXPECT_EQ(stored.at(u"UID"), u"alice");
    EXPECT_EQ(stored.count(u"PWD"), 0u) << "a plain password never reaches the store";
}

TEST_F(SODriverConfigRunTest, APasswordWithoutAnEncryptionScopeIsDroppedAndTheUserIsTold)
{
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_USER_NAME, u"bob");
        w.Type(IDC_PASSWORD, u"pa55word");
        w.Click(IDC_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        // Neither scope: the password is not to be saved.
        w.CheckButton(IDC_PWD_CURRENT_USER_ONLY, false);
        w.CheckButton(IDC_PWD_ALL_USERS, false);
        w.Click(IDOK);
    });
    m_host.ExpectMessageBox(IDOK);
    EXPECT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    const auto& box = m_host.GetMessageBoxes().front();
    EXPECT_EQ(box.caption, u"Credentials Not Saved");
    EXPECT_EQ(box.flags, 0x30u);
    EXPECT_EQ(box.ownerTemplate, static_cast<unsigned>(IDD_DRIVER_CONFIG));
    EXPECT_NE(box.text.find(u"The value of the PWD configuration is not being saved."), tarni_wstring::npos);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.count(u"PWD"), 0u);
    EXPECT_EQ(stored.count(u"EncryptedPWD"), 0u);
}

TEST_F(SODriverConfigRunTest, TheProxyIsStoredWithOnlyItsProtectedPasswordAndShownAgain)
{
    // The current user's key of protected values lives in the test's folder.
    struct ConfigHome
    {
        std::optional<tarni_wstring> saved = ProcessEnvironment::GetVariable(u"XDG_CONFIG_HOME");
        ~ConfigHome() { ProcessEnvironment::SetVariable(u"XDG_CONFIG_HOME", saved); }
    } configHome;
    ProcessEnvironment::SetVariable(u"XDG_CONFIG_HOME", StringConverter::FromUtf8(m_folder.string()));
    const auto openProxyOptions = [](ScriptedDialogWindow& w) {
        w.Click(IDC_PROXY_OPTIONS);
        w.Click(IDOK);
    };
    const tarni_wstring proxyHost = m_token + u".proxy.corp";
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, openProxyOptions);
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [&](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
        w.CheckButton(IDC_PROXY_USE, false);  // whatever an earlier run under Wine left
        w.Click(IDC_PROXY_USE);
        w.Type(IDC_PROXY_HOST, proxyHost);
        w.Type(IDC_PROXY_PORT, u"3128");
        w.Type(IDC_PROXY_USER, u"alice");
        w.Type(IDC_PROXY_PASSWORD, u"pr0xy-s3cret");
        w.Click(IDC_PROXY_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_CURRENT_USER_ONLY);
        w.Click(IDOK);
    });
    ASSERT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.at(u"UseProxy"), u"1");
    EXPECT_EQ(stored.at(u"ProxyHost"), proxyHost);
    EXPECT_EQ(stored.at(u"ProxyPort"), u"3128");
    EXPECT_EQ(stored.at(u"ProxyUID"), u"alice");
    EXPECT_EQ(stored.count(u"ProxyPWD"), 0u) << "a plain password never reaches the store";
    EXPECT_EQ(stored.at(u"ProxyEncryptedPWD").find(u"pr0xy-s3cret"), tarni_wstring::npos);

    // The next run shows the recovered password; switched off, the rest stays.
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, openProxyOptions);
    m_host.ExpectDialog(IDD_PROXY_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.Text(IDC_PROXY_PASSWORD), u"pr0xy-s3cret");
        w.Click(IDC_PROXY_USE);
        w.Click(IDOK);
    });
    ASSERT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    const Snapshot after = Stored();
    EXPECT_EQ(after.at(u"UseProxy"), u"0");
    EXPECT_EQ(after.at(u"ProxyHost"), proxyHost);
    EXPECT_FALSE(after.at(u"ProxyEncryptedPWD").empty());
    EXPECT_EQ(after.count(u"ProxyPWD"), 0u);
}

TEST_F(SODriverConfigRunTest, SslAndAossOptionsOpenFromTheMainDialogAndTheStoreHoldsTheirValues)
{
    UseProductSettings("supported-service-discovery-modes=ZooKeeper,AOSS\n");
    const tarni_wstring caFile = StringConverter::FromUtf8((m_folder / "ca.pem").string());
    std::ofstream(m_folder / "ca.pem") << "-----BEGIN CERTIFICATE-----\n";

    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.Click(IDC_SSL_OPTIONS);
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"AOSS");
        w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_SSL_OPTIONS_TWO_WAY, [](ScriptedDialogWindow& w) {
        // The registry of the Windows run keeps the values of earlier runs.
        if (!w.Checked(IDC_SSL_ENABLE)) w.Click(IDC_SSL_ENABLE);
        if (w.Checked(IDC_SSL_USE_SYSTEM_TRUST_STORE)) w.Click(IDC_SSL_USE_SYSTEM_TRUST_STORE);
        w.Click(IDC_SSL_BROWSE_TRUSTED_CERTS);
        w.SelectCombo(IDC_SSL_MIN_TLS, u"1.2");
        w.Click(IDOK);
    });
    m_host.ExpectOpenFile(caFile);
    m_host.ExpectDialog(IDD_AOSS_OPTIONS, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetParent()->GetTemplateId(), static_cast<unsigned>(IDD_DRIVER_CONFIG));
        w.SelectCombo(IDC_AOSS_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_AOSS_USER_NAME, u"watcher");
        w.Type(IDC_AOSS_PASSWORD, u"aoss-s3cret");
        w.Click(IDC_AOSS_PASSWORD_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_PWD_CURRENT_USER_ONLY);
        w.Click(IDOK);
    });
    EXPECT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.at(u"SSL"), u"1");
    EXPECT_EQ(stored.at(u"TrustedCerts"), caFile);
    EXPECT_EQ(stored.at(u"Min_TLS"), u"1.2");
    EXPECT_EQ(stored.at(u"ServiceDiscoveryMode"), u"AOSS");
    EXPECT_EQ(stored.at(u"AOSS_AuthMech"), u"3");
    EXPECT_EQ(stored.at(u"AOSS_UID"), u"watcher");
    EXPECT_EQ(stored.count(u"AOSS_PWD"), 0u) << "a plain password never reaches the store";
    ASSERT_EQ(stored.count(u"AOSS_EncryptedPWD"), 1u);
    EXPECT_EQ(stored.at(u"AOSS_EncryptedPWD").find(u"aoss-s3cret"), tarni_wstring::npos);
}

TEST_F(SODriverConfigRunTest, AStoredSecretThatCannotBeRecoveredSurvivesOkUntilANewOneIsTyped)
{
    // A protected password that another machine wrote, or one digit changed.
    tarni_wstring tampered = DriverSupport::DSEncryptionUtils::Encrypt(u"s3cret", false, u"EncryptedPWD");
    tampered.back() = tampered.back() == u'0' ? u'1' : u'0';
    tampered.pop_back();
    {
        auto store = Store();
        store->BeginUpdate();
        store->WriteValue(u"AuthMech", u"3");
        store->WriteValue(u"UID", u"bob");
        store->WriteValue(u"EncryptedPWD", tampered);
        store->CommitUpdate();
    }

    // Opening tells once which value could not be recovered; OK with the
    // password field untouched keeps the stored value byte for byte.
    m_host.ExpectMessageBox(IDOK);
    EXPECT_EQ(Run([](ScriptedDialogWindow& w) {
                  EXPECT_EQ(w.Text(IDC_PASSWORD), u"");
                  w.Click(IDOK);
              }),
              1);
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    const auto& box = m_host.GetMessageBoxes().front();
    EXPECT_EQ(box.caption, u"Stored Credentials Not Recovered");
    EXPECT_NE(box.text.find(u"EncryptedPWD: "), tarni_wstring::npos);
    EXPECT_EQ(box.text.find(tampered), tarni_wstring::npos) << "the box names the key, never the value";
    EXPECT_EQ(Stored()[u"EncryptedPWD"], tampered);

    // A typed password replaces it (the box comes once more: the value is
    // still the unrecoverable one when this run starts).
    m_host.ExpectMessageBox(IDOK);
    EXPECT_EQ(Run([](ScriptedDialogWindow& w) {
                  w.Type(IDC_PASSWORD, u"n3w-pass");
                  w.Click(IDOK);
              }),
              1);
    const tarni_wstring replaced = Stored()[u"EncryptedPWD"];
    EXPECT_NE(replaced, tampered);
    EXPECT_EQ(DriverSupport::DSEncryptionUtils::Decrypt(replaced, u"EncryptedPWD").value, u"n3w-pass");
}

TEST_F(SODriverConfigRunTest, AFailedSaveKeepsTheDialogOpenAndALaterOkWritesTheInput)
{
    Testing::MemorySettingsStore memory;
    memory.failOnWrite = u"KrbRealm";
    m_options.openStore = [&memory](const tarni_wstring&) { return std::make_unique<LentStore>(memory); };
    m_host.ExpectMessageBox(IDOK);
    EXPECT_EQ(Run([&memory](ScriptedDialogWindow& w) {
                  w.SelectCombo(IDC_AUTH_MECH, u"Kerberos");
                  w.Type(IDC_KRB_REALM, u"EXAMPLE.COM");
                  w.Click(IDOK);
                  ASSERT_FALSE(w.IsEnded()) << "a failed save leaves the dialog open";
                  EXPECT_EQ(w.Text(IDC_KRB_REALM), u"EXAMPLE.COM");
                  memory.failOnWrite.clear();
                  w.Click(IDOK);
              }),
              1);
    ASSERT_EQ(m_host.GetMessageBoxes().size(), 1u);
    EXPECT_EQ(m_host.GetMessageBoxes().front().caption, u"DSN Configuration Error");
    EXPECT_EQ(m_host.GetMessageBoxes().front().ownerTemplate, static_cast<unsigned>(IDD_DRIVER_CONFIG));
    ASSERT_NE(memory.Find(u"KrbRealm"), nullptr);
    EXPECT_EQ(memory.Find(u"KrbRealm")->value, u"EXAMPLE.COM");
    EXPECT_EQ(memory.Find(u"AuthMech")->value, u"1");
}

TEST_F(SODriverConfigRunTest, LoggingOptionsThenOkAndOkStoreTheLoggingSettings)
{
    const tarni_wstring logs = StringConverter::FromUtf8((m_folder / "logs").string());
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.Click(IDC_LOGGING_OPTIONS);
        w.Click(IDOK);
    });
    m_host.ExpectFolder(logs);
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_LOG_LEVEL, u"LOG_DEBUG");
        w.Click(IDC_LOG_BROWSE);
        w.Type(IDC_LOG_MAX_FILE_COUNT, u"12");
        w.Type(IDC_LOG_MAX_FILE_SIZE, u"4096");
        w.Click(IDOK);
    });
    EXPECT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    const Snapshot stored = Stored();
    EXPECT_EQ(stored.at(u"LogLevel"), u"5");
    EXPECT_EQ(stored.at(u"LogPath"), logs);
    EXPECT_EQ(stored.at(u"LogFileCount"), u"12");
    EXPECT_EQ(stored.at(u"LogFileSize"), u"0") << "4096 MB wraps around as the store keeps it";
}

TEST_F(SODriverConfigRunTest, AnImportReplacesWhatTheMainDialogShowsAndSaves)
{
    const tarni_wstring exported = StringConverter::FromUtf8((m_folder / "exported.sdc").string());
    const auto imported = m_folder / "imported.sdc";
    std::ofstream(imported, std::ios::binary) << "SparkServerType=3\nAuthMech=2\nDelegationUID=from-file\n";
    m_host.ExpectDialog(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"SparkThriftServer (Spark 1.1 and later)");
        w.Type(IDC_DELEGATION_UID, u"typed");
        w.Click(IDC_LOGGING_OPTIONS);
        EXPECT_EQ(w.Text(IDC_DELEGATION_UID), u"from-file");
        w.Click(IDOK);
    });
    m_host.ExpectSaveFile(exported);
    m_host.ExpectOpenFile(StringConverter::FromUtf8(imported.string()));
    m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](ScriptedDialogWindow& w) {
        w.Click(IDC_LOG_EXPORT);
        w.Click(IDC_LOG_IMPORT);
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(SODriverConfigRun::Run(m_host, m_options), 1);
    std::ifstream file(m_folder / "exported.sdc", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(text.find("\nDelegationUID=typed\n"), std::string::npos) << "what was typed is exported\n" << text;
    EXPECT_EQ(Stored().at(u"DelegationUID"), u"from-file");
}
