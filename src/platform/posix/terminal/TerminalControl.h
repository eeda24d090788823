#pragma once
// The state of one control of a terminal dialog, built from its template:
// what the controller sets and reads through the dialog window, its cells,
// and the form field or menu that edits or shows it.
#include <memory>
#include <vector>

#include "platform/dialog/DialogTemplate.h"
#include "platform/posix/terminal/TerminalEditField.h"
#include "platform/posix/terminal/TerminalLayout.h"
#include "platform/posix/terminal/TerminalMenu.h"
#include "platform/posix/terminal/TerminalText.h"

namespace Tarni::Platform
{
struct TerminalControl
{
    const ControlTemplate* source = nullptr;
    ControlCells cells;
    tarni_wstring text;         ///< every control but single-line edits, whose field holds the text
    MnemonicText label;         ///< text as shown, with its mnemonic
    bool enabled = true;
    bool visible = true;
    bool checked = false;
    std::vector<tarni_wstring> items;  ///< combo and list box entries
    int selection = -1;
    int selectionStart = 0;     ///< edit selection (EM_SETSEL)
    int selectionEnd = 0;
    int firstLine = 0;          ///< first line shown of a multi-line edit
    std::unique_ptr<TerminalEditField> field;  ///< single-line edits
    std::unique_ptr<TerminalMenu> menu;        ///< list boxes

    const ControlTemplate& Source() const { return *source; }
    bool IsKind(ControlKind in_kind) const { return source->kind == in_kind; }
    bool IsSingleLineEdit() const { return field != nullptr; }
    bool IsMultiLineEdit() const { return IsKind(ControlKind::Edit) && field == nullptr; }
};
}  // namespace Tarni::Platform
