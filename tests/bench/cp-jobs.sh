#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Many small data files: `vexa cp -r` from the instrument over one link and over several at once. Each
# file costs the link's 0.5 s wait after it, so the time is about files x 0.5 s / links.
# Usage: tests/bench/cp-jobs.sh [files] [jobs...]   (200, then 1 and 4 by default)
# Environment: BUILD (the build folder, default build), VEXA_BENCH_ADDRESS (default 127.0.77.6).
set -euo pipefail

FILES=${1:-200}
shift || true
JOBS=("$@")
[ ${#JOBS[@]} -eq 0 ] && JOBS=(1 4)
HERE=$(cd "$(dirname "$0")/../.." && pwd)
BIN=${BUILD:-$HERE/build}/bin
ADDRESS=${VEXA_BENCH_ADDRESS:-127.0.77.6}

WORK=$(mktemp -d /tmp/vexa-cpjobs-XXXXXX)
SIM=
cleanup() {
    [ -n "$SIM" ] && kill "$SIM" 2>/dev/null
    wait 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT

mkdir -p "$WORK/root/Data/Runs"
for ((i = 0; i < FILES; ++i)); do
    head -c $((20000 + i * 37)) /dev/urandom >"$WORK/root/Data/Runs/run$i.vxs"
done
"$BIN/vexa-sim" --root "$WORK/root" --address "$ADDRESS" >"$WORK/sim.log" 2>&1 &
SIM=$!
sleep 1

echo "$FILES data files from the instrument"
for jobs in "${JOBS[@]}"; do
    start=$(date +%s.%N)
    VEXA_ACCESS=0,1 "$BIN/vexa" --quiet cp -r --jobs "$jobs" "@$ADDRESS:/Data/Runs" "$WORK/pc$jobs"
    end=$(date +%s.%N)
    diff -r "$WORK/root/Data/Runs" "$WORK/pc$jobs"
    printf 'jobs %2d: %7.2f s\n' "$jobs" "$(echo "$end - $start" | bc -l)"
done
