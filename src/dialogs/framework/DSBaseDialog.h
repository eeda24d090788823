#pragma once
// The base of the option dialogs and the helpers that every dialog of the
// program shares. A dialog is a class of static operations over the dialog
// window (Show, ActionProc, Initialize, CheckEnableButtons, DoOkAction,
// DoCancelAction); the object it edits, its input map, travels with the
// window as the property "InputMap". Every routed operation runs under
// GuardAction, which turns a setup error or an ErrorException into the
// "DSN Configuration Error" box and keeps the dialog open.
#include <cstdint>
#include <optional>

#include "dialogs/framework/DSResourceText.h"
#include "driversupport/DSSetupException.h"
#include "ui/DialogConstants.h"
#include "ui/IDialogHost.h"
#include "ui/IDialogWindow.h"
#include "core/ErrorException.h"
#include "core/ILogger.h"

namespace Tarni::DriverSupport
{
class DSBaseDialog
{
public:
    virtual ~DSBaseDialog();

    /// The name of the window property that holds the input map.
    static constexpr const char16_t* INPUT_MAP_PROPERTY = u"InputMap";

    // --- opening a dialog ---
    /// Runs the template modally over the resource module's host, owned by
    /// in_parent, with the input map as creation parameter; the result given
    /// to EndDialog, or -1 when the dialog cannot be created.
    static std::intptr_t RunModal(Platform::IDialogWindow* in_parent, unsigned in_templateId,
                                  Platform::DialogProcedure in_procedure, void* in_inputMap);
    static void StoreInputMap(Platform::IDialogWindow* in_window, void* in_inputMap);
    template <typename T>
    static T* GetInputMap(Platform::IDialogWindow* in_window)
    {
        return static_cast<T*>(in_window->GetProperty(INPUT_MAP_PROPERTY));
    }

    /// The logger of the window's input map, through its GetLog(); null
    /// before WM_INITDIALOG has stored the input map.
    template <typename Input>
    static Support::ILogger* InputMapLog(Platform::IDialogWindow* in_window)
    {
        const Input* input = GetInputMap<Input>(in_window);
        return input != nullptr ? input->GetLog() : nullptr;
    }

    // --- the messages every dialog answers alike ---
    /// WM_DESTROY and WM_NCDESTROY give 1. WM_INITDIALOG runs in_initialize
    /// with the creation parameter (an Input*, which offers GetLog()) under
    /// GuardAction and gives 1. A WM_COMMAND gives nothing: the dialog routes
    /// its own commands. Every other message gives 0.
    template <typename Input, typename Initialize>
    static std::optional<std::intptr_t> RouteCommonMessages(Platform::IDialogWindow* in_window,
                                                            std::uint32_t in_message, std::intptr_t in_lParam,
                                                            const char* in_namespace, const char* in_class,
                                                            Initialize&& in_initialize)
    {
        using namespace Platform;
        switch (in_message)
        {
            case WM_DESTROY:
            case WM_NCDESTROY:
                return 1;
            case WM_INITDIALOG:
            {
                auto* input = reinterpret_cast<Input*>(in_lParam);
                GuardAction(in_window, input != nullptr ? input->GetLog() : nullptr, in_namespace, in_class,
                            [&] { in_initialize(input); });
                return 1;
            }
            case WM_COMMAND:
                return std::nullopt;
            default:
                return 0;
        }
    }

    // --- error handling around a routed operation ---
    /// Runs the action. A DSSetupException is logged at FATAL with "%s" and
    /// its text and shown with ShowErrorMessage; an ErrorException goes to the
    /// logger's error operation and is shown with ShowErrorExceptionMessage.
    /// Other exceptions pass. The dialog stays open either way.
    template <typename Action>
    static void GuardAction(Platform::IDialogWindow* in_window, Support::ILogger* in_logger, const char* in_namespace,
                            const char* in_class, Action&& in_action)
    {
        try
        {
            in_action();
        }
        catch (const DSSetupException& e)
        {
            ReportSetupError(in_window, in_logger, in_namespace, in_class, e);
        }
        catch (const Support::ErrorException& e)
        {
            ReportError(in_window, in_logger, in_namespace, in_class, e);
        }
    }

    /// The OK and Cancel commands of a WM_COMMAND (told by the low word of
    /// in_wParam): runs in_ok or in_cancel under GuardAction and gives 1;
    /// any other command gives 0, for the dialog to handle or pass.
    static std::intptr_t RouteOkCancel(Platform::IDialogWindow* in_window, std::uintptr_t in_wParam,
                                       Support::ILogger* in_logger, const char* in_namespace, const char* in_class,
                                       void (*in_ok)(Platform::IDialogWindow*),
                                       void (*in_cancel)(Platform::IDialogWindow*));

    // --- shared helpers ---
    /// Centres the dialog over its parent (the desktop when it has none) and
    /// keeps it on the desktop; a dialog that would cross the bottom edge
    /// goes to the desktop's top minus its height.
    static void CenterDialog(Platform::IDialogWindow* in_window);
    /// A box with the message, title string 9101, OK and the exclamation icon.
    static void ShowErrorMessage(Platform::IDialogWindow* in_window, const DSResourceText& in_message);
    /// The catalogue's text of the error (component "DSMessages") in ShowErrorMessage.
    static void ShowErrorExceptionMessage(Platform::IDialogWindow* in_window, const Support::ErrorException& in_error);
    /// The string of the setup error code table.
    static tarni_wstring GetSetupErrorMessage(const DSSetupException& in_error);
    /// Yes/No (in_yesNo) or OK/Cancel with the icon flags; true for Yes or OK.
    static bool ShowConfirmMessage(Platform::IDialogWindow* in_window, const DSResourceText& in_title,
                                   const DSResourceText& in_text, std::uint32_t in_iconFlags, bool in_yesNo);
    /// A box with only OK and no icon.
    static void ShowInfoMessage(Platform::IDialogWindow* in_window, const DSResourceText& in_title,
                                const DSResourceText& in_text);
    static tarni_wstring GetDlgItemString(Platform::IDialogWindow* in_window, int in_id);
    static void SetDlgItemString(Platform::IDialogWindow* in_window, int in_id, tarni_wstring_view in_text);
    static void AddComboString(Platform::IDialogWindow* in_window, int in_id, tarni_wstring_view in_text);
    static void ClearCombo(Platform::IDialogWindow* in_window, int in_id);
    static unsigned GetComboCount(Platform::IDialogWindow* in_window, int in_id);
    static void AppendEditText(Platform::IDialogWindow* in_window, int in_id, tarni_wstring_view in_text);
    /// The open-file box (32768-character buffer, no filter or title, path
    /// and file must exist); the chosen path becomes the target's text.
    static void BrowseForFile(Platform::IDialogWindow* in_window, int in_targetId);
    /// The system wait cursor; ErrorException "DSCursorResourceError" when it
    /// cannot be loaded.
    static void SetWaitCursor(tarni_wstring_view in_activity = {});
    /// The string of the string table: the buffer starts at 2048 characters
    /// and grows by 2048 while fewer than two characters are spare; a failed
    /// load gives "Error loading the string.".
    static tarni_wstring LoadResourceString(unsigned in_id);

protected:
    /// The loader with its own step and fallback (the main dialog's loader
    /// uses 256 and "Error loading the string").
    static tarni_wstring LoadResourceStringInSteps(unsigned in_id, int in_step, const tarni_wstring& in_fallback);

private:
    static void ReportSetupError(Platform::IDialogWindow* in_window, Support::ILogger* in_logger,
                                 const char* in_namespace, const char* in_class, const DSSetupException& in_error);
    static void ReportError(Platform::IDialogWindow* in_window, Support::ILogger* in_logger, const char* in_namespace,
                            const char* in_class, const Support::ErrorException& in_error);
    static Platform::IDialogHost& HostOf(Platform::IDialogWindow* in_window);
};
}  // namespace Tarni::DriverSupport
