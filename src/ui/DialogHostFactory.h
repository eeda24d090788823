#pragma once
#include <memory>

#include "ui/IDialogHost.h"

namespace Tarni::Platform
{
/// The dialog host of the dialog program on this platform: Win32 on Windows,
/// the terminal host elsewhere.
class DialogHostFactory
{
public:
    static std::unique_ptr<IDialogHost> CreateProgramHost();

    /// The host for dialogs that a library shows inside another program:
    /// Windows' dialogs from the library's own resources (not the program's);
    /// elsewhere the terminal host when standard input and output are a
    /// terminal, else null (no dialog can be shown).
    static std::unique_ptr<IDialogHost> CreateLibraryHost();
};
}  // namespace Tarni::Platform
