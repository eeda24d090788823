#!/usr/bin/env bash
# Installs what is missing, builds the Linux programs and runs the main job:
# the driver configuration dialog in the terminal, on the default store
# ($SPARKINI, else ~/.sparkodbc.ini). Without a terminal (a pipe, CI) it
# shows the configuration with the command-line tool instead.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
bash scripts/install-deps.sh
cmake --preset linux >/dev/null
cmake --build --preset linux -j "${TARNI_JOBS:-2}" --target tarni-spark-driver-config tarni-spark-config
if [ -t 0 ] && [ -t 1 ]; then
  exec build/linux/bin/tarni-spark-driver-config
fi
exec build/linux/bin/tarni-spark-config show
