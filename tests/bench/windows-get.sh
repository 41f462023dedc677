#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# `vexa.exe get` under Wine next to the Linux `vexa get`, of the same file from one simulator, in one
# run. Wine's overhead is information, not a goal. The machine is shared: compare figures of one run.
# Usage: tests/bench/windows-get.sh [MiB]   (256 by default)
# Environment: BUILD (default build) and WINDOWS_BUILD (default build-windows), VEXA_BENCH_ADDRESS
# (default 127.0.78.1), VEXA_BENCH_DIR (default /tmp).
set -euo pipefail

MIB=${1:-256}
HERE=$(cd "$(dirname "$0")/../.." && pwd)
BIN=${BUILD:-$HERE/build}/bin
WIN=${WINDOWS_BUILD:-$HERE/build-windows}
ADDRESS=${VEXA_BENCH_ADDRESS:-127.0.78.1}

WORK=$(mktemp -d "${VEXA_BENCH_DIR:-/tmp}/vexa-bench-XXXXXX")
SIM=
cleanup() {
    [ -z "$SIM" ] || kill "$SIM" 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT

mkdir -p "$WORK/root/Data"
head -c "$((MIB * 1024 * 1024))" /dev/urandom >"$WORK/root/Data/bench.bin"
"$BIN/vexa-sim" --root "$WORK/root" --address "$ADDRESS" >"$WORK/sim.log" 2>&1 &
SIM=$!
sleep 1
"$WIN/run-wine.sh" "$WIN/bin/vexa.exe" --version >/dev/null # the Wine prefix's first start

seconds() {
    local start end
    start=$(date +%s.%N)
    "$@" >/dev/null
    end=$(date +%s.%N)
    awk -v a="$start" -v b="$end" 'BEGIN { print b - a }'
}
linux=$(seconds "$BIN/vexa" -q get "@$ADDRESS:/Data/bench.bin" "$WORK/linux.bin")
wine=$(seconds "$WIN/run-wine.sh" "$WIN/bin/vexa.exe" -q get "@$ADDRESS:/Data/bench.bin" "$WORK/wine.bin")
cmp "$WORK/root/Data/bench.bin" "$WORK/linux.bin"
cmp "$WORK/root/Data/bench.bin" "$WORK/wine.bin"
printf 'get %d MiB: Linux vexa %.2f s, vexa.exe under Wine %.2f s\n' "$MIB" "$linux" "$wine"
