#include "ui/terminal/TerminalMenu.h"

#include <algorithm>

#include "ui/terminal/TerminalText.h"

namespace Tarni::Platform
{
TerminalMenu::~TerminalMenu() { Destroy(); }

void TerminalMenu::Destroy()
{
    if (m_menu != nullptr)
    {
        ::unpost_menu(m_menu);
        ::free_menu(m_menu);
        m_menu = nullptr;
    }
    for (ITEM* item : m_menuItems)
    {
        if (item != nullptr)
        {
            ::free_item(item);
        }
    }
    m_menuItems.clear();
    if (m_pad != nullptr)
    {
        ::delwin(m_pad);
        m_pad = nullptr;
    }
    m_built = false;
}

void TerminalMenu::Update(const std::vector<std::wstring>& in_items, int in_rows, int in_cols, int in_selection)
{
    in_rows = std::max(in_rows, 1);
    in_cols = std::max(in_cols, 1);
    in_selection = (in_selection >= 0 && in_selection < static_cast<int>(in_items.size())) ? in_selection : -1;
    if (m_built && in_items == m_items && in_rows == m_rows && in_cols == m_cols)
    {
        if (in_selection != m_selection)
        {
            Select(in_selection);
        }
        return;
    }
    Destroy();
    m_items = in_items;
    m_rows = in_rows;
    m_cols = in_cols;
    m_selection = in_selection;
    Build();
}

void TerminalMenu::Build()
{
    m_built = true;
    m_pad = ::newpad(m_rows, m_cols);
    if (m_pad == nullptr || m_items.empty())
    {
        return;
    }
    // The menu refuses entries wider than its window: each is cut to the width.
    m_names.clear();
    for (const auto& item : m_items)
    {
        m_names.push_back(TerminalText::ToUtf8(TerminalText::Fit(item, m_cols)));
    }
    for (const auto& name : m_names)
    {
        m_menuItems.push_back(::new_item(name.c_str(), ""));
    }
    m_menuItems.push_back(nullptr);
    m_menu = ::new_menu(m_menuItems.data());
    if (m_menu == nullptr)
    {
        return;
    }
    ::menu_opts_off(m_menu, O_SHOWDESC);
    ::set_menu_mark(m_menu, "");
    ::set_menu_format(m_menu, m_rows, 1);
    ::set_menu_win(m_menu, m_pad);
    ::set_menu_sub(m_menu, m_pad);
    ::set_menu_back(m_menu, A_NORMAL);
    if (::post_menu(m_menu) != E_OK)
    {
        ::free_menu(m_menu);
        m_menu = nullptr;
        return;
    }
    Select(m_selection);
}

void TerminalMenu::Select(int in_index)
{
    m_selection = in_index;
    if (m_menu != nullptr && in_index >= 0)
    {
        ::set_current_item(m_menu, m_menuItems[static_cast<std::size_t>(in_index)]);
    }
}

bool TerminalMenu::HandleKey(const TerminalKey& in_key, bool& out_changed)
{
    out_changed = false;
    const int count = static_cast<int>(m_items.size());
    int request = 0;
    if (in_key.IsFunction(KEY_UP)) request = REQ_UP_ITEM;
    else if (in_key.IsFunction(KEY_DOWN)) request = REQ_DOWN_ITEM;
    else if (in_key.IsFunction(KEY_PPAGE)) request = REQ_SCR_UPAGE;
    else if (in_key.IsFunction(KEY_NPAGE)) request = REQ_SCR_DPAGE;
    else if (in_key.IsFunction(KEY_HOME)) request = REQ_FIRST_ITEM;
    else if (in_key.IsFunction(KEY_END)) request = REQ_LAST_ITEM;
    if (request == 0 && in_key.kind == TerminalKey::Kind::Char && in_key.code > 32)
    {
        // The next entry that begins with the character, from the selection on.
        const wchar_t wanted = TerminalText::FoldMnemonic(static_cast<wchar_t>(in_key.code));
        for (int n = 1; n <= count; ++n)
        {
            const int i = (std::max(m_selection, -1) + n + count) % count;
            const auto& item = m_items[static_cast<std::size_t>(i)];
            if (!item.empty() && TerminalText::FoldMnemonic(item.front()) == wanted)
            {
                out_changed = i != m_selection;
                Select(i);
                return true;
            }
        }
        return false;
    }
    if (request == 0)
    {
        return false;
    }
    if (count == 0 || m_menu == nullptr)
    {
        return true;
    }
    if (m_selection < 0)
    {
        // The first move of a list without selection selects where it starts.
        Select(request == REQ_LAST_ITEM ? count - 1 : 0);
        out_changed = true;
        return true;
    }
    ::menu_driver(m_menu, request);
    const int index = ::item_index(::current_item(m_menu));
    out_changed = index != m_selection;
    m_selection = index;
    return true;
}

void TerminalMenu::Draw(WINDOW* in_target, int in_row, int in_col, int in_clipTop, int in_clipBottom,
                        bool in_focused, bool in_enabled)
{
    if (m_pad == nullptr)
    {
        return;
    }
    if (m_menu != nullptr)
    {
        const attr_t base = in_enabled ? A_NORMAL : A_DIM;
        ::set_menu_back(m_menu, base);
        ::set_menu_grey(m_menu, A_DIM);
        ::set_menu_fore(m_menu, m_selection < 0 ? base : (in_focused ? A_REVERSE : (A_BOLD | A_UNDERLINE)) | base);
        // A change of the attributes needs the menu drawn again.
        ::unpost_menu(m_menu);
        ::post_menu(m_menu);
        Select(m_selection);
    }
    else
    {
        ::werase(m_pad);
    }
    const int firstRow = std::max(in_row, in_clipTop);
    const int lastRow = std::min({in_row + m_rows - 1, in_clipBottom, getmaxy(in_target) - 1});
    const int lastCol = std::min(in_col + m_cols - 1, getmaxx(in_target) - 1);
    if (firstRow <= lastRow && in_col <= lastCol)
    {
        ::copywin(m_pad, in_target, firstRow - in_row, 0, firstRow, in_col, lastRow, lastCol, FALSE);
    }
}
}  // namespace Tarni::Platform
