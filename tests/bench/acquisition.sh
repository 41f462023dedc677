#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# An acquisition of the demo method at --time-scale 20: how long after its processTotal the data file
# is announced (`vexa method run --wait` returns with its path). Goal: within 1 s.
# Usage: tests/bench/acquisition.sh   Environment: BUILD (default build), VEXA_BENCH_ADDRESS.
set -euo pipefail
HERE=$(cd "$(dirname "$0")/../.." && pwd)
BIN=${BUILD:-$HERE/build}/bin
ADDRESS=${VEXA_BENCH_ADDRESS:-127.0.77.6}
WORK=$(mktemp -d /tmp/vexa-acquisition-XXXXXX)
SIM=
cleanup() {
    [ -n "$SIM" ] && kill "$SIM" 2>/dev/null
    wait 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT
cp -a "$HERE/tools/vexa-sim/demo" "$WORK/root"
"$BIN/vexa-sim" --root "$WORK/root" --address "$ADDRESS" --time-scale 20 >"$WORK/sim.log" 2>&1 &
SIM=$!
for _ in $(seq 50); do "$BIN/vexa" --quiet ping "$ADDRESS" >/dev/null 2>&1 && break; sleep 0.1; done

start=$(date +%s.%N)
file=$("$BIN/vexa" --quiet method run --wait "@$ADDRESS:/Method/Default.mth")
end=$(date +%s.%N)
total=$(python3 -c 'import json; m=json.load(open("'"$WORK"'/root/Method/Default.mth")); e=m["events"]; print(((e[-1]["time"]-e[1]["time"])/1000)/20)')
echo "file: $file ($(stat -c %s "$WORK/root${file#@"$ADDRESS":}") bytes)"
python3 -c "t=$end-$start; print(f'run took {t:.2f} s for a processTotal of $total s: {t-$total:+.2f} s (goal <= 1 s, polling every 0.5 s included)')"
