// Shows one dialog of the program on the terminal host, for
// scripts/screenshots-terminal.sh: the dialog of the template id on the
// command line with its own controller, over a default configuration with a
// few sample values, for the dialogs the program itself does not reach (the
// DSN setup and its OAuth Options). Further KEY=VALUE arguments replace
// sample values (the connection test's flow test points the DSN setup at its
// server that way). Nothing is saved.
#include <cstdlib>
#include <string>

#include "dialogs/driversupport/DSOAuthOptionsDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "product/QuillConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"
#include "support/StringConverter.h"
#include "ui/DialogHostFactory.h"

using namespace Tarni;
namespace Keys = DriverSupport::Keys;

int main(int argc, char** argv)
{
    const unsigned id = argc > 1 ? static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)) : IDD_DSN_SETUP;
    SparkODBC::SOProductIdentity::Register();
    auto host = Platform::DialogHostFactory::CreateProgramHost();
    DriverSupport::DSDialogModule::SetHost(host.get());
    SparkODBC::QuillConfiguration configuration(u"", 2, nullptr);
    configuration.LoadDefaults();
    configuration.SetValue(Keys::AuthMech, u"11");
    configuration.SetValue(Keys::Auth_Flow, u"1");
    configuration.SetValue(Keys::Auth_Client_ID, u"spark-odbc");
    configuration.SetValue(Keys::OAuth2TokenEndPoint, u"https://login.example.com/oauth2/token");
    configuration.SetValue(Keys::Auth_Scope, u"sql");
    for (int i = 2; i < argc; ++i)
    {
        const std::string setting = argv[i];
        const std::size_t equals = setting.find('=');
        if (equals != std::string::npos)
        {
            configuration.SetValue(Support::StringConverter::FromUtf8(setting.substr(0, equals)),
                                   Support::StringConverter::FromUtf8(setting.substr(equals + 1)));
        }
    }

    std::intptr_t result = 0;
    if (id == IDD_OAUTH_OPTIONS)
    {
        result = DriverSupport::DSOAuthOptionsDialog::Show(nullptr, &configuration.GetOAuthConfiguration()) ? 1 : 0;
    }
    else
    {
        SparkODBC::QuillConfigurationDialog dialog(configuration, nullptr);
        result = dialog.Show(nullptr, id);
    }
    DriverSupport::DSDialogModule::SetHost(nullptr);
    return static_cast<int>(result);
}
