#!/usr/bin/env bash
# The ZooKeeper server of the Windows build's discovery tests, which run under
# Wine and cannot start a host program themselves; CTest's fixture
# "thrift_zookeeper_server" runs this on the host around them.
#   test-zookeeper.sh start DIR   Debian's server in standalone mode on
#                                 127.0.0.1 and a free port, with a small heap,
#                                 in DIR; DIR/port holds the port once it
#                                 serves, or DIR/unavailable says why not.
#   test-zookeeper.sh stop DIR    ends it and removes DIR.
# The server is started as the Linux tests' TestZooKeeperServer does, and it
# ends by itself after an hour should the stop never come.
set -uo pipefail
action=${1:?start or stop}
dir=${2:?folder}
java=/usr/bin/java
jar=/usr/share/java/zookeeper.jar

stop() {
  if [ -f "$dir/pid" ]; then
    kill "$(cat "$dir/pid")" 2>/dev/null
    for _ in $(seq 50); do kill -0 "$(cat "$dir/pid")" 2>/dev/null || break; sleep 0.1; done
    kill -9 "$(cat "$dir/pid")" 2>/dev/null
  fi
  rm -rf "$dir"
}

# The answer to a four-letter command, empty when there is none.
four_letters() {
  { exec 3<>"/dev/tcp/127.0.0.1/$1"; } 2>/dev/null || return 0
  printf '%s' "$2" >&3
  timeout 2 cat <&3
  exec 3<&-
}

case $action in
  stop) stop; exit 0 ;;
  start) ;;
  *) echo "test-zookeeper.sh: unknown action $action (start or stop)" >&2; exit 2 ;;
esac
stop
mkdir -p "$dir/data"
for file in "$java" "$jar"; do
  if [ ! -e "$file" ]; then
    echo "$file is missing (scripts/install-deps.sh installs the zookeeper package)" >"$dir/unavailable"
    cat "$dir/unavailable"
    exit 0
  fi
done
port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
cat >"$dir/zoo.cfg" <<CONFIG
tickTime=500
minSessionTimeout=1000
dataDir=$dir/data
clientPort=$port
clientPortAddress=127.0.0.1
admin.enableServer=false
4lw.commands.whitelist=srvr
CONFIG
setsid timeout 3600 "$java" -Xmx128m -XX:+UseSerialGC -cp "$jar" \
  org.apache.zookeeper.server.ZooKeeperServerMain "$dir/zoo.cfg" >"$dir/server.log" 2>&1 </dev/null &
echo $! >"$dir/pid"
# "ruok" answers before the server serves; "srvr" names the mode then.
for _ in $(seq 600); do
  if four_letters "$port" srvr | grep -q 'Mode:'; then
    echo "$port" >"$dir/port"
    echo "ZooKeeper serves on 127.0.0.1:$port"
    exit 0
  fi
  kill -0 "$(cat "$dir/pid")" 2>/dev/null || break
  sleep 0.1
done
echo "ZooKeeper did not start; its log:" >&2
cat "$dir/server.log" >&2
stop
exit 1
