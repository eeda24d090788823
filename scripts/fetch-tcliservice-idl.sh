#!/usr/bin/env bash
# Fetches the TCLIService Thrift IDL that the connection test generates its
# client from. The IDL is published inside an npm package; the package is
# downloaded with npm into a cache folder outside the clone, checked against
# the pinned version and checksum, and only the IDL file is kept. The build
# reads it through the CMake cache variable TARNI_TCLISERVICE_IDL, whose
# default is the path printed at the end.
set -euo pipefail

package=hive-driver
version=1.0.0
sha256=c9c481a5cd491791584311eb1db775e8dcebe211f1a9279882020221ee0f4a9c
member=package/thrift/TCLIService.thrift

cache=${XDG_CACHE_HOME:-$HOME/.cache}/tarni-idl
dest=$cache/$package-$version/TCLIService.thrift

if [ -f "$dest" ] && echo "$sha256  $dest" | sha256sum -c --quiet - 2>/dev/null; then
  echo "$dest"
  exit 0
fi

command -v npm >/dev/null 2>&1 || { echo "fetch-tcliservice-idl: npm is missing (scripts/install-deps.sh installs it)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
(cd "$work" && npm pack --silent "$package@$version" >/dev/null)
tar -xzf "$work/$package-$version.tgz" -C "$work" "$member"
if ! echo "$sha256  $work/$member" | sha256sum -c --quiet -; then
  echo "fetch-tcliservice-idl: checksum of $member in $package@$version differs from the pinned one" >&2
  exit 1
fi
mkdir -p "$(dirname "$dest")"
cp "$work/$member" "$dest"
echo "$dest"
