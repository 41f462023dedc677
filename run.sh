#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs what is missing, builds, starts the instrument simulator on its demo tree and opens the
# studio on it. Without a display it shows what the command-line tool sees of the instrument instead.
# Options: --address A (default 127.0.0.1), --fresh (start from a clean copy of the demo tree).
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

address=127.0.0.1
fresh=0
while [ $# -gt 0 ]; do
    case $1 in
        --address) address=$2; shift 2 ;;
        --fresh) fresh=1; shift ;;
        *) echo "usage: ./run.sh [--address 127.x.y.z] [--fresh]" >&2; exit 2 ;;
    esac
done

vexa_install_missing
vexa_build build
bin=$PWD/build/bin

# The simulator serves a working copy of the demo tree, so what you change stays out of the sources.
root=$PWD/build/demo-instrument
if [ $fresh -eq 1 ] || [ ! -d "$root" ]; then
    rm -rf "$root"
    cp -a tools/vexa-sim/demo "$root"
fi

# Acquisitions run twenty times faster than their methods say: the demo method takes 36 s.
"$bin/vexa-sim" --root "$root" --address "$address" --time-scale 20 >build/vexa-sim.log 2>&1 &
sim=$!
# The simulator goes with this script, however it ends.
trap 'kill $sim 2>/dev/null; wait $sim 2>/dev/null || true' EXIT
trap 'exit 130' INT TERM
for _ in $(seq 50); do
    "$bin/vexa" --quiet ping "$address" >/dev/null 2>&1 && break
    kill -0 $sim 2>/dev/null || { echo "the simulator did not start:"; cat build/vexa-sim.log; exit 1; }
    sleep 0.1
done
echo "Simulator: serving $root on $address:4840 (log: build/vexa-sim.log)"

if [ -x "$bin/vexa-studio" ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    echo "Opening the studio with the instrument $address on line; close it to stop the simulator."
    "$bin/vexa-studio" --instrument "$address"
    exit 0
fi

[ -x "$bin/vexa-studio" ] && echo "No display: here is what the command-line tool sees of the instrument."
set -x
"$bin/vexa" ping "$address"
for cmd in "ls @$address:/" "ls @$address:/Data" "status $address"; do
    # shellcheck disable=SC2086
    "$bin/vexa" $cmd 2>/dev/null || true
done
