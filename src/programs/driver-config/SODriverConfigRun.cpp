#include "programs/driver-config/SODriverConfigRun.h"

#include "dialogs/DSBaseDialog.h"
#include "dialogs/DSDialogModule.h"
#include "dialogs/QuillConfigurationDialog.h"
#include "driversupport/DSProductHelper.h"
#include "driversupport/DSServerSidePropertyGroup.h"
#include "driversupport/DSUidPwdConfiguration.h"
#include "driversupport/ProductSettingKeys.h"
#include "platform/SettingsStoreFactory.h"
#include "product/QDCConfiguration.h"
#include "product/SOProductIdentity.h"
#include "resource.h"
#include "support/ErrorException.h"
#include "support/TarniSettingReader.h"

namespace Tarni::SparkODBC
{
using DriverSupport::DSProductHelper;

SODriverConfigRun::Options::Options() : templateId(IDD_DRIVER_CONFIG) {}

tarni_wstring SODriverConfigRun::GetLogFileName()
{
    // The product's log name: the short driver name without its blanks.
    tarni_wstring name;
    for (const char16_t c : DSProductHelper::GetProductIdentity().shortDriverName)
    {
        if (c != u' ')
        {
            name.push_back(c);
        }
    }
    return name + u"_DriverConfig" + u".log";
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

    // 6. The log.
    std::unique_ptr<Support::ILogger> logger;
    if (in_options.createLogger)
    {
        logger = in_options.createLogger(GetLogFileName());
    }

    std::intptr_t result = 0;
    try
    {
        // 7. The driver-wide configuration.
        auto store = Platform::SettingsStoreFactory::OpenDriverStore(
            DSProductHelper::GetDriverStoreLocation(in_options.iniPath));
        Support::TarniSettingReader::SetStore(store.get());
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
        Support::TarniSettingReader::SetStore(nullptr);
    }
    catch (const Support::ErrorException& e)
    {
        Support::TarniSettingReader::SetStore(nullptr);
        if (logger)
        {
            logger->LogError("Tarni::SparkODBC", "SODriverConfigRun", "Run", e);
        }
        DriverSupport::DSBaseDialog::ShowErrorExceptionMessage(nullptr, e);
        DriverSupport::DSDialogModule::SetHost(nullptr);
        return RESULT_STORE_ERROR;
    }

    // 10. Tear down (the dialog and the configuration are gone), 11. the result.
    logger.reset();
    DriverSupport::DSDialogModule::SetHost(nullptr);
    return static_cast<int>(result);
}
}  // namespace Tarni::SparkODBC
