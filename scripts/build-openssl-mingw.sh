#!/usr/bin/env bash
# Builds OpenSSL 3's libcrypto and libssl for the Windows cross target from
# Debian's source package, as DLLs (libcrypto-3-x64.dll, libssl-3-x64.dll)
# with their import libraries and headers. Only the two DLLs are built: no
# static libraries, command-line program, tests or manuals. Cached outside the
# clone (see scripts/cross-common.sh).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/cross-common.sh"
if tarni_cross_prepare openssl openssl; then
  echo "build-openssl-mingw: reusing $tarni_cross_prefix ($(tarni_cross_elapsed))"
  exit 0
fi
cd "$tarni_cross_src"
# The posix-threads compiler, as the project's own cross build uses.
./Configure mingw64 shared no-tests --prefix="$tarni_cross_prefix" --libdir=lib \
  CC=x86_64-w64-mingw32-gcc-posix AR=x86_64-w64-mingw32-ar RANLIB=x86_64-w64-mingw32-ranlib \
  RC=x86_64-w64-mingw32-windres >"$tarni_cross_work/configure.log" 2>&1 \
  || { cat "$tarni_cross_work/configure.log" >&2; exit 1; }
log=$tarni_cross_work/make.log
{ make build_generated && make -j"${TARNI_JOBS:-2}" libcrypto-3-x64.dll libssl-3-x64.dll; } >"$log" 2>&1 \
  || { tail -n 30 "$log" >&2; exit 1; }
mkdir -p "$tarni_cross_prefix"/{include,lib,bin}
cp -r include/openssl "$tarni_cross_prefix/include/"
cp libcrypto.dll.a libssl.dll.a "$tarni_cross_prefix/lib/"
cp libcrypto-3-x64.dll libssl-3-x64.dll "$tarni_cross_prefix/bin/"
x86_64-w64-mingw32-strip --strip-unneeded "$tarni_cross_prefix"/bin/*.dll
tarni_cross_finish openssl
