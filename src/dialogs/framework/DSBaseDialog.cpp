#include "dialogs/framework/DSBaseDialog.h"

#include <vector>

#include "dialogs/framework/DSDialogModule.h"
#include "resource.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using namespace Platform;
using Support::ErrorException;
using Support::StringConverter;

namespace
{
// String ids of the setup error codes, by code. Codes 6 and 7 are crossed
// against the string ids on purpose: 6 is the registry text, 7 the
// data-source-name characters text.
constexpr unsigned kSetupErrorStrings[] = {
    IDS_SETUP_INVALID_HWND,          // 0
    IDS_SETUP_INVALID_KEYWORD_VALUE, // 1
    IDS_SETUP_INVALID_NAME,          // 2
    IDS_SETUP_INVALID_REQUEST_TYPE,  // 3
    IDS_SETUP_REQUEST_FAILED,        // 4
    IDS_SETUP_DRIVER_SPECIFIC,       // 5
    IDS_SETUP_REGISTRY_WRITE,        // 6 -> 9110
    IDS_DSN_NAME_INVALID_CHARS,      // 7 -> 9109
    IDS_SETUP_INVALID_LOG_COUNT,     // 8
    IDS_SETUP_INVALID_LOG_SIZE,      // 9
};

const tarni_wstring& LoadErrorText()
{
    static const tarni_wstring text = u"Error loading the string.";
    return text;
}
}  // namespace

tarni_wstring DSResourceText::Resolve() const
{
    return IsStringId() ? DSBaseDialog::LoadResourceString(m_id) : m_text;
}

DSBaseDialog::~DSBaseDialog() = default;

IDialogHost& DSBaseDialog::HostOf(IDialogWindow* in_window)
{
    if (in_window != nullptr)
    {
        return in_window->GetHost();
    }
    IDialogHost* host = DSDialogModule::GetHost();
    if (host == nullptr)
    {
        throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDialogHostMissingErr");
    }
    return *host;
}

std::intptr_t DSBaseDialog::RunModal(IDialogWindow* in_parent, unsigned in_templateId, DialogProcedure in_procedure,
                                     void* in_inputMap)
{
    IDialogHost* host = DSDialogModule::GetHost();
    if (host == nullptr)
    {
        throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSDialogHostMissingErr");
    }
    return host->DialogBoxParam(in_templateId, in_parent, in_procedure, reinterpret_cast<std::intptr_t>(in_inputMap));
}

void DSBaseDialog::StoreInputMap(IDialogWindow* in_window, void* in_inputMap)
{
    in_window->SetProperty(INPUT_MAP_PROPERTY, in_inputMap);
}

std::intptr_t DSBaseDialog::RouteOkCancel(IDialogWindow* in_window, std::uintptr_t in_wParam,
                                         Support::ILogger* in_logger, const char* in_namespace, const char* in_class,
                                         void (*in_ok)(IDialogWindow*), void (*in_cancel)(IDialogWindow*))
{
    switch (LowWord(in_wParam))
    {
        case IDOK:
            GuardAction(in_window, in_logger, in_namespace, in_class, [&] { in_ok(in_window); });
            return 1;
        case IDCANCEL:
            GuardAction(in_window, in_logger, in_namespace, in_class, [&] { in_cancel(in_window); });
            return 1;
        default:
            return 0;
    }
}

void DSBaseDialog::ReportSetupError(IDialogWindow* in_window, Support::ILogger* in_logger, const char* in_namespace,
                                    const char* in_class, const DSSetupException& in_error)
{
    const tarni_wstring message = GetSetupErrorMessage(in_error);
    if (in_logger != nullptr)
    {
        in_logger->LogFatal(in_namespace, in_class, "ActionProc", "%s", StringConverter::ToUtf8(message).c_str());
    }
    ShowErrorMessage(in_window, message);
}

void DSBaseDialog::ReportError(IDialogWindow* in_window, Support::ILogger* in_logger, const char* in_namespace,
                               const char* in_class, const ErrorException& in_error)
{
    if (in_logger != nullptr)
    {
        in_logger->LogError(in_namespace, in_class, "ActionProc", in_error);
    }
    ShowErrorExceptionMessage(in_window, in_error);
}

void DSBaseDialog::CenterDialog(IDialogWindow* in_window)
{
    IDialogHost& host = in_window->GetHost();
    IDialogWindow* parent = in_window->GetParent();
    const DialogRect reference = parent != nullptr ? parent->GetWindowRect() : host.GetDesktopRect();
    const DialogRect own = in_window->GetWindowRect();
    const int width = own.right - own.left;
    const int height = own.bottom - own.top;

    // Integer division rounds towards zero, as the arithmetic must.
    int x = (reference.left + reference.right - width) / 2;
    int y = (reference.top + reference.bottom - height) / 2;

    const DialogRect desktop = host.GetDesktopRect();
    if (desktop.left > x)
    {
        x = desktop.left;
    }
    else if (desktop.right < x + width)
    {
        x = desktop.right - width;
    }
    if (desktop.top > y)
    {
        y = desktop.top;
    }
    else if (desktop.bottom < y + height)
    {
        // The height is taken from the desktop's top, not its bottom: such a
        // dialog is placed above the screen. This is the established placement
        // and is kept exactly.
        y = desktop.top - height;
    }
    in_window->MoveWindow(x, y, width, height, true);
}

void DSBaseDialog::ShowErrorMessage(IDialogWindow* in_window, const DSResourceText& in_message)
{
    const tarni_wstring text = in_message.Resolve();
    const tarni_wstring title = LoadResourceString(IDS_DSN_CONFIG_ERROR_TITLE);
    HostOf(in_window).MessageBox(in_window, text, title, MB_OK | MB_ICONEXCLAMATION);
}

void DSBaseDialog::ShowErrorExceptionMessage(IDialogWindow* in_window, const ErrorException& in_error)
{
    ShowErrorMessage(in_window, DSDialogModule::GetErrorText(in_error));
}

tarni_wstring DSBaseDialog::GetSetupErrorMessage(const DSSetupException& in_error)
{
    const unsigned code = in_error.GetErrorCode();
    if (code >= std::size(kSetupErrorStrings))
    {
        return LoadErrorText();
    }
    return LoadResourceString(kSetupErrorStrings[code]);
}

bool DSBaseDialog::ShowConfirmMessage(IDialogWindow* in_window, const DSResourceText& in_title,
                                      const DSResourceText& in_text, std::uint32_t in_iconFlags, bool in_yesNo)
{
    const tarni_wstring title = in_title.Resolve();
    const tarni_wstring text = in_text.Resolve();
    if (in_yesNo)
    {
        return HostOf(in_window).MessageBox(in_window, text, title, in_iconFlags | MB_YESNO) == IDYES;
    }
    return HostOf(in_window).MessageBox(in_window, text, title, in_iconFlags | MB_OKCANCEL) == IDOK;
}

void DSBaseDialog::ShowInfoMessage(IDialogWindow* in_window, const DSResourceText& in_title,
                                   const DSResourceText& in_text)
{
    const tarni_wstring title = in_title.Resolve();
    const tarni_wstring text = in_text.Resolve();
    HostOf(in_window).MessageBox(in_window, text, title, 0);
}

tarni_wstring DSBaseDialog::GetDlgItemString(IDialogWindow* in_window, int in_id)
{
    const int length = in_window->GetItemTextLength(in_id);
    if (length == -1)
    {
        return {};
    }
    return in_window->GetItemText(in_id, length + 1);
}

void DSBaseDialog::SetDlgItemString(IDialogWindow* in_window, int in_id, tarni_wstring_view in_text)
{
    in_window->SetItemText(in_id, in_text);
}

void DSBaseDialog::AddComboString(IDialogWindow* in_window, int in_id, tarni_wstring_view in_text)
{
    in_window->ComboAddString(in_id, in_text);
}

void DSBaseDialog::ClearCombo(IDialogWindow* in_window, int in_id)
{
    const int count = in_window->ComboGetCount(in_id);
    for (int i = 0; i < count; ++i)
    {
        in_window->ComboDeleteString(in_id, 0);
    }
}

unsigned DSBaseDialog::GetComboCount(IDialogWindow* in_window, int in_id)
{
    const int count = in_window->ComboGetCount(in_id);
    return count == DIALOG_LIST_ERROR ? 0u : static_cast<unsigned>(count);
}

void DSBaseDialog::AppendEditText(IDialogWindow* in_window, int in_id, tarni_wstring_view in_text)
{
    const int length = in_window->GetItemTextLength(in_id);
    in_window->EditSetSel(in_id, length, length);
    in_window->EditReplaceSel(in_id, in_text);
}

void DSBaseDialog::BrowseForFile(IDialogWindow* in_window, int in_targetId)
{
    FileChooserOptions options;
    options.owner = in_window;
    options.bufferChars = 32768;
    options.flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
    const auto path = in_window->GetHost().GetOpenFileName(options);
    if (path)
    {
        in_window->SetItemText(in_targetId, *path);
    }
}

void DSBaseDialog::SetWaitCursor(tarni_wstring_view in_activity)
{
    IDialogHost* host = DSDialogModule::GetHost();
    if (host == nullptr || !host->SetWaitCursor(in_activity))
    {
        throw ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR, u"DSCursorResourceError");
    }
}

tarni_wstring DSBaseDialog::LoadResourceString(unsigned in_id)
{
    return LoadResourceStringInSteps(in_id, 2048, LoadErrorText());
}

tarni_wstring DSBaseDialog::LoadResourceStringInSteps(unsigned in_id, int in_step, const tarni_wstring& in_fallback)
{
    std::vector<char16_t> buffer(static_cast<std::size_t>(in_step));
    int length = 0;
    for (;;)
    {
        IDialogHost* host = DSDialogModule::GetHost();
        const int size = static_cast<int>(buffer.size());
        length = host != nullptr ? host->LoadString(in_id, buffer.data(), size) : 0;
        if (length <= 0)
        {
            return in_fallback;
        }
        if (size - length >= 2)
        {
            break;
        }
        buffer.resize(buffer.size() + static_cast<std::size_t>(in_step));
    }
    return tarni_wstring(buffer.data(), static_cast<std::size_t>(length));
}
}  // namespace Tarni::DriverSupport
