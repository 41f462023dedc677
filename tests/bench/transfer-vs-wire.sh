#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Throughput of `vexa get` and `vexa put` next to the wire's own speed, in one run on one loopback
# address: a raw TCP read of the same file (bash reading /dev/tcp from a server that uses sendfile)
# and curl over FTP (pyftpdlib). Every figure is the median of ROUNDS runs; the machine is shared, so
# compare figures of the same run only.
# Usage: tests/bench/transfer-vs-wire.sh [MiB] [rounds]   (256 and 3 by default)
# Environment: BUILD (the build folder, default build), VEXA_BENCH_ADDRESS (default 127.0.77.1),
# VEXA_BENCH_DIR (where the files go, default /tmp; /dev/shm takes the disk out of the figures, which
# on a virtual machine's disk vary by a factor of two from run to run).
set -euo pipefail

MIB=${1:-256}
ROUNDS=${2:-3}
HERE=$(cd "$(dirname "$0")/../.." && pwd)
BIN=${BUILD:-$HERE/build}/bin
ADDRESS=${VEXA_BENCH_ADDRESS:-127.0.77.1}
RAW_PORT=4841
FTP_PORT=2121
PY=/usr/bin/python3

WORK=$(mktemp -d "${VEXA_BENCH_DIR:-/tmp}/vexa-bench-XXXXXX")
PIDS=()
cleanup() {
    for pid in "${PIDS[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT

mkdir -p "$WORK/root/Data" "$WORK/pc"
head -c "$((MIB * 1024 * 1024))" /dev/urandom >"$WORK/root/Data/bench.bin"
cp "$WORK/root/Data/bench.bin" "$WORK/pc/up.bin"

"$BIN/vexa-sim" --root "$WORK/root" --address "$ADDRESS" >"$WORK/sim.log" 2>&1 &
PIDS+=($!)
# A server that hands the file to the kernel with sendfile for every connection: the floor.
"$PY" - "$ADDRESS" "$RAW_PORT" "$WORK/root/Data/bench.bin" >"$WORK/raw.log" 2>&1 <<'EOF' &
import socket, sys
server = socket.create_server((sys.argv[1], int(sys.argv[2])))
while True:
    connection, _ = server.accept()
    with connection, open(sys.argv[3], "rb") as f:
        connection.sendfile(f)
EOF
PIDS+=($!)
"$PY" - "$ADDRESS" "$FTP_PORT" "$WORK/root" >"$WORK/ftp.log" 2>&1 <<'EOF' &
import sys
from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer
authorizer = DummyAuthorizer()
authorizer.add_anonymous(sys.argv[3], perm="elradfmw")
FTPHandler.authorizer = authorizer
FTPServer((sys.argv[1], int(sys.argv[2])), FTPHandler).serve_forever()
EOF
PIDS+=($!)
sleep 1

# Seconds of one command, stdout and stderr dropped. The file system writes back what earlier runs left
# first, so no run pays for the gigabytes written before it.
seconds() {
    local start end
    sync
    start=$(date +%s.%N)
    "$@" >/dev/null 2>&1 || { echo "failed: $*" >&2; return 1; }
    end=$(date +%s.%N)
    echo "$end - $start" | bc -l
}
median() { printf '%s\n' "$@" | sort -g | sed -n "$(((${#@} + 1) / 2))p"; }
measure() {
    local times=() i
    for ((i = 0; i < ROUNDS; ++i)); do times+=("$(seconds "$@")"); done
    echo "  $(basename "$1") ${*: -2:1}: ${times[*]}" >&2
    median "${times[@]}"
}
raw_get() { cat </dev/tcp/"$ADDRESS"/"$RAW_PORT" >"$WORK/pc/raw.bin"; }
export -f raw_get
export ADDRESS RAW_PORT WORK

RAW=$(measure bash -c raw_get)
GET=$(measure "$BIN/vexa" --quiet get --overwrite yes "@$ADDRESS:/Data/bench.bin" "$WORK/pc/get.bin")
cmp "$WORK/pc/get.bin" "$WORK/root/Data/bench.bin"
FTP_GET=$(measure curl -s -o "$WORK/pc/ftp.bin" "ftp://$ADDRESS:$FTP_PORT/Data/bench.bin")
PUT=$(measure "$BIN/vexa" --quiet put --overwrite yes "$WORK/pc/up.bin" "@$ADDRESS:/Data/up.bin")
cmp "$WORK/pc/up.bin" "$WORK/root/Data/up.bin"
FTP_PUT=$(measure curl -s -T "$WORK/pc/up.bin" "ftp://$ADDRESS:$FTP_PORT/Data/ftp-up.bin")
RSS=$(/usr/bin/time -f %M "$BIN/vexa" --quiet get --overwrite yes "@$ADDRESS:/Data/bench.bin" \
    "$WORK/pc/get.bin" 2>&1 >/dev/null | tail -1)

rate() { echo "scale=0; $MIB / $1" | bc -l; }
ratio() { echo "scale=2; $1 / $2" | bc -l; }
echo "$MIB MiB, median of $ROUNDS (vexa includes the 0.5 s close wait)"
printf '%-22s %7.2f s %6s MiB/s\n' "raw TCP read" "$RAW" "$(rate "$RAW")"
printf '%-22s %7.2f s %6s MiB/s\n' "curl FTP get" "$FTP_GET" "$(rate "$FTP_GET")"
printf '%-22s %7.2f s %6s MiB/s\n' "vexa get" "$GET" "$(rate "$GET")"
printf '%-22s %7.2f s %6s MiB/s\n' "curl FTP put" "$FTP_PUT" "$(rate "$FTP_PUT")"
printf '%-22s %7.2f s %6s MiB/s\n' "vexa put" "$PUT" "$(rate "$PUT")"
echo "get/raw $(ratio "$GET" "$RAW")  get/ftp $(ratio "$GET" "$FTP_GET")  put/ftp $(ratio "$PUT" "$FTP_PUT")" \
    " vexa get peak memory ${RSS} KiB"
