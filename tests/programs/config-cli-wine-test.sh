#!/usr/bin/env bash
# tarni-spark-config.exe --dsn NAME test under Wine against the project's
# TCLIService server (also a Windows program under Wine): a data source in
# the registry with its password stored by set-secret opens a session (exit
# 0, the SUCCESS report), a refused user fails (exit 1, the server's reason),
# and the password is in neither output.
# Usage: config-cli-wine-test.sh WINE-RUN tarni-spark-config.exe tarni-test-tcli-server.exe
set -u
wine_run=$1 cli=$2 server=$3
dir=$(mktemp -d)
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
dsn="Wine Connection Test $$"
password="pw-$$-wine"

"$wine_run" "$server" sasl --user alice --password "$password" >"$dir/port" 2>"$dir/server.err" &
server_pid=$!
cleanup() {
  "$wine_run" "$cli" dsn remove "$dsn" >/dev/null 2>&1
  kill "$server_pid" 2>/dev/null
  wait "$server_pid" 2>/dev/null
  rm -rf "$dir"
}
trap cleanup EXIT
for _ in $(seq 1 300); do [ -s "$dir/port" ] && break; sleep 0.1; done
port=$(head -n 1 "$dir/port" | tr -d '\r')
[ -n "$port" ] || { echo "FAIL: the test server did not start: $(cat "$dir/server.err")"; exit 1; }

# SSL, proxy and discovery are set too: the data source inherits the
# driver-wide settings, which other tests in the same Wine prefix change.
"$wine_run" "$cli" dsn add "$dsn" Host=127.0.0.1 "Port=$port" ThriftTransport=1 AuthMech=3 UID=alice \
  ConnectionTestTimeout=10 SSL=0 UseProxy=0 ServiceDiscoveryMode=0 >"$dir/out" 2>&1 || fail "dsn add: $(cat "$dir/out")"
printf '%s\n' "$password" | "$wine_run" "$cli" --dsn "$dsn" set-secret PWD >"$dir/out" 2>&1 \
  || fail "set-secret: $(cat "$dir/out")"

"$wine_run" "$cli" --dsn "$dsn" test >"$dir/out" 2>"$dir/err"
status=$?
[ $status -eq 0 ] || fail "test exited with $status: $(cat "$dir/out" "$dir/err")"
head -n 1 "$dir/out" | tr -d '\r' | grep -qx 'SUCCESS! ' || fail "no SUCCESS line: $(cat "$dir/out")"
grep -q "Connecting to 127.0.0.1:$port..." "$dir/err" || fail "no Connecting line: $(cat "$dir/err")"

"$wine_run" "$cli" --dsn "$dsn" test UID=mallory >"$dir/out2" 2>"$dir/err2"
status=$?
[ $status -eq 1 ] || fail "a refused user exited with $status"
grep -q "127.0.0.1:$port refused the user name or password: Error validating the login" "$dir/out2" \
  || fail "no refusal: $(cat "$dir/out2" "$dir/err2")"
cat "$dir/out" "$dir/err" "$dir/out2" "$dir/err2" | grep -qF "$password" && fail "the password was printed"

[ $failures -eq 0 ] && echo "config-cli-wine-test: passed"
exit $((failures > 0))
