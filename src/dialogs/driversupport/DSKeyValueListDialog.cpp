#include "dialogs/driversupport/DSKeyValueListDialog.h"

#include "resource.h"

namespace Tarni::DriverSupport
{
using namespace Platform;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSKeyValueListDialog";

/// Retry and Cancel, Cancel the default, exclamation icon (0x135).
constexpr std::uint32_t DUPLICATE_BOX_FLAGS = MB_RETRYCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON2;
}  // namespace

DSKeyValueListDialog* DSKeyValueListDialog::s_current = nullptr;

DSKeyValueListDialog::DSKeyValueListDialog(unsigned in_templateId, ConfigurationMap& io_properties,
                                           Support::ILogger* in_logger)
    : m_properties(io_properties), m_logger(in_logger), m_templateId(in_templateId)
{
    m_current.logger = in_logger;
}

DSKeyValueListDialog::~DSKeyValueListDialog()
{
    if (s_current == this)
    {
        s_current = nullptr;
    }
}

std::intptr_t DSKeyValueListDialog::Show(IDialogWindow* in_parent)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Show");
    DSKeyValueListDialog* const previous = s_current;
    std::intptr_t result = -1;
    try
    {
        result = DSBaseDialog::RunModal(in_parent, m_templateId, &ActionProc, this);
    }
    catch (...)
    {
        s_current = previous;
        throw;
    }
    s_current = previous;
    return result;
}

std::pair<tarni_wstring, tarni_wstring> DSKeyValueListDialog::SplitEntry(tarni_wstring_view in_entry)
{
    const auto equals = in_entry.find(u'=');
    if (equals == tarni_wstring_view::npos)
    {
        return {tarni_wstring(in_entry), tarni_wstring()};
    }
    return {tarni_wstring(in_entry.substr(0, equals)), tarni_wstring(in_entry.substr(equals + 1))};
}

tarni_wstring DSKeyValueListDialog::JoinEntry(tarni_wstring_view in_key, tarni_wstring_view in_value)
{
    tarni_wstring entry(in_key);
    entry += u'=';
    entry += in_value;
    return entry;
}

std::intptr_t DSKeyValueListDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                               std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    if (in_message == WM_DESTROY || in_message == WM_NCDESTROY)
    {
        return 1;
    }
    if (in_message == WM_INITDIALOG)
    {
        s_current = reinterpret_cast<DSKeyValueListDialog*>(in_lParam);
        if (s_current != nullptr)
        {
            s_current->m_window = in_window;
            DSBaseDialog::GuardAction(in_window, s_current->m_logger, NS, CLS,
                                      [&] { s_current->Initialize(in_window); });
        }
        return 1;
    }
    if (in_message != WM_COMMAND || s_current == nullptr || s_current->m_window != in_window)
    {
        return 0;
    }
    DSKeyValueListDialog& dialog = *s_current;
    const int id = static_cast<int>(LowWord(in_wParam));
    const unsigned code = HighWord(in_wParam);
    std::intptr_t handled = 1;
    DSBaseDialog::GuardAction(in_window, dialog.m_logger, NS, CLS, [&] {
        switch (id)
        {
            case IDC_PROP_ADD:
                dialog.OnAdd();
                break;
            case IDC_PROP_EDIT:
                dialog.OnEdit();
                break;
            case IDC_PROP_REMOVE:
                dialog.OnRemove();
                break;
            case IDC_PROP_LIST:
                if (code == LBN_DBLCLK)
                {
                    dialog.OnEdit();
                }
                else if (code == LBN_SELCHANGE)
                {
                    dialog.RefreshButtons();
                }
                else
                {
                    handled = 0;
                }
                break;
            case IDOK:
                dialog.DoOkAction(IDOK);
                in_window->EndDialog(1);
                break;
            case IDCANCEL:
                // Cancel ends with 1 as well; nothing is written.
                TARNI_LOG_ENTRY(dialog.m_logger, NS, CLS, "DoCancelAction");
                in_window->EndDialog(1);
                break;
            default:
                handled = 0;
                break;
        }
    });
    return handled;
}

void DSKeyValueListDialog::InitializeList(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "InitializeList");
    m_window = in_window;
    DSBaseDialog::CenterDialog(in_window);
    for (const auto& [key, value] : m_properties)
    {
        in_window->ListAddString(IDC_PROP_LIST, JoinEntry(key, value));
    }
}

void DSKeyValueListDialog::RefreshButtons()
{
    const bool selected = m_window->ListGetCurSel(IDC_PROP_LIST) >= 0;
    m_window->EnableItem(IDC_PROP_EDIT, selected);
    m_window->EnableItem(IDC_PROP_REMOVE, selected);
}

ConfigurationMap DSKeyValueListDialog::ReadList() const
{
    ConfigurationMap properties;
    const int count = m_window->ListGetCount(IDC_PROP_LIST);
    for (int i = 0; i < count; ++i)
    {
        auto [key, value] = SplitEntry(m_window->ListGetText(IDC_PROP_LIST, i));
        if (key.empty())
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          u"DSPropertyEmptyKeyErr", {m_window->ListGetText(IDC_PROP_LIST, i)});
        }
        properties.SetValue(key, value);
    }
    return properties;
}

bool DSKeyValueListDialog::EditEntry(int in_index, bool in_isNew)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "EditEntry");
    if (in_isNew)
    {
        m_current.key.clear();
        m_current.value.clear();
    }
    for (;;)
    {
        if (!DSEditPropertyDialog::Show(m_window, &m_current))
        {
            return false;
        }
        // The search text ends with "=", so "a" finds "a=..." but not "ab=...".
        const int found = m_window->ListFindString(IDC_PROP_LIST, in_index, m_current.key + u"=");
        if (found < 0 || found == in_index)
        {
            return true;
        }
        const tarni_wstring text = DSBaseDialog::LoadResourceString(IDS_DUPLICATE_KEY_TEXT);
        const tarni_wstring title = DSBaseDialog::LoadResourceString(IDS_DUPLICATE_KEY_TITLE);
        if (m_window->GetHost().MessageBox(nullptr, text, title, DUPLICATE_BOX_FLAGS) != IDRETRY)
        {
            return false;
        }
        // Retry: the pair as entered goes back into Edit Property.
    }
}

void DSKeyValueListDialog::OnAdd()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "OnAdd");
    if (EditEntry(-1, true))
    {
        m_window->ListAddString(IDC_PROP_LIST, JoinEntry(m_current.key, m_current.value));
        RefreshButtons();
    }
}

void DSKeyValueListDialog::OnEdit()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "OnEdit");
    const int selected = m_window->ListGetCurSel(IDC_PROP_LIST);
    if (selected < 0)
    {
        return;
    }
    std::tie(m_current.key, m_current.value) = SplitEntry(m_window->ListGetText(IDC_PROP_LIST, selected));
    if (EditEntry(selected, false))
    {
        m_window->ListDeleteString(IDC_PROP_LIST, selected);
        const int added = m_window->ListAddString(IDC_PROP_LIST, JoinEntry(m_current.key, m_current.value));
        // The sorted list may place the changed entry elsewhere: the
        // selection follows it.
        m_window->ListSetCurSel(IDC_PROP_LIST, added);
        RefreshButtons();
    }
}

void DSKeyValueListDialog::OnRemove()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "OnRemove");
    const int selected = m_window->ListGetCurSel(IDC_PROP_LIST);
    if (selected < 0)
    {
        return;
    }
    if (DSBaseDialog::ShowConfirmMessage(m_window, IDS_REMOVE_PROPERTY_TITLE, IDS_REMOVE_PROPERTY_TEXT,
                                         MB_ICONQUESTION, true))
    {
        m_window->ListDeleteString(IDC_PROP_LIST, selected);
        m_window->ListSetCurSel(IDC_PROP_LIST, 0);
        RefreshButtons();
    }
}
}  // namespace Tarni::DriverSupport
