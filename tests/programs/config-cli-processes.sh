#!/usr/bin/env bash
# Whole-process checks of tarni-spark-config: twenty writers at once on one
# file each keep their key; the file's other sections and comments survive;
# unreadable, unwritable and read-only files give an error naming the file and
# leave it as it was; a FIFO is refused without waiting; show and get fail
# when standard output cannot be written, and so do JSON documents and change
# reports, also into a closed pipe. Permission checks run as an unprivileged user when we are root.
set -u
cli=$1
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
chmod 755 "$dir"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

ini=$dir/odbc.ini
printf '; shared file\n[ODBC]\nTrace=No\n\n[Driver]\n# driver-wide\n\n[Tail]\nX=1\n' >"$ini"
for i in $(seq 1 20); do
  "$cli" --ini "$ini" set "Concurrent$i=value $i" &
done
wait
for i in $(seq 1 20); do
  grep -qx "Concurrent$i=value $i" "$ini" || fail "Concurrent$i lost"
done
head -6 "$ini" | cmp -s - <(printf '; shared file\n[ODBC]\nTrace=No\n\n[Driver]\n# driver-wide\n') \
  || fail "lines before the changes were not kept"
tail -3 "$ini" | cmp -s - <(printf '\n[Tail]\nX=1\n') || fail "the following section was not kept"
ls -A "$dir" | grep -q tmp && fail "a temporary file was left behind"

run_as_user() {
  if [ "$(id -u)" -eq 0 ]; then
    setpriv --reuid=nobody --regid=nogroup --clear-groups "$@"
  else
    "$@"
  fi
}

locked=$dir/locked
mkdir "$locked"
printf '[Driver]\nA=1\n' >"$locked/odbc.ini"
chmod 444 "$locked/odbc.ini"
chmod 555 "$locked"
cp "$locked/odbc.ini" "$dir/before"
out=$(run_as_user "$cli" --ini "$locked/odbc.ini" set A=2 2>&1); rc=$?
[ $rc -eq 1 ] || fail "unwritable folder: exit $rc"
echo "$out" | grep -q "$locked" || fail "unwritable folder: message does not name it: $out"
cmp -s "$locked/odbc.ini" "$dir/before" || fail "unwritable folder: file changed"

chmod 755 "$locked"
chmod 000 "$locked/odbc.ini"
out=$(run_as_user "$cli" --ini "$locked/odbc.ini" show 2>&1); rc=$?
[ $rc -eq 1 ] || fail "unreadable file: exit $rc"
echo "$out" | grep -q "odbc.ini" || fail "unreadable file: message does not name it: $out"
chmod 644 "$locked/odbc.ini"

# A file the user may not write, in a folder the user may write: refused.
readonly_dir=$dir/readonly
mkdir "$readonly_dir"
chmod 777 "$readonly_dir"
printf '[Driver]\nA = 1\n' >"$readonly_dir/odbc.ini"
chmod 444 "$readonly_dir/odbc.ini"
[ "$(id -u)" -eq 0 ] && chown nobody:nogroup "$readonly_dir/odbc.ini"
out=$(run_as_user "$cli" --ini "$readonly_dir/odbc.ini" set A=2 2>&1); rc=$?
[ $rc -eq 1 ] || fail "read-only file: exit $rc"
echo "$out" | grep -q "read-only" || fail "read-only file: message does not say so: $out"
printf '[Driver]\nA = 1\n' | cmp -s - "$readonly_dir/odbc.ini" || fail "read-only file: file changed"

# A FIFO in place of the file: refused at once, nothing waits for a writer.
mkfifo "$dir/fifo.ini"
out=$(timeout 10 "$cli" --ini "$dir/fifo.ini" show 2>&1); rc=$?
[ $rc -eq 1 ] || fail "FIFO: exit $rc"
echo "$out" | grep -q "named pipe" || fail "FIFO: message does not say what it is: $out"

# Standard output on a full disk: show and get fail.
if [ -w /dev/full ]; then
  out=$("$cli" --ini "$ini" show 2>&1 >/dev/full); rc=$?
  [ $rc -eq 1 ] || fail "show to a full disk: exit $rc"
  echo "$out" | grep -q "cannot write to standard output" || fail "show to a full disk: $out"
  "$cli" --ini "$ini" get Concurrent1 >/dev/full 2>/dev/null; rc=$?
  [ $rc -eq 1 ] || fail "get to a full disk: exit $rc"
fi

# Reports and JSON documents fail as a whole: on a full disk and into a pipe
# whose reader has gone, exit 1 with a message (not a signal, not a partial
# document presented as complete).
if [ -w /dev/full ]; then
  out=$("$cli" --ini "$ini" show --json 2>&1 >/dev/full); rc=$?
  [ $rc -eq 1 ] || fail "show --json to a full disk: exit $rc"
  echo "$out" | grep -q "cannot write to standard output" || fail "show --json to a full disk: $out"
  out=$("$cli" --ini "$ini" --json set Concurrent1=changed 2>&1 >/dev/full); rc=$?
  [ $rc -eq 1 ] || fail "change report to a full disk: exit $rc"
  echo "$out" | grep -q '^{"error":"cannot write to standard output' || fail "JSON error on a full disk: $out"
fi
{ sleep 0.5; "$cli" --ini "$ini" show --json 2>"$dir/pipe.err"; echo $? >"$dir/pipe.rc"; } | true
[ "$(cat "$dir/pipe.rc")" = 1 ] || fail "show --json into a closed pipe: exit $(cat "$dir/pipe.rc")"
grep -q "cannot write to standard output" "$dir/pipe.err" || fail "closed pipe: $(cat "$dir/pipe.err")"

echo "$((53 - failures)) passed, $failures failed"
[ $failures -eq 0 ]
