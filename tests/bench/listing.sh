#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# `vexa ls` of a large instrument folder over the link (ENTRIES files plus the way up), the whole
# command from start to exit: connecting, the simulator's listing, the transfer and printing. Median of
# ROUNDS runs.
# Usage: tests/bench/listing.sh [entries] [rounds]   (10000 and 5 by default)
# Environment: BUILD (the build folder, default build), VEXA_BENCH_ADDRESS (default 127.0.77.5).
set -euo pipefail

ENTRIES=${1:-10000}
ROUNDS=${2:-5}
HERE=$(cd "$(dirname "$0")/../.." && pwd)
BIN=${BUILD:-$HERE/build}/bin
ADDRESS=${VEXA_BENCH_ADDRESS:-127.0.77.5}

WORK=$(mktemp -d /tmp/vexa-listing-XXXXXX)
SIM=
cleanup() {
    [ -n "$SIM" ] && kill "$SIM" 2>/dev/null
    wait 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT

mkdir -p "$WORK/root/Many"
(cd "$WORK/root/Many" && seq -f 'entry%g.mth' 0 $((ENTRIES - 1)) | xargs touch)
"$BIN/vexa-sim" --root "$WORK/root" --address "$ADDRESS" >"$WORK/sim.log" 2>&1 &
SIM=$!
sleep 1

times=()
for ((i = 0; i < ROUNDS; ++i)); do
    start=$(date +%s%N)
    lines=$("$BIN/vexa" ls "@$ADDRESS:/Many" | wc -l)
    times+=($((($(date +%s%N) - start) / 1000000)))
done
median=$(printf '%s\n' "${times[@]}" | sort -n | sed -n "$(((ROUNDS + 1) / 2))p")
echo "vexa ls of $lines entries: median $median ms of $ROUNDS (${times[*]})"
