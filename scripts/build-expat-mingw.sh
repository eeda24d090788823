#!/usr/bin/env bash
# Builds Expat for the Windows cross target from Debian's source package
# (static library and headers). Cached outside the clone (see
# scripts/cross-common.sh), so a second run reuses the earlier build.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/cross-common.sh"
if tarni_cross_prepare expat expat; then
  echo "build-expat-mingw: reusing $tarni_cross_prefix ($(tarni_cross_elapsed))"
  exit 0
fi
srcdir=$tarni_cross_src
[ -f "$srcdir/lib/xmlparse.c" ] || srcdir=$srcdir/expat
cmake -S "$srcdir" -B "$tarni_cross_work/build" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$tarni_cross_toolchain" \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$tarni_cross_prefix" \
  -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF \
  -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF -DEXPAT_BUILD_PKGCONFIG=OFF -DEXPAT_DTD=OFF \
  -DCMAKE_CROSSCOMPILING_EMULATOR= >/dev/null
cmake --build "$tarni_cross_work/build" -j"${TARNI_JOBS:-2}" >/dev/null
cmake --install "$tarni_cross_work/build" >/dev/null
# The library's file name depends on Expat's options (libexpatMD.a etc.).
lib=$(ls "$tarni_cross_prefix"/lib/libexpat*.a | head -n 1)
[ "$lib" = "$tarni_cross_prefix/lib/libexpat.a" ] || cp "$lib" "$tarni_cross_prefix/lib/libexpat.a"
tarni_cross_finish expat
