#include "ui/scripted/ScriptedDialogWindow.h"

#include <algorithm>
#include <thread>

#include "ui/DialogConstants.h"
#include "ui/scripted/ScriptedDialogHost.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
namespace
{
using Support::StringConverter;

std::string Describe(const DialogTemplate& in_template, int in_id)
{
    return "control " + std::to_string(in_id) + " of dialog " + std::to_string(in_template.id);
}

const char* KindName(ControlKind in_kind)
{
    switch (in_kind)
    {
        case ControlKind::Static: return "a static control";
        case ControlKind::Icon: return "an icon";
        case ControlKind::Button: return "a button";
        case ControlKind::Edit: return "an edit control";
        case ControlKind::ComboBox: return "a combo box";
        case ControlKind::ListBox: return "a list box";
        case ControlKind::Other: break;
    }
    return "a control";
}

// Dialog units to pixels for the 8-point dialog font (6 x 13 base units).
int ToPixelsX(int in_units) { return in_units * 6 / 4; }
int ToPixelsY(int in_units) { return in_units * 13 / 8; }
}  // namespace

ScriptedDialogWindow::ScriptedDialogWindow(ScriptedDialogHost& in_host, const DialogTemplate& in_template,
                                           IDialogWindow* in_parent, DialogProcedure in_procedure)
    : m_host(in_host), m_template(in_template), m_parent(in_parent), m_procedure(in_procedure),
      m_title(in_template.caption)
{
    m_controls.reserve(in_template.controls.size());
    for (const auto& source : in_template.controls)
    {
        m_controls.emplace_back(source);
    }
    // Like the system: the template position, relative to the owner.
    const DialogRect origin = in_parent != nullptr ? in_parent->GetWindowRect() : DialogRect{};
    m_rect.left = origin.left + ToPixelsX(in_template.x);
    m_rect.top = origin.top + ToPixelsY(in_template.y);
    m_rect.right = m_rect.left + ToPixelsX(in_template.width);
    m_rect.bottom = m_rect.top + ToPixelsY(in_template.height);
}

IDialogHost& ScriptedDialogWindow::GetHost() { return m_host; }

DialogControlState* ScriptedDialogWindow::Find(int in_id)
{
    for (auto& control : m_controls)
    {
        if (control.source->id == in_id)
        {
            return &control;
        }
    }
    return nullptr;
}

const DialogControlState* ScriptedDialogWindow::Find(int in_id) const
{
    return const_cast<ScriptedDialogWindow*>(this)->Find(in_id);
}

DialogControlState* ScriptedDialogWindow::Of(int in_id, ControlKind in_kind)
{
    DialogControlState* control = Find(in_id);
    return control != nullptr && control->source->kind == in_kind ? control : nullptr;
}

DialogControlState& ScriptedDialogWindow::Usable(int in_id, ControlKind in_kind, const char* in_operation)
{
    if (m_ended)
    {
        throw ScriptedHostError(std::string(in_operation) + ": dialog " + std::to_string(m_template.id) +
                                " has already ended");
    }
    DialogControlState* control = Find(in_id);
    if (control == nullptr)
    {
        throw ScriptedHostError(std::string(in_operation) + ": there is no " + Describe(m_template, in_id));
    }
    if (control->source->kind != in_kind)
    {
        throw ScriptedHostError(std::string(in_operation) + ": " + Describe(m_template, in_id) + " is not " +
                                KindName(in_kind));
    }
    if (!control->visible || !control->enabled)
    {
        throw ScriptedHostError(std::string(in_operation) + ": " + Describe(m_template, in_id) + " is " +
                                (control->visible ? "disabled" : "hidden"));
    }
    return *control;
}

std::intptr_t ScriptedDialogWindow::Send(std::uint32_t in_message, std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    return m_procedure(this, in_message, in_wParam, in_lParam);
}

void ScriptedDialogWindow::Command(int in_id, unsigned in_code)
{
    Send(WM_COMMAND, MakeCommandParam(static_cast<unsigned>(in_id), in_code), 0);
}

void ScriptedDialogWindow::Type(int in_id, tarni_wstring_view in_text)
{
    DialogControlState& control = Usable(in_id, ControlKind::Edit, "Type");
    if (control.source->HasStyle(DialogStyle::ES_READONLY))
    {
        throw ScriptedHostError("Type: " + Describe(m_template, in_id) + " is read-only");
    }
    tarni_wstring text;
    for (const char16_t c : in_text)
    {
        if (!control.source->HasStyle(DialogStyle::ES_NUMBER) || (c >= u'0' && c <= u'9'))
        {
            text.push_back(c);
        }
    }
    control.text = std::move(text);
    control.selectionStart = control.selectionEnd = static_cast<int>(control.text.size());
    Command(in_id, EN_UPDATE);
    Command(in_id, EN_CHANGE);
}

void ScriptedDialogWindow::Click(int in_id)
{
    DialogControlState& control = Usable(in_id, ControlKind::Button, "Click");
    const ControlTemplate& source = *control.source;
    if (source.IsGroupBox())
    {
        throw ScriptedHostError("Click: " + Describe(m_template, in_id) + " is a group box");
    }
    if (source.IsCheckBox() && source.IsAutomatic())
    {
        control.checked = !control.checked;
    }
    else if (source.IsRadioButton() && source.IsAutomatic())
    {
        // The group runs from the last control with WS_GROUP up to the next one.
        const auto self = static_cast<std::size_t>(&control - m_controls.data());
        std::size_t first = self;
        while (first > 0 && (m_controls[first].source->style & DialogStyle::WS_GROUP) == 0)
        {
            --first;
        }
        for (std::size_t i = first; i < m_controls.size(); ++i)
        {
            if (i > first && (m_controls[i].source->style & DialogStyle::WS_GROUP) != 0)
            {
                break;
            }
            if (m_controls[i].source->IsRadioButton())
            {
                m_controls[i].checked = (i == self);
            }
        }
    }
    m_focus = in_id;
    Command(in_id, BN_CLICKED);
}

void ScriptedDialogWindow::SelectCombo(int in_id, tarni_wstring_view in_text)
{
    DialogControlState& control = Usable(in_id, ControlKind::ComboBox, "SelectCombo");
    const auto it = std::find(control.items.begin(), control.items.end(), in_text);
    if (it == control.items.end())
    {
        throw ScriptedHostError("SelectCombo: " + Describe(m_template, in_id) + " has no entry \"" +
                                StringConverter::ToUtf8(in_text) + "\"");
    }
    control.SetSelection(static_cast<int>(it - control.items.begin()));
    Command(in_id, CBN_SELCHANGE);
}

void ScriptedDialogWindow::SelectListItem(int in_id, int in_index)
{
    DialogControlState& control = Usable(in_id, ControlKind::ListBox, "SelectListItem");
    if (control.SetSelection(in_index) == DIALOG_LIST_ERROR)
    {
        throw ScriptedHostError("SelectListItem: " + Describe(m_template, in_id) + " has no entry " +
                                std::to_string(in_index));
    }
    if (control.source->HasStyle(DialogStyle::LBS_NOTIFY))
    {
        Command(in_id, LBN_SELCHANGE);
    }
}

void ScriptedDialogWindow::DoubleClickListItem(int in_id, int in_index)
{
    SelectListItem(in_id, in_index);
    if (Find(in_id)->source->HasStyle(DialogStyle::LBS_NOTIFY))
    {
        Command(in_id, LBN_DBLCLK);
    }
}

void ScriptedDialogWindow::PressEnter()
{
    if (m_ended)
    {
        throw ScriptedHostError("PressEnter: dialog " + std::to_string(m_template.id) + " has already ended");
    }
    // A focused push button takes Enter; otherwise the default button does.
    const DialogControlState* target = nullptr;
    if (const DialogControlState* focused = Find(m_focus); focused != nullptr && focused->source->IsPushButton())
    {
        target = focused;
    }
    for (const auto& control : m_controls)
    {
        if (target == nullptr && control.source->IsDefaultButton())
        {
            target = &control;
        }
    }
    const int id = target != nullptr ? target->source->id : IDOK;
    if (target != nullptr && (!target->enabled || !target->visible))
    {
        return;  // the system only beeps
    }
    Command(id, BN_CLICKED);
}

void ScriptedDialogWindow::PressEscape()
{
    if (m_ended)
    {
        throw ScriptedHostError("PressEscape: dialog " + std::to_string(m_template.id) + " has already ended");
    }
    Command(IDCANCEL, BN_CLICKED);
}

void ScriptedDialogWindow::PressCloseBox()
{
    if (m_ended)
    {
        throw ScriptedHostError("PressCloseBox: dialog " + std::to_string(m_template.id) + " has already ended");
    }
    if (Send(WM_CLOSE, 0, 0) != 0)
    {
        return;
    }
    // The default handling: IDCANCEL, unless a Cancel button exists and is disabled.
    const DialogControlState* cancel = Find(IDCANCEL);
    if (cancel != nullptr && !cancel->enabled)
    {
        return;
    }
    Command(IDCANCEL, BN_CLICKED);
}

tarni_wstring ScriptedDialogWindow::Text(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    if (control == nullptr)
    {
        throw ScriptedHostError("Text: there is no " + Describe(m_template, in_id));
    }
    if (control->source->kind == ControlKind::ComboBox || control->source->kind == ControlKind::ListBox)
    {
        return SelectedText(in_id);
    }
    return control->text;
}

bool ScriptedDialogWindow::Checked(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    return control != nullptr && control->checked;
}

bool ScriptedDialogWindow::Enabled(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    return control != nullptr && control->enabled;
}

bool ScriptedDialogWindow::Visible(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    return control != nullptr && control->visible;
}

std::vector<tarni_wstring> ScriptedDialogWindow::Items(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    return control != nullptr ? control->items : std::vector<tarni_wstring>{};
}

int ScriptedDialogWindow::Selection(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    return control != nullptr ? control->selection : -1;
}

tarni_wstring ScriptedDialogWindow::SelectedText(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    return control != nullptr ? control->GetSelectedText() : tarni_wstring{};
}

void ScriptedDialogWindow::MoveWindow(int in_x, int in_y, int in_width, int in_height, bool)
{
    m_rect = DialogRect{in_x, in_y, in_x + in_width, in_y + in_height};
}

void ScriptedDialogWindow::EndDialog(std::intptr_t in_result)
{
    m_ended = true;
    m_result = in_result;
}

bool ScriptedDialogWindow::RunTimers(const std::function<bool()>& in_until, std::chrono::milliseconds in_limit)
{
    const auto deadline = std::chrono::steady_clock::now() + in_limit;
    while (!in_until())
    {
        if (m_timers.empty() || m_ended || std::chrono::steady_clock::now() >= deadline)
        {
            return false;
        }
        unsigned interval = m_timers.begin()->second;
        for (const auto& [id, timerInterval] : m_timers)
        {
            interval = std::min(interval, timerInterval);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(interval));
        // A copy: the procedure may start or stop timers.
        const std::map<unsigned, unsigned> timers = m_timers;
        for (const auto& [id, timerInterval] : timers)
        {
            if (m_timers.count(id) != 0 && !m_ended)
            {
                Send(WM_TIMER, id, 0);
            }
        }
    }
    return true;
}

void ScriptedDialogWindow::SetProperty(tarni_wstring_view in_name, void* in_value)
{
    m_properties[tarni_wstring(in_name)] = in_value;
}

void* ScriptedDialogWindow::GetProperty(tarni_wstring_view in_name)
{
    const auto it = m_properties.find(tarni_wstring(in_name));
    return it == m_properties.end() ? nullptr : it->second;
}

int ScriptedDialogWindow::GetItemTextLength(int in_id)
{
    const DialogControlState* control = Find(in_id);
    return control == nullptr ? 0 : static_cast<int>(Text(in_id).size());
}

tarni_wstring ScriptedDialogWindow::GetItemText(int in_id, int in_bufferChars)
{
    if (Find(in_id) == nullptr || in_bufferChars <= 0)
    {
        return {};
    }
    tarni_wstring text = Text(in_id);
    if (static_cast<int>(text.size()) > in_bufferChars - 1)
    {
        text.resize(static_cast<std::size_t>(in_bufferChars - 1));
    }
    return text;
}

void ScriptedDialogWindow::SetItemText(int in_id, tarni_wstring_view in_text)
{
    DialogControlState* control = Find(in_id);
    if (control == nullptr)
    {
        return;
    }
    control->text = tarni_wstring(in_text);
    // WM_SETTEXT leaves an edit's caret at the start with nothing selected.
    control->selectionStart = control->selectionEnd = 0;
    // A single-line edit control notifies its parent of a text set by code too.
    if (control->source->kind == ControlKind::Edit && !control->source->HasStyle(DialogStyle::ES_MULTILINE))
    {
        Command(in_id, EN_UPDATE);
        Command(in_id, EN_CHANGE);
    }
}

void ScriptedDialogWindow::SetFocusItem(int in_id)
{
    m_focus = in_id;
    // WM_NEXTDLGCTL selects the whole text of the edit control it focuses.
    if (DialogControlState* control = Of(in_id, ControlKind::Edit))
    {
        control->SetEditSelection(0, -1, static_cast<int>(control->text.size()));
    }
}

std::pair<int, int> ScriptedDialogWindow::EditSelection(int in_id) const
{
    const DialogControlState* control = Find(in_id);
    return control != nullptr ? std::pair{control->selectionStart, control->selectionEnd} : std::pair{0, 0};
}

void ScriptedDialogWindow::EnableItem(int in_id, bool in_enable)
{
    if (DialogControlState* control = Find(in_id))
    {
        control->enabled = in_enable;
    }
}

void ScriptedDialogWindow::ShowItem(int in_id, bool in_show)
{
    if (DialogControlState* control = Find(in_id))
    {
        control->visible = in_show;
    }
}

void ScriptedDialogWindow::CheckButton(int in_id, bool in_checked)
{
    if (DialogControlState* control = Of(in_id, ControlKind::Button))
    {
        control->checked = in_checked;
    }
}

// The entries and their selection are DialogControlState's; a control that is
// missing or of another kind gives DIALOG_LIST_ERROR, as the message would.

int ScriptedDialogWindow::ComboAddString(int in_id, tarni_wstring_view in_text)
{
    DialogControlState* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->AddItem(in_text, control->Source().HasStyle(DialogStyle::CBS_SORT))
                              : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ComboDeleteString(int in_id, int in_index)
{
    DialogControlState* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->DeleteItem(in_index) : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ComboGetCount(int in_id)
{
    const DialogControlState* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->GetItemCount() : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ComboGetCurSel(int in_id)
{
    const DialogControlState* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->selection : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ComboSetCurSel(int in_id, int in_index)
{
    DialogControlState* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->SetSelection(in_index) : DIALOG_LIST_ERROR;
}

tarni_wstring ScriptedDialogWindow::ComboGetItemText(int in_id, int in_index)
{
    const DialogControlState* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->GetItemText(in_index) : tarni_wstring{};
}

int ScriptedDialogWindow::ComboFindStringExact(int in_id, tarni_wstring_view in_text)
{
    const DialogControlState* control = Of(in_id, ControlKind::ComboBox);
    return control != nullptr ? control->FindItemExact(in_text) : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ListAddString(int in_id, tarni_wstring_view in_text)
{
    DialogControlState* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->AddItem(in_text, control->Source().HasStyle(DialogStyle::LBS_SORT))
                              : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ListDeleteString(int in_id, int in_index)
{
    DialogControlState* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->DeleteItem(in_index) : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ListGetCount(int in_id)
{
    const DialogControlState* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->GetItemCount() : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ListGetCurSel(int in_id)
{
    const DialogControlState* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->selection : DIALOG_LIST_ERROR;
}

int ScriptedDialogWindow::ListSetCurSel(int in_id, int in_index)
{
    DialogControlState* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->SetSelection(in_index) : DIALOG_LIST_ERROR;
}

tarni_wstring ScriptedDialogWindow::ListGetText(int in_id, int in_index)
{
    const DialogControlState* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->GetItemText(in_index) : tarni_wstring{};
}

int ScriptedDialogWindow::ListFindString(int in_id, int in_startAfter, tarni_wstring_view in_prefix)
{
    const DialogControlState* control = Of(in_id, ControlKind::ListBox);
    return control != nullptr ? control->FindItemPrefix(in_startAfter, in_prefix) : DIALOG_LIST_ERROR;
}

void ScriptedDialogWindow::EditSetSel(int in_id, int in_start, int in_end)
{
    if (DialogControlState* control = Of(in_id, ControlKind::Edit))
    {
        control->SetEditSelection(in_start, in_end, static_cast<int>(control->text.size()));
    }
}

void ScriptedDialogWindow::EditReplaceSel(int in_id, tarni_wstring_view in_text)
{
    if (DialogControlState* control = Of(in_id, ControlKind::Edit))
    {
        control->ReplaceEditSelection(control->text, in_text);
    }
}
}  // namespace Tarni::Platform
