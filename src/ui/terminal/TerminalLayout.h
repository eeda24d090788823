#pragma once
// Places the controls of a dialog template on the character cells of a
// terminal.
//
// Columns: a column is 3.5 dialog units (a little narrower than the 4 units
// of an average character of the dialog font, because the terminal's
// characters all take a full cell); a template wider than the room the
// terminal offers is scaled down to fit.
//
// Rows: a terminal row holds one line of controls whatever their height in
// dialog units (an edit field, a button and a label are all one row), so
// rows follow the lines of the template rather than its units. The controls
// whose vertical centres lie within 6 units of each other form one line;
// the top and bottom edges of a group box are lines of their own; list
// boxes and multi-line controls add a line for every 8 units they are tall.
// A line is placed at its natural row (its centre / 8 units, each line at
// least one row below the previous); when that does not fit the terminal,
// the lines are packed one per row; when even that does not fit, the dialog
// is taller than the terminal and the window scrolls it.
#include <vector>

#include "ui/DialogTemplate.h"

namespace Tarni::Platform
{
/// A rectangle of character cells inside the dialog's frame.
struct CellRect
{
    int row = 0;
    int col = 0;
    int rows = 1;
    int cols = 1;

    int Bottom() const { return row + rows; }  ///< exclusive
    int Right() const { return col + cols; }   ///< exclusive
};

struct ControlCells
{
    CellRect rect;
    /// Columns the control's text may take: its own width, or up to the next
    /// control on its rows (or the frame) for labels and buttons whose text
    /// does not fit in the template's width.
    int textCols = 1;
};

class TerminalLayout
{
public:
    /// Columns per dialog unit before any scaling.
    static constexpr double COLUMNS_PER_UNIT = 2.0 / 7.0;
    /// Dialog units per natural row.
    static constexpr int UNITS_PER_ROW = 8;
    /// Centres closer than this (dialog units) share a line.
    static constexpr int LINE_TOLERANCE = 6;

    enum class Mode
    {
        Natural,  ///< lines at their natural rows
        Packed,   ///< one row per line
        Scrolled  ///< packed and still taller than the room
    };

    /// Lays out the template for an interior (inside the frame) of at most
    /// in_maxCols x in_maxRows cells.
    static TerminalLayout Compute(const DialogTemplate& in_template, int in_maxCols, int in_maxRows);

    int GetRows() const { return m_rows; }  ///< interior rows, may exceed the room when scrolled
    int GetCols() const { return m_cols; }  ///< interior columns
    Mode GetMode() const { return m_mode; }
    /// One entry per control of the template, in template order.
    const std::vector<ControlCells>& GetControls() const { return m_controls; }

private:
    int m_rows = 1;
    int m_cols = 1;
    Mode m_mode = Mode::Natural;
    std::vector<ControlCells> m_controls;
};
}  // namespace Tarni::Platform
