#pragma once
// The Edit Property dialog (template 131): one key/value pair of a property
// list (server-side properties, HTTP headers). The pair travels with the
// window as the property "Context". OK is enabled exactly while the key is
// not empty; OK stores both texts as typed, after refusing what no store can
// hold (a line break or NUL character, a key that begins with "=" or begins
// or ends with a blank), so a save never fails later on a property.
#include "dialogs/framework/DSBaseDialog.h"

namespace Tarni::DriverSupport
{
class DSEditPropertyDialog
{
public:
    /// The pair being edited and the log of the dialog that opened it.
    struct Context
    {
        tarni_wstring key;
        tarni_wstring value;
        Support::ILogger* logger = nullptr;

        Support::ILogger* GetLog() const { return logger; }
    };

    /// The name of the window property that holds the pair.
    static constexpr const char16_t* CONTEXT_PROPERTY = u"Context";

    /// Runs the dialog over the pair, owned by in_parent; true after OK, with
    /// the pair holding the texts typed.
    static bool Show(Platform::IDialogWindow* in_parent, Context* io_context);

    static std::intptr_t ActionProc(Platform::IDialogWindow* in_window, std::uint32_t in_message,
                                    std::uintptr_t in_wParam, std::intptr_t in_lParam);

    static void Initialize(Platform::IDialogWindow* in_window, Context* io_context);
    static void CheckEnableButtons(Platform::IDialogWindow* in_window);
    static void DoOkAction(Platform::IDialogWindow* in_window);
    static void DoCancelAction(Platform::IDialogWindow* in_window);

    /// Throws an ErrorException naming the field and the reason when the key
    /// or the value cannot be stored (the key as it will be split: up to its
    /// first "=").
    static void CheckStorable(tarni_wstring_view in_key, tarni_wstring_view in_value);
};
}  // namespace Tarni::DriverSupport
