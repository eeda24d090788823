#include "ui/terminal/TerminalLayout.h"

#include <algorithm>
#include <cmath>

namespace Tarni::Platform
{
namespace
{
// One point on the vertical axis of the template that needs a line of its own.
struct Anchor
{
    int units;        ///< dialog units from the top
    bool exclusive;   ///< a group box edge: never shares a line with a control
    std::size_t control;
};

bool IsMultiRow(const ControlTemplate& in_control)
{
    switch (in_control.kind)
    {
        case ControlKind::ListBox: return true;
        case ControlKind::Edit: return in_control.HasStyle(DialogStyle::ES_MULTILINE);
        case ControlKind::Static:
        case ControlKind::Other: return in_control.height > 2 * TerminalLayout::UNITS_PER_ROW - 4;
        default: return false;
    }
}

int Floor(double in_value) { return static_cast<int>(std::floor(in_value)); }
}  // namespace

TerminalLayout TerminalLayout::Compute(const DialogTemplate& in_template, int in_maxCols, int in_maxRows)
{
    TerminalLayout layout;
    const auto& controls = in_template.controls;
    in_maxCols = std::max(in_maxCols, 1);
    in_maxRows = std::max(in_maxRows, 1);

    // --- columns ---
    const int width = std::max(in_template.width, 1);
    const double scale = std::min(COLUMNS_PER_UNIT, static_cast<double>(in_maxCols) / width);
    layout.m_cols = std::clamp(static_cast<int>(std::lround(width * scale)), 1, in_maxCols);

    // --- lines ---
    std::vector<Anchor> anchors;
    for (std::size_t i = 0; i < controls.size(); ++i)
    {
        const ControlTemplate& c = controls[i];
        if (c.kind == ControlKind::Icon)
        {
            continue;  // icons are left out
        }
        if (c.IsGroupBox())
        {
            anchors.push_back({c.y + 4, true, i});
            anchors.push_back({c.y + std::max(c.height, 9) - 1, true, i});
        }
        else if (IsMultiRow(c))
        {
            for (int units = c.y + 4; units == c.y + 4 || units < c.y + c.height - 2; units += UNITS_PER_ROW)
            {
                anchors.push_back({units, false, i});
            }
        }
        else
        {
            anchors.push_back({c.y + std::min(c.height, 14) / 2, false, i});
        }
    }
    std::stable_sort(anchors.begin(), anchors.end(),
                     [](const Anchor& a, const Anchor& b) { return a.units < b.units; });

    std::vector<double> lineUnits;                      // centre of each line
    std::vector<int> firstLine(controls.size(), -1);   // per control
    std::vector<int> lastLine(controls.size(), -1);
    int lineStart = 0;
    bool lineExclusive = false;
    int lineCount = 0;
    double lineSum = 0;
    for (const Anchor& anchor : anchors)
    {
        const bool startNew = lineCount == 0 || anchor.units - lineStart > LINE_TOLERANCE ||
                              anchor.exclusive != lineExclusive;
        if (startNew)
        {
            if (lineCount > 0)
            {
                lineUnits.back() = lineSum / lineCount;
            }
            lineUnits.push_back(anchor.units);
            lineStart = anchor.units;
            lineExclusive = anchor.exclusive;
            lineCount = 0;
            lineSum = 0;
        }
        ++lineCount;
        lineSum += anchor.units;
        const int line = static_cast<int>(lineUnits.size()) - 1;
        if (firstLine[anchor.control] < 0)
        {
            firstLine[anchor.control] = line;
        }
        lastLine[anchor.control] = line;
    }
    if (lineCount > 0)
    {
        lineUnits.back() = lineSum / lineCount;
    }
    const int lines = static_cast<int>(lineUnits.size());

    // --- rows of the lines ---
    std::vector<int> lineRow(static_cast<std::size_t>(lines));
    int naturalRows = 0;
    for (int i = 0; i < lines; ++i)
    {
        const int natural = Floor(lineUnits[static_cast<std::size_t>(i)] / UNITS_PER_ROW);
        lineRow[static_cast<std::size_t>(i)] = i == 0 ? natural : std::max(lineRow[static_cast<std::size_t>(i) - 1] + 1, natural);
        naturalRows = lineRow[static_cast<std::size_t>(i)] + 1;
    }
    naturalRows = std::max(naturalRows, (in_template.height + UNITS_PER_ROW - 1) / UNITS_PER_ROW);
    if (naturalRows <= in_maxRows)
    {
        layout.m_mode = Mode::Natural;
        layout.m_rows = std::max(naturalRows, 1);
    }
    else
    {
        const int margin = lines + 2 <= in_maxRows ? 1 : 0;
        for (int i = 0; i < lines; ++i)
        {
            lineRow[static_cast<std::size_t>(i)] = margin + i;
        }
        layout.m_rows = std::max(lines + 2 * margin, 1);
        layout.m_mode = lines <= in_maxRows ? Mode::Packed : Mode::Scrolled;
    }

    // --- cells of the controls ---
    auto nearestLine = [&](int in_units) {
        int best = 0;
        for (int i = 1; i < lines; ++i)
        {
            if (std::abs(lineUnits[static_cast<std::size_t>(i)] - in_units) <
                std::abs(lineUnits[static_cast<std::size_t>(best)] - in_units))
            {
                best = i;
            }
        }
        return best;
    };
    layout.m_controls.resize(controls.size());
    for (std::size_t i = 0; i < controls.size(); ++i)
    {
        const ControlTemplate& c = controls[i];
        CellRect& rect = layout.m_controls[i].rect;
        rect.col = std::clamp(Floor(c.x * scale), 0, layout.m_cols - 1);
        const int right = std::clamp(Floor((c.x + c.width) * scale), rect.col + 1, layout.m_cols);
        rect.cols = right - rect.col;
        if (lines == 0)
        {
            rect.row = 0;
            rect.rows = 1;
            continue;
        }
        const int first = firstLine[i] >= 0 ? firstLine[i] : nearestLine(c.y + c.height / 2);
        const int last = lastLine[i] >= 0 ? lastLine[i] : first;
        rect.row = lineRow[static_cast<std::size_t>(first)];
        rect.rows = lineRow[static_cast<std::size_t>(last)] - rect.row + 1;
        layout.m_controls[i].textCols = rect.cols;
    }

    // --- room for texts that do not fit their template width ---
    for (std::size_t i = 0; i < controls.size(); ++i)
    {
        const ControlTemplate& c = controls[i];
        const bool leftText = (c.kind == ControlKind::Static && (c.style & DialogStyle::SS_TYPEMASK) == 0 &&
                               !IsMultiRow(c)) ||
                              (c.kind == ControlKind::Button && !c.IsGroupBox());
        if (!leftText)
        {
            continue;
        }
        const CellRect& rect = layout.m_controls[i].rect;
        int limit = layout.m_cols;
        for (std::size_t j = 0; j < controls.size(); ++j)
        {
            if (j == i || controls[j].kind == ControlKind::Icon)
            {
                continue;
            }
            const CellRect& other = layout.m_controls[j].rect;
            if (controls[j].IsGroupBox())
            {
                // The right edge of a group box the control sits in.
                const int edge = other.Right() - 1;
                if (rect.row > other.row && rect.row < other.Bottom() - 1 && edge > rect.col)
                {
                    limit = std::min(limit, edge);
                }
                continue;
            }
            const bool sharesRows = other.row < rect.Bottom() && rect.row < other.Bottom();
            if (sharesRows && other.col > rect.col)
            {
                limit = std::min(limit, other.col);
            }
        }
        layout.m_controls[i].textCols = std::max(rect.cols, limit - rect.col);
    }
    return layout;
}
}  // namespace Tarni::Platform
