#!/usr/bin/env python3
"""Renders a tmux capture (capture-pane -p -e) to an ImageMagick drawing
(MVG) with the attributes the terminal dialogs use: bold, dim, reverse and
underline. Usage: render-terminal-capture.py CAPTURE MVG COLS ROWS"""
import re
import sys

CELL_W, CELL_H, BASE = 9, 18, 14
FG, BG, DIM = "#e8e8e8", "#1e1e2e", "#7a7a8a"
SGR = re.compile(r"\x1b\[([0-9;]*)m")


def runs(line):
    """(column, text, attributes) pieces of one captured line."""
    attrs, col, out, pos = set(), 0, [], 0
    for match in SGR.finditer(line):
        text = line[pos:match.start()]
        if text:
            out.append((col, text, frozenset(attrs)))
            col += len(text)
        for code in (match.group(1) or "0").split(";"):
            code = int(code or 0)
            if code == 0:
                attrs.clear()
            elif code in (1, 2, 4, 7):
                attrs.add(code)
            elif code == 22:
                attrs.difference_update({1, 2})
            elif code in (24, 27):
                attrs.discard(code - 20)
        pos = match.end()
    if line[pos:]:
        out.append((col, line[pos:], frozenset(attrs)))
    return out


def main():
    capture, mvg, cols, rows = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
    with open(capture, encoding="utf-8") as f:
        lines = f.read().split("\n")[:rows]
    draw = [f"viewbox 0 0 {cols * CELL_W} {rows * CELL_H}", "font 'DejaVu-Sans-Mono'", f"font-size {BASE}",
            f"fill '{BG}'", f"rectangle 0,0 {cols * CELL_W},{rows * CELL_H}"]
    for row, line in enumerate(lines):
        y = row * CELL_H
        for col, text, attrs in runs(line):
            x = col * CELL_W
            fg, bg = (DIM if 2 in attrs else FG), None
            if 7 in attrs:
                fg, bg = BG, FG
            if bg:
                draw.append(f"fill '{bg}'")
                draw.append(f"rectangle {x},{y} {x + len(text) * CELL_W - 1},{y + CELL_H - 1}")
            draw.append(f"fill '{fg}'")
            draw.append("font 'DejaVu-Sans-Mono-Bold'" if 1 in attrs else "font 'DejaVu-Sans-Mono'")
            for i, ch in enumerate(text):
                if ch == " ":
                    continue
                escaped = ch.replace("\\", "\\\\").replace("'", "\\'")
                draw.append(f"text {x + i * CELL_W},{y + BASE} '{escaped}'")
            if 4 in attrs:
                draw.append(f"line {x},{y + CELL_H - 2} {x + len(text) * CELL_W - 1},{y + CELL_H - 2}")
    with open(mvg, "w", encoding="utf-8") as f:
        f.write("\n".join(draw) + "\n")


if __name__ == "__main__":
    main()
