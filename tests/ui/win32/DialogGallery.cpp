// Shows the dialogs of the program one after the other on the Win32 host,
// for scripts/screenshots-win32.sh: for each template id on the command line
// it opens the dialog (with its own controller where this program has one,
// filled from a default configuration), prints "id left top right bottom"
// of the window once it is up, waits, and closes it with Cancel.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "dialogs/framework/DSBaseDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/driversupport/DSEditPropertyDialog.h"
#include "dialogs/driversupport/DSHttpPropertiesDialog.h"
#include "dialogs/driversupport/DSOAuthOptionsDialog.h"
#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/product/QuillAdvancedOptionsDialog.h"
#include "dialogs/driversupport/DSProxyConfigurationDialog.h"
#include "dialogs/driversupport/DSSSLDialog.h"
#include "dialogs/product/QuillAOSSDialog.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "dialogs/product/QuillServerSidePropertiesDialog.h"
#include "dialogs/product/QuillTempTableDialog.h"
#include "dialogs/product/QuillZkDialog.h"
#include "dialogs/thrift/TEDFIDialog.h"
#include "dialogs/thrift/TESAMLDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "ui/ResourceScript.h"
#include "ui/win32/GuiDriver.h"
#include "ui/win32/Win32DialogHost.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"

using namespace Tarni;
using namespace Tarni::Platform;

namespace
{
// Dialogs whose controllers come with later work: centred, otherwise as the
// template has them.
std::intptr_t Plain(IDialogWindow* in_window, std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t)
{
    if (in_message == WM_INITDIALOG)
    {
        DriverSupport::DSBaseDialog::CenterDialog(in_window);
        return 1;
    }
    if (in_message == WM_COMMAND && (LOWORD(in_wParam) == IDOK || LOWORD(in_wParam) == IDCANCEL))
    {
        in_window->EndDialog(LOWORD(in_wParam) == IDOK);
        return 1;
    }
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    SparkODBC::SOProductIdentity::Register();
    Win32DialogHost host;
    DriverSupport::DSDialogModule::SetHost(&host);
    SparkODBC::QuillConfiguration configuration(u"", 2, nullptr);
    configuration.LoadDefaults();
    configuration.SetValue(DriverSupport::Keys::ZKNamespace, u"hiveserver2");
    configuration.SetValue(DriverSupport::Keys::HTTPPath, u"cliservice");
    configuration.GetServerSidePropertyGroup().GetProperties() = {{u"spark.sql.shuffle.partitions", u"8"},
                                                                  {u"spark.sql.ansi.enabled", u"true"}};
    configuration.GetHttpHeaderGroup().GetProperties() = {{u"X-Trace", u""}, {u"User-Agent", u"reports/2.1"}};
    configuration.SetValue(DriverSupport::Keys::OCIProfile, u"DEFAULT");
    configuration.SetValue(DriverSupport::Keys::Auth_Flow, u"1");
    configuration.SetValue(DriverSupport::Keys::Auth_Client_ID, u"spark-odbc");
    configuration.SetValue(DriverSupport::Keys::OAuth2TokenEndPoint, u"https://login.example.com/oauth2/token");
    configuration.SetValue(DriverSupport::Keys::Auth_Scope, u"sql");
    configuration.SetValue(DriverSupport::Keys::SSL, u"1");
    // As installed, rather than the build folder the gallery runs from.
    configuration.GetSSLConfiguration().SetTrustedCerts(u"C:\\Program Files\\Tarni\\Spark ODBC Driver\\cacerts.pem");
    configuration.GetAOSSSSLConfiguration().SetTrustedCerts(u"C:\\Program Files\\Tarni\\Spark ODBC Driver\\cacerts.pem");
    configuration.SetValue(DriverSupport::Keys::AOSS_AuthMech, u"3");
    configuration.GetAOSSCredentials().SetUid(u"watcher");

    for (int i = 1; i < argc; ++i)
    {
        const unsigned id = static_cast<unsigned>(std::strtoul(argv[i], nullptr, 10));
        const DialogTemplate* source = ResourceScript::Embedded().FindDialog(id);
        if (source == nullptr)
        {
            std::fprintf(stderr, "no dialog %u\n", id);
            return 1;
        }
        std::wstring title(source->caption.begin(), source->caption.end());
        std::thread user([id, title] {
            HWND dialog = Testing::GuiDriver::WaitForDialog(title, ::GetCurrentProcessId());
            if (dialog == nullptr)
            {
                return;
            }
            ::RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
            RECT rect{};
            ::GetWindowRect(dialog, &rect);
            std::printf("%u %ld %ld %ld %ld\n", id, rect.left, rect.top, rect.right, rect.bottom);
            std::fflush(stdout);
            std::this_thread::sleep_for(std::chrono::seconds(4));
            ::PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        });
        switch (id)
        {
            case IDD_DRIVER_CONFIG:
            case IDD_DSN_SETUP:
            {
                SparkODBC::QuillConfigurationDialog dialog(configuration, nullptr);
                dialog.Show(nullptr, id);
                break;
            }
            case IDD_PASSWORD_OPTIONS:
                DriverSupport::DSPasswordOptionsDialog::Show(nullptr, &configuration.GetCredentials());
                break;
            case IDD_PROXY_OPTIONS:
            {
                DriverSupport::DSProxyConfiguration& proxy = configuration.GetProxyConfiguration();
                proxy.SetUseProxy(true);
                proxy.SetProxyHost(u"proxy.example.com");
                proxy.SetProxyPort(u"3128");
                proxy.SetUid(u"alice");
                DriverSupport::DSProxyConfigurationDialog::Show(nullptr, &proxy);
                break;
            }
            case IDD_ZOOKEEPER_OPTIONS:
                SparkODBC::QuillZkDialog::Show(nullptr, &configuration);
                break;
            case IDD_ADVANCED_OPTIONS:
                SparkODBC::QuillAdvancedOptionsDialog(configuration, 3, true).Show(nullptr);
                break;
            case IDD_TEMP_TABLE_CONFIG:
            {
                SparkODBC::QuillTempTableDialog::Input input{&configuration, true};
                SparkODBC::QuillTempTableDialog::Show(nullptr, &input);
                break;
            }
            case IDD_SERVER_SIDE_PROPERTIES:
                SparkODBC::QuillServerSidePropertiesDialog(configuration, configuration.GetServerSidePropertyGroup(),
                                                           true, true)
                    .Show(nullptr);
                break;
            case IDD_EDIT_PROPERTY:
            {
                DriverSupport::DSEditPropertyDialog::Context pair{u"spark.sql.shuffle.partitions", u"8", nullptr};
                DriverSupport::DSEditPropertyDialog::Show(nullptr, &pair);
                break;
            }
            case IDD_HTTP_PROPERTIES:
                DriverSupport::DSHttpPropertiesDialog(configuration, configuration.GetHttpHeaderGroup(), true)
                    .Show(nullptr);
                break;
            case IDD_DFI_OPTIONS:
                ThriftExtension::TEDFIDialog().Show(nullptr, &configuration.GetDFIConfiguration());
                break;
            case IDD_SAML_OPTIONS:
                ThriftExtension::TESAMLDialog().Show(nullptr, &configuration);
                break;
            case IDD_OAUTH_OPTIONS:
                DriverSupport::DSOAuthOptionsDialog::Show(nullptr, &configuration.GetOAuthConfiguration());
                break;
            case IDD_SSL_OPTIONS_TWO_WAY:
                DriverSupport::DSSSLDialog::Show(nullptr, &configuration.GetSSLConfiguration(), true);
                break;
            case IDD_SSL_OPTIONS:
                DriverSupport::DSSSLDialog::Show(nullptr, &configuration.GetAOSSSSLConfiguration(), true);
                break;
            case IDD_AOSS_OPTIONS:
                SparkODBC::QuillAOSSDialog::Show(nullptr, &configuration, true);
                break;
            default:
                host.DialogBoxParam(id, nullptr, &Plain, 0);
                break;
        }
        user.join();
    }
    return 0;
}
