#pragma once
// The state of one control of a dialog that a host keeps in memory instead
// of in a native window (the scripted host of the tests, the terminal host),
// with the Windows semantics of what the controller does to it: the entries
// of a list or combo box and their selection (LB_/CB_ messages), and the
// selection of an edit control (EM_SETSEL, EM_REPLACESEL). A host adds what
// only it needs (cells, fields) and checks the kind of control before it
// calls the list or edit operations.
#include <vector>

#include "ui/DialogTemplate.h"

namespace Tarni::Platform
{
struct DialogControlState
{
    /// Visible and enabled as the template's style says; the template's text
    /// for every control but list and combo boxes, whose text is their entry.
    explicit DialogControlState(const ControlTemplate& in_source);

    const ControlTemplate& Source() const { return *source; }
    bool IsKind(ControlKind in_kind) const { return source->kind == in_kind; }

    // --- list and combo box entries ---
    /// Appends the entry, or inserts it in case-insensitive order when
    /// in_sorted (after equal entries); a selection at or after the new
    /// entry moves with its entry. The index of the new entry.
    int AddItem(tarni_wstring_view in_text, bool in_sorted);
    /// Removes the entry; the selection is cleared when it was that entry.
    /// The entries left, or DIALOG_LIST_ERROR for an index out of range.
    int DeleteItem(int in_index);
    int GetItemCount() const { return static_cast<int>(items.size()); }
    /// The entry's text, empty for an index out of range.
    tarni_wstring GetItemText(int in_index) const;
    /// Selects the entry and gives its index; an index out of range clears
    /// the selection and gives DIALOG_LIST_ERROR.
    int SetSelection(int in_index);
    /// The text of the selected entry, empty when none is selected.
    tarni_wstring GetSelectedText() const;
    /// The first entry equal to the text, ignoring case; DIALOG_LIST_ERROR when none.
    int FindItemExact(tarni_wstring_view in_text) const;
    /// The first entry that begins with the prefix, ignoring case, searched
    /// from the entry after in_startAfter (from the first when it is out of
    /// range) round to the start; DIALOG_LIST_ERROR when none.
    int FindItemPrefix(int in_startAfter, tarni_wstring_view in_prefix) const;

    // --- edit selection ---
    /// Selects from in_start to in_end of a text of in_length characters, in
    /// either order; an end or a start below zero means the end of the text,
    /// and both are held to the text.
    void SetEditSelection(int in_start, int in_end, int in_length);
    /// Replaces the selection of io_text (held to the text) and puts the
    /// caret after the new text.
    void ReplaceEditSelection(tarni_wstring& io_text, tarni_wstring_view in_replacement);

    const ControlTemplate* source;
    tarni_wstring text;
    bool enabled = true;
    bool visible = true;
    bool checked = false;
    std::vector<tarni_wstring> items;  ///< combo and list box entries
    int selection = -1;                ///< combo and list box selection
    int selectionStart = 0;            ///< edit selection
    int selectionEnd = 0;
};
}  // namespace Tarni::Platform
