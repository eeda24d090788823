#pragma once
// The state of one control of a terminal dialog, built from its template:
// what the controller sets and reads through the dialog window (the shared
// DialogControlState), its cells, and the form field or menu that edits or
// shows it.
#include <memory>
#include <vector>

#include "ui/DialogControlState.h"
#include "ui/terminal/TerminalEditField.h"
#include "ui/terminal/TerminalLayout.h"
#include "ui/terminal/TerminalMenu.h"
#include "ui/terminal/TerminalText.h"

namespace Tarni::Platform
{
struct TerminalControl : DialogControlState
{
    using DialogControlState::DialogControlState;

    ControlCells cells;
    MnemonicText label;         ///< text as shown, with its mnemonic
    int firstLine = 0;          ///< first line shown of a multi-line edit
    std::unique_ptr<TerminalEditField> field;  ///< single-line edits, whose field holds the text
    std::unique_ptr<TerminalMenu> menu;        ///< list boxes

    bool IsSingleLineEdit() const { return field != nullptr; }
    bool IsMultiLineEdit() const { return IsKind(ControlKind::Edit) && field == nullptr; }
};
}  // namespace Tarni::Platform
