// The main configuration dialog on the scripted host: what it shows, how the
// server type, mechanism and transport follow each other, what OK checks and
// writes in each variant, the option buttons and the Test button.
#include <algorithm>

#include "dialogs/MainDialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "core/ComponentId.h"
#include "core/ErrorException.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
namespace Keys = Tarni::DriverSupport::Keys;
using Tarni::DriverSupport::DSUidPwdConfiguration;
using Tarni::DriverSupport::IConnectionTester;

namespace
{
using Items = std::vector<tarni_wstring>;
using Window = ScriptedDialogWindow;

class QuillConfigurationDialogTest : public Testing::MainDialogTest
{
protected:
    const ScriptedDialogHost::MessageBoxRecord& LastBox() const { return m_host.GetMessageBoxes().back(); }
    void Cancel(Window& w) { w.Click(IDCANCEL); }
};

TEST_F(QuillConfigurationDialogTest, TheListsFollowTheProductSettings)
{
    const Items basic = {u"No Authentication", u"Kerberos", u"User Name", u"User Name and Password",
                         u"Windows Azure HDInsight Emulator", u"Windows Azure HDInsight Service", u"OAuth 2.0"};
    Items withMapr = basic;
    withMapr.push_back(u"MapR SASL");
    const struct
    {
        const char* settings;
        Items modes, mechanisms;
    } cases[] = {
        {"", {u"No Service Discovery", u"AOSS"}, basic},
        {"suppress-aoss=1\nsupress-hdinsight=1\n",
         {u"No Service Discovery"},
         {u"No Authentication", u"Kerberos", u"User Name", u"User Name and Password", u"OAuth 2.0"}},
        {"supported-service-discovery-modes=ZooKeeper,AOSS\nsupport-maprsasl=1\n",
         {u"No Service Discovery", u"ZooKeeper", u"AOSS"},
         withMapr},
        {"supported-service-discovery-modes=ZooKeeper, AOSS\n", {u"No Service Discovery", u"ZooKeeper"}, basic},
        {"supported-service-discovery-modes=AOSS\nsupress-service-discovery=1\n", {u"No Service Discovery"}, basic},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.settings);
        UseProductSettings(c.settings);
        Run(IDD_DRIVER_CONFIG, [&](Window& w) {
            EXPECT_EQ(w.Items(IDC_SERVICE_DISCOVERY_MODE), c.modes);
            EXPECT_EQ(w.Items(IDC_AUTH_MECH), c.mechanisms);
            EXPECT_EQ(w.Items(IDC_SERVER_TYPE).size(), 4u);
            EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"Binary", u"SASL", u"HTTP"}));
            Cancel(w);
        });
    }
}

TEST_F(QuillConfigurationDialogTest, StoredValuesAreShownAndOkWritesEveryControlBack)
{
    Set(Keys::SparkServerType, u"2");
    Set(Keys::AuthMech, u"1");
    Set(Keys::ThriftTransport, u"1");
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    Set(Keys::ZKNamespace, u"ns");
    Set(Keys::Host, u"h1,h2");
    Set(Keys::DelegateKrbCreds, u"1");
    m_configuration.GetCredentials().SetUid(u"ann");
    m_configuration.GetCredentials().SetEncryptPwd(true);  // a typed password will be saved: no warning
    m_configuration.SetDsnName(u"Sales");
    Run(IDD_DSN_SETUP, [](Window& w) {
        EXPECT_EQ(w.SelectedText(IDC_SERVER_TYPE), u"SharkServer2 (Shark 0.9.*)");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"Kerberos");
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"SASL");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"ZooKeeper");
        EXPECT_EQ(w.Text(IDC_DSN_NAME) + w.Text(IDC_HOSTS) + w.Text(IDC_PORT) + w.Text(IDC_DATABASE),
                  u"Salesh1,h210000default");
        EXPECT_EQ(w.Text(IDC_KRB_SERVICE_NAME) + w.Text(IDC_USER_NAME), u"sparkann");
        EXPECT_TRUE(w.Checked(IDC_DELEGATE_KRB_CREDS));
        EXPECT_EQ(w.Text(IDC_VERSION_LABEL), u"v2.7.5.1012 (64 bit)");

        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"No Service Discovery");
        w.Type(IDC_DSN_DESCRIPTION, u"desc");
        w.Type(IDC_PORT, u"10001");
        w.Type(IDC_DATABASE, u"sales");
        w.Type(IDC_KRB_REALM, u"EXAMPLE.COM");
        w.Type(IDC_KRB_HOST_FQDN, u"spark.example.com");
        w.Click(IDC_DELEGATE_KRB_CREDS);
        w.Click(IDC_CANONICALIZE_PRINCIPAL);
        w.Type(IDC_DELEGATION_UID, u"bob");
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_PASSWORD, u"pw");
        w.Click(IDOK);
    });
    const std::pair<tarni_wstring_view, tarni_wstring_view> expected[] = {
        {Keys::DESCRIPTION, u"desc"}, {Keys::Host, u"h1,h2"}, {Keys::Port, u"10001"}, {Keys::Schema, u"sales"},
        {Keys::SparkServerType, u"2"}, {Keys::ServiceDiscoveryMode, u"No Service Discovery"}, {Keys::AuthMech, u"3"},
        {Keys::ThriftTransport, u"2"}, {Keys::KrbRealm, u"EXAMPLE.COM"}, {Keys::KrbHostFQDN, u"spark.example.com"},
        {Keys::KrbServiceName, u"spark"}, {Keys::DelegateKrbCreds, u"0"}, {Keys::ServicePrincipalCanonicalization, u"0"},
        {Keys::UID, u"ann"}, {Keys::PWD, u"pw"}, {Keys::DelegationUID, u"bob"},
    };
    for (const auto& [key, value] : expected)
    {
        EXPECT_EQ(Get(key), value) << Support::StringConverter::ToUtf8(key);
    }
}

TEST_F(QuillConfigurationDialogTest, MissingOrUnlistedStoredValuesAreHandledWithoutLoss)
{
    // No stored transport: the first one allowed is shown and stored.
    const std::pair<const char16_t*, const char16_t*> cases[] = {{u"2", u"0"}, {u"1", u"1"}, {u"11", u"2"}};
    for (const auto& [mech, stored] : cases)
    {
        m_configuration.LoadDefaults();
        Set(Keys::AuthMech, mech);
        EXPECT_EQ(Run(IDD_DRIVER_CONFIG, [](Window& w) { w.Click(IDOK); }), 1);
        EXPECT_EQ(Get(Keys::ThriftTransport), stored);
    }
    // A stored mechanism the list does not offer stays as stored.
    Set(Keys::AuthMech, u"12");
    Run(IDD_DRIVER_CONFIG, [](Window& w) {
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"");
        w.Click(IDOK);
    });
    EXPECT_EQ(Get(Keys::AuthMech), u"12");
}

TEST_F(QuillConfigurationDialogTest, SwitchingToDfiAndBackRestoresModeMechanismAndTransport)
{
    Set(Keys::AuthMech, u"1");
    Set(Keys::ThriftTransport, u"2");
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    Set(Keys::SSL, u"0");
    Run(IDD_DSN_SETUP, [](Window& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"No Service Discovery");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"User Name and Password");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"HTTP"}));
        EXPECT_EQ(w.Text(IDC_PORT), u"443");

        w.SelectCombo(IDC_SERVER_TYPE, u"SparkThriftServer (Spark 1.1 and later)");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"ZooKeeper");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"Kerberos");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"SASL", u"HTTP"}));
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        w.Click(IDCANCEL);
    });
    // What the DFI service needs is set in the SSL and HTTP settings at once.
    EXPECT_EQ(Get(Keys::SSL), u"1");
    EXPECT_EQ(Get(Keys::HTTPPath), u"cliservice");
}

TEST_F(QuillConfigurationDialogTest, SharkServerFixesItsChoicesAndLeavingItRestoresTheUsersOwn)
{
    Run(IDD_DRIVER_CONFIG, [](Window& w) {
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"AOSS");
        w.SelectCombo(IDC_SERVER_TYPE, u"SharkServer (Shark 0.8.1 and earlier)");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"No Authentication");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"No Service Discovery");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"Binary"}));
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"Binary");  // not a choice to remember
        // Through DFI, which fixes other values, back to the user's own.
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        w.SelectCombo(IDC_SERVER_TYPE, u"SharkServer2 (Shark 0.9.*)");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"User Name and Password");
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"AOSS");
        // Between the two Spark server types nothing is reset.
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"SASL");
        w.SelectCombo(IDC_SERVER_TYPE, u"SparkThriftServer (Spark 1.1 and later)");
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"SASL");
        w.Click(IDCANCEL);
    });
}

TEST_F(QuillConfigurationDialogTest, AMechanismChangeRefillsTheTransportsAndIsWrittenAtOnce)
{
    Run(IDD_DRIVER_CONFIG, [&](Window& w) {
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        w.SelectCombo(IDC_AUTH_MECH, u"Kerberos");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"SASL", u"HTTP"}));
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        EXPECT_EQ(Get(Keys::AuthMech), u"1") << "written before OK";
        // HTTP is not allowed with a user name only; it comes back with a mechanism that allows it.
        w.SelectCombo(IDC_AUTH_MECH, u"User Name");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"Binary", u"SASL"}));
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"Binary");
        w.SelectCombo(IDC_AUTH_MECH, u"No Authentication");
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(Get(Keys::AuthMech), u"0") << "the mechanism change stays after Cancel";
}

TEST_F(QuillConfigurationDialogTest, NotificationsCausedByTheHandlerItselfAreIgnored)
{
    // Switching to DFI sets the Port field, which notifies as typing does.
    Run(IDD_DSN_SETUP, [](Window& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(std::count_if(m_logger.records.begin(), m_logger.records.end(),
                            [](const auto& r) { return r.place.find("::OnControlChanged") != std::string::npos; }),
              1);
}

// ------------------------------------------------------------------ OK

TEST_F(QuillConfigurationDialogTest, ADsnNameOfThirtyTwoCharactersIsAcceptedWholeAndLongerOnesAreCut)
{
    const tarni_wstring name32 = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ-01234";
    for (const tarni_wstring& typed : {name32, name32 + u"5"})
    {
        EXPECT_EQ(Run(IDD_DSN_SETUP,
                      [&](Window& w) {
                          FillDsnBasics(w, typed);
                          w.Click(IDOK);
                      }),
                  1);
        EXPECT_EQ(m_configuration.GetDsnName(), name32);
    }
}

TEST_F(QuillConfigurationDialogTest, RefusedNamesKeepTheDialogOpenWithTheirStrings)
{
    const tarni_wstring invalid =
        u"Data Source Name value cannot contain any of the following characters: []{}(),;?*=!@\\";
    std::vector<std::pair<tarni_wstring, tarni_wstring>> cases = {{u"", u"Data Source Name value cannot be empty."}};
    for (const char16_t c : tarni_wstring(u"[]{}(),;?*=!@\\"))
    {
        cases.push_back({tarni_wstring(u"Sales") + c, invalid});
    }
    for (const auto& [name, text] : cases)
    {
        m_host.ExpectMessageBox(IDOK);
        Run(IDD_DSN_SETUP, [&](Window& w) {
            FillDsnBasics(w, name);
            // Sent directly: an empty name disables the button itself.
            w.Send(WM_COMMAND, MakeCommandParam(IDOK, BN_CLICKED), 0);
            ASSERT_FALSE(w.IsEnded());
            EXPECT_EQ(w.Text(IDC_DSN_NAME), name) << "the input stays";
            w.Click(IDCANCEL);
        });
        EXPECT_EQ(LastBox().text, text);
        EXPECT_EQ(LastBox().caption, u"Invalid Data Source Name");
        EXPECT_EQ(LastBox().flags, 0x40u);
        EXPECT_EQ(LastBox().ownerTemplate, static_cast<unsigned>(IDD_DSN_SETUP));
    }
    EXPECT_EQ(m_configuration.GetDsnName(), u"");
}

TEST_F(QuillConfigurationDialogTest, ZooKeeperNeedsANamespaceAndTheCatalogueTextComesFirst)
{
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectMessageBox(IDOK);
    EXPECT_EQ(Run(IDD_DSN_SETUP,
                  [&](Window& w) {
                      FillDsnBasics(w);
                      w.Click(IDOK);
                      DriverSupport::DSMessageCatalogue::SetLookup(
                          [](int in_component, tarni_wstring_view in_key, const std::vector<tarni_wstring>&) {
                              return in_component == Support::PRODUCT_ERROR && in_key == u"QuillEmptyZkNamespaceErr"
                                         ? std::optional<tarni_wstring>(u"catalogue text")
                                         : std::nullopt;
                          });
                      w.Click(IDOK);
                      m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](Window& z) {
                          z.Type(IDC_ZK_NAMESPACE, u"spark2");
                          z.Click(IDOK);
                      });
                      w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
                      w.Click(IDOK);
                  }),
              1);
    const auto& boxes = m_host.GetMessageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].caption, u"ZooKeeper Namespace Required");
    EXPECT_EQ(boxes[0].text, u"ZooKeeper Namespace is required. Please select \"Service Discovery Options...\" and "
                             u"enter a value for \"ZooKeeper Namespace\".");
    EXPECT_EQ(boxes[1].text, u"catalogue text");
    EXPECT_EQ(Get(Keys::ZKNamespace), u"spark2");
}

TEST_F(QuillConfigurationDialogTest, OAuthNeedsWhatItsFlowUses)
{
    const tarni_wstring clientText =
        u"Authorization URL and Client Credential are required. Please select \"OAuth Options...\" and enter a value "
        u"for \"Authorization URL\", \"Client ID\" and \"Client Secret\".";
    const std::vector<tarni_wstring> clientParameters = {
        u"Authorization URL and Client Credential", u"\"Authorization URL\", \"Client ID\" and \"Client Secret\"."};
    const struct
    {
        std::vector<std::pair<tarni_wstring, tarni_wstring>> values;
        tarni_wstring text;  ///< empty: accepted
        std::vector<tarni_wstring> parameters;
    } cases[] = {
        {{{u"Auth_Flow", u""}},
         u"Authentication Flow is missing. Please select \"OAuth Options...\" and select a value for \"Authentication "
         u"Flow\"",
         {u"Authentication Flow", u"\"Authentication Flow\""}},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_ID", u"app"}}, clientText, clientParameters},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_Secret", u"s3cret"}}, clientText, clientParameters},
        {{{u"Auth_Flow", u"0"}},
         u"Access token is required. Please select \"OAuth Options...\" and enter a value for \"Access Token\".",
         {u"Access token", u"\"Access Token\"."}},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_ID", u"app"}, {u"Auth_Client_Secret", u"s3cret"}}, u"", {}},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_ID", u"app"}, {u"Auth_Encrypted_Client_Secret", u"AES1:00"}}, u"", {}},
        {{{u"Auth_Flow", u"0"}, {u"Auth_AccessToken", u"tok"}}, u"", {}},
        {{{u"Auth_Flow", u"2"}}, u"", {}},
    };
    for (const auto& c : cases)
    {
        m_configuration.LoadDefaults();
        for (const auto& [key, value] : c.values)
        {
            Set(key, value);
        }
        std::vector<tarni_wstring> asked;
        DriverSupport::DSMessageCatalogue::SetLookup(
            [&](int, tarni_wstring_view in_key, const std::vector<tarni_wstring>& in_parameters) {
                EXPECT_EQ(in_key, u"QuillEmptyOAuthCredentialsErr");
                asked = in_parameters;
                return std::optional<tarni_wstring>();
            });
        if (!c.text.empty())
        {
            m_host.ExpectMessageBox(IDOK);
        }
        const auto boxes = m_host.GetMessageBoxes().size();
        const auto result = Run(IDD_DSN_SETUP, [&](Window& w) {
            FillDsnBasics(w);
            w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
            w.Click(IDOK);
            if (!w.IsEnded())
            {
                w.Click(IDCANCEL);
            }
        });
        EXPECT_EQ(result, c.text.empty() ? 1 : 0);
        if (!c.text.empty())
        {
            EXPECT_EQ(LastBox().caption, u"OAuth2.0 Credentials Required");
            EXPECT_EQ(LastBox().text, c.text);
            EXPECT_EQ(asked, c.parameters);
        }
        else
        {
            EXPECT_EQ(m_host.GetMessageBoxes().size(), boxes);
        }
    }
}

TEST_F(QuillConfigurationDialogTest, TheDriverWideDialogSavesWithoutNameZooKeeperOrOAuthChecks)
{
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    Set(Keys::Auth_Flow, u"");
    int saves = 0;
    const auto result = Run(
        IDD_DRIVER_CONFIG,
        [](Window& w) {
            w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
            w.Click(IDOK);
        },
        [&](QuillConfigurationDialog& d) { d.SetSaveAction([&](IDialogWindow*) { ++saves; }); });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(Get(Keys::AuthMech), u"11");
    EXPECT_EQ(m_configuration.GetDsnName(), u"");
}

TEST_F(QuillConfigurationDialogTest, AFailedSaveKeepsTheDialogOpenWithTheInput)
{
    bool fail = true;
    m_host.ExpectMessageBox(IDOK);
    const auto result = Run(
        IDD_DSN_SETUP,
        [&](Window& w) {
            FillDsnBasics(w);
            w.Click(IDOK);
            ASSERT_FALSE(w.IsEnded());
            EXPECT_EQ(w.Text(IDC_DSN_NAME), u"Sales");
            fail = false;
            w.Click(IDOK);
        },
        [&](QuillConfigurationDialog& d) {
            d.SetSaveAction([&](IDialogWindow*) {
                if (fail)
                {
                    throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSWriteErr");
                }
            });
        });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(LastBox().caption, u"DSN Configuration Error");
}

// ------------------------------------------------------------------ option buttons

TEST_F(QuillConfigurationDialogTest, OptionButtonsOpenTheirDialogs)
{
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    m_configuration.GetCredentials().SetEncryptPwd(true);
    Run(IDD_DSN_SETUP, [&](Window& w) {
        m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](Window& z) {
            z.Type(IDC_ZK_NAMESPACE, u"ns");
            z.Click(IDOK);
        });
        w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](Window& p) {
            p.Click(IDC_PWD_ALL_USERS);
            p.Click(IDOK);
        });
        w.Click(IDC_PASSWORD_OPTIONS);
        m_host.ExpectDialog(IDD_PROXY_OPTIONS, [&](Window& p) {
            EXPECT_EQ(p.GetProperty(u"InputMap"), &m_configuration.GetProxyConfiguration());
            p.Click(IDCANCEL);
        });
        w.Click(IDC_PROXY_OPTIONS);
        m_host.ExpectDialog(IDD_LOGGING_OPTIONS, [](Window& l) { l.PressEscape(); });
        w.Click(IDC_LOGGING_OPTIONS);

        w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");  // also makes the transport HTTP
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"AOSS");
        for (const auto& [button, dialog] : {std::pair{IDC_OAUTH_OPTIONS, IDD_OAUTH_OPTIONS},
                                             std::pair{IDC_DFI_OPTIONS, IDD_DFI_OPTIONS}})
        {
            if (button == IDC_DFI_OPTIONS)
            {
                w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
            }
            m_host.ExpectDialog(dialog, [](Window& o) { o.Click(IDCANCEL); });
            w.Click(button);
        }
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(Get(Keys::ZKNamespace), u"ns");
    EXPECT_TRUE(m_configuration.GetCredentials().IsDPAPIEncryptForAllUsers());
    EXPECT_EQ(m_host.GetDialogs()[0].ownerTemplate, static_cast<unsigned>(IDD_DSN_SETUP));
}

// ------------------------------------------------------------------ the Test button

class RecordingTester : public IConnectionTester
{
public:
    Outcome outcome;
    bool throws = false;
    int calls = 0;
    tarni_wstring seen;  ///< host, password and the three no-prompt keys during the attempt
    bool dropPlainPassword = true;

    using IConnectionTester::TestConnection;
    Outcome TestConnection(const DriverSupport::DSDSNConfiguration& in_configuration,
                           DriverSupport::DSCancellation& /*io_cancellation*/) override
    {
        ++calls;
        seen = in_configuration.GetValue(Keys::Host) + u"|" + in_configuration.GetValue(Keys::PWD) + u"|" +
               in_configuration.GetValue(Keys::SSOIgnoreDriverNoPrompt) +
               in_configuration.GetValue(Keys::OCIIgnoreDriverNoPrompt) +
               in_configuration.GetValue(Keys::OAuthIgnoreDriverNoPrompt);
        dropPlainPassword = DSUidPwdConfiguration::IsDropPlainPasswordOnSave();
        if (throws)
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSTestErr");
        }
        return outcome;
    }
};

TEST_F(QuillConfigurationDialogTest, TestRunsWithTheDialogsValuesAndPutsTheNoPromptKeysBack)
{
    Set(Keys::SSOIgnoreDriverNoPrompt, u"0");
    Set(Keys::OCIIgnoreDriverNoPrompt, u"0");
    RecordingTester tester;
    tester.outcome = {IConnectionTester::Outcome::Status::Succeeded, u"", u"03.80", u"en-US"};
    tarni_wstring report;
    Run(
        IDD_DSN_SETUP,
        [&](Window& w) {
            FillDsnBasics(w);
            w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
            w.Type(IDC_PASSWORD, u"pw");
            m_host.ExpectDialog(IDD_TEST_RESULTS, [&](Window& t) {
                report = t.Text(IDC_TEST_RESULTS_TEXT);
                t.Click(IDOK);
            });
            w.Click(IDC_TEST);
            EXPECT_FALSE(w.IsEnded());
            w.Click(IDCANCEL);
        },
        [&](QuillConfigurationDialog& d) { d.SetConnectionTester(&tester); });

    EXPECT_EQ(tester.seen, u"spark.example.com|pw|111");
    EXPECT_FALSE(tester.dropPlainPassword);
    EXPECT_TRUE(DSUidPwdConfiguration::IsDropPlainPasswordOnSave());
    EXPECT_EQ(Get(Keys::SSOIgnoreDriverNoPrompt) + Get(Keys::OCIIgnoreDriverNoPrompt), u"00");
    EXPECT_FALSE(m_configuration.GetMap().Contains(Keys::OAuthIgnoreDriverNoPrompt)) << "absent before, absent after";
    EXPECT_EQ(report, u"SUCCESS! \r\n\r\nSuccessfully connected to data source!\r\n\r\nODBC Version: 03.80"
                      u"\r\nDriver Version: 2.7.5.1012\r\nBitness: 64-bit\r\nLocale: en-US");
    EXPECT_EQ(m_host.GetWaitCursorCount(), 1);
}

TEST_F(QuillConfigurationDialogTest, TheTestReportSaysFailedWithTheError)
{
    RecordingTester failing;
    failing.outcome = {IConnectionTester::Outcome::Status::Failed, u"[Tarni] Connection refused.", u"03.80", u"", {}};
    Run(
        IDD_DSN_SETUP,
        [&](Window& w) {
            FillDsnBasics(w);
            m_host.ExpectDialog(IDD_TEST_RESULTS, [&](Window& t) {
                EXPECT_EQ(t.Text(IDC_TEST_RESULTS_TEXT),
                          u"FAILED!\r\n\r\n[Tarni] Connection refused.\r\n\r\nODBC Version: 03.80\r\nDriver Version: "
                          u"2.7.5.1012\r\nBitness: 64-bit");
                t.PressEscape();
            });
            w.Click(IDC_TEST);
            w.Click(IDCANCEL);
        },
        [&](QuillConfigurationDialog& d) { d.SetConnectionTester(&failing); });
}

TEST_F(QuillConfigurationDialogTest, AnErrorDuringTheTestPutsEverythingBackBeforeItIsShown)
{
    Set(Keys::SSOIgnoreDriverNoPrompt, u"0");
    RecordingTester tester;
    tester.throws = true;
    std::vector<tarni_wstring> stateWhenShown;
    DriverSupport::DSDialogModule::SetErrorTextResolver([&](const Support::ErrorException& in_error) {
        stateWhenShown.push_back(Get(Keys::SSOIgnoreDriverNoPrompt) +
                                 (DSUidPwdConfiguration::IsDropPlainPasswordOnSave() ? u"on" : u"off"));
        return in_error.GetMessageKey();
    });
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectMessageBox(IDOK);
    Run(
        IDD_DSN_SETUP,
        [&](Window& w) {
            FillDsnBasics(w);
            // The attempt throws inside the Test Results dialog, which never gets its script.
            m_host.ExpectDialog(IDD_TEST_RESULTS, nullptr);
            w.Click(IDC_TEST);
            EXPECT_FALSE(w.IsEnded()) << "the setup stays open";
            // A wait cursor that cannot be loaded is an error of the same kind.
            tester.throws = false;
            m_host.SetWaitCursorAvailable(false);
            m_host.ExpectDialog(IDD_TEST_RESULTS, nullptr);
            w.Click(IDC_TEST);
            w.Click(IDCANCEL);
        },
        [&](QuillConfigurationDialog& d) { d.SetConnectionTester(&tester); });
    EXPECT_EQ(stateWhenShown, (std::vector<tarni_wstring>{u"0on", u"0on"}));
    const auto& boxes = m_host.GetMessageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].text, u"DSTestErr");
    EXPECT_EQ(boxes[1].text, u"DSCursorResourceError");
    EXPECT_EQ(boxes[1].caption, u"DSN Configuration Error");
    EXPECT_EQ(tester.calls, 1) << "no attempt without the wait cursor";
}

TEST_F(QuillConfigurationDialogTest, ItsStringLoaderGrowsIn256StepsAndHasNoFullStop)
{
    ResourceScript resources = ResourceScript::Embedded();
    const tarni_wstring text(300, u'x');
    resources.SetString(60004, text);
    ScriptedDialogHost host(resources);
    Testing::CountingHost counting(host);
    DriverSupport::DSDialogModule::SetHost(&counting);
    EXPECT_EQ(QuillConfigurationDialog::LoadResourceString(60004), text);
    EXPECT_EQ(counting.sizes, (std::vector<int>{256, 512}));
    EXPECT_EQ(QuillConfigurationDialog::LoadResourceString(60005), u"Error loading the string");
    DriverSupport::DSDialogModule::SetHost(&m_host);
}
}  // namespace
