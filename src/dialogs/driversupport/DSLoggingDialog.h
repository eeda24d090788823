#pragma once
// The Logging Configuration dialog (template 9109): the driver's log level,
// log folder and rotation limits, stored through the configuration's logging
// setters, and the import and export of the whole configuration to a
// "DSN Definition" file.
#include "dialogs/framework/DSBaseDialog.h"
#include "driversupport/DSDSNConfiguration.h"

namespace Tarni::DriverSupport
{
class DSLoggingDialog : public DSBaseDialog
{
public:
    /// The level names in combo order; the stored LogLevel is the index.
    static constexpr const char16_t* LEVEL_NAMES[] = {u"LOG_OFF",     u"LOG_FATAL", u"LOG_ERROR", u"LOG_WARNING",
                                                      u"LOG_INFO",    u"LOG_DEBUG", u"LOG_TRACE"};
    /// The name buffer of the import and export choosers, in wide characters.
    static constexpr unsigned CHOOSER_PATH_CHARS = 260;

    /// Runs the dialog over the configuration; true after OK.
    static bool Show(Platform::IDialogWindow* in_parent, DSDSNConfiguration* in_configuration);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    /// Captions from the string table, the level list with the stored level
    /// selected, the folder and the two limits; then the level change.
    static void Initialize(Platform::IDialogWindow* in_window, DSDSNConfiguration* in_configuration);
    /// The folder, Browse and both limits apply exactly when the level is
    /// not LOG_OFF; then CheckEnableButtons.
    static void OnLevelChanged(Platform::IDialogWindow* in_window);
    /// OK: always with LOG_OFF, else only when the folder and both limits are filled.
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    /// Level, folder, size, count through the validating setters, then ends with 1.
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);
    /// The folder chooser; the chosen folder becomes the log folder's text.
    static void BrowseForDir(Platform::IDialogWindow* in_window);
    /// The save-file chooser, then the configuration written to the file.
    static void DoExportAction(Platform::IDialogWindow* in_window);
    /// The open-file chooser, then the file loaded into the configuration
    /// (the dialog's own fields stay as they are).
    static void DoImportAction(Platform::IDialogWindow* in_window);

private:
    static Platform::FileChooserOptions ChooserOptions(Platform::IDialogWindow* in_window, unsigned in_titleId);
};
}  // namespace Tarni::DriverSupport
