#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# A `vexa get` of random bytes over a slow field link (a network namespace whose loopback is limited
# by a token bucket, as field-link.sh) that goes down twice during the copy (the simulator's outage
# fault: every connection closed, new ones refused). Prints the copy's time against the same copy
# without outages and checks the bytes. Needs root (ip netns, tc).
# Usage: tests/bench/reconnect/outage-copy.sh [MB] [rate] [outage ms] [first at ms] [second at ms]
#        (50, 20mbit, 5000, 8000 and 30000 by default)
# Environment: BUILD (the build folder, default build).
set -euo pipefail

MB=${1:-50}
RATE=${2:-20mbit}
OUTAGE=${3:-5000}
FIRST=${4:-8000}
SECOND=${5:-30000}
HERE=$(cd "$(dirname "$0")/../../.." && pwd)
BIN=${BUILD:-$HERE/build}/bin
NS=vexa-outage-$$
ADDRESS=127.0.78.1
WORK=$(mktemp -d /tmp/vexa-outage-XXXXXX)

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
head -c $((MB * 1000 * 1000)) /dev/urandom >"$WORK/root/Data/field.bin"

# Ends whatever runs in the namespace (ip netns exec may keep its own process above the simulator).
stop_sim() {
    ip netns pids "$NS" 2>/dev/null | xargs -r kill 2>/dev/null || true
    while [ -n "$(ip netns pids "$NS" 2>/dev/null)" ]; do sleep 0.1; done
}

# One copy against a simulator started just before it (its outages count from its start).
copy() {
    in_ns "$BIN/vexa-sim" --root "$WORK/root" --address "$ADDRESS" "$@" >"$WORK/sim.log" 2>&1 &
    sleep 0.3
    local start end
    start=$(date +%s.%N)
    in_ns "$BIN/vexa" get --overwrite yes "@$ADDRESS:/Data/field.bin" "$WORK/pc/field.bin" 2>"$WORK/vexa.log" ||
        { echo "the copy failed:" >&2; cat "$WORK/vexa.log" >&2; stop_sim; return 1; }
    end=$(date +%s.%N)
    stop_sim
    cmp "$WORK/pc/field.bin" "$WORK/root/Data/field.bin"
    rm -f "$WORK/pc/field.bin"
    echo "$end - $start" | bc -l
}

echo "$MB MB of random bytes over a $RATE loopback (MTU 1500)"
CLEAN=$(copy)
printf 'without outages:            %7.1f s\n' "$CLEAN"
CUT=$(copy --fault "outage=$FIRST:$OUTAGE" --fault "outage=$SECOND:$OUTAGE")
printf 'two outages of %5d ms:    %7.1f s (the right bytes)\n' "$OUTAGE" "$CUT"
grep -o 'link lost.*' "$WORK/vexa.log" | sed 's/^/    /' || true
