// The placing of the program's templates on character cells: every control
// inside the frame, no two controls of one line on the same cells, group
// boxes around their contents, and the 80x24 terminal taken into account.
#include <gtest/gtest.h>

#include "ui/ResourceScript.h"
#include "ui/terminal/TerminalLayout.h"
#include "resource.h"

namespace Tarni::Platform
{
namespace
{
// The room inside the frame of an 80x24 terminal with its status line.
constexpr int COLS = 78;
constexpr int ROWS = 21;

const DialogTemplate& Dialog(unsigned in_id)
{
    const DialogTemplate* dialog = ResourceScript::Embedded().FindDialog(in_id);
    EXPECT_NE(dialog, nullptr) << in_id;
    return *dialog;
}

bool Overlap(const CellRect& a, const CellRect& b)
{
    return a.row < b.Bottom() && b.row < a.Bottom() && a.col < b.Right() && b.col < a.Right();
}
}  // namespace

TEST(TerminalLayoutTest, EveryTemplateFitsAnEightyColumnTerminalWithoutOverlaps)
{
    for (const auto& [id, dialog] : ResourceScript::Embedded().GetDialogs())
    {
        const TerminalLayout layout = TerminalLayout::Compute(dialog, COLS, ROWS);
        EXPECT_LE(layout.GetCols(), COLS) << id;
        const auto& cells = layout.GetControls();
        ASSERT_EQ(cells.size(), dialog.controls.size());
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            const CellRect& rect = cells[i].rect;
            EXPECT_GE(rect.row, 0) << id << " control " << i;
            EXPECT_LE(rect.Bottom(), layout.GetRows()) << id << " control " << i;
            EXPECT_LE(rect.Right(), layout.GetCols()) << id << " control " << i;
            EXPECT_GE(cells[i].textCols, rect.cols);
            for (std::size_t j = i + 1; j < cells.size(); ++j)
            {
                if (dialog.controls[i].IsGroupBox() || dialog.controls[j].IsGroupBox() ||
                    dialog.controls[i].kind == ControlKind::Icon || dialog.controls[j].kind == ControlKind::Icon)
                {
                    continue;
                }
                EXPECT_FALSE(Overlap(rect, cells[j].rect))
                    << "dialog " << id << ": controls " << dialog.controls[i].id << " and " << dialog.controls[j].id;
            }
        }
    }
}

TEST(TerminalLayoutTest, GroupBoxesEncloseTheirControlsOnRowsOfTheirOwn)
{
    const DialogTemplate& dialog = Dialog(IDD_DRIVER_CONFIG);
    const TerminalLayout layout = TerminalLayout::Compute(dialog, COLS, ROWS);
    const auto& cells = layout.GetControls();
    std::size_t group = dialog.controls.size();
    for (std::size_t i = 0; i < dialog.controls.size(); ++i)
    {
        if (dialog.controls[i].IsGroupBox())
        {
            group = i;
        }
    }
    ASSERT_LT(group, dialog.controls.size());
    const CellRect& box = cells[group].rect;
    for (std::size_t i = 0; i < dialog.controls.size(); ++i)
    {
        const ControlTemplate& c = dialog.controls[i];
        const bool inside = c.y > dialog.controls[group].y &&
                            c.y + c.height < dialog.controls[group].y + dialog.controls[group].height;
        const CellRect& rect = cells[i].rect;
        if (inside && i != group)
        {
            EXPECT_GT(rect.row, box.row) << c.id;
            EXPECT_LT(rect.Bottom(), box.Bottom()) << c.id;
            EXPECT_GT(rect.col, box.col) << c.id;
            EXPECT_LT(rect.Right(), box.Right()) << c.id;
        }
        else if (i != group)
        {
            EXPECT_TRUE(rect.Bottom() <= box.row || rect.row >= box.Bottom()) << c.id;
        }
    }
}

TEST(TerminalLayoutTest, TheMainDialogIsPackedIntoTwentyFourRowsAndKeepsItsLineOrder)
{
    const DialogTemplate& dialog = Dialog(IDD_DRIVER_CONFIG);
    const TerminalLayout layout = TerminalLayout::Compute(dialog, COLS, ROWS);
    EXPECT_EQ(layout.GetMode(), TerminalLayout::Mode::Packed);
    EXPECT_LE(layout.GetRows(), ROWS);
    // Controls further down the template never end up higher on the screen,
    // and labels stay on the row of the field they name.
    const auto& cells = layout.GetControls();
    for (std::size_t i = 0; i < dialog.controls.size(); ++i)
    {
        for (std::size_t j = 0; j < dialog.controls.size(); ++j)
        {
            if (dialog.controls[i].IsGroupBox() || dialog.controls[j].IsGroupBox())
            {
                continue;
            }
            const int ci = dialog.controls[i].y + std::min(dialog.controls[i].height, 14) / 2;
            const int cj = dialog.controls[j].y + std::min(dialog.controls[j].height, 14) / 2;
            if (ci + TerminalLayout::LINE_TOLERANCE < cj)
            {
                EXPECT_LT(cells[i].rect.row, cells[j].rect.row) << dialog.controls[i].id << " " << dialog.controls[j].id;
            }
        }
    }
    EXPECT_EQ(cells[1].rect.row, cells[0].rect.row);  // "Spark Server Type:" and its combo box
    // The label's text has room up to its combo box.
    EXPECT_GE(layout.GetControls()[3].textCols, static_cast<int>(std::string("Service Discovery Mode:").size()));
}

TEST(TerminalLayoutTest, SmallDialogsKeepTheirNaturalRowsAndLargeOnesScrollWhenTheTerminalIsTooSmall)
{
    const TerminalLayout zk = TerminalLayout::Compute(Dialog(IDD_ZOOKEEPER_OPTIONS), COLS, ROWS);
    EXPECT_EQ(zk.GetMode(), TerminalLayout::Mode::Natural);
    EXPECT_EQ(zk.GetRows(), (53 + 7) / 8);
    // 243 dialog units at 3.5 units a column.
    EXPECT_EQ(zk.GetCols(), 69);

    const TerminalLayout narrow = TerminalLayout::Compute(Dialog(IDD_DRIVER_CONFIG), 40, 10);
    EXPECT_EQ(narrow.GetMode(), TerminalLayout::Mode::Scrolled);
    EXPECT_GT(narrow.GetRows(), 10);
    EXPECT_EQ(narrow.GetCols(), 40);
}

TEST(TerminalLayoutTest, AListBoxKeepsSeveralRowsWhenTheDialogIsPacked)
{
    const DialogTemplate& dialog = Dialog(IDD_SERVER_SIDE_PROPERTIES);
    const TerminalLayout layout = TerminalLayout::Compute(dialog, COLS, 8);
    for (std::size_t i = 0; i < dialog.controls.size(); ++i)
    {
        if (dialog.controls[i].kind == ControlKind::ListBox)
        {
            EXPECT_GE(layout.GetControls()[i].rect.rows, 3);
        }
    }
}
}  // namespace Tarni::Platform
