#include "ui/DialogHostFactory.h"

#include <unistd.h>

#include "ui/terminal/TerminalDialogHost.h"

namespace Tarni::Platform
{
std::unique_ptr<IDialogHost> DialogHostFactory::CreateProgramHost() { return std::make_unique<TerminalDialogHost>(); }

std::unique_ptr<IDialogHost> DialogHostFactory::CreateLibraryHost()
{
    if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDOUT_FILENO) == 0)
    {
        return nullptr;
    }
    return std::make_unique<TerminalDialogHost>();
}
}  // namespace Tarni::Platform
