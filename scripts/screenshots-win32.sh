#!/usr/bin/env bash
# Photographs the Win32 dialogs of the program under Wine on a headless X
# server and writes docs/screenshots/win32-<template>.png. Wine runs in a
# virtual desktop so that it draws the windows' captions itself.
# Needs the mingw build (cmake --preset mingw && cmake --build build/mingw).
# Usage: scripts/screenshots-win32.sh [TEMPLATE_ID...]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
gallery=$here/build/mingw/bin/DialogGallery.exe
out=$here/docs/screenshots
[ -f "$gallery" ] || cmake --build "$here/build/mingw" --target DialogGallery
mkdir -p "$out"
ids=("$@")
[ ${#ids[@]} -gt 0 ] || ids=(1092 1093 19144 1051 129 131 132 133 133-failed 142 146 1091 19136 1137 8101 8102 9109 9110 37086)

# A Wine prefix of their own: the other tests run Wine without an X server,
# and a Wine server shared with them would keep this one from binding to its
# own display.
export TARNI_WINEPREFIX=${TARNI_GUI_WINEPREFIX:-$here/build/wineprefix-gui}
export WINEPREFIX=$TARNI_WINEPREFIX
wineserver -w >/dev/null 2>&1 || true
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

xvfb-run -a -s "-screen 0 1280x1024x24 -nolisten tcp" bash -c '
  set -euo pipefail
  here=$1; gallery=$2; out=$3; work=$4; shift 4
  "$here/scripts/wine-run.sh" explorer /desktop=Gallery,1024x768 "$gallery" "$@" >"$work/rects" 2>"$work/log" &
  wine_pid=$!
  for id in "$@"; do
    # Wait for the gallery to report the dialog, then let it paint.
    for _ in $(seq 1 600); do grep -q "^$id " "$work/rects" 2>/dev/null && break; sleep 0.1; done
    sleep 1.5
    read -r _ left top right bottom < <(grep "^$id " "$work/rects" | tr -d "\\r")
    desktop=$(xwininfo -root -tree | awk "/\"Gallery - Wine desktop\"|\"Wine desktop\"/ {print \$1; exit}")
    if [ -n "$desktop" ]; then
      import -window "$desktop" -crop "$((right - left))x$((bottom - top))+$left+$top" +repage "$out/win32-$id.png"
    else
      import -window root -crop "$((right - left))x$((bottom - top))+$left+$top" +repage "$out/win32-$id.png"
    fi
    echo "screenshots-win32: $out/win32-$id.png"
  done
  wait $wine_pid || true
  wineserver -w >/dev/null 2>&1 || true
' _ "$here" "$gallery" "$out" "$work" "${ids[@]}"
