// Shows the dialogs of the program one after the other on the Win32 host,
// for scripts/screenshots-win32.sh: for each template id on the command line
// it opens the dialog (with its own controller where this program has one,
// filled from a default configuration), prints "id left top right bottom"
// of the window once it is up, waits, and closes it with Cancel. An id with
// a suffix ("9109-browse", "9109-export", "9109-import") presses that button
// of the dialog and reports the chooser it opens instead; "133-failed" shows
// the Test Results of a refused password.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "dialogs/framework/DSBaseDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/driversupport/DSEditPropertyDialog.h"
#include "dialogs/driversupport/DSHttpPropertiesDialog.h"
#include "dialogs/driversupport/DSOAuthOptionsDialog.h"
#include "dialogs/driversupport/DSLoggingDialog.h"
#include "dialogs/driversupport/DSPasswordOptionsDialog.h"
#include "dialogs/product/QuillAdvancedOptionsDialog.h"
#include "dialogs/driversupport/DSProxyConfigurationDialog.h"
#include "dialogs/driversupport/DSTestResultDialog.h"
#include "dialogs/driversupport/DSSSLDialog.h"
#include "dialogs/product/QuillAOSSDialog.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "dialogs/product/QuillServerSidePropertiesDialog.h"
#include "dialogs/product/QuillTempTableDialog.h"
#include "dialogs/product/QuillZkDialog.h"
#include "dialogs/thrift/TEDFIDialog.h"
#include "dialogs/thrift/TESAMLDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "platform/InitializePlatform.h"
#include "ui/ResourceScript.h"
#include "ui/win32/GuiDriver.h"
#include "ui/win32/Win32DialogHost.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"
#ifdef TARNI_GALLERY_TEST_SERVER
#include "support/StringConverter.h"
#include "thrift/connectiontest/TEConnectionTester.h"
#include "thrift/connectiontest/server/TestTCLIServer.h"
#endif

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
    Platform::InitializePlatform(0, Platform::PLATFORM_APARTMENT_SINGLE_THREADED);  // the shell's folder chooser
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
    configuration.SetValue(DriverSupport::Keys::LogLevel, u"4");
    configuration.SetValue(DriverSupport::Keys::LogPath, u"C:\\ProgramData\\Tarni\\Logs");
    configuration.SetValue(DriverSupport::Keys::LogFileCount, u"50");
    configuration.SetValue(DriverSupport::Keys::LogFileSize, u"20");

    for (int i = 1; i < argc; ++i)
    {
        char* suffix = nullptr;
        const unsigned id = static_cast<unsigned>(std::strtoul(argv[i], &suffix, 10));
        const std::string name = argv[i];
        // The button whose chooser is photographed instead of the dialog.
        const std::string chooser = *suffix == '-' ? std::string(suffix + 1) : std::string();
        const int chooserButton = chooser == "browse"   ? IDC_LOG_BROWSE
                                  : chooser == "export" ? IDC_LOG_EXPORT
                                  : chooser == "import" ? IDC_LOG_IMPORT
                                                        : 0;
        const DialogTemplate* source = ResourceScript::Embedded().FindDialog(id);
        if (source == nullptr)
        {
            std::fprintf(stderr, "no dialog %u\n", id);
            return 1;
        }
        // Controllers that set their own title.
        std::wstring title = id == IDD_LOGGING_OPTIONS ? std::wstring(L"Logging Options")
                                                       : std::wstring(source->caption.begin(), source->caption.end());
        std::thread user([name, title, chooserButton] {
            HWND dialog = Testing::GuiDriver::WaitForDialog(title, ::GetCurrentProcessId());
            if (dialog == nullptr)
            {
                return;
            }
            HWND shown = dialog;
            if (chooserButton != 0)
            {
                // Posted: the chooser runs modally inside the button's command.
                ::PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(chooserButton, BN_CLICKED), 0);
                shown = nullptr;
                for (int wait = 0; wait < 600 && shown == nullptr; ++wait)
                {
                    std::this_thread::sleep_for(std::chrono::milliseconds(50));
                    HWND found = nullptr;
                    while ((found = ::FindWindowExW(nullptr, found, L"#32770", nullptr)) != nullptr)
                    {
                        if (::GetWindow(found, GW_OWNER) == dialog && ::IsWindowVisible(found))
                        {
                            shown = found;
                            break;
                        }
                    }
                }
                if (shown == nullptr)
                {
                    return;
                }
                std::this_thread::sleep_for(std::chrono::seconds(1));
            }
            ::RedrawWindow(shown, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
            RECT rect{};
            ::GetWindowRect(shown, &rect);
            std::printf("%s %ld %ld %ld %ld\n", name.c_str(), rect.left, rect.top, rect.right, rect.bottom);
            std::fflush(stdout);
            std::this_thread::sleep_for(std::chrono::seconds(4));
            if (shown != dialog)
            {
                ::PostMessageW(shown, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
                Testing::GuiDriver::WaitForClose(shown);
            }
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
            case IDD_LOGGING_OPTIONS:
                DriverSupport::DSLoggingDialog::Show(nullptr, &configuration);
                break;
#ifdef TARNI_GALLERY_TEST_SERVER
            case IDD_TEST_RESULTS:
            {
                // A real result: a session with the project's test server.
                Testing::TestTCLIServer::Options options;
                options.mode = Testing::TestTCLIServer::Mode::Sasl;
                options.user = "alice";
                options.password = "gallery-pw";
                Testing::TestTCLIServer server(options);
                SparkODBC::QuillConfiguration target(u"Sales", 0, nullptr);
                target.LoadDefaults();
                target.SetValue(DriverSupport::Keys::Host, u"127.0.0.1");
                target.SetValue(DriverSupport::Keys::Port,
                                Support::StringConverter::FromUtf8(std::to_string(server.Port())));
                target.SetValue(DriverSupport::Keys::ThriftTransport, u"1");
                target.SetValue(DriverSupport::Keys::AuthMech, u"3");
                target.SetValue(DriverSupport::Keys::UID, u"alice");
                target.SetValue(DriverSupport::Keys::PWD, chooser == "failed" ? u"wrong-pw" : u"gallery-pw");
                ThriftExtension::TEConnectionTester tester;
                DriverSupport::DSTestResultDialog::Input input{&target, &tester};
                DriverSupport::DSTestResultDialog::Show(nullptr, &input);
                break;
            }
#endif
            default:
                host.DialogBoxParam(id, nullptr, &Plain, 0);
                break;
        }
        user.join();
    }
    return 0;
}
