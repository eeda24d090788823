#!/usr/bin/env bash
# Runs a Windows test program under Wine with the project's own Wine prefix
# (created on first use), quiet and without the Mono/Gecko installers.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${TARNI_WINEPREFIX:-$here/build/wineprefix}
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=}
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$WINEPREFIX"
  wineboot -i >/dev/null 2>&1 || true
  wineserver -w || true
fi
exec wine "$@"
