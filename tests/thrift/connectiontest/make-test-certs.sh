#!/usr/bin/env bash
# Makes throw-away TLS material for the connection tests in folder $1:
#   ca.pem                 the test CA
#   server.pem/server.key  for localhost and 127.0.0.1, signed by the test CA
#   wrong-host.pem/.key    for wrong.example only, signed by the test CA
#   stranger.pem/.key      for localhost and 127.0.0.1, signed by an unknown CA
#   self.pem/self.key      self-signed, for localhost and 127.0.0.1
set -euo pipefail
out=$1
mkdir -p "$out"
cd "$out"
[ -f done ] && exit 0
days=2
subj() { echo "/O=Tarni connection test/CN=$1"; }

openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem -days $days -subj "$(subj 'Test CA')" 2>/dev/null
openssl req -x509 -newkey rsa:2048 -nodes -keyout stranger-ca.key -out stranger-ca.pem -days $days \
  -subj "$(subj 'Unknown CA')" 2>/dev/null

issue() { # name ca san
  printf 'subjectAltName=%s\nbasicConstraints=CA:FALSE\n' "$3" > "$1.ext"
  openssl req -newkey rsa:2048 -nodes -keyout "$1.key" -out "$1.csr" -subj "$(subj "$1")" 2>/dev/null
  openssl x509 -req -in "$1.csr" -CA "$2.pem" -CAkey "$2.key" -CAcreateserial -out "$1.pem" -days $days \
    -extfile "$1.ext" 2>/dev/null
}
issue server ca "DNS:localhost,IP:127.0.0.1"
issue wrong-host ca "DNS:wrong.example"
issue stranger stranger-ca "DNS:localhost,IP:127.0.0.1"
openssl req -x509 -newkey rsa:2048 -nodes -keyout self.key -out self.pem -days $days -subj "$(subj localhost)" \
  -addext "subjectAltName=DNS:localhost,IP:127.0.0.1" 2>/dev/null
touch done
