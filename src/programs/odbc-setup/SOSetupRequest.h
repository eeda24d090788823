#pragma once
// The requests of the ODBC installer to the driver's setup library
// (ConfigDSN, ConfigDriver): add, configure and remove a data source, and
// configure the driver. With a parent window (any non-null handle: unixODBC
// passes a structure of its own, not a window) the dialog is shown where a
// dialog can be shown: Windows' dialogs, or the terminal dialog when the
// calling program runs in a terminal; otherwise the request is carried out
// from the attribute list alone. Failures reach the caller through
// SQLPostInstallerError, never as an exception.
#include <cstdint>

#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class SOSetupRequest
{
public:
    /// Requests of ConfigDSN.
    static constexpr unsigned short ODBC_ADD_DSN = 1;
    static constexpr unsigned short ODBC_CONFIG_DSN = 2;
    static constexpr unsigned short ODBC_REMOVE_DSN = 3;
    static constexpr unsigned short ODBC_ADD_SYS_DSN = 4;
    static constexpr unsigned short ODBC_CONFIG_SYS_DSN = 5;
    static constexpr unsigned short ODBC_REMOVE_SYS_DSN = 6;
    /// Requests of ConfigDriver.
    static constexpr unsigned short ODBC_INSTALL_DRIVER = 1;
    static constexpr unsigned short ODBC_REMOVE_DRIVER = 2;
    static constexpr unsigned short ODBC_CONFIG_DRIVER = 3;
    static constexpr unsigned short ODBC_CONFIG_DRIVER_MAX = 100;

    /// ConfigDSNW. True when the request was carried out (false also after
    /// Cancel in the dialog, which posts no error).
    static bool ConfigDSN(void* in_parent, unsigned short in_request, const char16_t* in_driver,
                          const char16_t* in_attributes);

    /// ConfigDriverW. Installing and removing the driver need nothing of the
    /// library; configuring it with a parent window opens the driver
    /// configuration dialog over the driver-wide settings. out_message
    /// receives an empty text.
    static bool ConfigDriver(void* in_parent, unsigned short in_request, const char16_t* in_driver,
                             const char16_t* in_arguments, char16_t* out_message, unsigned short in_messageMax,
                             unsigned short* out_messageLength);

private:
    static bool CarryOut(void* in_parent, unsigned short in_request, const char16_t* in_attributes);
};
}  // namespace Tarni::SparkODBC
