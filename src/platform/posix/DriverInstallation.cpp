#include "platform/DriverInstallation.h"

#include "platform/ProcessEnvironment.h"
#include "platform/TextConversion.h"

#ifndef TARNI_DRIVER_INSTALL_DIR
#define TARNI_DRIVER_INSTALL_DIR "/opt/tarni/sparkodbc/"
#endif

namespace Tarni::Platform
{
tarni_wstring DriverInstallation::GetDirectory()
{
    const auto overridden = ProcessEnvironment::GetVariable(u"TARNI_SPARK_DRIVER_DIR");
    tarni_wstring directory = (overridden && !overridden->empty()) ? *overridden
                                                                  : TextConversion::Utf8ToUtf16(TARNI_DRIVER_INSTALL_DIR);
    if (directory.empty() || directory.back() != u'/')
    {
        directory += u'/';
    }
    return directory;
}
}  // namespace Tarni::Platform
