#include "programs/driver-config/SODriverConfigRun.h"

#include "dialogs/framework/DSBaseDialog.h"
#include "dialogs/framework/DSDialogModule.h"
#include "dialogs/framework/DSMessageCatalogue.h"
#include "dialogs/product/QuillConfigurationDialog.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "driversupport/ProductSettingKeys.h"
#include "platform/PlatformInitialization.h"
#include "platform/SettingsStoreFactory.h"
#include "product/QDCConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"
#include "core/ErrorException.h"
#include "support/TarniSettingReader.h"
#include "support/TarniSettingStoreScope.h"
#include "support/log/DriverLog.h"
#include "support/messages/DSIMessageManager.h"

namespace Tarni::SparkODBC
{
using DriverSupport::DSProductHelper;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "SODriverConfigRun";

// The dialogs take the texts of their errors and validation boxes from the
// message catalogue.
void ConnectMessageCatalogue()
{
    DriverSupport::DSDialogModule::SetErrorTextResolver(
        [](const Support::ErrorException& in_error) { return Support::DSIMessageManager::GetDisplayText(in_error); });
    DriverSupport::DSMessageCatalogue::SetLookup(
        [](int in_componentId, tarni_wstring_view in_key, const std::vector<tarni_wstring>& in_parameters) {
            const Support::DSIMessage message = Support::DSIMessageManager::GetDefault().GetErrorMessage(
                Support::DSIMessageManager::DEFAULT_LOCALE, in_key, in_parameters, in_componentId);
            return message.found ? std::optional<tarni_wstring>(message.text) : std::nullopt;
        });
}

void DisconnectMessageCatalogue()
{
    DriverSupport::DSMessageCatalogue::SetLookup(nullptr);
    DriverSupport::DSDialogModule::SetErrorTextResolver(nullptr);
    Support::DSIMessageManager::GetDefault().SetLogger(nullptr);
}
}  // namespace

SODriverConfigRun::Options::Options()
    : templateId(IDD_DRIVER_CONFIG),
      createLogger([](const tarni_wstring& in_fileName) -> std::unique_ptr<Support::ILogger> {
          // The driver's logging settings (LogLevel, LogPath, ...) come from the store.
          return std::make_unique<Support::DriverLog>(in_fileName);
      })
{
}

tarni_wstring SODriverConfigRun::GetLogFileName()
{
    return DSProductHelper::GetLogName() + u"_DriverConfig" + u".log";
}

tarni_wstring SODriverConfigRun::GetTraceLocation()
{
    const auto identity = DSProductHelper::GetProductIdentity();
    tarni_wstring brand = DSProductHelper::GetSetting(DriverSupport::ProductSettingKeys::VendorName);
    if (brand.empty())
    {
        brand = identity.brand;
    }
    tarni_wstring driver = DSProductHelper::GetSetting(DriverSupport::ProductSettingKeys::DriverName);
    if (driver.empty())
    {
        driver = identity.shortDriverName;
    }
    return brand + u"\\" + driver;
}

int SODriverConfigRun::Run(Platform::IDialogHost& io_host, const Options& in_options)
{
    // 1. The resource module and the application identifier.
    DriverSupport::DSDialogModule::SetHost(&io_host);
    DriverSupport::DSDialogModule::SetApplicationId(APPLICATION_ID);

    // 2. - 4. Product identity, trace location, credential switches.
    SOProductIdentity::Register();
    if (in_options.setTraceLocation)
    {
        in_options.setTraceLocation(GetTraceLocation());
    }
    DriverSupport::DSUidPwdConfiguration::SetEncryptionOptionsEnabled(true);
    DriverSupport::DSUidPwdConfiguration::SetDropPlainPasswordOnSave(true);

    // 5. The two prefixed property groups.
    DriverSupport::DSServerSidePropertyGroup serverSideProperties;
    DriverSupport::DSPrefixedPropertyGroup httpHeaders("http.header.");

    // 6. The platform (on Windows the dialog thread's component model, which
    // the shell's folder chooser needs), until the run ends either way.
    struct PlatformScope
    {
        PlatformScope() { Platform::PlatformInitialization::InitializePlatform(0, 2); }
        ~PlatformScope() { Platform::PlatformInitialization::UninitializePlatform(); }
        PlatformScope(const PlatformScope&) = delete;
        PlatformScope& operator=(const PlatformScope&) = delete;
    } platformScope;

    ConnectMessageCatalogue();
    std::unique_ptr<Support::ILogger> logger;
    std::intptr_t result = 0;
    try
    {
        // The driver-wide store: the log reads its settings from it.
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(
            DSProductHelper::GetDriverStoreLocation(in_options.iniPath));
        const Support::TarniSettingStoreScope storeScope(*store);

        // 6. The log, and the message catalogue that turns errors into text.
        if (in_options.createLogger)
        {
            logger = in_options.createLogger(GetLogFileName());
        }
        // The catalogue logs its own failures into the run's log, and takes its
        // folder (ERRORMESSAGESPATH may be in the store) while the store is open.
        Support::DSIMessageManager::GetDefault().SetLogger(logger.get());
        Support::DSIMessageManager::GetDefault().GetSource().GetMessagesPath();
        TARNI_LOG_ENTRY(logger.get(), NS, CLS, "Run");

        // 7. The driver-wide configuration.
        QDCConfiguration configuration(serverSideProperties, httpHeaders, logger.get(), *store);
        configuration.Load();

        // 8. The main dialog, modal, without an owner.
        {
            QuillConfigurationDialog dialog(configuration, logger.get());
            result = dialog.Show(nullptr, in_options.templateId);
        }

        // 9. Save on any non-zero result: after OK, and after a dialog that could
        // not be created (-1), which saves the configuration as it was loaded.
        if (result != 0)
        {
            configuration.Save();
        }
    }
    catch (const Support::ErrorException& e)
    {
        if (logger)
        {
            logger->LogError(NS, CLS, "Run", e);
        }
        DriverSupport::DSBaseDialog::ShowErrorExceptionMessage(nullptr, e);
        DisconnectMessageCatalogue();
        DriverSupport::DSDialogModule::SetHost(nullptr);
        return RESULT_STORE_ERROR;
    }

    // 10. Tear down (the dialog and the configuration are gone), 11. the result.
    DisconnectMessageCatalogue();
    logger.reset();
    DriverSupport::DSDialogModule::SetHost(nullptr);
    return static_cast<int>(result);
}
}  // namespace Tarni::SparkODBC
