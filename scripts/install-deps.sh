#!/usr/bin/env bash
# Installs every Debian package that the build, the tests and the Windows
# cross build need. Idempotent: packages already present are skipped, and
# `apt-get update` runs once, only when something has to be installed.
set -euo pipefail

packages=(
  # toolchain and test frameworks
  g++ cmake ninja-build pkg-config git python3 ccache
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  # libraries of the portable core
  libicu-dev libboost1.81-dev libexpat1-dev nlohmann-json3-dev libthrift-dev
  libncurses-dev libspdlog-dev
  # fuzz targets: clang with its libFuzzer and sanitizer runtimes
  clang libclang-rt-14-dev
  # loaded at run time: libcrypto.so.3 and the ODBC installer library; the
  # openssl tool verifies signatures in tests
  libssl3 openssl libodbcinst2
  # the setup library's tests: unixODBC's installer header and its odbcinst tool
  unixodbc-dev odbcinst
  # Windows cross build, Wine to run its tests, X server for dialog tests
  g++-mingw-w64-x86-64-posix mingw-w64-tools wine wine64 xvfb xauth
  # source packages (Expat, OpenSSL, Apache Thrift for the cross target)
  dpkg-dev
  # libFuzzer targets (clang with its sanitizer and fuzzer runtimes)
  clang libclang-rt-14-dev
  # terminal-host tests and screenshots
  tmux imagemagick x11-apps
  # connection test: the Thrift compiler generates the TCLIService client
  thrift-compiler libssl-dev
  # connection test with Kerberos: GSSAPI (libkrb5-dev), and the throw-away
  # realm of its tests (KDC, kadmin.local, kinit)
  libkrb5-dev krb5-kdc krb5-admin-server krb5-user
  # a second KDC of that realm with a shifted clock (libfaketime)
  faketime
  # connection test with ZooKeeper discovery: the C client, and the server
  # (with a Java runtime) that the tests start
  libzookeeper-mt-dev zookeeper
  # packages: the MSI (wixl), the Debian package's checks, and the
  # CA bundle the MSI ships as the default trusted certificates file
  wixl lintian ca-certificates
)
# npm fetches the TCLIService IDL (scripts/fetch-tcliservice-idl.sh); a Node.js
# installed from elsewhere brings its own npm.
command -v npm >/dev/null 2>&1 || packages+=(npm)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages present"
else
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  echo "install-deps: installing ${missing[*]}"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

echo "install-deps: TCLIService IDL at $(bash "$(dirname "${BASH_SOURCE[0]}")/fetch-tcliservice-idl.sh")"
