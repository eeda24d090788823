#include "ui/terminal/TerminalDropDown.h"

#include <algorithm>

#include "ui/terminal/TerminalDialogHost.h"
#include "ui/terminal/TerminalMenu.h"
#include "ui/terminal/TerminalText.h"

namespace Tarni::Platform
{
std::optional<int> TerminalDropDown::Run(TerminalDialogHost& io_host, int in_row, int in_col, int in_width,
                                         const std::vector<std::wstring>& in_items, int in_selection)
{
    if (in_items.empty())
    {
        return std::nullopt;
    }
    constexpr int MAX_ROWS = 10;
    const int screenRows = io_host.GetDialogRows();
    const int screenCols = io_host.GetScreenCols();
    int widest = 0;
    for (const auto& item : in_items)
    {
        widest = std::max(widest, TerminalText::Width(item));
    }
    const int cols = std::clamp(std::max(in_width, widest + 2), 3, std::max(screenCols, 3));
    int rows = std::min(static_cast<int>(in_items.size()), MAX_ROWS);
    int top = in_row + 1;
    if (top + rows + 2 > screenRows)
    {
        if (in_row - rows - 2 >= 0)
        {
            top = in_row - rows - 2;
        }
        else
        {
            rows = std::max(std::min(rows, screenRows - 2), 1);
            top = std::max(screenRows - rows - 2, 0);
        }
    }
    const int left = std::clamp(in_col, 0, std::max(screenCols - cols, 0));
    WINDOW* window = ::newwin(rows + 2, cols, top, left);
    if (window == nullptr)
    {
        return std::nullopt;
    }
    ::keypad(window, TRUE);
    TerminalMenu menu;
    menu.Update(in_items, rows, cols - 2, std::max(in_selection, 0));
    const std::wstring status = L"Up/Down: move  Enter: choose  Esc: close";
    std::optional<int> result;
    for (;;)
    {
        io_host.PaintAll(&status, false);
        ::werase(window);
        ::box(window, 0, 0);
        menu.Draw(window, 1, 1, 1, rows, true, true);
        ::touchwin(window);
        ::wnoutrefresh(window);
        ::curs_set(0);
        ::doupdate();
        const TerminalKey key = io_host.ReadKey(window);
        if (key.kind == TerminalKey::Kind::Resize || key.kind == TerminalKey::Kind::Escape || key.IsTab() ||
            key.IsBackTab())
        {
            break;
        }
        if (key.IsEnter() || key.IsChar(L' '))
        {
            result = menu.GetSelection();
            break;
        }
        bool changed = false;
        menu.HandleKey(key, changed);
    }
    ::delwin(window);
    return result;
}
}  // namespace Tarni::Platform
