#!/usr/bin/env bash
# Runs a Windows program that shows real dialogs under Wine on a private,
# headless X server (Xvfb), and waits for Wine to shut down afterwards so
# that the next program starts with a Wine bound to its own X server.
# Usage: scripts/run-gui-test.sh PROGRAM.exe [ARGUMENTS...]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# A Wine prefix of their own: the other tests run Wine without an X server,
# and a Wine server shared with them would keep this one from binding to its
# own display.
export TARNI_WINEPREFIX=${TARNI_GUI_WINEPREFIX:-$here/build/wineprefix-gui}
export WINEPREFIX=$TARNI_WINEPREFIX
# A Wine left running by an earlier program is bound to another display:
# wait until it has shut down.
wineserver -w >/dev/null 2>&1 || true
status=0
xvfb-run -a -s "-screen 0 1280x1024x24 -nolisten tcp" bash -c '
  "$0" "$@"
  status=$?
  wineserver -w >/dev/null 2>&1 || true
  exit $status' "$here/scripts/wine-run.sh" "$@" || status=$?
exit $status
