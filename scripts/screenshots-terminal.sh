#!/usr/bin/env bash
# Screenshots of the terminal dialogs: runs the Linux dialog program in an
# 80x24 tmux terminal of its own, drives it with the keyboard and renders
# each screen to docs/screenshots/terminal-*.png (ImageMagick; the screen's
# text is kept beside each picture as .txt). Usage:
#   scripts/screenshots-terminal.sh [path/to/tarni-spark-driver-config]
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
program="${1:-$root/build/linux/bin/tarni-spark-driver-config}"
out="$root/docs/screenshots"
[ -x "$program" ] || { echo "screenshots-terminal: build $program first" >&2; exit 1; }
command -v tmux >/dev/null && command -v convert >/dev/null ||
  { echo "screenshots-terminal: tmux and ImageMagick are needed (scripts/install-deps.sh)" >&2; exit 1; }

work="$(mktemp -d)"
socket="tarni-shots-$$"
cleanup() { tmux -L "$socket" kill-server 2>/dev/null || true; rm -rf "$work"; }
trap cleanup EXIT

# A copy of the program beside product settings that offer ZooKeeper, and a
# driver configuration to show.
cp "$program" "$work/tarni-spark-driver-config"
printf 'supported-service-discovery-modes=ZooKeeper,AOSS\n' > "$work/SparkODBC.did"
mkdir -p "$work/logs" "$work/Documents"
printf 'XDG_DOCUMENTS_DIR="$HOME/Documents"\n' > "$work/user-dirs.dirs"
printf '[Driver]\nLogLevel=4\nLogPath=/var/log/tarni\nLogFileCount=50\nLogFileSize=20971520\nSparkServerType=3\nServiceDiscoveryMode=ZooKeeper\nZKNamespace=hiveserver2\nAuthMech=3\nUID=alice\nThriftTransport=1\nHTTPPath=cliservice\nSSP_spark.sql.shuffle.partitions=8\nSSP_spark.sql.ansi.enabled=true\nhttp.header.User-Agent=reports/2.1\nhttp.header.X-Trace=\n' \
  > "$work/odbc.ini"

tmux -u -L "$socket" -f /dev/null new-session -d -x 80 -y 24 -e LANG=C.UTF-8 -e TERM=screen \
  "cd '$work' && HOME='$work' SPARKINI='$work/odbc.ini' XDG_CONFIG_HOME='$work' ./tarni-spark-driver-config; sleep 5"

key() { tmux -L "$socket" send-keys "$@"; sleep 0.25; }
wait_for() {  # text, bounded wait
  for _ in $(seq 1 100); do
    tmux -L "$socket" capture-pane -p | grep -qF -- "$1" && return 0
    sleep 0.1
  done
  echo "screenshots-terminal: \"$1\" never appeared" >&2; exit 1
}
status_is() {  # Tab until the status line begins with the text
  for _ in $(seq 1 40); do
    tmux -L "$socket" capture-pane -p | tail -n 1 | grep -q "^ $1" && return 0
    key Tab
  done
  echo "screenshots-terminal: \"$1\" never took the focus" >&2; exit 1
}
shot() {  # name
  tmux -L "$socket" capture-pane -p -e > "$work/$1.ansi"
  tmux -L "$socket" capture-pane -p > "$out/$1.txt"
  if command -v python3 >/dev/null; then
    python3 "$root/scripts/render-terminal-capture.py" "$work/$1.ansi" "$work/$1.mvg" 80 24
    convert "mvg:$work/$1.mvg" "$out/$1.png"
  else
    convert -background '#1e1e2e' -fill '#e8e8e8' -font DejaVu-Sans-Mono -pointsize 14 \
      "label:@$out/$1.txt" "$out/$1.png"
  fi
  echo "screenshots-terminal: $out/$1.png"
}

mkdir -p "$out"
wait_for "Tarni Spark ODBC Driver Configuration"
shot terminal-driver-configuration

status_is "Logging Options"
key Enter
wait_for "Max Number Files:"
shot terminal-logging-options
status_is "Browse"
key Enter
wait_for "Choose log file target directory."
key C-u; tmux -L "$socket" send-keys -l "$work/lo"; key Tab
wait_for "logs/"
shot terminal-logging-browse
key Escape
status_is "Export Configuration"
key Enter
wait_for "Choose Export Target File"
shot terminal-logging-export
key Escape
key Escape
wait_for "Tarni Spark ODBC Driver Configuration"
status_is "Space: open list"   # Tab round to the first control, the server type list

# The next drop-down after Spark Server Type: Service Discovery Mode.
key Tab; status_is "Space: open list"
key Space
wait_for "No Service Discovery"
shot terminal-service-discovery-list
key Escape

status_is "Service Discovery Options"
key Enter
wait_for "ZooKeeper Namespace:"
shot terminal-zookeeper-options
key C-u
sleep 0.3
shot terminal-zookeeper-options-empty
key Escape

status_is "Password Options"
key Enter
wait_for "All Users of this Machine"
key Down; key Space
shot terminal-password-options
key Escape

status_is "Advanced Options"
key Enter
wait_for "Rows fetched per block:"
shot terminal-advanced-options
status_is "Server Side Properties"
key Enter
wait_for "Convert Key Name to Lower Case"
key Down
shot terminal-server-side-properties
key Enter
wait_for "Key:"
shot terminal-edit-property
key Escape; key Escape; key Escape

# HTTP Properties need the HTTP transport: the drop-down before SSL Options.
status_is "SSL Options"
key BTab
key Space; key H; key Enter
status_is "HTTP Options"
key Enter
wait_for "Custom HTTP Headers"
shot terminal-http-properties
key Escape

status_is "SSL Options"
key Enter
wait_for "Enable SSL"
shot terminal-ssl-options-two-way
key Escape

status_is "Proxy Options"
key Enter
wait_for "HTTP Proxy Options"
key M-x
key M-h; tmux -L "$socket" send-keys -l "proxy.example.com"
key M-o; tmux -L "$socket" send-keys -l "3128"
key M-n; tmux -L "$socket" send-keys -l "alice"
key M-w; tmux -L "$socket" send-keys -l "secret"
sleep 0.3
shot terminal-proxy-options
key Escape
key Escape

# A second run in AOSS mode: AOSS Options and the endpoint's SSL Options.
tmux -L "$socket" kill-server 2>/dev/null || true
printf '[Driver]\nSparkServerType=3\nServiceDiscoveryMode=AOSS\nAOSS_AuthMech=3\nAOSS_UID=watcher\nAOSS_SSL=1\n' \
  > "$work/odbc.ini"
tmux -u -L "$socket" -f /dev/null new-session -d -x 80 -y 24 -e LANG=C.UTF-8 -e TERM=screen \
  "cd '$work' && SPARKINI='$work/odbc.ini' XDG_CONFIG_HOME='$work' ./tarni-spark-driver-config; sleep 5"
wait_for "Tarni Spark ODBC Driver Configuration"
status_is "Service Discovery Options"
key Enter
wait_for "Status Endpoint Authentication:"
shot terminal-aoss-options
status_is "SSL Options"
key Enter
wait_for "Enable SSL"
shot terminal-ssl-options
key Escape
key Escape

# DFI and SAML Options: the program again, over a DFI configuration.
tmux -L "$socket" kill-server 2>/dev/null || true
printf '[Driver]\nSparkServerType=4\nAuthMech=3\nThriftTransport=2\nOCIProfile=DEFAULT\nOCIConfigFile=%s/oci-config\n' "$work" \
  > "$work/odbc.ini"
printf '[DEFAULT]\n' > "$work/oci-config"
tmux -u -L "$socket" -f /dev/null new-session -d -x 80 -y 24 -e LANG=C.UTF-8 -e TERM=screen \
  "cd '$work' && SPARKINI='$work/odbc.ini' XDG_CONFIG_HOME='$work' ./tarni-spark-driver-config; sleep 5"
wait_for "Tarni Spark ODBC Driver Configuration"
status_is "DFI Options"
key Enter
wait_for "OCI Config File:"
shot terminal-dfi-options
key Escape
status_is "SAML Options"
key Enter
wait_for "Enable Auth Cookie Caching"
shot terminal-saml-options
key Escape
key Escape

# OAuth Options (146), which only the DSN setup opens: the terminal gallery.
gallery="$(dirname "$program")/TerminalDialogGallery"
if [ -x "$gallery" ]; then
  tmux -L "$socket" kill-server 2>/dev/null || true
  tmux -u -L "$socket" -f /dev/null new-session -d -x 80 -y 24 -e LANG=C.UTF-8 -e TERM=screen \
    "cd '$work' && XDG_CONFIG_HOME='$work' '$gallery' 146; sleep 5"
  wait_for "Authentication Flow:"
  shot terminal-oauth-options
  key Escape
else
  echo "screenshots-terminal: build TerminalDialogGallery for the OAuth Options picture" >&2
fi

# Test Results (133) of the DSN setup against the project's TCLIService test
# server: the gallery's DSN setup pointed at the server, then Test.
server="$(dirname "$program")/tarni-test-tcli-server"
if [ -x "$gallery" ] && [ -x "$server" ]; then
  "$server" sasl --user alice --password pw-42 > "$work/server-port" &
  server_pid=$!
  for _ in $(seq 1 50); do [ -s "$work/server-port" ] && break; sleep 0.1; done
  port=$(head -n 1 "$work/server-port")
  # Test in the gallery's DSN setup with this password; photographed once
  # the report shows the text.
  test_results() {  # password, text, name
    tmux -L "$socket" kill-server 2>/dev/null || true
    tmux -u -L "$socket" -f /dev/null new-session -d -x 80 -y 24 -e LANG=C.UTF-8 -e TERM=screen \
      "cd '$work' && XDG_CONFIG_HOME='$work' '$gallery' 1093 Host=127.0.0.1 Port=$port AuthMech=3 ThriftTransport=1 UID=alice PWD=$1 ServiceDiscoveryMode=0; sleep 5"
    wait_for "DSN Setup"
    status_is "Test"
    key Enter
    wait_for "$2"
    shot "$3"
    key Enter
    key Escape
  }
  test_results pw-42 "Successfully connected to data source!" terminal-test-results
  # A wrong password: the step list ends in the failed step.
  test_results wrong-pw "FAILED!" terminal-test-results-failed
  kill "$server_pid" 2>/dev/null || true
else
  echo "screenshots-terminal: build TerminalDialogGallery and tarni-test-tcli-server for the Test Results picture" >&2
fi
