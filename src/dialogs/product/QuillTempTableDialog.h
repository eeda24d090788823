#pragma once
// The Temporary Table Configuration dialog (template 142): the switch
// "EnableTempTable" and, while it is on, the Web HDFS host and port, the HDFS
// user, the temporary table folder and time to live.
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSDSNConfiguration.h"

namespace Tarni::SparkODBC
{
class QuillTempTableDialog
{
public:
    /// The input map: the configuration and the allow-editing flag.
    struct Input
    {
        DriverSupport::DSDSNConfiguration* configuration = nullptr;
        bool allowEditing = true;

        Support::ILogger* GetLog() const { return configuration != nullptr ? configuration->GetLog() : nullptr; }
    };

    /// The port stored when the one entered is 65536 or more, or the stored
    /// one is not a number.
    static constexpr unsigned DEFAULT_WEB_HDFS_PORT = 50070;

    /// Runs the dialog; true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, Input* in_input);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, Input* in_input);
    /// The five fields are enabled exactly while "Enable Temporary Table" is checked.
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    /// Stores the switch and, only when it is on, the five fields.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::SparkODBC
