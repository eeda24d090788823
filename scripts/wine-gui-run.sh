#!/usr/bin/env bash
# Runs a Windows test program that shows real windows under Wine. Such runs
# get a Wine prefix of their own (a Wine session that other, windowless test
# programs started without a display cannot take over), one at a time, and
# without a display of the caller's own a virtual X server (Xvfb) on a free
# display number. The session is ended with the run, so the next run starts
# with its own display.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export TARNI_WINEPREFIX=${TARNI_GUI_WINEPREFIX:-$(dirname "$here")/build/wineprefix-gui}

if [ "${1:-}" = "--session" ]; then
  # Inside the lock (and the virtual display): the program, then the end of the session.
  shift
  rc=0
  "$here/wine-run.sh" "$@" || rc=$?
  WINEPREFIX=$TARNI_WINEPREFIX wineserver -k 2>/dev/null || true
  exit $rc
fi

mkdir -p "$(dirname "$TARNI_WINEPREFIX")"
if [ -n "${DISPLAY:-}" ]; then
  exec flock "$TARNI_WINEPREFIX.lock" "$0" --session "$@"
fi
exec flock "$TARNI_WINEPREFIX.lock" xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24" \
  "$0" --session "$@"
