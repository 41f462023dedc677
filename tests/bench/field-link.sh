#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The link against FTP on a slow field network: a network namespace whose loopback (MTU 1500) is
# limited by a token bucket, the simulator and an FTP server (pyftpdlib) inside it, and `vexa get`
# against `curl` for a compressible log, a data file and random bytes. Medians of ROUNDS runs; the
# link's figure includes its 0.5 s wait after each file. Needs root (ip netns, tc).
# Usage: tests/bench/field-link.sh [MB] [rate] [rounds]   (10, 20mbit and 3 by default)
# Environment: BUILD (the build folder, default build).
set -euo pipefail

MB=${1:-10}
RATE=${2:-20mbit}
ROUNDS=${3:-3}
HERE=$(cd "$(dirname "$0")/../.." && pwd)
BIN=${BUILD:-$HERE/build}/bin
NS=vexa-field-$$
ADDRESS=127.0.77.1
FTP_PORT=2121
PY=/usr/bin/python3
WORK=$(mktemp -d /tmp/vexa-field-XXXXXX)

cleanup() {
    ip netns pids "$NS" 2>/dev/null | xargs -r kill 2>/dev/null || true
    sleep 0.2
    ip netns del "$NS" 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT

in_ns() { ip netns exec "$NS" "$@"; }

ip netns add "$NS"
in_ns ip link set lo mtu 1500 up
in_ns ip addr add "$ADDRESS/8" dev lo 2>/dev/null || true
in_ns tc qdisc add dev lo root tbf rate "$RATE" burst 32kbit latency 400ms

mkdir -p "$WORK/root/Data" "$WORK/pc"
BYTES=$((MB * 1000 * 1000))
# A log: time-stamped lines that repeat with small changes.
"$PY" - "$WORK/root/Data/field.log" "$BYTES" <<'EOF'
import sys
size, lines, i = int(sys.argv[2]), [], 0
with open(sys.argv[1], "w") as f:
    while f.tell() < size:
        f.write(f"2026-11-23 10:{i // 600 % 60:02d}:{i // 10 % 60:02d}.{i % 10}00 heater.{i % 12 + 1}"
                f" {1500 + i % 7} ready=1 carrierControlPres={3000 + i % 13}\n")
        i += 1
    f.truncate(size)
EOF
# A data file: scans of (time, ion count, 200 mass/intensity pairs) with noisy intensities.
"$PY" - "$WORK/root/Data/field.vxs" "$BYTES" <<'EOF'
import random, struct, sys
random.seed(7)
size, out, scan = int(sys.argv[2]), bytearray(b"VXS1"), 0
while len(out) < size:
    pairs = [(40 + k, max(0, int(1000 * (1 + (k % 17 == 0) * 20) * random.random()))) for k in range(200)]
    out += struct.pack("<fI", scan * 0.25, sum(p[1] for p in pairs) & 0xFFFFFFFF)
    out += b"".join(struct.pack("<HH", m, min(a, 65535)) for m, a in pairs)
    scan += 1
open(sys.argv[1], "wb").write(out[:size])
EOF
head -c "$BYTES" /dev/urandom >"$WORK/root/Data/field.bin"

in_ns "$BIN/vexa-sim" --root "$WORK/root" --address "$ADDRESS" >"$WORK/sim.log" 2>&1 &
in_ns "$PY" - "$ADDRESS" "$FTP_PORT" "$WORK/root" >"$WORK/ftp.log" 2>&1 <<'EOF' &
import sys
from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer
authorizer = DummyAuthorizer()
authorizer.add_anonymous(sys.argv[3], perm="elr")
FTPHandler.authorizer = authorizer
FTPServer((sys.argv[1], int(sys.argv[2])), FTPHandler).serve_forever()
EOF
sleep 1

seconds() {
    local start end
    start=$(date +%s.%N)
    in_ns "$@" >/dev/null 2>&1 || { echo "failed: $*" >&2; return 1; }
    end=$(date +%s.%N)
    echo "$end - $start" | bc -l
}
median() { printf '%s\n' "$@" | sort -g | sed -n "$(((${#@} + 1) / 2))p"; }
measure() {
    local times=() i
    for ((i = 0; i < ROUNDS; ++i)); do times+=("$(seconds "$@")"); done
    median "${times[@]}"
}

echo "$MB MB over a $RATE loopback (MTU 1500), median of $ROUNDS"
printf '%-12s %10s %10s %8s\n' "file" "link (s)" "FTP (s)" "link/FTP"
for kind in log vxs bin; do
    name=field.$kind
    LINK=$(measure "$BIN/vexa" --quiet get --overwrite yes "@$ADDRESS:/Data/$name" "$WORK/pc/$name")
    cmp "$WORK/pc/$name" "$WORK/root/Data/$name"
    FTP=$(measure curl -s -o "$WORK/pc/ftp-$name" "ftp://$ADDRESS:$FTP_PORT/Data/$name")
    printf '%-12s %10.2f %10.2f %8.2f\n' "$name" "$LINK" "$FTP" "$(echo "$LINK / $FTP" | bc -l)"
done
