#!/usr/bin/env bash
# Installs what is missing, builds the Linux programs and runs the main job:
# shows the driver-wide configuration of the default store.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
bash scripts/install-deps.sh
cmake --preset linux >/dev/null
cmake --build --preset linux -j "${TARNI_JOBS:-2}" --target tarni-spark-config
exec build/linux/bin/tarni-spark-config show "$@"
