#!/usr/bin/env bash
# Builds Apache Thrift's C++ library for the Windows cross target from
# Debian's source package: the static library only (no compiler, tests,
# tutorials, Qt, libevent or zlib), with TLS from the cross-built OpenSSL
# (scripts/build-openssl-mingw.sh) and Boost's headers from the host, the way
# the project's own cross build takes them. Cached outside the clone (see
# scripts/cross-common.sh).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
bash "$here/build-openssl-mingw.sh"
source "$here/cross-common.sh"
openssl=$(tarni_cross_cached openssl-static)
# The cache folder names the OpenSSL build too: a new OpenSSL rebuilds Thrift.
if tarni_cross_prepare thrift thrift "openssl-${openssl##*/openssl-static-}"; then
  echo "build-thrift-mingw: reusing $tarni_cross_prefix ($(tarni_cross_elapsed))"
  exit 0
fi
# Boost is header-only here: stage the host's headers alone (never the whole
# of /usr/include) and let CMake search the staging and OpenSSL folders as
# extra roots of the cross target.
stage=$tarni_cross_work/host
mkdir -p "$stage/include"
ln -s /usr/include/boost "$stage/include/boost"
# Thrift includes some Windows headers in their Windows spelling (Shlwapi.h,
# AccCtrl.h); mingw-w64 ships them in lower case on a case-sensitive disk.
mingw_include=/usr/x86_64-w64-mingw32/include
for header in $(grep -rhoE '#\s*include\s*<[A-Za-z0-9_]*[A-Z][A-Za-z0-9_]*\.h>' "$tarni_cross_src/lib/cpp/src" \
                | sed -E 's/.*<(.*)>/\1/' | sort -u); do
  lower=$(echo "$header" | tr 'A-Z' 'a-z')
  [ -f "$mingw_include/$header" ] || [ ! -f "$mingw_include/$lower" ] || ln -s "$mingw_include/$lower" "$stage/include/$header"
done
cat >"$tarni_cross_work/toolchain.cmake" <<TOOLCHAIN
include($tarni_cross_toolchain)
list(APPEND CMAKE_FIND_ROOT_PATH "$stage" "$openssl")
TOOLCHAIN
cmake -S "$tarni_cross_src" -B "$tarni_cross_work/build" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$tarni_cross_work/toolchain.cmake" -DCMAKE_CROSSCOMPILING_EMULATOR= \
  -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$tarni_cross_prefix" \
  -DBUILD_SHARED_LIBS=OFF -DBUILD_COMPILER=OFF -DBUILD_TESTING=OFF -DBUILD_TUTORIALS=OFF \
  -DBUILD_LIBRARIES=ON -DWITH_CPP=ON -DWITH_OPENSSL=ON -DOPENSSL_ROOT_DIR="$openssl" \
  -DWITH_ZLIB=OFF -DWITH_LIBEVENT=OFF -DWITH_QT5=OFF -DWITH_C_GLIB=OFF -DWITH_AS3=OFF \
  -DWITH_JAVA=OFF -DWITH_JAVASCRIPT=OFF -DWITH_NODEJS=OFF -DWITH_PYTHON=OFF \
  -DBoost_NO_BOOST_CMAKE=ON -DBoost_INCLUDE_DIR="$stage/include" \
  >"$tarni_cross_work/configure.log" 2>&1 \
  || { tail -n 30 "$tarni_cross_work/configure.log" >&2; exit 1; }
cmake --build "$tarni_cross_work/build" -j"${TARNI_JOBS:-2}" >"$tarni_cross_work/make.log" 2>&1 \
  || { grep -m 20 -B2 -A8 'error' "$tarni_cross_work/make.log" >&2; exit 1; }
cmake --install "$tarni_cross_work/build" >/dev/null
tarni_cross_finish thrift
