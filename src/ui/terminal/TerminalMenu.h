#pragma once
// A list of entries shown and moved through with the curses menu library:
// the list boxes of a dialog and the pop-up list of a drop-down combo box.
// Like an edit field, the menu is posted in an off-screen pad and its cells
// are copied to wherever the list is shown. The list may have no selection
// (Windows list boxes start so); the menu then shows no highlighted entry.
#include <curses.h>
#include <menu.h>

#include <string>
#include <vector>

#include "ui/terminal/TerminalKey.h"

namespace Tarni::Platform
{
class TerminalMenu
{
public:
    TerminalMenu() = default;
    ~TerminalMenu();
    TerminalMenu(const TerminalMenu&) = delete;
    TerminalMenu& operator=(const TerminalMenu&) = delete;

    /// Sets entries, size and selection (-1: none) and rebuilds the menu
    /// when any of them changed.
    void Update(const std::vector<std::wstring>& in_items, int in_rows, int in_cols, int in_selection);

    int GetSelection() const { return m_selection; }

    /// Moves the selection with the arrow, page, Home and End keys, or to the
    /// next entry that begins with a typed character; true when the key was
    /// one of those. out_changed tells whether the selection moved.
    bool HandleKey(const TerminalKey& in_key, bool& out_changed);

    /// Copies the list into in_target at (in_row, in_col); only the rows
    /// in_clipTop to in_clipBottom (inclusive) of the target are written.
    void Draw(WINDOW* in_target, int in_row, int in_col, int in_clipTop, int in_clipBottom, bool in_focused,
              bool in_enabled);

private:
    void Build();
    void Destroy();
    void Select(int in_index);

    std::vector<std::wstring> m_items;
    std::vector<std::string> m_names;  ///< the entries as the menu shows them (UTF-8, cut to the width)
    std::vector<ITEM*> m_menuItems;
    MENU* m_menu = nullptr;
    WINDOW* m_pad = nullptr;
    int m_rows = 0;
    int m_cols = 0;
    int m_selection = -1;
    bool m_built = false;
};
}  // namespace Tarni::Platform
