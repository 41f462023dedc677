#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Regenerates the demo tree's data files (demo/Data) by acquiring them on the simulator itself: the
# demo methods run on a scratch copy of the demo tree with the demo mixture (demo/Lib/Mixture.json)
# and fixed seeds, a hundred times faster than they say, and are stopped part way; the files they
# write take the demo's names.
#   tools/vexa-sim/make-demo-data.sh [BIN_DIR]   (default: build/bin, with vexa-sim and vexa built)
set -euo pipefail
cd "$(dirname "$0")"
bin=$(cd "${1:-../../build/bin}" && pwd)
address=127.91.$((RANDOM % 200 + 20)).$((RANDOM % 200 + 20))
scratch=$(mktemp -d)
sim=
cleanup() {
    [ -n "$sim" ] && kill "$sim" 2>/dev/null && wait "$sim" 2>/dev/null
    rm -rf "$scratch"
}
trap cleanup EXIT
cp -a demo "$scratch/root"
rm -f "$scratch"/root/Data/*

# One acquisition: METHOD SEED NAME [STOP_AFTER_SECONDS]; a stopped run keeps the scans so far.
acquire() {
    local method=$1 seed=$2 name=$3 stop=${4:-}
    "$bin/vexa-sim" --root "$scratch/root" --address "$address" --time-scale 100 --seed "$seed" \
        >"$scratch/sim.log" 2>&1 &
    sim=$!
    for _ in $(seq 50); do
        "$bin/vexa" --quiet ping "$address" >/dev/null 2>&1 && break
        sleep 0.1
    done
    local file
    if [ -n "$stop" ]; then
        "$bin/vexa" --quiet method run "@$address:$method"
        sleep "$stop"
        "$bin/vexa" --quiet method stop "$address"
        for _ in $(seq 100); do
            file=$(ls "$scratch"/root/Data/Run*.vxs 2>/dev/null | head -1) || true
            [ -n "$file" ] && break
            sleep 0.1
        done
    else
        file=$(cd "$scratch/root" && "$bin/vexa" --quiet method run --wait "@$address:$method")
        file=$scratch/root${file#@"$address":}
    fi
    kill "$sim" && wait "$sim" 2>/dev/null || true
    sim=
    case $name in
        *.vxz) python3 -c 'import sys, zlib; sys.stdout.buffer.write(zlib.compress(open(sys.argv[1], "rb").read(), 9))' \
                   "$file" >"demo/Data/$name" ;;
        *) cp "$file" "demo/Data/$name" ;;
    esac
    rm -f "$scratch"/root/Data/*
    echo "demo/Data/$name: $(stat -c %s "demo/Data/$name") bytes from $method"
}

rm -f demo/Data/*
# Stopped runs keep the tree small (every backup and copy test moves it): about 200, 30, 45 and 100 s
# of the methods, Run007 with the first half-dozen compounds.
acquire /Method/Default.mth 1 Run007.vxs 2.0
acquire /Method/Default.mth 2 run1.vxs 0.3
acquire /Method/Default.mth 3 run2.vxs 0.45
acquire /Method/Survey.mth 4 Survey001.vxz 1.0
