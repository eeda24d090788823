#include "programs/driver-config/SODataSourceDialogRun.h"

#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/framework/DSMessageCatalogue.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "platform/InitializePlatform.h"
#include "product/SODataSourceConfiguration.h"
#include "product/SODataSourceSession.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "resource.h"
#include "core/ErrorException.h"
#include "support/messages/DSIMessageManager.h"

namespace Tarni::SparkODBC
{
namespace
{
// What the run sets up for the dialogs, and takes down on every way out.
class DialogScope
{
public:
    explicit DialogScope(Platform::IDialogHost& io_host)
    {
        DriverSupport::DSDialogModule::SetHost(&io_host);
        DriverSupport::DSDialogModule::SetApplicationId(SODriverConfigRun::APPLICATION_ID);
        DriverSupport::DSDialogModule::SetErrorTextResolver([](const Support::ErrorException& in_error) {
            return Support::DSIMessageManager::GetDisplayText(in_error);
        });
        DriverSupport::DSMessageCatalogue::SetLookup(
            [](int in_componentId, tarni_wstring_view in_key, const std::vector<tarni_wstring>& in_parameters) {
                const Support::DSIMessage message = Support::DSIMessageManager::GetDefault().GetErrorMessage(
                    Support::DSIMessageManager::DEFAULT_LOCALE, in_key, in_parameters, in_componentId);
                return message.found ? std::optional<tarni_wstring>(message.text) : std::nullopt;
            });
        Platform::InitializePlatform(0, Platform::PLATFORM_APARTMENT_SINGLE_THREADED);
    }
    ~DialogScope()
    {
        Platform::UninitializePlatform();
        DriverSupport::DSMessageCatalogue::SetLookup(nullptr);
        DriverSupport::DSDialogModule::SetErrorTextResolver(nullptr);
        DriverSupport::DSDialogModule::SetHost(nullptr);
    }
    DialogScope(const DialogScope&) = delete;
    DialogScope& operator=(const DialogScope&) = delete;
};
}  // namespace

int SODataSourceDialogRun::Run(Platform::IDialogHost& io_host, const Options& in_options)
{
    const DialogScope scope(io_host);
    const SODataSourceSession session(in_options.iniPath, in_options.systemMode);
    SODataSourceConfiguration configuration(in_options.dsnName, session.IsSystemMode(), nullptr);
    configuration.Load(tarni_wstring_view(in_options.dsnName));
    if (in_options.prepare)
    {
        in_options.prepare(configuration);
    }
    QuillConfigurationDialog dialog(configuration, nullptr);
    dialog.SetDsnNameEditable(in_options.nameEditable);
    dialog.SetSaveAction([&](Platform::IDialogWindow*) { configuration.SaveDataSource(); });
    return static_cast<int>(dialog.Show(nullptr, IDD_DSN_SETUP));
}
}  // namespace Tarni::SparkODBC
