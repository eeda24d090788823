#!/usr/bin/env bash
# Builds OpenSSL 3's libcrypto and libssl for the Windows cross target from
# Debian's source package: the DLLs (libcrypto-3-x64.dll, libssl-3-x64.dll)
# with their import libraries, which the programs load at run time, and the
# static libraries (libcrypto.a, libssl.a), which the connection test links
# into the setup DLL so that it imports system DLLs only. No command-line
# program, tests or manuals. Cached outside the clone (see
# scripts/cross-common.sh) as openssl-static-<version>: the name changed when
# the static libraries were added, so an older cache is not taken for one.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/cross-common.sh"
if tarni_cross_prepare openssl-static openssl; then
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
# The static libraries take the DLLs' objects where this target compiles both
# with the same command (the DLLs export through .def files, the objects carry
# no export marks): a hard link under the static library's object name makes
# make take it as built, which saves compiling OpenSSL a second time. An
# object whose command differs is compiled as usual.
reused=0
for lib in crypto ssl; do
  for obj in $(awk "/^lib$lib\\.a:/ {f=1} f {print} f && !/\\\\\$/ {exit}" Makefile | grep -o "[^ ]*lib$lib-lib-[^ ]*\\.obj"); do
    shared=${obj/lib$lib-lib-/lib$lib-shlib-}
    [ -f "$shared" ] || continue
    cmp -s <(grep -A1 "^$obj:" Makefile | sed "s|lib$lib-lib-|X|g") \
           <(grep -A1 "^$shared:" Makefile | sed "s|lib$lib-shlib-|X|g") || continue
    ln -f "$shared" "$obj"
    reused=$((reused + 1))
  done
done
echo "build-openssl-mingw: the static libraries reuse $reused objects of the DLLs"
make -j"${TARNI_JOBS:-2}" libcrypto.a libssl.a >>"$log" 2>&1 || { tail -n 30 "$log" >&2; exit 1; }
mkdir -p "$tarni_cross_prefix"/{include,lib,bin}
cp -r include/openssl "$tarni_cross_prefix/include/"
cp libcrypto.dll.a libssl.dll.a libcrypto.a libssl.a "$tarni_cross_prefix/lib/"
cp libcrypto-3-x64.dll libssl-3-x64.dll "$tarni_cross_prefix/bin/"
x86_64-w64-mingw32-strip --strip-unneeded "$tarni_cross_prefix"/bin/*.dll
tarni_cross_finish openssl-static
