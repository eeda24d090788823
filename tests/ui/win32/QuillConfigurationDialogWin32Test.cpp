// The main configuration dialog as real Win32 dialogs (under Wine on a
// private X server): the dialog runs modally on the test's thread while a
// second thread plays the user through window messages and reads what the
// window shows.
#include "ui/win32/GuiDriver.h"

#include <gtest/gtest.h>

#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "ui/win32/Win32DialogHost.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::SparkODBC;
using Tarni::Testing::GuiDriver;
namespace Keys = Tarni::DriverSupport::Keys;

namespace
{
const std::wstring DRIVER_TITLE = L"Tarni Spark ODBC Driver Configuration";
const std::wstring DSN_TITLE = L"Tarni Spark ODBC Driver DSN Setup";

std::wstring Selected(HWND in_dialog, int in_id)
{
    HWND combo = ::GetDlgItem(in_dialog, in_id);
    const LRESULT index = ::SendMessageW(combo, CB_GETCURSEL, 0, 0);
    wchar_t text[256] = {};
    if (index != CB_ERR)
    {
        ::SendMessageW(combo, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text));
    }
    return text;
}

class QuillConfigurationDialogWin32Test : public ::testing::Test
{
protected:
    QuillConfigurationDialogWin32Test() : m_configuration(u"", 2, nullptr) {}

    void SetUp() override
    {
        SOProductIdentity::Register();
        m_configuration.LoadDefaults();
        DriverSupport::DSDialogModule::SetHost(&m_host);
        DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);
    }
    void TearDown() override { DriverSupport::DSDialogModule::SetHost(nullptr); }

    /// Runs the dialog while in_user plays the user on a thread of its own; the
    /// dialog is cancelled when in_user leaves it open.
    std::intptr_t Run(unsigned in_templateId, const std::wstring& in_title, std::function<void(HWND)> in_user)
    {
        return GuiDriver::WhileModal(
            [&] {
                HWND dialog = GuiDriver::WaitForDialog(in_title, ::GetCurrentProcessId(), std::chrono::seconds(20));
                ASSERT_NE(dialog, nullptr) << "the dialog never showed";
                in_user(dialog);
                if (::IsWindow(dialog) && ::IsWindowVisible(dialog))
                {
                    GuiDriver::Click(dialog, IDCANCEL);
                }
            },
            [&] {
                QuillConfigurationDialog dialog(m_configuration, nullptr);
                return dialog.Show(nullptr, in_templateId);
            });
    }

    Platform::Win32DialogHost m_host;
    QuillConfiguration m_configuration;
};

TEST_F(QuillConfigurationDialogWin32Test, TheDialogFollowsServerTypeAndServiceNameThroughWindowMessages)
{
    m_configuration.SetValue(Keys::AuthMech, u"1");
    m_configuration.SetValue(Keys::ThriftTransport, u"2");
    std::wstring inDfi, back;
    bool mechanismEnabledInDfi = true, okWithoutServiceName = true, okAgain = false;
    const auto result = Run(IDD_DRIVER_CONFIG, DRIVER_TITLE, [&](HWND d) {
        GuiDriver::Select(d, IDC_SERVER_TYPE, L"DFI");
        inDfi = Selected(d, IDC_AUTH_MECH) + L"/" + Selected(d, IDC_THRIFT_TRANSPORT);
        mechanismEnabledInDfi = GuiDriver::Enabled(d, IDC_AUTH_MECH);
        GuiDriver::Select(d, IDC_SERVER_TYPE, L"SparkThriftServer (Spark 1.1 and later)");
        back = Selected(d, IDC_AUTH_MECH) + L"/" + Selected(d, IDC_THRIFT_TRANSPORT);
        // Kerberos without a service name: OK waits for one.
        GuiDriver::Type(d, IDC_KRB_SERVICE_NAME, L"");
        okWithoutServiceName = GuiDriver::Enabled(d, IDOK);
        GuiDriver::Type(d, IDC_KRB_SERVICE_NAME, L"hive");
        okAgain = GuiDriver::Enabled(d, IDOK);
        GuiDriver::Click(d, IDOK);
    });
    EXPECT_EQ(inDfi, L"User Name and Password/HTTP");
    EXPECT_FALSE(mechanismEnabledInDfi);
    EXPECT_EQ(back, L"Kerberos/HTTP");
    EXPECT_FALSE(okWithoutServiceName);
    EXPECT_TRUE(okAgain);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(m_configuration.GetValue(Keys::SparkServerType), u"3");
    EXPECT_EQ(m_configuration.GetValue(Keys::AuthMech), u"1");
    EXPECT_EQ(m_configuration.GetValue(Keys::ThriftTransport), u"2");
    EXPECT_EQ(m_configuration.GetValue(Keys::KrbServiceName), u"hive");
}

TEST_F(QuillConfigurationDialogWin32Test, ADsnNameWithAnAtSignIsRefusedInAMessageBox)
{
    std::wstring boxText;
    bool stillOpen = false;
    const auto result = Run(IDD_DSN_SETUP, DSN_TITLE, [&](HWND d) {
        GuiDriver::Type(d, IDC_DSN_NAME, L"sales@east");
        GuiDriver::Type(d, IDC_HOSTS, L"spark.example.com");
        // Posted: the box runs its own loop until it is answered.
        ::PostMessageW(d, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        if (HWND box = GuiDriver::WaitForDialog(L"Invalid Data Source Name", ::GetCurrentProcessId(),
                                                std::chrono::seconds(20)))
        {
            boxText = GuiDriver::Text(box, 0xFFFF);  // the text of a message box
            GuiDriver::Click(box, IDOK);
            GuiDriver::WaitForClose(box);
        }
        stillOpen = ::IsWindowVisible(d) != 0;
        GuiDriver::Type(d, IDC_DSN_NAME, L"sales-east");
        GuiDriver::Click(d, IDOK);
    });
    EXPECT_EQ(boxText, L"Data Source Name value cannot contain any of the following characters: []{}(),;?*=!@\\");
    EXPECT_TRUE(stillOpen);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(m_configuration.GetDsnName(), u"sales-east");
}

TEST_F(QuillConfigurationDialogWin32Test, DfiAndSamlOptionsOpenForTheDfiServerType)
{
    wchar_t temp[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, temp);
    const std::wstring missing = std::wstring(temp) + L"tarni-no-such-oci-config";
    std::wstring errorCaption, samlFlow;
    bool samlFlowEnabled = true;
    const auto result = Run(IDD_DRIVER_CONFIG, DRIVER_TITLE, [&](HWND d) {
        GuiDriver::Select(d, IDC_SERVER_TYPE, L"DFI");
        GuiDriver::PostClick(d, IDC_DFI_OPTIONS);
        HWND dfi = GuiDriver::WaitForDialog(L"DFI Options", ::GetCurrentProcessId(), std::chrono::seconds(20));
        ASSERT_NE(dfi, nullptr);
        GuiDriver::Type(dfi, IDC_DFI_CONFIG_FILE, missing);
        GuiDriver::Type(dfi, IDC_DFI_PROFILE, L"analytics");
        GuiDriver::Type(dfi, IDC_DFI_KEY_FILE_PASSWORD, L"k3y-pass");
        GuiDriver::PostClick(dfi, IDOK);
        if (HWND box = GuiDriver::WaitForDialog(L"DSN Configuration Error", ::GetCurrentProcessId(),
                                                std::chrono::seconds(20)))
        {
            errorCaption = L"DSN Configuration Error";
            GuiDriver::Click(box, IDOK);
            GuiDriver::WaitForClose(box);
        }
        EXPECT_TRUE(::IsWindowVisible(dfi)) << "a refused file keeps the dialog open";
        GuiDriver::Type(dfi, IDC_DFI_CONFIG_FILE, L"");
        GuiDriver::Click(dfi, IDC_DFI_IGNORE_NOPROMPT);
        GuiDriver::PostClick(dfi, IDOK);
        GuiDriver::WaitForClose(dfi);

        GuiDriver::PostClick(d, IDC_SAML_OPTIONS);
        HWND saml = GuiDriver::WaitForDialog(L"SAML Options", ::GetCurrentProcessId(), std::chrono::seconds(20));
        ASSERT_NE(saml, nullptr);
        samlFlow = Selected(saml, IDC_SAML_AUTH_FLOW);
        samlFlowEnabled = GuiDriver::Enabled(saml, IDC_SAML_AUTH_FLOW);
        GuiDriver::Click(saml, IDC_SAML_COOKIE_CACHING);
        GuiDriver::PostClick(saml, IDOK);
        GuiDriver::WaitForClose(saml);
        GuiDriver::Click(d, IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(errorCaption, L"DSN Configuration Error");
    EXPECT_EQ(samlFlow, L"browser");
    EXPECT_FALSE(samlFlowEnabled);
    EXPECT_EQ(m_configuration.GetValue(Keys::OCIProfile), u"analytics");
    EXPECT_EQ(m_configuration.GetValue(Keys::OCIConfigFile), u"");
    EXPECT_EQ(m_configuration.GetValue(Keys::OCIIgnoreDriverNoPrompt), u"1");
    EXPECT_EQ(m_configuration.GetValue(Keys::keyFilePassword), u"k3y-pass") << "protected by the save, not here";
    EXPECT_EQ(m_configuration.GetValue(Keys::EnableSamlCookieCaching), u"1");
}

TEST_F(QuillConfigurationDialogWin32Test, OAuthOptionsForClientCredentialsFromTheDsnSetup)
{
    std::wstring accessTokenState;
    std::wstring refusal;
    const auto result = Run(IDD_DSN_SETUP, DSN_TITLE, [&](HWND d) {
        GuiDriver::Type(d, IDC_DSN_NAME, L"Sales");
        GuiDriver::Type(d, IDC_HOSTS, L"spark.example.com");
        GuiDriver::Select(d, IDC_AUTH_MECH, L"OAuth 2.0");
        GuiDriver::PostClick(d, IDC_OAUTH_OPTIONS);
        HWND oauth = GuiDriver::WaitForDialog(L"OAuth Options", ::GetCurrentProcessId(), std::chrono::seconds(20));
        ASSERT_NE(oauth, nullptr);
        GuiDriver::Select(oauth, IDC_OAUTH_FLOW, L"Client Credentials");
        accessTokenState = GuiDriver::Enabled(oauth, IDC_OAUTH_ACCESS_TOKEN) ? L"enabled" : L"disabled";
        GuiDriver::Type(oauth, IDC_OAUTH_CLIENT_ID, L"app-id");
        GuiDriver::Type(oauth, IDC_OAUTH_CLIENT_SECRET, L"client-s3cret");
        GuiDriver::Type(oauth, IDC_OAUTH_TOKEN_END_POINT, L"http://login.example.com/token");
        GuiDriver::PostClick(oauth, IDOK);
        if (HWND box = GuiDriver::WaitForDialog(L"DSN Configuration Error", ::GetCurrentProcessId(),
                                                std::chrono::seconds(20)))
        {
            refusal = L"shown";
            GuiDriver::Click(box, IDOK);
            GuiDriver::WaitForClose(box);
        }
        GuiDriver::Type(oauth, IDC_OAUTH_TOKEN_END_POINT, L"https://login.example.com/token");
        GuiDriver::PostClick(oauth, IDOK);
        GuiDriver::WaitForClose(oauth);
        GuiDriver::Click(d, IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(accessTokenState, L"disabled");
    EXPECT_EQ(refusal, L"shown") << "plain http to a remote token end point";
    EXPECT_EQ(m_configuration.GetValue(Keys::Auth_Flow), u"1");
    EXPECT_EQ(m_configuration.GetValue(Keys::Auth_Client_ID), u"app-id");
    EXPECT_EQ(m_configuration.GetValue(Keys::OAuth2TokenEndPoint), u"https://login.example.com/token");
    EXPECT_EQ(m_configuration.GetValue(Keys::AuthMech), u"11");
}
}  // namespace
