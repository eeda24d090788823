#pragma once
// The pop-up list of a drop-down combo box: opened under the combo box (or
// over it when there is no room below), moved through with the arrow keys
// or the first letter of an entry, chosen with Enter or Space, closed
// without a choice with Escape or Tab.
#include <optional>
#include <string>
#include <vector>

namespace Tarni::Platform
{
class TerminalDialogHost;

class TerminalDropDown
{
public:
    /// in_row, in_col, in_width: the screen cells of the combo box. Returns
    /// the chosen entry, or nothing when the list was closed without one.
    static std::optional<int> Run(TerminalDialogHost& io_host, int in_row, int in_col, int in_width,
                                  const std::vector<std::wstring>& in_items, int in_selection);
};
}  // namespace Tarni::Platform
