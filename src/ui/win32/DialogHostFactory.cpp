#include "ui/DialogHostFactory.h"

#include "platform/ProcessEnvironment.h"
#include "ui/win32/Win32DialogHost.h"

namespace Tarni::Platform
{
std::unique_ptr<IDialogHost> DialogHostFactory::CreateProgramHost() { return std::make_unique<Win32DialogHost>(); }

std::unique_ptr<IDialogHost> DialogHostFactory::CreateLibraryHost()
{
    return std::make_unique<Win32DialogHost>(static_cast<HINSTANCE>(ProcessEnvironment::GetOwnModule()));
}
}  // namespace Tarni::Platform
