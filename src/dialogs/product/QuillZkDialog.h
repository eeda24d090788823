#pragma once
// The ZooKeeper Options dialog (template 1051): the ZooKeeper namespace
// ("ZKNamespace") of the configuration, opened by "Service Discovery
// Options..." of the main dialog in ZooKeeper mode.
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSDSNConfiguration.h"

namespace Tarni::SparkODBC
{
class QuillZkDialog
{
public:
    /// Runs the dialog over the configuration; true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, DriverSupport::DSDSNConfiguration* in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, DriverSupport::DSDSNConfiguration* in_configuration);
    /// OK is enabled exactly when the namespace field is not empty.
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    /// Stores the namespace as typed (no trimming).
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::SparkODBC
