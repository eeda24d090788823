#!/usr/bin/env bash
# Builds the multi-threaded ZooKeeper C client for the Windows cross target
# from Debian's source package: the static library only (no command-line
# client, no tests, no SASL, no TLS), installed as
#   include/zookeeper/*.h  lib/libzookeeper_mt.a  lib/libhashtable.a
# in the cross cache (see scripts/cross-common.sh). One to two minutes on two
# busy cores, much of it fetching and unpacking the source.
#
# The client's record code (zookeeper.jute.{c,h}) is generated, not shipped:
# Debian's build runs the jute compiler of the zookeeper-jute module during
# its Java build. The same compiler is in the installed zookeeper-jute jar
# (libzookeeper-java, a dependency of the zookeeper package), so it is run
# from there on the source's zookeeper.jute instead of a Java build.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/cross-common.sh"
if tarni_cross_prepare zookeeper zookeeper; then
  echo "build-zookeeper-mingw: reusing $tarni_cross_prefix ($(tarni_cross_elapsed))"
  exit 0
fi
jute_jar=/usr/share/java/zookeeper-jute.jar
[ -f "$jute_jar" ] || { echo "build-zookeeper-mingw: $jute_jar is missing: install libzookeeper-java (scripts/install-deps.sh)" >&2; exit 1; }
command -v java >/dev/null || { echo "build-zookeeper-mingw: java is missing: install default-jre-headless" >&2; exit 1; }
client=$tarni_cross_src/zookeeper-client/zookeeper-client-c
mkdir -p "$client/generated"
(cd "$client/generated" && java -cp "$jute_jar" org.apache.jute.compiler.generated.Rcc -l c \
   "$tarni_cross_src/zookeeper-jute/src/main/resources/zookeeper.jute" >"$tarni_cross_work/jute.log" 2>&1) \
  || { cat "$tarni_cross_work/jute.log" >&2; exit 1; }

# Each edit must change its file: a source that no longer matches stops the
# build rather than leaving a fault in silently.
edit() {
  local file=${!#} before
  before=$(md5sum <"$file")
  sed -i "$@" "$file"
  [ "$(md5sum <"$file")" != "$before" ] || { echo "build-zookeeper-mingw: edit $* did not apply to $file" >&2; exit 1; }
}
# The Windows port was written for the Microsoft compiler; mingw-w64 differs:
# - MSVC's warning switch /W3 is a file name to gcc.
edit 's|add_compile_options(/W3)|add_compile_options(-Wall)|' "$client/CMakeLists.txt"
# - winconfig.h defines __attribute__ and __func__ away, which breaks gcc's
#   own headers (the intrinsics): only for MSVC.
edit -e 's|^#define __attribute__(x)|#ifdef _MSC_VER\n#define __attribute__(x)|' \
       -e 's|^#define __func__ __FUNCTION__|#define __func__ __FUNCTION__\n#endif|' "$client/include/winconfig.h"
# - mingw-w64 has ssize_t and pid_t already, and a real snprintf (the
#   _snprintf fallback does not terminate a truncated string).
edit -e 's|^typedef int ssize_t;|#ifdef _MSC_VER\ntypedef int ssize_t;\n#endif|' \
       -e 's/|| !defined(_MSC_VER))/)/' "$client/src/winport.h"
edit 's|^typedef DWORD pid_t;|#ifdef _MSC_VER\ntypedef DWORD pid_t;\n#endif|' "$client/src/zk_log.c"
# - The port's close(SOCKET) clashes with close(int) of mingw's io.h, which
#   fcntl.h pulls in after it: a function of its own name, close as a macro
#   once io.h is in.
edit 's|^int close(SOCKET fd);|#include <io.h>\n#include <fcntl.h>\nint zk_close_socket(SOCKET fd);\n#define close(fd) zk_close_socket(fd)|' \
  "$client/src/winport.h"
# - A non-blocking connect's WSAEWOULDBLOCK is mapped to errno's
#   EWOULDBLOCK only for MSVC 2010 and later, whose errno.h has its own
#   values; mingw-w64's has them too (without the mapping every connect
#   counts as failed).
edit 's|^#if _MSC_VER >= 1600$|#if defined(__MINGW32__) \|\| _MSC_VER >= 1600|' "$client/src/zookeeper.c"
# - Header names are case-sensitive on this disk.
edit 's|<WinSock2.h>|<winsock2.h>|' "$client/src/addrvec.h"
# Faults of the Windows port itself, which gcc reaches and MSVC did not:
# - pthread_key_create assigned the new key to its own argument, so the
#   caller's key stayed zero and the log's per-thread buffers went into
#   thread-local slot 0, which belongs to whoever allocated it first (the C
#   runtime's threads); gcc runs the log's constructor, MSVC never did.
#   pthread_key_delete freed its by-value argument.
edit -e 's|^  key = newkey;  $|  if (newkey != NULL) { *key = *newkey; free(newkey); }|' \
       -e 's|^  free (&key);$||' "$client/src/winport.c"
# - The readability check after processing passed the socket wrapper, not
#   the socket, to FD_SET.
edit 's|FD_SET( zh->fd , &rfds);|FD_SET( zh->fd->sock , \&rfds);|' "$client/src/zookeeper.c"
# - A failed select() was logged with its arguments in parentheses: a comma
#   expression that passes the error number as the format string.
edit 's|LOG_ERROR(LOGCALLBACK(zh), ("select() failed %d \[%d\].", rc, WSAGetLastError()));|LOG_ERROR(LOGCALLBACK(zh), "select() failed %d [%d].", rc, WSAGetLastError());|' \
  "$client/src/mt_adaptor.c"

# A toolchain of its own: the project's defines NOMINMAX (the client uses
# Windows' min) and UNICODE (the client calls the ANSI forms).
cat >"$tarni_cross_work/toolchain.cmake" <<'TOOLCHAIN'
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
TOOLCHAIN
# HAVE_GETLOGIN: mingw's library has the symbol but no declaration, and the
# implicit int would cut the returned pointer in half.
cmake -S "$client" -B "$tarni_cross_work/build" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$tarni_cross_work/toolchain.cmake" -DCMAKE_BUILD_TYPE=Release \
  -DWANT_SYNCAPI=ON -DWANT_CPPUNIT=OFF -DWITH_OPENSSL=OFF -DWITH_CYRUS_SASL=OFF -DHAVE_GETLOGIN= \
  >"$tarni_cross_work/configure.log" 2>&1 \
  || { tail -n 30 "$tarni_cross_work/configure.log" >&2; exit 1; }
cmake --build "$tarni_cross_work/build" --target zookeeper hashtable -j"${TARNI_JOBS:-2}" \
  >"$tarni_cross_work/make.log" 2>&1 \
  || { grep -m 20 -B2 -A8 'error' "$tarni_cross_work/make.log" >&2; exit 1; }
# The client's CMake build has no install step: Debian's layout by hand.
mkdir -p "$tarni_cross_prefix/include/zookeeper" "$tarni_cross_prefix/lib"
cp "$client"/include/*.h "$client/generated/zookeeper.jute.h" "$tarni_cross_prefix/include/zookeeper/"
# The port's own pthread functions (a HANDLE is its mutex), gettimeofday and
# drand48 are global symbols: in a static link they would take the place of
# the C runtime's (winpthreads, which the C++ library's threads use) or clash
# with them. They are renamed in the archive, definitions and calls alike.
objcopy=x86_64-w64-mingw32-objcopy
x86_64-w64-mingw32-nm -g --defined-only "$tarni_cross_work/build/libzookeeper.a" \
  | awk '$2 == "T" && $3 ~ /^(pthread_|gettimeofday$|drand48$)/ { print $3 " zk_" $3 }' | sort -u \
  >"$tarni_cross_work/renames.txt"
grep -q '^pthread_mutex_lock ' "$tarni_cross_work/renames.txt" \
  || { echo "build-zookeeper-mingw: the port's pthread functions were not found to rename" >&2; exit 1; }
$objcopy --redefine-syms="$tarni_cross_work/renames.txt" "$tarni_cross_work/build/libzookeeper.a" \
  "$tarni_cross_prefix/lib/libzookeeper_mt.a"
cp "$tarni_cross_work/build/libhashtable.a" "$tarni_cross_prefix/lib/"
cp "$client/LICENSE" "$tarni_cross_prefix/"
tarni_cross_finish zookeeper
