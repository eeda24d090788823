#!/usr/bin/env bash
# tarni-spark-config.exe --dsn NAME test with Kerberos under Wine: inside a
# throw-away realm (the Linux build's tarni-test-kdc) the Linux build's
# tarni-test-tcli-server accepts SASL GSSAPI and HTTP Negotiate with the
# service's keytab; the Windows program gets its tokens from Wine's Kerberos
# provider, which reads the same realm through KRB5_CONFIG and KRB5CCNAME.
# Checked: a session over SASL (AuthMech 1, the principal from _HOST by
# reverse lookup), over HTTP (AuthMech 1, 9, and 10 with TLS), and a wrong
# service name failing in the authentication step with that principal named.
# Usage: config-cli-wine-kerberos-test.sh WINE-RUN tarni-spark-config.exe LINUX-TOOLS-DIR
set -u
if [ "${1:-}" != --inside ]; then
  tools=$3
  for tool in tarni-test-kdc tarni-test-tcli-server; do
    if [ ! -x "$tools/$tool" ]; then
      echo "config-cli-wine-kerberos-test: skipped: $tools/$tool is missing; build the Linux preset first" \
           "(or point TARNI_LINUX_TOOLS_DIR at its bin folder)"
      exit 0
    fi
  done
  # tarni-test-kdc prints "skipped: ..." itself when the KDC is not installed.
  exec "$tools/tarni-test-kdc" spark/localhost bash "${BASH_SOURCE[0]}" --inside "$@"
fi
shift
wine_run=$1 cli=$2 tools=$3
realm=${TARNI_TEST_KERBEROS_SERVICE#*@}
dir=$(mktemp -d)
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
sasl_dsn="Wine Kerberos SASL $$"
http_dsn="Wine Kerberos HTTP $$"
pids=()

cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
  for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null; done
  "$wine_run" "$cli" dsn remove "$sasl_dsn" >/dev/null 2>&1
  "$wine_run" "$cli" dsn remove "$http_dsn" >/dev/null 2>&1
  rm -rf "$dir"
}
trap cleanup EXIT
trap 'exit 1' INT TERM HUP

# Starts a test server called $1 in mode $2 (further arguments follow) and sets $port.
start_server() {
  local name=$1 mode=$2
  shift 2
  "$tools/tarni-test-tcli-server" "$mode" --keytab "$TARNI_TEST_KERBEROS_KEYTAB" "$@" \
    >"$dir/$name.port" 2>"$dir/$name.err" &
  pids+=($!)
  for _ in $(seq 1 100); do [ -s "$dir/$name.port" ] && break; sleep 0.1; done
  port=$(head -n 1 "$dir/$name.port")
  [ -n "$port" ] || { echo "FAIL: the $name test server did not start: $(cat "$dir/$name.err")"; exit 1; }
}

# Runs the test command; $out holds its standard output and error, $status its exit code.
run_test() {
  "$wine_run" "$cli" "$@" >"$dir/out" 2>&1
  status=$?
  out=$(tr -d '\r' <"$dir/out")
}

expect_success() {
  local what=$1 authentication=$2
  if [ $status -ne 0 ] || ! grep -qx 'SUCCESS! ' <<<"$out" \
     || ! grep -qF "Authentication - passed" <<<"$out" || ! grep -qF "$authentication" <<<"$out" \
     || ! grep -qF "CloseSession - passed" <<<"$out"; then
    fail "$what: expected exit 0, SUCCESS, the authentication step \"$authentication\" and CloseSession;" \
         "got exit $status: $out"
  fi
}

bash "$(dirname "${BASH_SOURCE[0]}")/../thrift/connectiontest/make-test-certs.sh" "$dir/certs" >"$dir/certs.log" 2>&1 \
  || { echo "FAIL: no test certificates: $(cat "$dir/certs.log")"; exit 1; }
start_server sasl sasl
sasl_port=$port
start_server http http --path /cliservice
http_port=$port
start_server https http --path /cliservice --cert "$dir/certs/server.pem" --key "$dir/certs/server.key"
https_port=$port

# Everything the sessions depend on is set here: the data sources inherit the
# driver-wide settings, which other tests in the same Wine prefix change.
common=(Host=127.0.0.1 AuthMech=1 KrbServiceName=spark KrbHostFQDN=_HOST "KrbRealm=$realm" ConnectionTestTimeout=20
        SSL=0 UseProxy=0 ServiceDiscoveryMode=0)
run_test dsn add "$sasl_dsn" "${common[@]}" "Port=$sasl_port" ThriftTransport=1
[ $status -eq 0 ] || fail "dsn add (SASL): $out"
run_test dsn add "$http_dsn" "${common[@]}" "Port=$http_port" ThriftTransport=2 HTTPPath=cliservice
[ $status -eq 0 ] || fail "dsn add (HTTP): $out"

# _HOST is the connection's host; 127.0.0.1 becomes localhost by reverse lookup.
run_test --dsn "$sasl_dsn" test --verbose
expect_success "SASL GSSAPI" "Kerberos (SASL GSSAPI) for spark/localhost@$realm"

run_test --dsn "$http_dsn" test --verbose
expect_success "HTTP Negotiate" "Kerberos (HTTP Negotiate) for spark/localhost@$realm"

# Kerberos over HTTP whatever the transport says.
run_test --dsn "$sasl_dsn" test --verbose AuthMech=9 "Port=$http_port" HTTPPath=cliservice
expect_success "AuthMech 9" "Kerberos (HTTP Negotiate) for spark/localhost@$realm"

# Kerberos over HTTPS: TLS whatever SSL says.
run_test --dsn "$http_dsn" test --verbose AuthMech=10 "Port=$https_port" "TrustedCerts=$dir/certs/ca.pem"
expect_success "AuthMech 10" "Kerberos (HTTP Negotiate) for spark/localhost@$realm"
grep -q "^TLS handshake - passed" <<<"$out" || fail "AuthMech 10 did not use TLS: $out"

# A service the realm does not know: no ticket can be had for it, so the
# server is never asked.
run_test --dsn "$sasl_dsn" test --verbose KrbServiceName=hive
[ $status -eq 1 ] || fail "a wrong service name exited with $status: $out"
# Wine does not tell why the ticket was refused; Windows and GSSAPI say that
# the realm does not know the service.
grep -Eq "^Authentication - failed .*(No Kerberos service ticket could be had for|The Kerberos realm does not know the service principal) hive/localhost@$realm" <<<"$out" \
  || fail "a wrong service name did not fail the authentication step naming hive/localhost@$realm: $out"
grep -qF "OpenSession" <<<"$out" && fail "a wrong service name got as far as OpenSession: $out"

[ $failures -eq 0 ] && echo "config-cli-wine-kerberos-test: passed"
exit $((failures > 0))
