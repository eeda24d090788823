#!/usr/bin/env bash
# Runs every test from a fresh Debian machine: installs what is missing, then
# the Linux build and its tests, then the Windows cross build with its tests
# under Wine. Prints each test runner's summary; fails if either suite fails.
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
jobs=${TARNI_JOBS:-2}

bash scripts/install-deps.sh || exit 1

# Compiler cache outside the clone: a second run on the same machine (or a
# CI run after a developer's) recompiles only what changed.
if command -v ccache >/dev/null 2>&1; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache CMAKE_C_COMPILER_LAUNCHER=ccache
  export CCACHE_BASEDIR="$here" CCACHE_DIR="${CCACHE_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/tarni-ccache}"
  # Debug builds would otherwise hash the clone's folder into every entry.
  export CCACHE_NOHASHDIR=1
  ccache -M 5G >/dev/null 2>&1 || true
fi

status=0
echo "=== Linux: build and test ==="
if cmake --preset linux >/dev/null && cmake --build --preset linux -j "$jobs"; then
  ctest --preset linux -j "$jobs" --output-on-failure || status=1
else
  echo "Linux build failed"; status=1
fi

echo "=== Windows (mingw-w64) under Wine: build and test ==="
# Third-party libraries for the cross target, built once per Debian source
# version into the user's cache folder (OpenSSL comes with Apache Thrift).
if bash scripts/build-expat-mingw.sh && bash scripts/build-thrift-mingw.sh \
   && bash scripts/build-zookeeper-mingw.sh \
   && cmake --preset mingw >/dev/null && cmake --build --preset mingw -j "$jobs"; then
  # One Wine server for the whole run; tests then start quickly.
  bash scripts/wine-run.sh cmd /c exit >/dev/null 2>&1 || true
  # Now and then a Wine test process ends at once without any output; such a
  # test runs once more. A real failure fails both times, and the first
  # attempt's output stays in the log.
  ctest --preset mingw -j "$jobs" --output-on-failure --repeat until-pass:2 || status=1
else
  echo "Windows build failed"; status=1
fi
exit $status
