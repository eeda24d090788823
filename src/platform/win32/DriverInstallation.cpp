#include "platform/DriverInstallation.h"

#include "platform/ProcessEnvironment.h"

namespace Tarni::Platform
{
tarni_wstring DriverInstallation::GetDirectory()
{
    // The driver's files are installed beside its programs.
    return ProcessEnvironment::GetExecutableDirectory();
}
}  // namespace Tarni::Platform
