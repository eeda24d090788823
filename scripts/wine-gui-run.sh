#!/usr/bin/env bash
# Runs a Windows test program that shows real windows under Wine. Without a
# display of the caller's own, a virtual X server (Xvfb) is started for the
# run on a free display number and stopped afterwards.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
if [ -n "${DISPLAY:-}" ]; then
  exec "$here/wine-run.sh" "$@"
fi
exec xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24" "$here/wine-run.sh" "$@"
