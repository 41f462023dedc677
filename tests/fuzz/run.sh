#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs every fuzz target for SECONDS each (default 60) from its checked-in seeds and says how many
# inputs each tried. New inputs the fuzzer finds interesting go to build-fuzz/corpus/<target>/ (kept
# between runs, never into the sources); an input that crashes a target is kept in build-fuzz/findings/
# and fails the run.
#   tests/fuzz/run.sh [SECONDS] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/../.."
. scripts/common.sh

seconds=${1:-60}
shift || true
vexa_build_fuzzers build-fuzz

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for binary in build-fuzz/fuzz/fuzz_*; do
        targets+=("$(basename "$binary")")
    done
fi

findings=build-fuzz/findings
mkdir -p "$findings"
failed=0
for target in "${targets[@]}"; do
    work=build-fuzz/corpus/$target
    log=$findings/$target.log
    mkdir -p "$work"
    # Each input gets 10 s; the targets print little, and the fuzzer keeps its own report channel.
    if ! "build-fuzz/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -close_fd_mask=3 -print_final_stats=1 -artifact_prefix="$findings/$target-" \
        "$work" "tests/fuzz/corpus/$target" >"$log" 2>&1; then
        tail -n 60 "$log"
        echo "fuzz: $target FAILED (input kept in $findings/)"
        failed=1
    fi
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    printf 'fuzz: %-22s %10s inputs in %ss\n' "$target" "${runs:-?}" "$seconds"
done
exit $failed
