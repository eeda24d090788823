#include "ui/DialogHostFactory.h"

#include "ui/win32/Win32DialogHost.h"

namespace Tarni::Platform
{
std::unique_ptr<IDialogHost> DialogHostFactory::CreateProgramHost() { return std::make_unique<Win32DialogHost>(); }
}  // namespace Tarni::Platform
