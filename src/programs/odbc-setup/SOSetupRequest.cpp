#include "programs/odbc-setup/SOSetupRequest.h"

#include <optional>

#include "core/ErrorException.h"
#include "driversupport/DSDSNConfiguration.h"
#include "platform/DataSourceStore.h"
#include "platform/DpiAwarenessScope.h"
#include "platform/OdbcInstaller.h"
#include "platform/ProcessEnvironment.h"
#include "platform/TextConversion.h"
#include "product/SODataSourceConfiguration.h"
#include "product/SODataSourceSession.h"
#include "programs/driver-config/SODataSourceDialogRun.h"
#include "programs/driver-config/SODriverConfigRun.h"
#include "programs/odbc-setup/SOSetupAttributes.h"
#include "support/messages/DSIMessageManager.h"
#include "support/messages/DSIMessageSource.h"
#include "ui/DialogHostFactory.h"

namespace Tarni::SparkODBC
{
using Platform::OdbcInstaller;

namespace
{
/// An error of the request with the installer's error code for it.
struct RequestError
{
    std::uint32_t code;
    Support::ErrorException error;
};

std::uint32_t CodeOf(const Support::ErrorException& in_error)
{
    const tarni_wstring& key = in_error.GetMessageKey();
    if (key == u"DSDsnNameEmptyErr" || key == u"DSDsnNameLengthErr" || key == u"DSDsnNameInvalidErr")
    {
        return OdbcInstaller::ERROR_INVALID_NAME;
    }
    return OdbcInstaller::ERROR_REQUEST_FAILED;
}

/// The message files lie beside this library, not beside the program that loaded it.
void UseOwnMessageFiles()
{
    static const bool done = [] {
        Support::DSIMessageManager::GetDefault().GetSource().NotifySettingChanged(
            Support::DSIMessageSource::MESSAGES_PATH_SETTING,
            Platform::ProcessEnvironment::GetModuleDirectory() + Support::DSIMessageSource::DEFAULT_MESSAGES_FOLDER);
        return true;
    }();
    (void)done;
}

void Post(std::uint32_t in_code, const Support::ErrorException& in_error)
{
    OdbcInstaller::PostInstallerError(in_code, Support::DSIMessageManager::GetDisplayText(in_error));
}
}  // namespace

bool SOSetupRequest::ConfigDSN(void* in_parent, unsigned short in_request, const char16_t* /*in_driver*/,
                               const char16_t* in_attributes)
{
    UseOwnMessageFiles();
    if (in_request < ODBC_ADD_DSN || in_request > ODBC_REMOVE_SYS_DSN)
    {
        OdbcInstaller::PostInstallerError(OdbcInstaller::ERROR_INVALID_REQUEST_TYPE,
                                          u"The request type is not one of add, configure or remove a data source.");
        return false;
    }
    try
    {
        // A system request that reaches the library directly runs in the
        // system mode, and the caller's mode is put back afterwards.
        std::optional<Platform::OdbcConfigModeScope> systemMode;
        if (in_request >= ODBC_ADD_SYS_DSN)
        {
            systemMode.emplace(OdbcInstaller::CONFIG_MODE_SYSTEM_DSN);
            in_request = static_cast<unsigned short>(in_request - 3);
        }
        return CarryOut(in_parent, in_request, in_attributes);
    }
    catch (const RequestError& e)
    {
        Post(e.code, e.error);
    }
    catch (const Support::ErrorException& e)
    {
        Post(CodeOf(e), e);
    }
    catch (const std::bad_alloc&)
    {
        OdbcInstaller::PostInstallerError(OdbcInstaller::ERROR_OUT_OF_MEM, u"Out of memory.");
    }
    catch (const std::exception& e)
    {
        OdbcInstaller::PostInstallerError(OdbcInstaller::ERROR_GENERAL_ERR,
                                          u"The request failed: " + Platform::TextConversion::Utf8ToUtf16(e.what()));
    }
    return false;
}

bool SOSetupRequest::CarryOut(void* in_parent, unsigned short in_request, const char16_t* in_attributes)
{
    std::vector<SOSetupAttributes::Attribute> attributes;
    try
    {
        attributes = SOSetupAttributes::Parse(in_attributes);
    }
    catch (const Support::ErrorException& e)
    {
        throw RequestError{OdbcInstaller::ERROR_INVALID_KEYWORD_VALUE, e};
    }
    const tarni_wstring dsn = SOSetupAttributes::Find(attributes, u"DSN");
    const SODataSourceSession session(u"", std::nullopt);
    const bool system = session.IsSystemMode();

    if (in_request == ODBC_REMOVE_DSN)
    {
        DriverSupport::DSDSNConfiguration::CheckDsnName(dsn);
        if (!Platform::DataSourceStore::Exists(dsn))
        {
            throw RequestError{OdbcInstaller::ERROR_INVALID_NAME,
                               Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                                       u"DSDsnNotFoundErr", {dsn, session.ModeName()})};
        }
        DriverSupport::DSDSNConfiguration::RemoveDataSource(dsn);
        return true;
    }

    // Every attribute is checked before anything is shown or written.
    const auto apply = [&](SODataSourceConfiguration& io_config) {
        try
        {
            SOSetupAttributes::Apply(io_config, attributes, system);
        }
        catch (const Support::ErrorException& e)
        {
            throw RequestError{OdbcInstaller::ERROR_INVALID_KEYWORD_VALUE, e};
        }
    };
    std::unique_ptr<Platform::IDialogHost> host =
        in_parent != nullptr ? Platform::DialogHostFactory::CreateLibraryHost() : nullptr;
    if (host != nullptr)
    {
        // A name given must be valid; a new data source may still be named in the dialog.
        if (!dsn.empty() || in_request == ODBC_CONFIG_DSN)
        {
            DriverSupport::DSDSNConfiguration::CheckDsnName(dsn);
        }
        // The dialog follows the monitor's DPI; the calling program's own awareness is left alone.
        const Platform::DpiAwarenessScope dpi;
        SODataSourceDialogRun::Options options;
        options.dsnName = dsn;
        options.nameEditable = in_request == ODBC_ADD_DSN;
        options.prepare = apply;
        return SODataSourceDialogRun::Run(*host, options) == 1;
    }
    DriverSupport::DSDSNConfiguration::CheckDsnName(dsn);
    SODataSourceConfiguration config(dsn, system, nullptr);
    config.Load(tarni_wstring_view(dsn));
    apply(config);
    config.SaveDataSource();
    return true;
}

bool SOSetupRequest::ConfigDriver(void* in_parent, unsigned short in_request, const char16_t* /*in_driver*/,
                                  const char16_t* /*in_arguments*/, char16_t* out_message,
                                  unsigned short in_messageMax, unsigned short* out_messageLength)
{
    UseOwnMessageFiles();
    if (out_message != nullptr && in_messageMax > 0)
    {
        out_message[0] = u'\0';
    }
    if (out_messageLength != nullptr)
    {
        *out_messageLength = 0;
    }
    if (in_request == ODBC_INSTALL_DRIVER || in_request == ODBC_REMOVE_DRIVER)
    {
        return true;
    }
    if (in_request != ODBC_CONFIG_DRIVER && (in_request <= ODBC_CONFIG_DRIVER_MAX || in_request == 0))
    {
        OdbcInstaller::PostInstallerError(OdbcInstaller::ERROR_INVALID_REQUEST_TYPE,
                                          u"The request type is not one of install, remove or configure the driver.");
        return false;
    }
    if (in_request != ODBC_CONFIG_DRIVER || in_parent == nullptr)
    {
        // Driver-specific requests and a configuration without a window: nothing to do.
        return true;
    }
    std::unique_ptr<Platform::IDialogHost> host = Platform::DialogHostFactory::CreateLibraryHost();
    if (host == nullptr)
    {
        return true;
    }
    const Platform::DpiAwarenessScope dpi;
    SODriverConfigRun::Options options;
    // The library runs inside another program: the run leaves the trace's tag alone.
    options.setTraceLocation = nullptr;
    const int result = SODriverConfigRun::Run(*host, options);
    return result == 1;
}
}  // namespace Tarni::SparkODBC
