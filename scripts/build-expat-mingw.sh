#!/usr/bin/env bash
# Builds Expat for the Windows cross target from Debian's source package into
# build/expat-mingw (static library and headers). Reuses an earlier build.
# Source packages are enabled for the same archive the machine already uses:
# the deb-src entries are derived from the machine's own apt sources, so no
# host name is written into the repository.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
prefix=${1:-$here/build/expat-mingw}
if [ -f "$prefix/lib/libexpat.a" ] && [ -f "$prefix/include/expat.h" ]; then
  echo "build-expat-mingw: reusing $prefix"
  exit 0
fi

SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
work=$here/build/expat-src
mkdir -p "$work"

if ! compgen -G "$work/expat-*/expat/lib/xmlparse.c" >/dev/null && ! compgen -G "$work/expat-*/lib/xmlparse.c" >/dev/null; then
  src_list=/etc/apt/sources.list.d/tarni-deb-src.sources
  if ! apt-get source --print-uris expat >/dev/null 2>&1; then
    tmp=$(mktemp)
    for f in /etc/apt/sources.list.d/*.sources; do
      [ "$f" = "$src_list" ] && continue
      # Only Debian's own archive: stanzas signed by the Debian archive keyring.
      awk 'BEGIN{RS=""; ORS="\n\n"} /debian-archive-keyring/ { sub(/Types: deb\n/, "Types: deb-src\n"); print }' "$f" >>"$tmp"
    done
    if [ -f /etc/apt/sources.list ]; then
      grep -E '^deb .*debian' /etc/apt/sources.list | sed 's/^deb /deb-src /' >"$tmp.list" || true
      [ -s "$tmp.list" ] && $SUDO cp "$tmp.list" /etc/apt/sources.list.d/tarni-deb-src.list
    fi
    [ -s "$tmp" ] && $SUDO cp "$tmp" "$src_list"
    rm -f "$tmp" "$tmp.list"
    $SUDO apt-get update -qq
  fi
  # The newest version may exist only as a binary in the security archive;
  # take the first version whose source can be fetched.
  fetched=""
  for v in $(apt-cache showsrc expat | awk '/^Version:/ {print $2}'); do
    if (cd "$work" && apt-get source --download-only "expat=$v" >/dev/null 2>&1); then
      fetched=$v; break
    fi
  done
  [ -n "$fetched" ] || { echo "build-expat-mingw: no source of expat could be fetched" >&2; exit 1; }
  (cd "$work" && dpkg-source -x --no-check expat_"${fetched#*:}".dsc >/dev/null)
fi

srcdir=$(ls -d "$work"/expat-*/ | head -n 1)
[ -f "$srcdir/lib/xmlparse.c" ] || srcdir=$srcdir/expat
cmake -S "$srcdir" -B "$work/build" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$here/cmake/mingw-w64-x86_64.cmake" \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" \
  -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF -DEXPAT_BUILD_EXAMPLES=OFF \
  -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF -DEXPAT_BUILD_PKGCONFIG=OFF -DEXPAT_DTD=OFF \
  -DCMAKE_CROSSCOMPILING_EMULATOR= >/dev/null
cmake --build "$work/build" >/dev/null
cmake --install "$work/build" >/dev/null
# The library's file name depends on Expat's options (libexpatMD.a etc.).
lib=$(ls "$prefix"/lib/libexpat*.a | head -n 1)
[ "$lib" = "$prefix/lib/libexpat.a" ] || cp "$lib" "$prefix/lib/libexpat.a"
echo "build-expat-mingw: installed into $prefix"
