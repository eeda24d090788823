#include "ui/DialogHostFactory.h"

#include "ui/terminal/TerminalDialogHost.h"

namespace Tarni::Platform
{
std::unique_ptr<IDialogHost> DialogHostFactory::CreateProgramHost() { return std::make_unique<TerminalDialogHost>(); }
}  // namespace Tarni::Platform
