#include "ui/terminal/TerminalDialogWindow.h"

#include <algorithm>
#include <cstdlib>

#include "ui/DialogConstants.h"
#include "ui/terminal/TerminalDialogHost.h"
#include "ui/terminal/TerminalDropDown.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
namespace
{
using Support::StringConverter;

constexpr std::uint32_t SS_CENTER = 0x1;
constexpr std::uint32_t SS_RIGHT = 0x2;
constexpr std::uint32_t SS_NOPREFIX = 0x80;
constexpr wint_t CTRL_L = 12;

bool IsPushButton(const TerminalControl& in_control) { return in_control.Source().IsPushButton(); }

MnemonicText LabelOf(const ControlTemplate& in_source, tarni_wstring_view in_text)
{
    const std::wstring wide = TerminalText::ToWide(in_text);
    if (in_source.kind == ControlKind::Static && (in_source.style & SS_NOPREFIX) != 0)
    {
        return MnemonicText{wide, -1, 0};
    }
    return TerminalText::ParseMnemonic(wide);
}

std::vector<std::wstring> Wide(const std::vector<tarni_wstring>& in_items)
{
    std::vector<std::wstring> out;
    out.reserve(in_items.size());
    for (const auto& item : in_items)
    {
        out.push_back(TerminalText::ToWide(item));
    }
    return out;
}
}  // namespace

TerminalDialogWindow::TerminalDialogWindow(TerminalDialogHost& in_host, const DialogTemplate& in_template,
                                           IDialogWindow* in_parent, DialogProcedure in_procedure)
    : m_host(in_host), m_template(in_template), m_parent(in_parent), m_procedure(in_procedure),
      m_title(in_template.caption)
{
    m_controls.reserve(in_template.controls.size());
    for (const auto& source : in_template.controls)
    {
        TerminalControl control(source);
        if (source.kind == ControlKind::Edit && !source.HasStyle(DialogStyle::ES_MULTILINE))
        {
            control.field = std::make_unique<TerminalEditField>(
                1, source.HasStyle(DialogStyle::ES_PASSWORD), source.HasStyle(DialogStyle::ES_NUMBER),
                source.HasStyle(DialogStyle::ES_READONLY));
            control.field->SetText(TerminalText::ToWide(source.text));
        }
        else if (source.kind != ControlKind::ComboBox && source.kind != ControlKind::ListBox)
        {
            control.label = LabelOf(source, source.text);
        }
        if (source.kind == ControlKind::ListBox)
        {
            control.menu = std::make_unique<TerminalMenu>();
        }
        m_controls.push_back(std::move(control));
    }
}

TerminalDialogWindow::~TerminalDialogWindow()
{
    // Fields and menus go before the window and the screen.
    m_controls.clear();
    if (m_window != nullptr)
    {
        ::delwin(m_window);
    }
}

IDialogHost& TerminalDialogWindow::GetHost() { return m_host; }

std::intptr_t TerminalDialogWindow::Send(std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    return m_procedure(this, in_message, in_wParam, in_lParam);
}

void TerminalDialogWindow::Command(int in_id, unsigned in_code)
{
    Send(WM_COMMAND, MakeCommandParam(static_cast<unsigned>(in_id), in_code), 0);
}

// ------------------------------------------------------------------ geometry

void TerminalDialogWindow::Layout(int in_screenRows, int in_screenCols)
{
    m_layout = TerminalLayout::Compute(m_template, std::max(in_screenCols - 2, 1), std::max(in_screenRows - 2, 1));
    for (std::size_t i = 0; i < m_controls.size(); ++i)
    {
        TerminalControl& control = m_controls[i];
        control.cells = m_layout.GetControls()[i];
        if (control.field)
        {
            // The brackets of the field take a column on each side.
            const int cols = control.cells.rect.cols;
            control.field->SetWidth(cols >= 4 ? cols - 2 : cols);
        }
    }
    m_height = std::min(m_layout.GetRows() + 2, std::max(in_screenRows, 3));
    m_width = std::min(m_layout.GetCols() + 2, std::max(in_screenCols, 3));

    // Centred over the owner, or the screen.
    DialogRect reference{0, 0, in_screenCols, in_screenRows};
    if (m_parent != nullptr)
    {
        reference = m_parent->GetWindowRect();
    }
    m_left = (reference.left + reference.right - m_width) / 2;
    m_top = (reference.top + reference.bottom - m_height) / 2;
    m_left = std::clamp(m_left, 0, std::max(in_screenCols - m_width, 0));
    m_top = std::clamp(m_top, 0, std::max(in_screenRows - m_height, 0));
    if (m_window != nullptr)
    {
        ::delwin(m_window);
    }
    m_window = ::newwin(m_height, m_width, m_top, m_left);
    if (m_window != nullptr)
    {
        ::keypad(m_window, TRUE);
    }
    m_scroll = std::clamp(m_scroll, 0, std::max(m_layout.GetRows() - ViewRows(), 0));
    ScrollToFocus();
}

DialogRect TerminalDialogWindow::GetWindowRect() { return DialogRect{m_left, m_top, m_left + m_width, m_top + m_height}; }

void TerminalDialogWindow::MoveWindow(int in_x, int in_y, int, int, bool)
{
    // The size follows the layout; only the place can be chosen, and it is
    // kept on the screen.
    const int screenRows = m_host.GetDialogRows();
    const int screenCols = m_host.GetScreenCols();
    m_left = std::clamp(in_x, 0, std::max(screenCols - m_width, 0));
    m_top = std::clamp(in_y, 0, std::max(screenRows - m_height, 0));
    if (m_window != nullptr)
    {
        ::mvwin(m_window, m_top, m_left);
    }
}

int TerminalDialogWindow::WindowRow(int in_row) const
{
    const int row = in_row - m_scroll;
    return (row >= 0 && row < ViewRows()) ? row + 1 : -1;
}

void TerminalDialogWindow::ScrollToFocus()
{
    if (m_focus < 0)
    {
        return;
    }
    const CellRect& rect = m_controls[static_cast<std::size_t>(m_focus)].cells.rect;
    const int view = std::max(ViewRows(), 1);
    if (rect.row < m_scroll)
    {
        m_scroll = rect.row;
    }
    else if (rect.row + std::min(rect.rows, view) > m_scroll + view)
    {
        m_scroll = rect.row + std::min(rect.rows, view) - view;
    }
}

// ------------------------------------------------------------------ window

unsigned TerminalDialogWindow::GetTimerInterval() const
{
    unsigned interval = 0;
    for (const auto& [id, timerInterval] : m_timers)
    {
        interval = interval == 0 ? timerInterval : std::min(interval, timerInterval);
    }
    return interval;
}

void TerminalDialogWindow::FireTimers()
{
    // A copy: the procedure may start or stop timers.
    const std::map<unsigned, unsigned> timers = m_timers;
    for (const auto& [id, interval] : timers)
    {
        if (m_timers.count(id) != 0 && !m_ended)
        {
            Send(WM_TIMER, id, 0);
        }
    }
}

void TerminalDialogWindow::EndDialog(std::intptr_t in_result)
{
    m_ended = true;
    m_result = in_result;
}

void TerminalDialogWindow::SetProperty(tarni_wstring_view in_name, void* in_value)
{
    m_properties[tarni_wstring(in_name)] = in_value;
}

void* TerminalDialogWindow::GetProperty(tarni_wstring_view in_name)
{
    const auto it = m_properties.find(tarni_wstring(in_name));
    return it == m_properties.end() ? nullptr : it->second;
}

int TerminalDialogWindow::Find(int in_id) const
{
    for (std::size_t i = 0; i < m_controls.size(); ++i)
    {
        if (m_controls[i].source->id == in_id)
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

TerminalControl* TerminalDialogWindow::Of(int in_id, ControlKind in_kind)
{
    const int index = Find(in_id);
    if (index < 0 || !m_controls[static_cast<std::size_t>(index)].IsKind(in_kind))
    {
        return nullptr;
    }
    return &m_controls[static_cast<std::size_t>(index)];
}

tarni_wstring TerminalDialogWindow::TextOf(const TerminalControl& in_control) const
{
    if (in_control.field)
    {
        return TerminalText::FromWide(in_control.field->GetText());
    }
    if (in_control.IsKind(ControlKind::ComboBox) || in_control.IsKind(ControlKind::ListBox))
    {
        return in_control.GetSelectedText();
    }
    return in_control.text;
}

int TerminalDialogWindow::GetItemTextLength(int in_id)
{
    const int index = Find(in_id);
    return index < 0 ? 0 : static_cast<int>(TextOf(m_controls[static_cast<std::size_t>(index)]).size());
}

tarni_wstring TerminalDialogWindow::GetItemText(int in_id, int in_bufferChars)
{
    const int index = Find(in_id);
    if (index < 0 || in_bufferChars <= 0)
    {
        return {};
    }
    tarni_wstring text = TextOf(m_controls[static_cast<std::size_t>(index)]);
    if (static_cast<int>(text.size()) > in_bufferChars - 1)
    {
        text.resize(static_cast<std::size_t>(in_bufferChars - 1));
    }
    return text;
}

void TerminalDialogWindow::SetText(TerminalControl& io_control, tarni_wstring_view in_text)
{
    if (io_control.field)
    {
        io_control.field->SetText(TerminalText::ToWide(in_text));
        return;
    }
    if (io_control.IsKind(ControlKind::ComboBox))
    {
        // A drop-down list takes only the text of one of its entries.
        if (const int index = io_control.FindItemExact(in_text); index != DIALOG_LIST_ERROR)
        {
            io_control.selection = index;
        }
        return;
    }
    io_control.text = tarni_wstring(in_text);
    io_control.label = LabelOf(io_control.Source(), in_text);
    io_control.firstLine = 0;
}

void TerminalDialogWindow::SetItemText(int in_id, tarni_wstring_view in_text)
{
    const int index = Find(in_id);
    if (index < 0)
    {
        return;
    }
    TerminalControl& control = m_controls[static_cast<std::size_t>(index)];
    SetText(control, in_text);
    // A single-line edit tells its parent of a text set by code too.
    if (control.field)
    {
        Command(in_id, EN_UPDATE);
        Command(in_id, EN_CHANGE);
    }
}

void TerminalDialogWindow::EnableItem(int in_id, bool in_enable)
{
    if (const int index = Find(in_id); index >= 0)
    {
        m_controls[static_cast<std::size_t>(index)].enabled = in_enable;
    }
}

bool TerminalDialogWindow::IsItemEnabled(int in_id)
{
    const int index = Find(in_id);
    return index >= 0 && m_controls[static_cast<std::size_t>(index)].enabled;
}

void TerminalDialogWindow::ShowItem(int in_id, bool in_show)
{
    if (const int index = Find(in_id); index >= 0)
    {
        m_controls[static_cast<std::size_t>(index)].visible = in_show;
    }
}

bool TerminalDialogWindow::IsItemVisible(int in_id)
{
    const int index = Find(in_id);
    return index >= 0 && m_controls[static_cast<std::size_t>(index)].visible;
}

void TerminalDialogWindow::SetFocusItem(int in_id)
{
    if (const int index = Find(in_id); index >= 0)
    {
        SetFocus(index);
    }
}

bool TerminalDialogWindow::IsButtonChecked(int in_id)
{
    const TerminalControl* control = Of(in_id, ControlKind::Button);
    return control != nullptr && control->checked;
}

void TerminalDialogWindow::CheckButton(int in_id, bool in_checked)
{
    if (TerminalControl* control = Of(in_id, ControlKind::Button))
    {
        control->checked = in_checked;
    }
}

// ------------------------------------------------------------------ combo and list boxes

// The entries and their selection are DialogControlState's; a control that is
// missing or of another kind gives DIALOG_LIST_ERROR, as the message would.

int TerminalDialogWindow::ComboAddString(int in_id, tarni_wstring_view in_text)
{
    TerminalControl* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->AddItem(in_text, control->Source().HasStyle(DialogStyle::CBS_SORT))
                              : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ComboDeleteString(int in_id, int in_index)
{
    TerminalControl* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->DeleteItem(in_index) : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ComboGetCount(int in_id)
{
    const TerminalControl* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->GetItemCount() : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ComboGetCurSel(int in_id)
{
    const TerminalControl* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->selection : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ComboSetCurSel(int in_id, int in_index)
{
    TerminalControl* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->SetSelection(in_index) : DIALOG_LIST_ERROR;
}

tarni_wstring TerminalDialogWindow::ComboGetItemText(int in_id, int in_index)
{
    const TerminalControl* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->GetItemText(in_index) : tarni_wstring{};
}

int TerminalDialogWindow::ComboFindStringExact(int in_id, tarni_wstring_view in_text)
{
    const TerminalControl* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->FindItemExact(in_text) : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ListAddString(int in_id, tarni_wstring_view in_text)
{
    TerminalControl* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->AddItem(in_text, control->Source().HasStyle(DialogStyle::LBS_SORT))
                              : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ListDeleteString(int in_id, int in_index)
{
    TerminalControl* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->DeleteItem(in_index) : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ListGetCount(int in_id)
{
    const TerminalControl* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->GetItemCount() : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ListGetCurSel(int in_id)
{
    const TerminalControl* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->selection : DIALOG_LIST_ERROR;
}

int TerminalDialogWindow::ListSetCurSel(int in_id, int in_index)
{
    TerminalControl* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->SetSelection(in_index) : DIALOG_LIST_ERROR;
}

tarni_wstring TerminalDialogWindow::ListGetText(int in_id, int in_index)
{
    const TerminalControl* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->GetItemText(in_index) : tarni_wstring{};
}

int TerminalDialogWindow::ListFindString(int in_id, int in_startAfter, tarni_wstring_view in_prefix)
{
    const TerminalControl* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->FindItemPrefix(in_startAfter, in_prefix) : DIALOG_LIST_ERROR;
}

void TerminalDialogWindow::EditSetSel(int in_id, int in_start, int in_end)
{
    if (TerminalControl* control = Of(in_id, ControlKind::Edit))
    {
        control->SetEditSelection(in_start, in_end, static_cast<int>(TextOf(*control).size()));
        if (control->IsMultiLineEdit())
        {
            // As EM_SETSEL does, the caret is scrolled into view.
            const int caretLine = MultiLineCaret(*control).first;
            const int rows = std::max(control->cells.rect.rows - (MultiLineFramed(*control) ? 2 : 0), 1);
            control->firstLine = std::clamp(control->firstLine, caretLine - rows + 1, caretLine);
        }
    }
}

bool TerminalDialogWindow::MultiLineFramed(const TerminalControl& in_control)
{
    return in_control.cells.rect.rows >= 3 && in_control.cells.rect.cols >= 4;
}

std::pair<int, int> TerminalDialogWindow::MultiLineCaret(const TerminalControl& in_control)
{
    // The text up to the caret, wrapped as the field shows it: its last line
    // is the caret's line, and the caret stands after that line's text.
    const int columns = std::max(in_control.cells.rect.cols - (MultiLineFramed(in_control) ? 2 : 0), 1);
    const auto caret = std::min(static_cast<std::size_t>(std::max(in_control.selectionEnd, 0)), in_control.text.size());
    const auto lines = TerminalText::Wrap(TerminalText::ToWide(in_control.text.substr(0, caret)), columns);
    if (lines.empty())
    {
        return {0, 0};
    }
    return {static_cast<int>(lines.size()) - 1, std::min(static_cast<int>(lines.back().size()), columns - 1)};
}

void TerminalDialogWindow::EditReplaceSel(int in_id, tarni_wstring_view in_text)
{
    TerminalControl* control = Of(in_id, ControlKind::Edit);
    if (control == nullptr)
    {
        return;
    }
    tarni_wstring text = TextOf(*control);
    control->ReplaceEditSelection(text, in_text);
    SetText(*control, text);
    if (control->field)
    {
        control->field->SetCaret(control->selectionEnd);
    }
}

// ------------------------------------------------------------------ focus

bool TerminalDialogWindow::IsFocusable(int in_index) const
{
    if (in_index < 0 || in_index >= static_cast<int>(m_controls.size()))
    {
        return false;
    }
    const TerminalControl& control = m_controls[static_cast<std::size_t>(in_index)];
    if (!control.visible || !control.enabled)
    {
        return false;
    }
    switch (control.Source().kind)
    {
        case ControlKind::Edit:
        case ControlKind::ComboBox:
        case ControlKind::ListBox: return true;
        case ControlKind::Button: return !control.Source().IsGroupBox();
        default: return false;
    }
}

std::pair<int, int> TerminalDialogWindow::GroupOf(int in_index) const
{
    int first = in_index;
    while (first > 0 && (m_controls[static_cast<std::size_t>(first)].Source().style & DialogStyle::WS_GROUP) == 0)
    {
        --first;
    }
    int last = in_index + 1;
    while (last < static_cast<int>(m_controls.size()) &&
           (m_controls[static_cast<std::size_t>(last)].Source().style & DialogStyle::WS_GROUP) == 0)
    {
        ++last;
    }
    return {first, last};
}

bool TerminalDialogWindow::IsTabStop(int in_index) const
{
    if (!IsFocusable(in_index))
    {
        return false;
    }
    const TerminalControl& control = m_controls[static_cast<std::size_t>(in_index)];
    if (!control.Source().IsRadioButton())
    {
        return (control.Source().style & DialogStyle::WS_TABSTOP) != 0 || control.IsKind(ControlKind::Edit) ||
               control.IsKind(ControlKind::Button);
    }
    // A group of radio buttons is one stop: its checked button, else its
    // first one that can take the focus.
    const auto [first, last] = GroupOf(in_index);
    int stop = -1;
    for (int i = first; i < last; ++i)
    {
        if (!IsFocusable(i) || !m_controls[static_cast<std::size_t>(i)].Source().IsRadioButton())
        {
            continue;
        }
        if (m_controls[static_cast<std::size_t>(i)].checked)
        {
            stop = i;
            break;
        }
        if (stop < 0)
        {
            stop = i;
        }
    }
    return stop == in_index;
}

int TerminalDialogWindow::GetFocusId() const
{
    return m_focus >= 0 ? m_controls[static_cast<std::size_t>(m_focus)].source->id : 0;
}

void TerminalDialogWindow::SetFocus(int in_index)
{
    if (in_index == m_focus || in_index < 0 || in_index >= static_cast<int>(m_controls.size()))
    {
        return;
    }
    const int previous = m_focus;
    m_focus = in_index;
    ScrollToFocus();
    if (previous >= 0 && m_controls[static_cast<std::size_t>(previous)].IsKind(ControlKind::Edit))
    {
        Command(m_controls[static_cast<std::size_t>(previous)].source->id, EN_KILLFOCUS);
    }
    if (m_controls[static_cast<std::size_t>(in_index)].IsKind(ControlKind::Edit))
    {
        Command(m_controls[static_cast<std::size_t>(in_index)].source->id, EN_SETFOCUS);
    }
}

void TerminalDialogWindow::FocusFirst()
{
    if (m_focus >= 0)
    {
        return;
    }
    for (int i = 0; i < static_cast<int>(m_controls.size()); ++i)
    {
        if (IsTabStop(i))
        {
            SetFocus(i);
            return;
        }
    }
}

void TerminalDialogWindow::MoveTab(int in_direction)
{
    const int count = static_cast<int>(m_controls.size());
    for (int n = 1; n <= count; ++n)
    {
        const int i = ((m_focus < 0 ? (in_direction > 0 ? -1 : 0) : m_focus) + in_direction * n + 2 * count) % count;
        if (IsTabStop(i))
        {
            SetFocus(i);
            return;
        }
    }
}

void TerminalDialogWindow::MoveSpatial(int in_rowDirection, int in_colDirection)
{
    if (m_focus < 0)
    {
        MoveTab(1);
        return;
    }
    const CellRect& from = m_controls[static_cast<std::size_t>(m_focus)].cells.rect;
    int best = -1;
    long bestScore = 0;
    for (int i = 0; i < static_cast<int>(m_controls.size()); ++i)
    {
        if (i == m_focus || !IsFocusable(i))
        {
            continue;
        }
        const CellRect& to = m_controls[static_cast<std::size_t>(i)].cells.rect;
        long score = 0;
        if (in_rowDirection != 0)
        {
            // Up or down: the nearest row first, then the nearest column.
            const int rows = in_rowDirection > 0 ? to.row - (from.Bottom() - 1) : from.row - (to.Bottom() - 1);
            if (rows <= 0)
            {
                continue;
            }
            score = rows * 1000L + std::abs(to.col - from.col);
        }
        else
        {
            // Left or right: a control on the same rows, the nearest first.
            const bool sameRows = to.row < from.Bottom() && from.row < to.Bottom();
            const int cols = in_colDirection > 0 ? to.col - from.col : from.col - to.col;
            if (!sameRows || cols <= 0)
            {
                continue;
            }
            score = cols;
        }
        if (best < 0 || score < bestScore)
        {
            best = i;
            bestScore = score;
        }
    }
    if (best >= 0)
    {
        SetFocus(best);
    }
    else if (in_colDirection != 0)
    {
        MoveTab(in_colDirection);
    }
}

// ------------------------------------------------------------------ user actions

void TerminalDialogWindow::Click(int in_index)
{
    TerminalControl& control = m_controls[static_cast<std::size_t>(in_index)];
    const ControlTemplate& source = control.Source();
    if (source.IsCheckBox() && source.IsAutomatic())
    {
        control.checked = !control.checked;
    }
    else if (source.IsRadioButton() && source.IsAutomatic())
    {
        const auto [first, last] = GroupOf(in_index);
        for (int i = first; i < last; ++i)
        {
            TerminalControl& other = m_controls[static_cast<std::size_t>(i)];
            if (other.Source().IsRadioButton())
            {
                other.checked = (i == in_index);
            }
        }
    }
    if (!IsPushButton(control))
    {
        SetFocus(in_index);
    }
    Command(source.id, BN_CLICKED);
}

int TerminalDialogWindow::DefaultButtonIndex() const
{
    // A focused push button is the default while it has the focus.
    if (m_focus >= 0 && IsPushButton(m_controls[static_cast<std::size_t>(m_focus)]))
    {
        return m_focus;
    }
    for (int i = 0; i < static_cast<int>(m_controls.size()); ++i)
    {
        if (m_controls[static_cast<std::size_t>(i)].Source().IsDefaultButton())
        {
            return i;
        }
    }
    return -1;
}

void TerminalDialogWindow::PressEnter()
{
    if (m_focus >= 0)
    {
        const TerminalControl& focused = m_controls[static_cast<std::size_t>(m_focus)];
        if (focused.IsKind(ControlKind::ListBox) && focused.selection >= 0 && focused.enabled &&
            focused.Source().HasStyle(DialogStyle::LBS_NOTIFY))
        {
            Command(focused.source->id, LBN_DBLCLK);
            return;
        }
    }
    const int index = DefaultButtonIndex();
    if (index < 0)
    {
        Command(IDOK, BN_CLICKED);
        return;
    }
    const TerminalControl& button = m_controls[static_cast<std::size_t>(index)];
    if (!button.enabled || !button.visible)
    {
        ::beep();
        return;
    }
    Command(button.source->id, BN_CLICKED);
}

bool TerminalDialogWindow::ActivateMnemonic(wchar_t in_letter)
{
    const wchar_t letter = TerminalText::FoldMnemonic(in_letter);
    const int count = static_cast<int>(m_controls.size());
    for (int n = 1; n <= count; ++n)
    {
        const int i = (std::max(m_focus, 0) + n) % count;
        const TerminalControl& control = m_controls[static_cast<std::size_t>(i)];
        if (!control.visible || !control.label.HasMnemonic() || control.label.mnemonic != letter)
        {
            continue;
        }
        if (control.IsKind(ControlKind::Static) || control.Source().IsGroupBox())
        {
            // A label hands the focus to the control after it.
            for (int j = i + 1; j < count; ++j)
            {
                if (IsFocusable(j))
                {
                    SetFocus(j);
                    return true;
                }
            }
            return true;
        }
        if (!control.enabled)
        {
            continue;
        }
        if (control.IsKind(ControlKind::Button))
        {
            Click(i);
            return true;
        }
    }
    return false;
}

void TerminalDialogWindow::OpenDropDown(int in_index)
{
    TerminalControl& control = m_controls[static_cast<std::size_t>(in_index)];
    const CellRect& rect = control.cells.rect;
    const int row = WindowRow(rect.row);
    if (row < 0 || control.items.empty())
    {
        return;
    }
    const auto chosen = TerminalDropDown::Run(m_host, m_top + row, m_left + 1 + rect.col, rect.cols,
                                              Wide(control.items), control.selection);
    if (chosen && *chosen != control.selection)
    {
        control.selection = *chosen;
        Command(control.source->id, CBN_SELCHANGE);
    }
}

bool TerminalDialogWindow::HandleFocusedKey(const TerminalKey& in_key)
{
    if (m_focus < 0)
    {
        return false;
    }
    TerminalControl& control = m_controls[static_cast<std::size_t>(m_focus)];
    if (!control.enabled || !control.visible)
    {
        return false;
    }
    const int id = control.source->id;
    const bool space = in_key.IsChar(L' ');
    if (control.field)
    {
        switch (control.field->HandleKey(in_key))
        {
            case TerminalEditField::Outcome::Changed:
                Command(id, EN_UPDATE);
                Command(id, EN_CHANGE);
                return true;
            case TerminalEditField::Outcome::Refused: ::beep(); return true;
            case TerminalEditField::Outcome::Moved: return true;
            case TerminalEditField::Outcome::NotHandled: return false;
        }
        return false;
    }
    if (control.IsMultiLineEdit())
    {
        const int step = in_key.IsFunction(KEY_UP) ? -1 : in_key.IsFunction(KEY_DOWN) ? 1
                       : in_key.IsFunction(KEY_PPAGE) ? -control.cells.rect.rows
                       : in_key.IsFunction(KEY_NPAGE) ? control.cells.rect.rows : 0;
        if (step == 0)
        {
            return false;
        }
        control.firstLine = std::max(control.firstLine + step, 0);
        return true;
    }
    if (control.IsKind(ControlKind::Button))
    {
        const ControlTemplate& source = control.Source();
        if (space)
        {
            Click(m_focus);
            return true;
        }
        if (source.IsRadioButton() && (in_key.IsFunction(KEY_UP) || in_key.IsFunction(KEY_DOWN) ||
                                       in_key.IsFunction(KEY_LEFT) || in_key.IsFunction(KEY_RIGHT)))
        {
            // Within a group of radio buttons the arrows go from button to
            // button; past either end they leave the group.
            const int direction = (in_key.IsFunction(KEY_UP) || in_key.IsFunction(KEY_LEFT)) ? -1 : 1;
            const auto [first, last] = GroupOf(m_focus);
            for (int i = m_focus + direction; i >= first && i < last; i += direction)
            {
                if (IsFocusable(i) && m_controls[static_cast<std::size_t>(i)].Source().IsRadioButton())
                {
                    SetFocus(i);
                    return true;
                }
            }
            return false;
        }
        return false;
    }
    if (control.IsKind(ControlKind::ComboBox))
    {
        if (space || in_key.IsFunction(KEY_F(4)))
        {
            OpenDropDown(m_focus);
            return true;
        }
        return false;
    }
    if (control.IsKind(ControlKind::ListBox) && control.menu)
    {
        if (in_key.IsFunction(KEY_LEFT) || in_key.IsFunction(KEY_RIGHT))
        {
            return false;
        }
        const CellRect& rect = control.cells.rect;
        const bool framed = rect.rows >= 3 && rect.cols >= 4;
        control.menu->Update(Wide(control.items), framed ? rect.rows - 2 : rect.rows,
                             framed ? rect.cols - 2 : rect.cols, control.selection);
        bool changed = false;
        const TerminalKey key = space && control.selection < 0 ? TerminalKey{TerminalKey::Kind::Function, KEY_HOME}
                                                               : in_key;
        if (!control.menu->HandleKey(key, changed))
        {
            return false;
        }
        if (changed)
        {
            control.selection = control.menu->GetSelection();
            if (control.Source().HasStyle(DialogStyle::LBS_NOTIFY))
            {
                Command(id, LBN_SELCHANGE);
            }
        }
        return true;
    }
    return false;
}

void TerminalDialogWindow::HandleKey(const TerminalKey& in_key)
{
    if (in_key.kind == TerminalKey::Kind::Escape)
    {
        Command(IDCANCEL, BN_CLICKED);
        return;
    }
    if (in_key.kind == TerminalKey::Kind::Alt)
    {
        if (!ActivateMnemonic(static_cast<wchar_t>(in_key.code)))
        {
            ::beep();
        }
        return;
    }
    if (in_key.IsTab())
    {
        MoveTab(1);
        return;
    }
    if (in_key.IsBackTab())
    {
        MoveTab(-1);
        return;
    }
    if (in_key.IsEnter())
    {
        PressEnter();
        return;
    }
    if (in_key.IsChar(CTRL_L))
    {
        ::clearok(curscr, TRUE);
        return;
    }
    if (HandleFocusedKey(in_key))
    {
        return;
    }
    if (in_key.IsFunction(KEY_UP))
    {
        MoveSpatial(-1, 0);
    }
    else if (in_key.IsFunction(KEY_DOWN))
    {
        MoveSpatial(1, 0);
    }
    else if (in_key.IsFunction(KEY_LEFT))
    {
        MoveSpatial(0, -1);
    }
    else if (in_key.IsFunction(KEY_RIGHT))
    {
        MoveSpatial(0, 1);
    }
    else if (in_key.kind == TerminalKey::Kind::Char && in_key.code > L' ')
    {
        // Outside edit fields a letter alone works as with Alt.
        const bool inEdit = m_focus >= 0 && m_controls[static_cast<std::size_t>(m_focus)].IsKind(ControlKind::Edit);
        if (inEdit || !ActivateMnemonic(static_cast<wchar_t>(in_key.code)))
        {
            ::beep();
        }
    }
}

// ------------------------------------------------------------------ drawing

void TerminalDialogWindow::DrawLabel(int in_row, int in_col, int in_cols, const MnemonicText& in_label,
                                     attr_t in_attributes, bool in_showMnemonic)
{
    const std::wstring shown = TerminalText::FitLabel(in_label.text, in_cols);
    ::wattr_set(m_window, in_attributes, 0, nullptr);
    ::mvwaddnwstr(m_window, in_row, in_col, shown.c_str(), static_cast<int>(shown.size()));
    const bool cut = shown != in_label.text;
    if (in_showMnemonic && in_label.HasMnemonic() && (!cut || in_label.mnemonicIndex < static_cast<int>(shown.size()) - 1))
    {
        const int offset = TerminalText::Width(std::wstring_view(shown).substr(0, static_cast<std::size_t>(in_label.mnemonicIndex)));
        ::mvwchgat(m_window, in_row, in_col + offset, 1, in_attributes | A_UNDERLINE, 0, nullptr);
    }
    ::wattr_set(m_window, A_NORMAL, 0, nullptr);
}

void TerminalDialogWindow::DrawBox(int in_top, int in_left, int in_bottom, int in_right, const MnemonicText* in_title,
                                   attr_t in_attributes)
{
    // in_top and in_bottom are interior rows; parts scrolled away are left out.
    ::wattr_set(m_window, in_attributes, 0, nullptr);
    const int left = in_left + 1;
    const int right = in_right + 1;
    for (int row = in_top; row <= in_bottom; ++row)
    {
        const int y = WindowRow(row);
        if (y < 0)
        {
            continue;
        }
        if (row == in_top || row == in_bottom)
        {
            ::mvwaddch(m_window, y, left, row == in_top ? ACS_ULCORNER : ACS_LLCORNER);
            ::mvwhline(m_window, y, left + 1, ACS_HLINE, right - left - 1);
            ::mvwaddch(m_window, y, right, row == in_top ? ACS_URCORNER : ACS_LRCORNER);
        }
        else
        {
            ::mvwaddch(m_window, y, left, ACS_VLINE);
            ::mvwaddch(m_window, y, right, ACS_VLINE);
        }
    }
    ::wattr_set(m_window, A_NORMAL, 0, nullptr);
    const int titleRow = WindowRow(in_top);
    if (in_title != nullptr && !in_title->text.empty() && titleRow >= 0 && right - left > 4)
    {
        MnemonicText title = *in_title;
        title.text = L" " + title.text + L" ";
        if (title.HasMnemonic())
        {
            ++title.mnemonicIndex;
        }
        DrawLabel(titleRow, left + 1, right - left - 2, title, in_attributes, true);
    }
}

void TerminalDialogWindow::DrawControl(int in_index, bool in_isTop)
{
    TerminalControl& control = m_controls[static_cast<std::size_t>(in_index)];
    const ControlTemplate& source = control.Source();
    if (!control.visible || source.kind == ControlKind::Icon)
    {
        return;  // hidden controls and icons are not drawn
    }
    const CellRect& rect = control.cells.rect;
    const int col = rect.col + 1;
    const int row = WindowRow(rect.row);
    const bool focused = in_isTop && in_index == m_focus;
    const attr_t state = control.enabled ? A_NORMAL : A_DIM;
    const attr_t focus = focused ? A_REVERSE : A_NORMAL;

    if (source.IsGroupBox())
    {
        DrawBox(rect.row, rect.col, rect.Bottom() - 1, rect.Right() - 1, &control.label, state);
        return;
    }
    if (source.kind == ControlKind::Static || source.kind == ControlKind::Other)
    {
        const auto lines = rect.rows > 1 ? TerminalText::Wrap(control.label.text, rect.cols)
                                         : std::vector<std::wstring>{control.label.text};
        for (int i = 0; i < static_cast<int>(lines.size()) && i < rect.rows; ++i)
        {
            const int y = WindowRow(rect.row + i);
            if (y < 0)
            {
                continue;
            }
            const int cols = rect.rows > 1 ? rect.cols : control.cells.textCols;
            MnemonicText line{lines[static_cast<std::size_t>(i)], rect.rows > 1 ? -1 : control.label.mnemonicIndex,
                              control.label.mnemonic};
            const int width = std::min(TerminalText::Width(line.text), cols);
            int x = col;
            if ((source.style & DialogStyle::SS_TYPEMASK) == SS_CENTER)
            {
                x = col + std::max((rect.cols - width) / 2, 0);
            }
            else if ((source.style & DialogStyle::SS_TYPEMASK) == SS_RIGHT)
            {
                x = col + std::max(rect.cols - width, 0);
            }
            DrawLabel(y, x, cols, line, state, true);
        }
        return;
    }
    if (source.kind == ControlKind::ListBox)
    {
        const bool framed = rect.rows >= 3 && rect.cols >= 4;
        if (framed)
        {
            DrawBox(rect.row, rect.col, rect.Bottom() - 1, rect.Right() - 1, nullptr, state);
        }
        const int inner = framed ? 1 : 0;
        control.menu->Update(Wide(control.items), rect.rows - 2 * inner, rect.cols - 2 * inner, control.selection);
        const int top = 1 + rect.row + inner - m_scroll;
        control.menu->Draw(m_window, top, col + inner, 1, ViewRows(), focused, control.enabled);
        return;
    }
    if (control.IsMultiLineEdit())
    {
        const bool framed = MultiLineFramed(control);
        if (framed)
        {
            DrawBox(rect.row, rect.col, rect.Bottom() - 1, rect.Right() - 1, nullptr, state | (focused ? A_BOLD : 0));
        }
        const int inner = framed ? 1 : 0;
        const int rows = rect.rows - 2 * inner;
        const auto lines = TerminalText::Wrap(TerminalText::ToWide(control.text), rect.cols - 2 * inner);
        control.firstLine = std::clamp(control.firstLine, 0, std::max(static_cast<int>(lines.size()) - rows, 0));
        if (focused)
        {
            // The cursor stands at the caret while the caret's line is in view.
            const auto [caretLine, caretCol] = MultiLineCaret(control);
            const int y = WindowRow(rect.row + inner + caretLine - control.firstLine);
            if (caretLine >= control.firstLine && caretLine < control.firstLine + rows && y >= 0)
            {
                m_caretRow = y;
                m_caretCol = col + inner + caretCol;
            }
        }
        ::wattr_set(m_window, state, 0, nullptr);
        for (int i = 0; i < rows && control.firstLine + i < static_cast<int>(lines.size()); ++i)
        {
            const int y = WindowRow(rect.row + inner + i);
            if (y >= 0)
            {
                const auto& line = lines[static_cast<std::size_t>(control.firstLine + i)];
                ::mvwaddnwstr(m_window, y, col + inner, line.c_str(), static_cast<int>(line.size()));
            }
        }
        ::wattr_set(m_window, A_NORMAL, 0, nullptr);
        return;
    }
    if (row < 0)
    {
        return;
    }
    if (control.field)
    {
        const bool brackets = rect.cols >= 4;
        if (brackets)
        {
            ::wattr_set(m_window, state, 0, nullptr);
            ::mvwaddch(m_window, row, col, '[');
            ::mvwaddch(m_window, row, col + rect.cols - 1, ']');
            ::wattr_set(m_window, A_NORMAL, 0, nullptr);
        }
        const int fieldCol = brackets ? col + 1 : col;
        const int caret = control.field->Draw(m_window, row, fieldCol, A_UNDERLINE | state);
        if (focused)
        {
            m_caretRow = row;
            m_caretCol = fieldCol + caret;
        }
        return;
    }
    if (source.kind == ControlKind::ComboBox)
    {
        // [selected entry      v]
        const int inner = std::max(rect.cols - 4, 1);
        const std::wstring text = TerminalText::Fit(TerminalText::ToWide(TextOf(control)), inner);
        std::wstring shown = L"[" + text + std::wstring(static_cast<std::size_t>(std::max(inner - TerminalText::Width(text), 0)), L' ') + L" v]";
        shown = TerminalText::Fit(shown, rect.cols);
        ::wattr_set(m_window, state | focus, 0, nullptr);
        ::mvwaddnwstr(m_window, row, col, shown.c_str(), static_cast<int>(shown.size()));
        ::wattr_set(m_window, A_NORMAL, 0, nullptr);
        return;
    }
    if (source.IsPushButton())
    {
        // < Cancel >, and the default button << OK >>.
        const bool isDefault = in_isTop ? DefaultButtonIndex() == in_index : source.IsDefaultButton();
        const std::wstring& label = control.label.text;
        const int labelWidth = TerminalText::Width(label);
        const std::wstring open = isDefault ? L"<<" : L"<";
        const std::wstring close = isDefault ? L">>" : L">";
        std::wstring before = open + L" ";
        std::wstring after = L" " + close;
        int cols = rect.cols;
        if (labelWidth + 4 + 2 * (isDefault ? 1 : 0) > cols)
        {
            before = open;
            after = close;
        }
        if (labelWidth + static_cast<int>(before.size() + after.size()) > cols)
        {
            cols = std::max(control.cells.textCols, 3);
        }
        if (labelWidth + static_cast<int>(before.size() + after.size()) > cols)
        {
            before = L"<";
            after = L">";
        }
        const int labelCols = std::max(cols - static_cast<int>(before.size() + after.size()), 1);
        const std::wstring shownLabel = TerminalText::FitLabel(label, labelCols);
        const int width = static_cast<int>(before.size() + after.size()) + TerminalText::Width(shownLabel);
        const int x = col + std::max((std::min(cols, std::max(rect.cols, width)) - width) / 2, 0);
        const attr_t attributes = state | focus | (isDefault && control.enabled ? A_BOLD : A_NORMAL);
        ::wattr_set(m_window, attributes, 0, nullptr);
        ::mvwaddnwstr(m_window, row, x, before.c_str(), static_cast<int>(before.size()));
        MnemonicText shown{shownLabel, control.label.mnemonicIndex, control.label.mnemonic};
        DrawLabel(row, x + static_cast<int>(before.size()), labelCols, shown, attributes, true);
        ::wattr_set(m_window, attributes, 0, nullptr);
        ::mvwaddnwstr(m_window, row, x + static_cast<int>(before.size()) + TerminalText::Width(shownLabel),
                      after.c_str(), static_cast<int>(after.size()));
        ::wattr_set(m_window, A_NORMAL, 0, nullptr);
        return;
    }
    if (source.IsCheckBox() || source.IsRadioButton())
    {
        // [x] Check box    (*) Radio button
        const bool radio = source.IsRadioButton();
        std::wstring mark = radio ? (control.checked ? L"(*)" : L"( )") : (control.checked ? L"[x]" : L"[ ]");
        ::wattr_set(m_window, state | focus, 0, nullptr);
        ::mvwaddnwstr(m_window, row, col, mark.c_str(), 3);
        ::wattr_set(m_window, state, 0, nullptr);
        ::mvwaddch(m_window, row, col + 3, ' ');
        DrawLabel(row, col + 4, std::max(control.cells.textCols - 4, 1), control.label, state | focus, true);
        return;
    }
}

void TerminalDialogWindow::Paint(bool in_isTop)
{
    if (m_window == nullptr)
    {
        return;
    }
    m_caretRow = m_caretCol = -1;
    ::werase(m_window);
    ::wattr_set(m_window, A_NORMAL, 0, nullptr);
    ::box(m_window, 0, 0);
    // The title, centred in the top edge.
    const std::wstring title = TerminalText::Fit(TerminalText::ToWide(m_title), std::max(m_width - 6, 1));
    if (!title.empty())
    {
        const std::wstring shown = L" " + title + L" ";
        const int x = std::max((m_width - TerminalText::Width(shown)) / 2, 1);
        ::wattr_set(m_window, in_isTop ? A_BOLD : A_NORMAL, 0, nullptr);
        ::mvwaddnwstr(m_window, 0, x, shown.c_str(), static_cast<int>(shown.size()));
        ::wattr_set(m_window, A_NORMAL, 0, nullptr);
    }
    // Group boxes first, so that the controls inside are drawn over their lines.
    for (int i = 0; i < static_cast<int>(m_controls.size()); ++i)
    {
        if (m_controls[static_cast<std::size_t>(i)].Source().IsGroupBox())
        {
            DrawControl(i, in_isTop);
        }
    }
    for (int i = 0; i < static_cast<int>(m_controls.size()); ++i)
    {
        if (!m_controls[static_cast<std::size_t>(i)].Source().IsGroupBox())
        {
            DrawControl(i, in_isTop);
        }
    }
    // Marks on the right edge when the dialog scrolls.
    if (m_scroll > 0)
    {
        ::mvwaddch(m_window, 1, m_width - 1, ACS_UARROW);
    }
    if (m_scroll + ViewRows() < m_layout.GetRows())
    {
        ::mvwaddch(m_window, m_height - 2, m_width - 1, ACS_DARROW);
    }
    ::touchwin(m_window);
    ::wnoutrefresh(m_window);
}

void TerminalDialogWindow::PlaceCaret()
{
    if (m_window != nullptr && m_caretRow >= 0)
    {
        ::wmove(m_window, m_caretRow, m_caretCol);
        ::curs_set(1);
        ::wnoutrefresh(m_window);
    }
    else
    {
        ::curs_set(0);
    }
}

std::wstring TerminalDialogWindow::GetStatusText() const
{
    std::wstring status;
    std::wstring enter = L"Enter: OK  ";
    const int defaultIndex = DefaultButtonIndex();
    if (defaultIndex >= 0)
    {
        // Enter only beeps while the default button is disabled or hidden,
        // so the line offers it only when it does something.
        const TerminalControl& button = m_controls[static_cast<std::size_t>(defaultIndex)];
        enter = button.enabled && button.visible ? L"Enter: " + button.label.text + L"  " : std::wstring();
    }
    if (m_focus >= 0)
    {
        const TerminalControl& control = m_controls[static_cast<std::size_t>(m_focus)];
        const ControlTemplate& source = control.Source();
        if (source.IsPushButton())
        {
            status = control.label.text + L"  ";
        }
        else if (source.IsCheckBox() || source.IsRadioButton())
        {
            status = L"Space: select  ";
        }
        else if (source.kind == ControlKind::ComboBox)
        {
            status = L"Space: open list  ";
        }
        else if (source.kind == ControlKind::ListBox)
        {
            status = L"Up/Down: select  ";
            if (source.HasStyle(DialogStyle::LBS_NOTIFY) && control.selection >= 0)
            {
                enter = L"Enter: open entry  ";
            }
        }
    }
    return status + L"Tab/Shift-Tab: move  " + enter + L"Esc: Cancel";
}
}  // namespace Tarni::Platform
