#include "platform/dialog/DialogHostFactory.h"

#include "platform/win32/dialoghost/Win32DialogHost.h"

namespace Tarni::Platform
{
std::unique_ptr<IDialogHost> DialogHostFactory::CreateProgramHost() { return std::make_unique<Win32DialogHost>(); }
}  // namespace Tarni::Platform
