#!/usr/bin/env bash
# The Debian package as a user gets it: built by CPack from the build tree,
# its contents and dependencies, installed with dpkg into a throw-away root,
# the installed programs run from there, removed again, and checked by lintian.
# Usage: deb-package-test.sh BUILD-DIR
set -uo pipefail
build=$1
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

rm -f "$build"/packages/*.deb
(cd "$build" && cpack -G DEB >"$tmp/cpack.log" 2>&1) || { cat "$tmp/cpack.log"; exit 1; }
deb=$(ls "$build"/packages/*.deb)
pkg=$(dpkg-deb -f "$deb" Package)

# Contents: the programs linked from /usr/bin into their private folder with
# the files they read beside them, compressed manual pages, the copyright.
dpkg-deb --contents "$deb" | awk '{print $6, $7, $8}' | sed 's/ *$//' >"$tmp/contents"
for entry in "./usr/bin/tarni-spark-config -> ../lib/tarni-spark-odbc/tarni-spark-config" \
             "./usr/bin/tarni-spark-driver-config -> ../lib/tarni-spark-odbc/tarni-spark-driver-config" \
             ./usr/lib/tarni-spark-odbc/SparkODBC.did \
             ./usr/lib/tarni-spark-odbc/messages/en-US/DSMessages.xml \
             ./usr/share/man/man1/tarni-spark-config.1.gz \
             ./usr/share/man/man1/tarni-spark-driver-config.1.gz \
             "./usr/share/doc/$pkg/copyright" "./usr/share/doc/$pkg/changelog.Debian.gz"; do
  grep -qxF "$entry" "$tmp/contents" || fail "the package lacks $entry"
done
if grep -qE 'Test$|/include/|\.a$' "$tmp/contents"; then fail "the package carries test programs or build files"; fi

# Dependencies: the linked libraries found by dpkg-shlibdeps, and the ones
# loaded at run time.
depends=$(dpkg-deb -f "$deb" Depends)
for needed in libexpat1 libicu libncursesw6 libstdc++6 libssl3 libodbcinst2; do
  [[ "$depends" == *"$needed"* ]] || fail "Depends lacks $needed: $depends"
done

# Installation into a throw-away root. The driver registration (when the
# package has one) goes to an odbcinst.ini inside that root.
root=$tmp/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$root/etc"
touch "$root/var/lib/dpkg/status"
export ODBCSYSINI=$root/etc
dpkg --root="$root" --force-depends --force-not-root --force-script-chrootless --log=/dev/null \
  -i "$deb" >"$tmp/dpkg.log" 2>&1 || { cat "$tmp/dpkg.log"; fail "dpkg -i failed"; }
[ -x "$root/usr/bin/tarni-spark-config" ] || fail "tarni-spark-config is not installed"

# The installed programs run from there, with their message files: a save
# followed by a read, and an error whose text comes from the installed catalogue.
cli=$root/usr/bin/tarni-spark-config
"$cli" --help >"$tmp/help" 2>&1 || fail "tarni-spark-config --help failed"
grep -q '^Usage: tarni-spark-config' "$tmp/help" || fail "no usage text"
ini=$tmp/odbc.ini
"$cli" --ini "$ini" set KrbServiceName=hive-deb >/dev/null 2>"$tmp/err" || fail "set failed: $(cat "$tmp/err")"
[ "$("$cli" --ini "$ini" get KrbServiceName 2>&1)" = "hive-deb" ] || fail "get does not return the saved value"
grep -q 'KrbServiceName=hive-deb' "$ini" || fail "nothing was written to $ini"
"$cli" --ini "$ini" export "$tmp/no/such/folder/out.ini" >/dev/null 2>"$tmp/err"
[ $? -eq 1 ] || fail "an export into a missing folder succeeded"
grep -q 'Cannot write the configuration file' "$tmp/err" || fail "the error text is not the message file's: $(cat "$tmp/err")"
# The dialog program starts and, without a terminal, says so in the words of
# its message files.
TERM=xterm timeout 20 "$root/usr/bin/tarni-spark-driver-config" </dev/null >"$tmp/dialog" 2>&1
[ $? -eq 2 ] || fail "tarni-spark-driver-config without a terminal did not end with 2"
grep -q 'needs a terminal' "$tmp/dialog" || fail "no message text from the dialog program: $(cat "$tmp/dialog")"
ldd "$root/usr/lib/tarni-spark-odbc/tarni-spark-driver-config" | grep -q 'not found' && fail "unresolved libraries"

dpkg --root="$root" --force-not-root --force-script-chrootless --log=/dev/null -r "$pkg" >"$tmp/dpkg.log" 2>&1 \
  || { cat "$tmp/dpkg.log"; fail "dpkg -r failed"; }
[ ! -e "$root/usr/lib/tarni-spark-odbc/tarni-spark-config" ] || fail "dpkg -r left the program behind"

# lintian, with the overrides the package carries.
if ! lintian --fail-on error,warning "$deb" >"$tmp/lintian" 2>&1; then
  cat "$tmp/lintian"; fail "lintian reports problems"
fi
grep -E '^[EW]:' "$tmp/lintian" && fail "lintian warnings or errors"

[ $failures -eq 0 ] && echo "deb package checks passed ($deb)"
exit $((failures > 0))
