#include "ui/DialogControlState.h"

#include <algorithm>

#include "ui/IDialogWindow.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
using Support::StringConverter;

DialogControlState::DialogControlState(const ControlTemplate& in_source)
    : source(&in_source), enabled((in_source.style & DialogStyle::WS_DISABLED) == 0),
      visible((in_source.style & DialogStyle::WS_VISIBLE) != 0)
{
    if (in_source.kind != ControlKind::ComboBox && in_source.kind != ControlKind::ListBox)
    {
        text = in_source.text;
    }
}

int DialogControlState::AddItem(tarni_wstring_view in_text, bool in_sorted)
{
    auto position = items.end();
    if (in_sorted)
    {
        position = std::upper_bound(items.begin(), items.end(), in_text,
                                    [](tarni_wstring_view in_left, const tarni_wstring& in_right) {
                                        return StringConverter::CompareIgnoreCase(in_left, in_right) < 0;
                                    });
    }
    const auto index = static_cast<int>(position - items.begin());
    items.insert(position, tarni_wstring(in_text));
    if (selection >= index)
    {
        ++selection;
    }
    return index;
}

int DialogControlState::DeleteItem(int in_index)
{
    if (in_index < 0 || in_index >= GetItemCount())
    {
        return DIALOG_LIST_ERROR;
    }
    items.erase(items.begin() + in_index);
    if (selection == in_index)
    {
        selection = -1;
    }
    else if (selection > in_index)
    {
        --selection;
    }
    return GetItemCount();
}

tarni_wstring DialogControlState::GetItemText(int in_index) const
{
    if (in_index < 0 || in_index >= GetItemCount())
    {
        return {};
    }
    return items[static_cast<std::size_t>(in_index)];
}

int DialogControlState::SetSelection(int in_index)
{
    if (in_index < 0 || in_index >= GetItemCount())
    {
        selection = -1;
        return DIALOG_LIST_ERROR;
    }
    selection = in_index;
    return in_index;
}

tarni_wstring DialogControlState::GetSelectedText() const { return GetItemText(selection); }

int DialogControlState::FindItemExact(tarni_wstring_view in_text) const
{
    for (std::size_t i = 0; i < items.size(); ++i)
    {
        if (StringConverter::EqualsIgnoreCase(items[i], in_text))
        {
            return static_cast<int>(i);
        }
    }
    return DIALOG_LIST_ERROR;
}

int DialogControlState::FindItemPrefix(int in_startAfter, tarni_wstring_view in_prefix) const
{
    const int count = GetItemCount();
    const int start = (in_startAfter < 0 || in_startAfter >= count) ? 0 : in_startAfter + 1;
    for (int n = 0; n < count; ++n)
    {
        const int i = (start + n) % count;
        const tarni_wstring& item = items[static_cast<std::size_t>(i)];
        if (item.size() >= in_prefix.size() &&
            StringConverter::EqualsIgnoreCase(tarni_wstring_view(item).substr(0, in_prefix.size()), in_prefix))
        {
            return i;
        }
    }
    return DIALOG_LIST_ERROR;
}

void DialogControlState::SetEditSelection(int in_start, int in_end, int in_length)
{
    auto clamp = [in_length](int in_value) { return in_value < 0 ? in_length : std::min(in_value, in_length); };
    const int end = in_end < 0 ? in_length : in_end;
    selectionStart = clamp(std::min(in_start, end));
    selectionEnd = clamp(std::max(in_start, end));
}

void DialogControlState::ReplaceEditSelection(tarni_wstring& io_text, tarni_wstring_view in_replacement)
{
    const auto start = std::min(static_cast<std::size_t>(selectionStart), io_text.size());
    const auto end = std::clamp(static_cast<std::size_t>(selectionEnd), start, io_text.size());
    io_text.replace(start, end - start, in_replacement);
    selectionStart = selectionEnd = static_cast<int>(start + in_replacement.size());
}
}  // namespace Tarni::Platform
