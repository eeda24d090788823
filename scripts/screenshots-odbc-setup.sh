#!/usr/bin/env bash
# Photographs the DSN setup dialog as the ODBC installer opens it: Wine's
# SQLConfigDataSource(ODBC_CONFIG_DSN) with a window reaches the setup DLL,
# which shows the dialog with the stored data source. Writes
# docs/screenshots/win32-odbc-setup-dsn.png.
# Needs the mingw build of SetupLibraryWineTest and the setup DLL.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
test_exe=$here/build/mingw/bin/SetupLibraryWineTest.exe
out=$here/docs/screenshots/win32-odbc-setup-dsn.png
[ -f "$test_exe" ] || cmake --build "$here/build/mingw" --target SetupLibraryWineTest tarni_odbc_setup
export TARNI_WINEPREFIX=${TARNI_GUI_WINEPREFIX:-$here/build/wineprefix-gui}
export WINEPREFIX=$TARNI_WINEPREFIX
wineserver -w >/dev/null 2>&1 || true
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

xvfb-run -a -s "-screen 0 1280x1024x24 -nolisten tcp" bash -c '
  set -euo pipefail
  here=$1; test_exe=$2; out=$3; work=$4
  TARNI_SCREENSHOT_PAUSE=1 "$here/scripts/wine-run.sh" explorer /desktop=Setup,1024x768 "$test_exe" \
    --gtest_filter="*ConfigureWithAWindow*" >"$work/log" 2>&1 &
  wine_pid=$!
  for _ in $(seq 1 900); do grep -q "^DSN-SETUP " "$work/log" 2>/dev/null && break; sleep 0.1; done
  sleep 1.5
  read -r _ left top right bottom < <(grep "^DSN-SETUP " "$work/log" | tr -d "\\r")
  desktop=$(xwininfo -root -tree | awk "/\"Setup - Wine desktop\"|\"Wine desktop\"/ {print \$1; exit}")
  import -window "${desktop:-root}" -crop "$((right - left))x$((bottom - top))+$left+$top" +repage "$out"
  echo "screenshots-odbc-setup: $out"
  wait $wine_pid || true
  wineserver -w >/dev/null 2>&1 || true
' _ "$here" "$test_exe" "$out" "$work"
