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
};
}  // namespace Tarni::Platform
