#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test (unit, integration, ui).
#   ./test.sh [CTEST ARGS...]   the normal build in build/
#   ./test.sh --sanitize        the unit and integration tests under ASan and UBSan, in build-asan/
#   ./test.sh --tsan            the threaded unit, integration and UI tests under ThreadSanitizer, in build-tsan/
#   ./test.sh --fuzz [SECONDS]  every fuzz target for SECONDS each (default 10), in build-fuzz/
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

vexa_install_missing
export QT_QPA_PLATFORM=offscreen

case ${1:-} in
--sanitize)
    shift
    vexa_build_sanitized build-asan
    vexa_sanitizer_options
    ctest --test-dir build-asan --output-on-failure -j"${VEXA_TEST_JOBS:-2}" -L 'unit|integration' "$@"
    ;;
--tsan)
    shift
    start=$SECONDS
    vexa_build_tsan build-tsan
    vexa_tsan_options
    tests=$(IFS='|'; echo "${VEXA_TSAN_TESTS[*]}")
    ctest --test-dir build-tsan --output-on-failure -j"${VEXA_TEST_JOBS:-2}" -R "^($tests)\$" "$@"
    echo "ThreadSanitizer pass: $((SECONDS - start)) s"
    ;;
--fuzz)
    exec tests/fuzz/run.sh "${2:-10}"
    ;;
*)
    # shellcheck disable=SC2046
    vexa_build build $(vexa_cache_launcher)
    ctest --test-dir build --output-on-failure -j"${VEXA_TEST_JOBS:-2}" "$@"
    ;;
esac
