// Which controls of the main dialog are enabled, for every server type,
// stored mechanism, transport, service discovery mode and allow-editing
// flag, in both templates and with the fields that the rules look at filled
// or empty. The expected state is stated per control, as a user would
// describe it, independently of how the dialog orders its rules.
#include <algorithm>
#include <set>
#include <sstream>

#include "dialogs/MainDialogTestSupport.h"
#include "driversupport/ConfigurationKeys.h"

using namespace Tarni;
using namespace Tarni::Platform;
using namespace Tarni::SparkODBC;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
enum class Fields
{
    AllFilled,
    ServiceNameEmpty,
    HostFqdnEmpty,
    PortEmpty,
    HostsEmpty,
    NameEmpty,
    NameNotEditable,
    SamlTakesCredentials,
};
constexpr Fields ALL_FIELDS[] = {Fields::AllFilled,       Fields::ServiceNameEmpty, Fields::HostFqdnEmpty,
                                 Fields::PortEmpty,       Fields::HostsEmpty,       Fields::NameEmpty,
                                 Fields::NameNotEditable, Fields::SamlTakesCredentials};

constexpr unsigned NOT_LISTED = 99;

struct Situation
{
    unsigned serverType;
    unsigned mechanism;  ///< as shown: NOT_LISTED when the list does not offer the stored one
    unsigned transport;
    unsigned mode;
    bool allowEditing;
    bool dsn;
    Fields fields;

    std::string Describe() const
    {
        std::ostringstream text;
        text << "template " << (dsn ? 1093 : 1092) << ", server type " << serverType << ", mechanism " << mechanism
             << ", transport " << transport << ", mode " << mode << ", editing " << allowEditing << ", fields "
             << static_cast<int>(fields);
        return text.str();
    }
};

bool IsIn(unsigned in_value, std::initializer_list<unsigned> in_set)
{
    return std::find(in_set.begin(), in_set.end(), in_value) != in_set.end();
}

/// The rules, control by control.
bool ExpectedEnabled(int in_id, const Situation& s)
{
    const bool shark = s.serverType == 1;
    const bool dfi = s.serverType == 4;
    const bool spark = !shark && !dfi;  // SharkServer2 and SparkThriftServer
    const bool edit = s.allowEditing;
    const bool kerberos = s.mechanism == 1;
    const bool samlWithCredentials = s.mechanism == 12 && s.fields == Fields::SamlTakesCredentials;
    const bool takesUserName = IsIn(s.mechanism, {2, 3, 5, 6}) || samlWithCredentials;
    const bool takesPassword = IsIn(s.mechanism, {3, 5, 6}) || samlWithCredentials;

    // What keeps OK and Test disabled: an incomplete Kerberos principal (DFI
    // does not authenticate with the mechanism), a missing port where nothing
    // discovers it, a missing host, and for OK a missing name.
    const bool kerberosIncomplete =
        !dfi && kerberos && (s.fields == Fields::ServiceNameEmpty || s.fields == Fields::HostFqdnEmpty);
    const bool portMissing = s.dsn && !dfi && s.mode == 0 && s.fields == Fields::PortEmpty;
    const bool hostMissing = s.dsn && s.fields == Fields::HostsEmpty;
    const bool nameMissing = s.dsn && s.fields == Fields::NameEmpty;

    switch (in_id)
    {
        case IDOK: return !kerberosIncomplete && !portMissing && !hostMissing && !nameMissing;
        case IDC_TEST: return !kerberosIncomplete && !portMissing && !hostMissing;
        case IDC_DSN_NAME: return edit && s.fields != Fields::NameNotEditable;
        case IDC_DSN_DESCRIPTION: return edit;
        case IDC_HOSTS: return true;
        case IDC_PORT: return !dfi && s.mode == 0;
        case IDC_DATABASE: return edit;
        case IDC_SERVER_TYPE: return edit;
        case IDC_AUTH_MECH: return spark && edit;
        case IDC_KRB_REALM: return spark && kerberos && edit;
        case IDC_KRB_HOST_FQDN: return spark && kerberos;
        case IDC_KRB_SERVICE_NAME: return spark && kerberos;
        case IDC_CANONICALIZE_PRINCIPAL: return spark && kerberos && edit;
        case IDC_DELEGATE_KRB_CREDS: return spark && kerberos && edit;
        case IDC_USER_NAME: return spark && takesUserName && edit;
        case IDC_PASSWORD: return spark && takesPassword;
        case IDC_PASSWORD_OPTIONS: return spark && takesPassword;
        case IDC_SERVICE_DISCOVERY_MODE: return spark;
        case IDC_SERVICE_DISCOVERY_OPTIONS: return spark && s.mode != 0;
        case IDC_SSL_OPTIONS: return !shark;
        case IDC_HTTP_OPTIONS: return !shark && (dfi || s.transport == 2) && edit;
        case IDC_PROXY_OPTIONS: return edit;
        case IDC_OAUTH_OPTIONS: return !dfi && s.mechanism == 11;
        // DFI may sign in through the browser: its SAML options stay at hand.
        case IDC_SAML_OPTIONS: return dfi || s.mechanism == 12;
        case IDC_DFI_OPTIONS: return dfi && edit;
        case IDC_DELEGATION_UID: return !shark && edit;
        default: ADD_FAILURE() << "no rule for control " << in_id; return false;
    }
}

constexpr int CONTROLS[] = {
    IDOK, IDC_TEST, IDC_DSN_NAME, IDC_DSN_DESCRIPTION, IDC_HOSTS, IDC_PORT, IDC_DATABASE, IDC_SERVER_TYPE,
    IDC_AUTH_MECH, IDC_KRB_REALM, IDC_KRB_HOST_FQDN, IDC_KRB_SERVICE_NAME, IDC_CANONICALIZE_PRINCIPAL,
    IDC_DELEGATE_KRB_CREDS, IDC_USER_NAME, IDC_PASSWORD, IDC_PASSWORD_OPTIONS, IDC_SERVICE_DISCOVERY_MODE,
    IDC_SERVICE_DISCOVERY_OPTIONS, IDC_SSL_OPTIONS, IDC_HTTP_OPTIONS, IDC_PROXY_OPTIONS, IDC_OAUTH_OPTIONS,
    IDC_SAML_OPTIONS, IDC_DFI_OPTIONS, IDC_DELEGATION_UID};

class QuillConfigurationDialogEnableRulesTest : public Testing::MainDialogTest
{
protected:
    void SetUp() override
    {
        MainDialogTest::SetUp();
        // Every mechanism the dialog can list is listed; SAML_2.0 through its offer switch.
        UseProductSettings("supported-service-discovery-modes=ZooKeeper,AOSS\nsupport-maprsasl=1\n");
        m_logger.SetLogLevel(Support::LOG_OFF);
    }

    /// Runs the dialog in the situation and returns the controls whose state differs.
    std::string Mismatches(const Situation& in_situation, unsigned in_storedMechanism)
    {
        m_configuration.LoadDefaults();
        const tarni_wstring modes[] = {u"No Service Discovery", u"ZooKeeper", u"AOSS"};
        Set(Keys::SparkServerType, Support::StringConverter::FromNumber(static_cast<unsigned long long>(in_situation.serverType)));
        Set(Keys::AuthMech, Support::StringConverter::FromNumber(static_cast<unsigned long long>(in_storedMechanism)));
        Set(Keys::ThriftTransport, Support::StringConverter::FromNumber(static_cast<unsigned long long>(in_situation.transport)));
        Set(Keys::ServiceDiscoveryMode, modes[in_situation.mode]);
        Set(Keys::Host, in_situation.fields == Fields::HostsEmpty ? u"" : u"spark.example.com");
        Set(Keys::KrbServiceName, in_situation.fields == Fields::ServiceNameEmpty ? u"" : u"spark");
        Set(Keys::KrbHostFQDN, in_situation.fields == Fields::HostFqdnEmpty ? u"" : u"_HOST");
        Set(Keys::Port, in_situation.fields == Fields::PortEmpty ? u"" : u"10000");
        Set(Keys::SSOUseCredentials, in_situation.fields == Fields::SamlTakesCredentials ? u"1" : u"0");
        m_configuration.SetDsnName(in_situation.fields == Fields::NameEmpty ? u"" : u"Sales");

        std::string mismatches;
        const unsigned templateId = in_situation.dsn ? IDD_DSN_SETUP : IDD_DRIVER_CONFIG;
        Run(
            templateId,
            [&](ScriptedDialogWindow& w) {
                for (const int id : CONTROLS)
                {
                    if (!w.HasItem(id))
                    {
                        continue;
                    }
                    const bool expected = ExpectedEnabled(id, in_situation);
                    if (w.Enabled(id) != expected)
                    {
                        mismatches += "\n  control " + std::to_string(id) + " should be " +
                                      (expected ? "enabled" : "disabled");
                    }
                }
                w.Send(WM_COMMAND, MakeCommandParam(IDCANCEL, BN_CLICKED), 0);
            },
            [&](QuillConfigurationDialog& d) {
                d.SetAllowEditing(in_situation.allowEditing);
                d.SetDsnNameEditable(in_situation.fields != Fields::NameNotEditable);
                d.SetSamlOffered(true);
            });
        return mismatches.empty() ? mismatches : in_situation.Describe() + mismatches;
    }
};

TEST_F(QuillConfigurationDialogEnableRulesTest, EveryControlFollowsTheRulesInEverySituation)
{
    const std::set<unsigned> listed = {0, 1, 2, 3, 5, 6, 11, 12, 13};
    int failures = 0;
    int situations = 0;
    for (const bool dsn : {false, true})
        for (unsigned serverType = 1; serverType <= 4; ++serverType)
            for (unsigned storedMechanism = 0; storedMechanism < 14; ++storedMechanism)
                for (unsigned transport = 0; transport < 3; ++transport)
                    for (unsigned mode = 0; mode < 3; ++mode)
                        for (const bool allowEditing : {true, false})
                            for (const Fields fields : ALL_FIELDS)
                            {
                                const unsigned shown = listed.count(storedMechanism) ? storedMechanism : NOT_LISTED;
                                const Situation situation{serverType, shown, transport, mode,
                                                          allowEditing, dsn, fields};
                                const std::string mismatches = Mismatches(situation, storedMechanism);
                                ++situations;
                                if (!mismatches.empty() && ++failures <= 10)
                                {
                                    ADD_FAILURE() << mismatches;
                                }
                            }
    EXPECT_EQ(failures, 0) << "of " << situations << " situations";
}

TEST_F(QuillConfigurationDialogEnableRulesTest, TheStatesFollowTheUsersChangesToo)
{
    // The same rules after changes in the open dialog, not only after the start.
    Run(IDD_DSN_SETUP, [](ScriptedDialogWindow& w) {
        w.Type(IDC_DSN_NAME, u"Sales");
        w.Type(IDC_HOSTS, u"spark.example.com");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"ZooKeeper");
        EXPECT_FALSE(w.Enabled(IDC_PORT));
        EXPECT_TRUE(w.Enabled(IDC_SERVICE_DISCOVERY_OPTIONS));
        w.SelectCombo(IDC_SERVICE_DISCOVERY_MODE, u"No Service Discovery");
        w.Type(IDC_PORT, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        EXPECT_FALSE(w.Enabled(IDC_TEST));
        w.Type(IDC_PORT, u"10000");
        w.Type(IDC_HOSTS, u"");
        EXPECT_FALSE(w.Enabled(IDC_TEST));
        w.Type(IDC_HOSTS, u"h");
        // Kerberos needs both parts of the principal.
        w.SelectCombo(IDC_AUTH_MECH, u"Kerberos");
        EXPECT_TRUE(w.Enabled(IDOK));
        w.Type(IDC_KRB_SERVICE_NAME, u"");
        EXPECT_FALSE(w.Enabled(IDOK));
        w.PressEnter();
        EXPECT_FALSE(w.IsEnded());
        w.Type(IDC_KRB_SERVICE_NAME, u"spark");
        w.Type(IDC_KRB_HOST_FQDN, u"");
        EXPECT_FALSE(w.Enabled(IDC_TEST));
        w.SelectCombo(IDC_AUTH_MECH, u"OAuth 2.0");
        EXPECT_TRUE(w.Enabled(IDOK)) << "the Kerberos fields do not matter for other mechanisms";
        EXPECT_TRUE(w.Enabled(IDC_OAUTH_OPTIONS));
        EXPECT_TRUE(w.Enabled(IDC_HTTP_OPTIONS)) << "OAuth goes over HTTP";
        EXPECT_FALSE(w.Enabled(IDC_USER_NAME));
        w.SelectCombo(IDC_SERVER_TYPE, u"SharkServer (Shark 0.8.1 and earlier)");
        EXPECT_FALSE(w.Enabled(IDC_AUTH_MECH));
        EXPECT_FALSE(w.Enabled(IDC_SSL_OPTIONS));
        EXPECT_FALSE(w.Enabled(IDC_DELEGATION_UID));
        EXPECT_FALSE(w.Enabled(IDC_OAUTH_OPTIONS)) << "SharkServer shows no authentication";
        w.Click(IDCANCEL);
    });
}
}  // namespace
