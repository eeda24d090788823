// The main configuration dialog on the scripted host: what it shows, how the
// server type, mechanism and transport follow each other, what OK checks and
// writes in each variant, the option buttons and the Test button.
#include <algorithm>

#include "dialogs/MainDialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"
#include "support/ComponentId.h"
#include "support/ErrorException.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
namespace Keys = Tarni::DriverSupport::Keys;
using Tarni::DriverSupport::DSUidPwdConfiguration;
using Tarni::DriverSupport::IConnectionTester;

namespace
{
using Items = std::vector<tarni_wstring>;

class QuillConfigurationDialogTest : public Testing::MainDialogTest
{
protected:
    const Platform::ScriptedDialogHost::MessageBoxRecord& LastBox() const { return m_host.GetMessageBoxes().back(); }
};

// ------------------------------------------------------------------ what it shows

TEST_F(QuillConfigurationDialogTest, TheListsFollowTheProductSettings)
{
    struct Case
    {
        const char* settings;
        Items modes;
        Items mechanisms;
    };
    const Items basic = {u"No Authentication", u"Kerberos", u"User Name", u"User Name and Password",
                         u"Windows Azure HDInsight Emulator", u"Windows Azure HDInsight Service", u"OAuth 2.0"};
    Items withMapr = basic;
    withMapr.push_back(u"MapR SASL");
    const Items noHdInsight = {u"No Authentication", u"Kerberos", u"User Name", u"User Name and Password",
                               u"OAuth 2.0"};
    const Case cases[] = {
        {"", {u"No Service Discovery", u"AOSS"}, basic},
        {"suppress-aoss=1\nsupress-hdinsight=1\n", {u"No Service Discovery"}, noHdInsight},
        {"supported-service-discovery-modes=ZooKeeper,AOSS\nsupport-maprsasl=1\n",
         {u"No Service Discovery", u"ZooKeeper", u"AOSS"}, withMapr},
        {"supported-service-discovery-modes=ZooKeeper, AOSS\n", {u"No Service Discovery", u"ZooKeeper"}, basic},
        {"supported-service-discovery-modes=ZooKeeper,AOSS\nsupress-service-discovery=1\n",
         {u"No Service Discovery"}, basic},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.settings);
        UseProductSettings(c.settings);
        Run(IDD_DRIVER_CONFIG, [&](ScriptedDialogWindow& w) {
            EXPECT_EQ(w.Items(IDC_SERVICE_DISCOVERY_MODE), c.modes);
            EXPECT_EQ(w.Items(IDC_AUTH_MECH), c.mechanisms);
            EXPECT_EQ(w.Items(IDC_SERVER_TYPE),
                      (Items{u"SharkServer (Shark 0.8.1 and earlier)", u"SharkServer2 (Shark 0.9.*)",
                             u"SparkThriftServer (Spark 1.1 and later)", u"DFI"}));
            EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"Binary", u"SASL", u"HTTP"}));
            w.Click(IDCANCEL);
        });
    }
}

TEST_F(QuillConfigurationDialogTest, StoredValuesAreSelectedAndTheDsnFieldsFilled)
{
    Set(Keys::SparkServerType, u"2");
    Set(Keys::AuthMech, u"1");
    Set(Keys::ThriftTransport, u"1");
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    Set(Keys::Host, u"h1,h2");
    Set(Keys::DESCRIPTION, u"the sales cluster");
    Set(Keys::KrbRealm, u"EXAMPLE.COM");
    Set(Keys::DelegateKrbCreds, u"1");
    Set(Keys::ServicePrincipalCanonicalization, u"0");
    m_configuration.GetCredentials().SetUid(u"ann");
    m_configuration.SetDsnName(u"Sales");
    Run(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.GetTitle(), u"Tarni Spark ODBC Driver DSN Setup");
        EXPECT_EQ(w.SelectedText(IDC_SERVER_TYPE), u"SharkServer2 (Shark 0.9.*)");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"Kerberos");
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"SASL");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"ZooKeeper");
        EXPECT_EQ(w.Text(IDC_DSN_NAME), u"Sales");
        EXPECT_EQ(w.Text(IDC_DSN_DESCRIPTION), u"the sales cluster");
        EXPECT_EQ(w.Text(IDC_HOSTS), u"h1,h2");
        EXPECT_EQ(w.Text(IDC_PORT), u"10000");
        EXPECT_EQ(w.Text(IDC_DATABASE), u"default");
        EXPECT_EQ(w.Text(IDC_KRB_REALM), u"EXAMPLE.COM");
        EXPECT_EQ(w.Text(IDC_KRB_SERVICE_NAME), u"spark");
        EXPECT_EQ(w.Text(IDC_USER_NAME), u"ann");
        EXPECT_TRUE(w.Checked(IDC_DELEGATE_KRB_CREDS));
        EXPECT_FALSE(w.Checked(IDC_CANONICALIZE_PRINCIPAL));
        EXPECT_EQ(w.Text(IDC_VERSION_LABEL), u"v2.7.5.1012 (64 bit)");
        w.Click(IDCANCEL);
    });
}

TEST_F(QuillConfigurationDialogTest, WithoutAStoredTransportTheFirstAllowedOneIsShownAndStored)
{
    struct Case
    {
        const char16_t* mech;
        const char16_t* shown;
        const char16_t* stored;
    };
    const Case cases[] = {{u"2", u"Binary", u"0"}, {u"1", u"SASL", u"1"}, {u"11", u"HTTP", u"2"}};
    for (const auto& c : cases)
    {
        m_configuration.LoadDefaults();
        Set(Keys::AuthMech, c.mech);
        ASSERT_FALSE(m_configuration.GetMap().Contains(Keys::ThriftTransport));
        EXPECT_EQ(Run(IDD_DRIVER_CONFIG,
                      [&](ScriptedDialogWindow& w) {
                          EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), c.shown);
                          w.Click(IDOK);
                      }),
                  1);
        EXPECT_EQ(Get(Keys::ThriftTransport), c.stored);
    }
}

TEST_F(QuillConfigurationDialogTest, AStoredMechanismTheListDoesNotOfferIsKeptByOk)
{
    Set(Keys::AuthMech, u"12");
    Run(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"");
        w.Click(IDOK);
    });
    EXPECT_EQ(Get(Keys::AuthMech), u"12");
}

// ------------------------------------------------------------------ changes

TEST_F(QuillConfigurationDialogTest, SwitchingToDfiAndBackRestoresModeMechanismAndTransport)
{
    Set(Keys::AuthMech, u"1");
    Set(Keys::ThriftTransport, u"2");
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    Set(Keys::SSL, u"0");
    Run(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"No Service Discovery");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"User Name and Password");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"HTTP"}));
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        EXPECT_EQ(w.Text(IDC_PORT), u"443");
        EXPECT_FALSE(w.Enabled(IDC_AUTH_MECH));
        EXPECT_TRUE(w.Enabled(IDC_DFI_OPTIONS));

        w.SelectCombo(IDC_SERVER_TYPE, u"SparkThriftServer (Spark 1.1 and later)");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"ZooKeeper");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"Kerberos");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"SASL", u"HTTP"}));
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        EXPECT_TRUE(w.Enabled(IDC_KRB_SERVICE_NAME));
        EXPECT_FALSE(w.Enabled(IDC_DFI_OPTIONS));
        w.Click(IDCANCEL);
    });
    // What the DFI service needs is set in the SSL and HTTP settings at once.
    EXPECT_EQ(Get(Keys::SSL), u"1");
    EXPECT_EQ(Get(Keys::HTTPPath), u"cliservice");
}

TEST_F(QuillConfigurationDialogTest, SharkServerFixesItsChoicesAndLeavingItRestoresTheUsersOwn)
{
    Run(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"AOSS");

        w.SelectCombo(IDC_SERVER_TYPE, u"SharkServer (Shark 0.8.1 and earlier)");
        EXPECT_EQ(w.SelectedText(IDC_AUTH_MECH), u"No Authentication");
        EXPECT_EQ(w.SelectedText(IDC_SERVICE_DISCOVERY_MODE), u"No Service Discovery");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"Binary"}));
        // Choosing the one transport SharkServer has is not remembered.
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"Binary");

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
        w.Click(IDOK);
    });
    EXPECT_EQ(Get(Keys::SparkServerType), u"3");
    EXPECT_EQ(Get(Keys::AuthMech), u"3");
    EXPECT_EQ(Get(Keys::ThriftTransport), u"1");
    EXPECT_EQ(Get(Keys::ServiceDiscoveryMode), u"AOSS");
}

TEST_F(QuillConfigurationDialogTest, AMechanismChangeRefillsTheTransportsAndIsWrittenAtOnce)
{
    Run(IDD_DRIVER_CONFIG, [&](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        w.SelectCombo(IDC_AUTH_MECH, u"Kerberos");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"SASL", u"HTTP"}));
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        EXPECT_EQ(Get(Keys::AuthMech), u"1") << "written before OK";

        // HTTP is not allowed with a user name only: the first allowed one is
        // shown, and the remembered HTTP comes back with a mechanism that allows it.
        w.SelectCombo(IDC_AUTH_MECH, u"User Name");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"Binary", u"SASL"}));
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"Binary");
        w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
        EXPECT_EQ(w.Items(IDC_THRIFT_TRANSPORT), (Items{u"HTTP"}));
        w.SelectCombo(IDC_AUTH_MECH, u"No Authentication");
        EXPECT_EQ(w.SelectedText(IDC_THRIFT_TRANSPORT), u"HTTP");
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(Get(Keys::AuthMech), u"0") << "the mechanism change stays after Cancel";
}

TEST_F(QuillConfigurationDialogTest, NotificationsCausedByTheHandlerItselfAreIgnored)
{
    // Switching to DFI sets the Port field, which notifies like typing does.
    Run(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
        w.Click(IDCANCEL);
    });
    const auto handled = std::count_if(m_logger.records.begin(), m_logger.records.end(), [](const auto& r) {
        return r.place == "Tarni::SparkODBC::QuillConfigurationDialog::OnControlChanged";
    });
    EXPECT_EQ(handled, 1);
}

TEST_F(QuillConfigurationDialogTest, KerberosWithAnEmptyServiceNameOrHostFqdnDisablesOk)
{
    Run(IDD_DRIVER_CONFIG, [](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_AUTH_MECH, u"Kerberos");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.Type(IDC_KRB_SERVICE_NAME, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.PressEnter();
        EXPECT_FALSE(w.IsEnded());
        w.Type(IDC_KRB_SERVICE_NAME, u"spark");
        w.Type(IDC_KRB_HOST_FQDN, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.SelectCombo(IDC_AUTH_MECH, u"User Name");
        EXPECT_TRUE(w.Enabled(IDOK)) << "the Kerberos fields do not matter for other mechanisms";
        w.Click(IDCANCEL);
    });
}

// ------------------------------------------------------------------ OK of the DSN setup

TEST_F(QuillConfigurationDialogTest, ADsnNameOfThirtyTwoCharactersIsAcceptedWholeAndLongerOnesAreCut)
{
    const tarni_wstring name32 = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ-01234";
    ASSERT_EQ(name32.size(), 32u);
    const std::pair<tarni_wstring, tarni_wstring> cases[] = {{name32, name32}, {name32 + u"5", name32}};
    for (const auto& [typed, stored] : cases)
    {
        EXPECT_EQ(Run(IDD_DSN_SETUP,
                      [&](ScriptedDialogWindow& w) {
                          FillDsnBasics(w, typed);
                          w.Click(IDOK);
                      }),
                  1);
        EXPECT_EQ(m_configuration.GetDsnName(), stored);
    }
    EXPECT_TRUE(m_host.GetMessageBoxes().empty());
}

TEST_F(QuillConfigurationDialogTest, EachRefusedCharacterKeepsTheDialogOpenWithString9109)
{
    for (const char16_t c : tarni_wstring(u"[]{}(),;?*=!@\\"))
    {
        const tarni_wstring name = tarni_wstring(u"Sales") + c + u"2";
        m_host.ExpectMessageBox(IDOK);
        Run(IDD_DSN_SETUP, [&](ScriptedDialogWindow& w) {
            FillDsnBasics(w, name);
            w.Click(IDOK);
            ASSERT_FALSE(w.IsEnded());
            EXPECT_EQ(w.Text(IDC_DSN_NAME), name) << "the input stays";
            w.Click(IDCANCEL);
        });
        EXPECT_EQ(LastBox().text,
                  u"Data Source Name value cannot contain any of the following characters: []{}(),;?*=!@\\");
        EXPECT_EQ(LastBox().caption, u"Invalid Data Source Name");
        EXPECT_EQ(LastBox().flags, 0x40u);
        EXPECT_EQ(LastBox().ownerTemplate, static_cast<unsigned>(IDD_DSN_SETUP));
    }
    EXPECT_EQ(m_configuration.GetDsnName(), u"");
}

TEST_F(QuillConfigurationDialogTest, AnEmptyNameDisablesOkAndIsRefusedWithString9108)
{
    m_host.ExpectMessageBox(IDOK);
    Run(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        w.Type(IDC_HOSTS, u"spark.example.com");
        EXPECT_FALSE(w.Enabled(IDOK));
        EXPECT_TRUE(w.Enabled(IDC_TEST)) << "testing needs no name";
        // OK reached without the button (an accelerator, say) still checks.
        w.Send(WM_COMMAND, MakeCommandParam(IDOK, BN_CLICKED), 0);
        EXPECT_FALSE(w.IsEnded());
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(LastBox().text, u"Data Source Name value cannot be empty.");
    EXPECT_EQ(LastBox().caption, u"Invalid Data Source Name");
}

TEST_F(QuillConfigurationDialogTest, ZooKeeperNeedsANamespaceAndTheCatalogueTextComesFirst)
{
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectMessageBox(IDOK);
    EXPECT_EQ(Run(IDD_DSN_SETUP,
                  [&](ScriptedDialogWindow& w) {
                      m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& z) {
                          z.Type(IDC_ZK_NAMESPACE, u"spark2");
                          z.Click(IDOK);
                      });
                      FillDsnBasics(w);
                      w.Click(IDOK);
                      EXPECT_FALSE(w.IsEnded());
                      DriverSupport::DSMessageCatalogue::SetLookup(
                          [](int in_component, tarni_wstring_view in_key, const std::vector<tarni_wstring>&) {
                              return in_component == Support::PRODUCT_ERROR && in_key == u"QuillEmptyZkNamespaceErr"
                                         ? std::optional<tarni_wstring>(u"catalogue: namespace missing")
                                         : std::nullopt;
                          });
                      w.Click(IDOK);
                      EXPECT_FALSE(w.IsEnded());
                      w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
                      w.Click(IDOK);
                  }),
              1);
    const auto& boxes = m_host.GetMessageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].caption, u"ZooKeeper Namespace Required");
    EXPECT_EQ(boxes[0].text, u"ZooKeeper Namespace is required. Please select \"Service Discovery Options...\" and "
                             u"enter a value for \"ZooKeeper Namespace\".");
    EXPECT_EQ(boxes[0].flags, 0x40u);
    EXPECT_EQ(boxes[1].text, u"catalogue: namespace missing");
    EXPECT_EQ(Get(Keys::ZKNamespace), u"spark2");
}

TEST_F(QuillConfigurationDialogTest, OAuthNeedsWhatItsFlowUses)
{
    struct Case
    {
        std::vector<std::pair<tarni_wstring, tarni_wstring>> values;
        const char16_t* text;  ///< nullptr: accepted
        std::vector<tarni_wstring> parameters;
    };
    const Case cases[] = {
        {{{u"Auth_Flow", u""}},
         u"Authentication Flow is missing. Please select \"OAuth Options...\" and select a value for \"Authentication "
         u"Flow\"",
         {u"Authentication Flow", u"\"Authentication Flow\""}},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_ID", u"app"}},
         u"Authorization URL and Client Credential are required. Please select \"OAuth Options...\" and enter a value "
         u"for \"Authorization URL\", \"Client ID\" and \"Client Secret\".",
         {u"Authorization URL and Client Credential", u"\"Authorization URL\", \"Client ID\" and \"Client Secret\"."}},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_Secret", u"s3cret"}},
         u"Authorization URL and Client Credential are required. Please select \"OAuth Options...\" and enter a value "
         u"for \"Authorization URL\", \"Client ID\" and \"Client Secret\".",
         {u"Authorization URL and Client Credential", u"\"Authorization URL\", \"Client ID\" and \"Client Secret\"."}},
        {{{u"Auth_Flow", u"0"}},
         u"Access token is required. Please select \"OAuth Options...\" and enter a value for \"Access Token\".",
         {u"Access token", u"\"Access Token\"."}},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_ID", u"app"}, {u"Auth_Client_Secret", u"s3cret"}}, nullptr, {}},
        {{{u"Auth_Flow", u"1"}, {u"Auth_Client_ID", u"app"}, {u"Auth_Encrypted_Client_Secret", u"AES1:00FF"}},
         nullptr,
         {}},
        {{{u"Auth_Flow", u"0"}, {u"Auth_AccessToken", u"tok"}}, nullptr, {}},
        {{{u"Auth_Flow", u"2"}}, nullptr, {}},
    };
    for (const auto& c : cases)
    {
        m_configuration.LoadDefaults();
        for (const auto& [key, value] : c.values)
        {
            Set(key, value);
        }
        SCOPED_TRACE(Support::StringConverter::ToUtf8(Get(Keys::Auth_Flow)));
        std::vector<tarni_wstring> asked;
        DriverSupport::DSMessageCatalogue::SetLookup(
            [&](int, tarni_wstring_view in_key, const std::vector<tarni_wstring>& in_parameters) {
                EXPECT_EQ(in_key, u"QuillEmptyOAuthCredentialsErr");
                asked = in_parameters;
                return std::optional<tarni_wstring>();
            });
        const std::size_t boxesBefore = m_host.GetMessageBoxes().size();
        if (c.text != nullptr)
        {
            m_host.ExpectMessageBox(IDOK);
        }
        const auto result = Run(IDD_DSN_SETUP, [&](ScriptedDialogWindow& w) {
            FillDsnBasics(w);
            w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
            w.Click(IDOK);
            if (!w.IsEnded())
            {
                w.Click(IDCANCEL);
            }
        });
        if (c.text == nullptr)
        {
            EXPECT_EQ(result, 1);
            EXPECT_EQ(m_host.GetMessageBoxes().size(), boxesBefore);
        }
        else
        {
            EXPECT_EQ(result, 0);
            EXPECT_EQ(LastBox().caption, u"OAuth2.0 Credentials Required");
            EXPECT_EQ(LastBox().text, c.text);
            EXPECT_EQ(asked, c.parameters);
        }
    }
}

TEST_F(QuillConfigurationDialogTest, TheDriverWideDialogSavesWithoutNameZooKeeperOrOAuthChecks)
{
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    Set(Keys::Auth_Flow, u"");
    int saves = 0;
    EXPECT_EQ(Run(
                  IDD_DRIVER_CONFIG,
                  [](ScriptedDialogWindow& w) {
                      w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
                      w.Click(IDOK);
                  },
                  [&](QuillConfigurationDialog& d) { d.SetSaveAction([&](IDialogWindow*) { ++saves; }); }),
              1);
    EXPECT_TRUE(m_host.GetMessageBoxes().empty());
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(Get(Keys::AuthMech), u"11");
    EXPECT_EQ(Get(Keys::ServiceDiscoveryMode), u"ZooKeeper");
    EXPECT_EQ(m_configuration.GetDsnName(), u"");
}

TEST_F(QuillConfigurationDialogTest, OkWritesEveryControlAndCancelNone)
{
    const auto edit = [](ScriptedDialogWindow& w) {
        FillDsnBasics(w);
        w.Type(IDC_DSN_DESCRIPTION, u"desc");
        w.Type(IDC_PORT, u"10001");
        w.Type(IDC_DATABASE, u"sales");
        w.SelectCombo(IDC_AUTH_MECH, u"Kerberos");
        w.Type(IDC_KRB_REALM, u"EXAMPLE.COM");
        w.Type(IDC_KRB_HOST_FQDN, u"spark.example.com");
        w.Type(IDC_KRB_SERVICE_NAME, u"hive");
        w.Click(IDC_DELEGATE_KRB_CREDS);
        w.Click(IDC_CANONICALIZE_PRINCIPAL);
        w.Type(IDC_DELEGATION_UID, u"bob");
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
    };
    Run(IDD_DSN_SETUP, [&](ScriptedDialogWindow& w) {
        edit(w);
        w.PressEscape();
    });
    EXPECT_EQ(Get(Keys::KrbRealm), u"");
    EXPECT_EQ(Get(Keys::Port), u"10000");

    Run(IDD_DSN_SETUP, [&](ScriptedDialogWindow& w) {
        edit(w);
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.Type(IDC_USER_NAME, u"ann");
        w.Type(IDC_PASSWORD, u"pw");
        w.Click(IDOK);
    });
    const std::pair<tarni_wstring_view, tarni_wstring_view> expected[] = {
        {Keys::DESCRIPTION, u"desc"},       {Keys::Host, u"spark.example.com"},
        {Keys::Port, u"10001"},             {Keys::Schema, u"sales"},
        {Keys::SparkServerType, u"3"},      {Keys::ServiceDiscoveryMode, u"No Service Discovery"},
        {Keys::AuthMech, u"3"},             {Keys::ThriftTransport, u"2"},
        {Keys::KrbRealm, u"EXAMPLE.COM"},   {Keys::KrbHostFQDN, u"spark.example.com"},
        {Keys::KrbServiceName, u"hive"},    {Keys::DelegateKrbCreds, u"1"},
        {Keys::ServicePrincipalCanonicalization, u"0"}, {Keys::UID, u"ann"},
        {Keys::PWD, u"pw"},                 {Keys::DelegationUID, u"bob"},
    };
    for (const auto& [key, value] : expected)
    {
        EXPECT_EQ(Get(key), value) << Support::StringConverter::ToUtf8(key);
    }
    EXPECT_EQ(m_configuration.GetDsnName(), u"Sales");
}

TEST_F(QuillConfigurationDialogTest, AFailedSaveKeepsTheDialogOpenWithTheInput)
{
    bool fail = true;
    m_host.ExpectMessageBox(IDOK);
    EXPECT_EQ(Run(
                  IDD_DSN_SETUP,
                  [&](ScriptedDialogWindow& w) {
                      FillDsnBasics(w);
                      w.Click(IDOK);
                      ASSERT_FALSE(w.IsEnded());
                      EXPECT_EQ(w.Text(IDC_DSN_NAME), u"Sales");
                      fail = false;
                      w.Click(IDOK);
                  },
                  [&](QuillConfigurationDialog& d) {
                      d.SetSaveAction([&](IDialogWindow* in_owner) {
                          EXPECT_EQ(in_owner->GetTemplateId(), static_cast<unsigned>(IDD_DSN_SETUP));
                          if (fail)
                          {
                              throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                                            u"DSRegistryWriteErr", {u"denied"});
                          }
                      });
                  }),
              1);
    EXPECT_EQ(LastBox().caption, u"DSN Configuration Error");
}

// ------------------------------------------------------------------ option buttons

TEST_F(QuillConfigurationDialogTest, ServiceDiscoveryAndPasswordOptionsOpenTheirDialogs)
{
    Set(Keys::ServiceDiscoveryMode, u"ZooKeeper");
    m_configuration.GetCredentials().SetEncryptPwd(true);
    m_host.ExpectMessageBox(IDOK);
    Run(IDD_DRIVER_CONFIG, [&](ScriptedDialogWindow& w) {
        m_host.ExpectDialog(IDD_ZOOKEEPER_OPTIONS, [](ScriptedDialogWindow& z) {
            z.Type(IDC_ZK_NAMESPACE, u"ns");
            z.Click(IDOK);
        });
        m_host.ExpectDialog(IDD_PASSWORD_OPTIONS, [](ScriptedDialogWindow& p) {
            p.Click(IDC_PWD_ALL_USERS);
            p.Click(IDOK);
        });
        w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
        w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
        w.Click(IDC_PASSWORD_OPTIONS);
        // AOSS Options come with later work.
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"AOSS");
        w.Click(IDC_SERVICE_DISCOVERY_OPTIONS);
        w.Click(IDCANCEL);
    });
    EXPECT_EQ(Get(Keys::ZKNamespace), u"ns");
    EXPECT_TRUE(m_configuration.GetCredentials().IsDPAPIEncryptForAllUsers());
    EXPECT_EQ(LastBox().caption, u"Service Discovery Options");
    const auto& dialogs = m_host.GetDialogs();
    ASSERT_GE(dialogs.size(), 2u);
    EXPECT_EQ(dialogs[0].ownerTemplate, static_cast<unsigned>(IDD_DRIVER_CONFIG));
}

TEST_F(QuillConfigurationDialogTest, OptionButtonsOfLaterDialogsSayTheyAreNotAvailable)
{
    const std::pair<int, const char16_t*> buttons[] = {
        {IDC_ADVANCED_OPTIONS, u"Advanced Options"}, {IDC_SSL_OPTIONS, u"SSL Options"},
        {IDC_PROXY_OPTIONS, u"Proxy Options"},       {IDC_LOGGING_OPTIONS, u"Logging Options"},
        {IDC_HTTP_OPTIONS, u"HTTP Options"},         {IDC_OAUTH_OPTIONS, u"OAuth Options"},
        {IDC_DFI_OPTIONS, u"DFI Options"},
    };
    for (std::size_t i = 0; i < std::size(buttons); ++i)
    {
        m_host.ExpectMessageBox(IDOK);
    }
    Run(IDD_DSN_SETUP, [&](ScriptedDialogWindow& w) {
        w.SelectCombo(IDC_THRIFT_TRANSPORT, u"HTTP");
        for (const auto& [id, title] : buttons)
        {
            if (id == IDC_OAUTH_OPTIONS)
            {
                w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
            }
            if (id == IDC_DFI_OPTIONS)
            {
                w.SelectCombo(IDC_SERVER_TYPE, u"DFI");
            }
            w.Click(id);
            EXPECT_EQ(LastBox().caption, title);
            EXPECT_EQ(LastBox().text, u"These options are not available in this build.");
        }
        w.Click(IDCANCEL);
    });
}

// ------------------------------------------------------------------ the Test button

class RecordingTester : public IConnectionTester
{
public:
    Outcome outcome;
    bool throws = false;
    int calls = 0;
    // What the configuration held while the attempt ran.
    tarni_wstring host, password, sso, oci, oauth;
    bool dropPlainPassword = true;

    Outcome TestConnection(const DriverSupport::DSDSNConfiguration& in_configuration) override
    {
        ++calls;
        host = in_configuration.GetValue(Keys::Host);
        password = in_configuration.GetValue(Keys::PWD);
        sso = in_configuration.GetValue(Keys::SSOIgnoreDriverNoPrompt);
        oci = in_configuration.GetValue(Keys::OCIIgnoreDriverNoPrompt);
        oauth = in_configuration.GetValue(Keys::OAuthIgnoreDriverNoPrompt);
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
    ASSERT_FALSE(m_configuration.GetMap().Contains(Keys::OAuthIgnoreDriverNoPrompt));
    RecordingTester tester;
    tester.outcome.status = IConnectionTester::Outcome::Status::Succeeded;
    tester.outcome.odbcVersion = u"03.80";
    tester.outcome.locale = u"en-US";
    tarni_wstring report;
    Run(
        IDD_DSN_SETUP,
        [&](ScriptedDialogWindow& w) {
            m_host.ExpectDialog(IDD_TEST_RESULTS, [&](ScriptedDialogWindow& t) {
                report = t.Text(IDC_TEST_RESULTS_TEXT);
                t.Click(IDOK);
            });
            FillDsnBasics(w);
            w.SelectCombo(IDC_AUTH_MECH, u"User Name and Password");
            w.Type(IDC_PASSWORD, u"pw");
            w.Click(IDC_TEST);
            EXPECT_FALSE(w.IsEnded());
            w.Click(IDCANCEL);
        },
        [&](QuillConfigurationDialog& d) { d.SetConnectionTester(&tester); });

    EXPECT_EQ(tester.calls, 1);
    EXPECT_EQ(tester.host, u"spark.example.com");
    EXPECT_EQ(tester.password, u"pw");
    EXPECT_EQ(tester.sso + tester.oci + tester.oauth, u"111");
    EXPECT_FALSE(tester.dropPlainPassword);
    EXPECT_TRUE(DSUidPwdConfiguration::IsDropPlainPasswordOnSave());
    EXPECT_EQ(Get(Keys::SSOIgnoreDriverNoPrompt), u"0");
    EXPECT_EQ(Get(Keys::OCIIgnoreDriverNoPrompt), u"0");
    EXPECT_FALSE(m_configuration.GetMap().Contains(Keys::OAuthIgnoreDriverNoPrompt));
    EXPECT_EQ(report, u"SUCCESS! \r\n\r\nSuccessfully connected to data source!\r\n\r\nODBC Version: 03.80"
                      u"\r\nDriver Version: 2.7.5.1012\r\nBitness: 64-bit\r\nLocale: en-US");
    EXPECT_EQ(m_host.GetWaitCursorCount(), 1);
}

TEST_F(QuillConfigurationDialogTest, TheTestReportSaysFailedOrNotAvailable)
{
    RecordingTester failing;
    failing.outcome.status = IConnectionTester::Outcome::Status::Failed;
    failing.outcome.errorText = u"[Tarni] Connection refused.";
    failing.outcome.odbcVersion = u"03.80";
    const std::pair<IConnectionTester*, tarni_wstring> cases[] = {
        {&failing, u"FAILED!\r\n\r\n[Tarni] Connection refused.\r\n\r\nODBC Version: 03.80\r\nDriver Version: "
                   u"2.7.5.1012\r\nBitness: 64-bit"},
        {nullptr, u"Connection testing is not available in this build.\r\nDriver Version: 2.7.5.1012\r\nBitness: "
                  u"64-bit"},
    };
    for (const auto& [tester, expected] : cases)
    {
        Run(
            IDD_DSN_SETUP,
            [&](ScriptedDialogWindow& w) {
                m_host.ExpectDialog(IDD_TEST_RESULTS, [&](ScriptedDialogWindow& t) {
                    EXPECT_EQ(t.Text(IDC_TEST_RESULTS_TEXT), expected);
                    t.PressEscape();
                });
                FillDsnBasics(w);
                w.Click(IDC_TEST);
                w.Click(IDCANCEL);
            },
            [&](QuillConfigurationDialog& d) { d.SetConnectionTester(tester); });
    }
}

TEST_F(QuillConfigurationDialogTest, AnErrorDuringTheTestPutsEverythingBackBeforeItIsShown)
{
    Set(Keys::SSOIgnoreDriverNoPrompt, u"0");
    RecordingTester tester;
    tester.throws = true;
    bool switchOnWhenShown = false;
    tarni_wstring ssoWhenShown;
    // The error box is the first thing after the failed attempt: record what it sees.
    DriverSupport::DSDialogModule::SetErrorTextResolver([&](const Support::ErrorException& in_error) {
        switchOnWhenShown = DSUidPwdConfiguration::IsDropPlainPasswordOnSave();
        ssoWhenShown = Get(Keys::SSOIgnoreDriverNoPrompt);
        return in_error.GetMessageKey();
    });
    m_host.ExpectMessageBox(IDOK);
    m_host.ExpectMessageBox(IDOK);
    Run(
        IDD_DSN_SETUP,
        [&](ScriptedDialogWindow& w) {
            // The attempt throws inside the Test Results dialog, which then never gets its script.
            m_host.ExpectDialog(IDD_TEST_RESULTS, nullptr);
            m_host.ExpectDialog(IDD_TEST_RESULTS, nullptr);
            FillDsnBasics(w);
            w.Click(IDC_TEST);
            EXPECT_FALSE(w.IsEnded()) << "the setup stays open";
            // The wait cursor failing is an error of the same kind.
            tester.throws = false;
            m_host.SetWaitCursorAvailable(false);
            w.Click(IDC_TEST);
            w.Click(IDCANCEL);
        },
        [&](QuillConfigurationDialog& d) { d.SetConnectionTester(&tester); });
    EXPECT_TRUE(switchOnWhenShown);
    EXPECT_EQ(ssoWhenShown, u"0");
    EXPECT_TRUE(DSUidPwdConfiguration::IsDropPlainPasswordOnSave());
    const auto& boxes = m_host.GetMessageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].text, u"DSTestErr");
    EXPECT_EQ(boxes[1].text, u"DSCursorResourceError");
    EXPECT_EQ(boxes[1].caption, u"DSN Configuration Error");
    EXPECT_EQ(tester.calls, 1) << "no attempt without the wait cursor";
}
}  // namespace
