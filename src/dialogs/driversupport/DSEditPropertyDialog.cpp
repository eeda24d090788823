#include "dialogs/driversupport/DSEditPropertyDialog.h"

#include "resource.h"

namespace Tarni::DriverSupport
{
using namespace Platform;
using Support::ErrorException;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSEditPropertyDialog";

DSEditPropertyDialog::Context* ContextOf(IDialogWindow* in_window)
{
    return static_cast<DSEditPropertyDialog::Context*>(in_window->GetProperty(DSEditPropertyDialog::CONTEXT_PROPERTY));
}

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    const auto* context = ContextOf(in_window);
    return context != nullptr ? context->logger : nullptr;
}

bool HasLineBreakOrNul(tarni_wstring_view in_text)
{
    return in_text.find_first_of(tarni_wstring_view(u"\r\n\0", 3)) != tarni_wstring_view::npos;
}

bool IsBlank(char16_t in_char) { return in_char == u' ' || in_char == u'\t'; }

[[noreturn]] void Refuse(const char16_t* in_messageKey)
{
    throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, in_messageKey);
}
}  // namespace

bool DSEditPropertyDialog::Show(IDialogWindow* in_parent, Context* io_context)
{
    TARNI_LOG_ENTRY(io_context->logger, NS, CLS, "Show");
    return DSBaseDialog::RunModal(in_parent, IDD_EDIT_PROPERTY, &ActionProc, io_context) != 0;
}

std::intptr_t DSEditPropertyDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                               std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    const auto initialize = [&](Context* in_input) {
        Initialize(in_window, in_input);
        CheckEnableButtons(in_window);
    };
    if (const auto handled =
            DSBaseDialog::RouteCommonMessages<Context>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    const int id = static_cast<int>(LowWord(in_wParam));
    if (id == IDC_PROP_KEY || id == IDC_PROP_VALUE)
    {
        if (HighWord(in_wParam) != EN_CHANGE)
        {
            return 0;
        }
        DSBaseDialog::GuardAction(in_window, LoggerOf(in_window), NS, CLS,
                                  [&] { CheckEnableButtons(in_window); });
        return 1;
    }
    return DSBaseDialog::RouteOkCancel(in_window, in_wParam, LoggerOf(in_window), NS, CLS, &DoOkAction,
                                       &DoCancelAction);
}

void DSEditPropertyDialog::Initialize(IDialogWindow* in_window, Context* io_context)
{
    in_window->SetProperty(CONTEXT_PROPERTY, io_context);
    TARNI_LOG_ENTRY(io_context->logger, NS, CLS, "Initialize");
    DSBaseDialog::CenterDialog(in_window);
    DSBaseDialog::SetDlgItemString(in_window, IDC_PROP_KEY, io_context->key);
    DSBaseDialog::SetDlgItemString(in_window, IDC_PROP_VALUE, io_context->value);
}

void DSEditPropertyDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    in_window->EnableItem(IDOK, !DSBaseDialog::GetDlgItemString(in_window, IDC_PROP_KEY).empty());
}

void DSEditPropertyDialog::CheckStorable(tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    if (HasLineBreakOrNul(in_key))
    {
        Refuse(u"DSPropertyKeyLineBreakErr");
    }
    if (HasLineBreakOrNul(in_value))
    {
        Refuse(u"DSPropertyValueLineBreakErr");
    }
    // The list splits "key=value" at the first "=": what is stored as the
    // name is the key up to its first "=".
    const tarni_wstring_view name = in_key.substr(0, in_key.find(u'='));
    if (name.empty())
    {
        Refuse(u"DSPropertyKeyEqualsErr");
    }
    if (IsBlank(name.front()) || IsBlank(name.back()))
    {
        Refuse(u"DSPropertyKeyBlankErr");
    }
}

void DSEditPropertyDialog::DoOkAction(IDialogWindow* in_window)
{
    Context* context = ContextOf(in_window);
    TARNI_LOG_ENTRY(context->logger, NS, CLS, "DoOkAction");
    tarni_wstring key = DSBaseDialog::GetDlgItemString(in_window, IDC_PROP_KEY);
    tarni_wstring value = DSBaseDialog::GetDlgItemString(in_window, IDC_PROP_VALUE);
    // The texts are kept as typed: no trimming. What cannot be stored is
    // refused here, while the user can still correct it.
    CheckStorable(key, value);
    context->key = std::move(key);
    context->value = std::move(value);
    in_window->EndDialog(1);
}

void DSEditPropertyDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}
}  // namespace Tarni::DriverSupport
