#!/usr/bin/env bash
# Builds both packages into build/packages/: the Windows installer (MSI, from
# the mingw cross build with wixl) and the Debian package (from the Linux
# build with CPack). Usage: bash scripts/build-packages.sh
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$here"
jobs=${TARNI_JOBS:-2}
bash scripts/install-deps.sh
if command -v ccache >/dev/null 2>&1; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache CMAKE_C_COMPILER_LAUNCHER=ccache
  export CCACHE_BASEDIR="$here" CCACHE_DIR="${CCACHE_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/tarni-ccache}"
  export CCACHE_NOHASHDIR=1
fi
out=$here/build/packages
mkdir -p "$out"

echo "=== MSI (Windows, mingw-w64 cross build) ==="
bash scripts/build-expat-mingw.sh
bash scripts/build-thrift-mingw.sh
bash scripts/build-zookeeper-mingw.sh
cmake --preset mingw >/dev/null
cmake --build --preset mingw -j "$jobs" --target tarni_msi
cp build/mingw/packages/*.msi "$out/"

echo "=== Debian package (Linux build) ==="
# Only the packaged programs are built here, not the whole tree with tests.
cmake --preset linux -DCMAKE_SKIP_INSTALL_ALL_DEPENDENCY=ON >/dev/null
cmake --build --preset linux -j "$jobs" --target tarni_deb_files
rm -f build/linux/packages/*.deb
(cd build/linux && cpack -G DEB >/dev/null)
cp build/linux/packages/*.deb "$out/"
echo "Packages in $out:"
ls -1 "$out"
