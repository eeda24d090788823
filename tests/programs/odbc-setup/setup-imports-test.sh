#!/usr/bin/env bash
# The setup DLL imports system DLLs only: the ODBC installer loads it with a
# plain LoadLibrary, which does not look beside it, so a DLL of the C++
# runtime, OpenSSL or any other library would not be found.
# Usage: setup-imports-test.sh OBJDUMP TarniSparkODBCSetup.dll
set -euo pipefail
objdump=$1 dll=$2
system="kernel32 user32 gdi32 advapi32 comctl32 comdlg32 shell32 shlwapi ole32 oleaut32 uxtheme
        ws2_32 crypt32 bcrypt secur32 winhttp iphlpapi userenv version rpcrt4 odbccp32 msvcrt ucrtbase"
imports=$("$objdump" -p "$dll" | awk '/DLL Name:/ {print tolower($3)}' | sort -u)
[ -n "$imports" ] || { echo "no import table read from $dll" >&2; exit 1; }
status=0
for name in $imports; do
  base=${name%.dll}
  case "$base" in api-ms-win-*) continue ;; esac
  if ! grep -qw -- "$base" <<<"$system"; then
    echo "$dll imports $name, which is not a system DLL" >&2
    status=1
  fi
done
echo "$dll imports:" $imports
exit $status
