// The control state of the in-memory hosts: what the hosts' own tests do
// not reach, the selection following inserts and deletes, what an index out
// of range does, and how edit selections are held to the text.
#include <gtest/gtest.h>

#include "ui/DialogControlState.h"
#include "ui/IDialogWindow.h"

using namespace Tarni;
using namespace Tarni::Platform;

namespace
{
ControlTemplate Control(ControlKind in_kind, tarni_wstring in_text)
{
    ControlTemplate control;
    control.kind = in_kind;
    control.text = std::move(in_text);
    control.style = DialogStyle::WS_VISIBLE | DialogStyle::WS_DISABLED;
    return control;
}
}  // namespace

TEST(DialogControlStateTest, TheSelectionStaysWithItsEntryThroughInsertsAndDeletes)
{
    const ControlTemplate source = Control(ControlKind::ListBox, u"ignored");
    DialogControlState list(source);
    EXPECT_TRUE(list.text.empty()) << "a list box's text is its selected entry";
    EXPECT_TRUE(list.visible);
    EXPECT_FALSE(list.enabled);

    list.AddItem(u"b", true);
    list.AddItem(u"d", true);
    EXPECT_EQ(list.SetSelection(1), 1);
    EXPECT_EQ(list.AddItem(u"B", true), 1) << "after the equal entry";
    EXPECT_EQ(list.AddItem(u"a", true), 0);
    EXPECT_EQ(list.GetSelectedText(), u"d");
    EXPECT_EQ(list.selection, 3);

    EXPECT_EQ(list.DeleteItem(0), 3);
    EXPECT_EQ(list.selection, 2);
    EXPECT_EQ(list.DeleteItem(3), DIALOG_LIST_ERROR);
    EXPECT_EQ(list.DeleteItem(2), 2);
    EXPECT_EQ(list.selection, -1);
    EXPECT_EQ(list.items, (std::vector<tarni_wstring>{u"b", u"B"}));

    EXPECT_EQ(list.SetSelection(0), 0);
    EXPECT_EQ(list.SetSelection(2), DIALOG_LIST_ERROR);
    EXPECT_EQ(list.selection, -1) << "an index out of range clears the selection";
    EXPECT_EQ(list.GetItemText(-1), u"");
    EXPECT_EQ(list.FindItemExact(u"B"), 0) << "ignoring case";
    EXPECT_EQ(list.FindItemExact(u"b="), DIALOG_LIST_ERROR);
}

TEST(DialogControlStateTest, EditSelectionsAreHeldToTheText)
{
    const ControlTemplate source = Control(ControlKind::Edit, u"abcdef");
    DialogControlState edit(source);
    EXPECT_EQ(edit.text, u"abcdef");

    edit.SetEditSelection(4, 1, 6);
    EXPECT_EQ(std::pair(edit.selectionStart, edit.selectionEnd), std::pair(1, 4)) << "either order";
    edit.SetEditSelection(2, -1, 6);
    EXPECT_EQ(std::pair(edit.selectionStart, edit.selectionEnd), std::pair(2, 6));
    edit.SetEditSelection(3, 99, 6);
    EXPECT_EQ(std::pair(edit.selectionStart, edit.selectionEnd), std::pair(3, 6));

    edit.ReplaceEditSelection(edit.text, u"XY");
    EXPECT_EQ(edit.text, u"abcXY");
    EXPECT_EQ(std::pair(edit.selectionStart, edit.selectionEnd), std::pair(5, 5));

    // A selection left over from a longer text replaces at the end.
    edit.SetEditSelection(3, -1, 5);
    tarni_wstring shorter = u"ab";
    edit.ReplaceEditSelection(shorter, u"!");
    EXPECT_EQ(shorter, u"ab!");
    EXPECT_EQ(edit.selectionEnd, 3);
}
