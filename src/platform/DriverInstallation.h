#pragma once
#include "core/TarniString.h"

namespace Tarni::Platform
{
/// Where the driver's own files (such as its "cacerts.pem") are installed.
class DriverInstallation
{
public:
    /// The installation folder with a trailing separator. Windows: the folder
    /// of the running program. Linux: the folder the driver package installs
    /// to (fixed when the program is built, "/opt/tarni/sparkodbc/" unless
    /// configured otherwise), or the folder named by the environment variable
    /// TARNI_SPARK_DRIVER_DIR when it is set and not empty.
    static tarni_wstring GetDirectory();
};
}  // namespace Tarni::Platform
