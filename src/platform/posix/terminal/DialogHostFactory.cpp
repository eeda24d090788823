#include "platform/dialog/DialogHostFactory.h"

#include "platform/posix/terminal/TerminalDialogHost.h"

namespace Tarni::Platform
{
std::unique_ptr<IDialogHost> DialogHostFactory::CreateProgramHost() { return std::make_unique<TerminalDialogHost>(); }
}  // namespace Tarni::Platform
