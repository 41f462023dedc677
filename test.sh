#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs what is missing, builds, and runs every test (unit, integration, ui).
#   ./test.sh [CTEST ARGS...]   the normal build in build/
#   ./test.sh --sanitize        the unit and integration tests under ASan and UBSan, in build-asan/
#   ./test.sh --tsan            the threaded unit, integration and UI tests under ThreadSanitizer, in build-tsan/
#   ./test.sh --fuzz [SECONDS]  every fuzz target for SECONDS each (default 10), in build-fuzz/
#   ./test.sh --windows         the Windows build (MinGW-w64) in build-windows/, its tests under Wine
set -euo pipefail
cd "$(dirname "$0")"
# The integration and UI tests run real simulators, sockets and clocks on a shared machine: a test
# that fails is run once more, so a scheduling hiccup is told from a fault. Both attempts are printed.
VEXA_CTEST_RETRY=(--repeat until-pass:2)
. scripts/common.sh

vexa_install_missing
export QT_QPA_PLATFORM=offscreen

case ${1:-} in
--sanitize)
    shift
    vexa_build_sanitized build-asan
    vexa_sanitizer_options
    ctest --test-dir build-asan --output-on-failure "${VEXA_CTEST_RETRY[@]}" -j"${VEXA_TEST_JOBS:-2}" -L 'unit|integration' "$@"
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
--windows)
    shift
    vexa_install_missing "${VEXA_WINDOWS_PACKAGES[@]}"
    # The simulator and the CLI's integration tests run natively, from the Linux build.
    # shellcheck disable=SC2046
    cmake -G Ninja -S . -B build -DCMAKE_BUILD_TYPE="${VEXA_BUILD_TYPE:-RelWithDebInfo}" $(vexa_cache_launcher) >/dev/null
    cmake --build build -j"$(nproc)" --target vexa-sim cli_link_commands_test cli_backup_test \
        fileaccess_cli_test fileaccess_cli_ftp_test status_integration
    vexa_build_windows build-windows build
    # Wine makes its prefix on the first start: once here, not by two tests at once.
    build-windows/run-wine.sh build-windows/bin/vexa.exe --version >/dev/null
    ctest --test-dir build-windows --output-on-failure "${VEXA_CTEST_RETRY[@]}" -j"${VEXA_TEST_JOBS:-2}" "$@"
    ;;
*)
    # shellcheck disable=SC2046
    vexa_build build $(vexa_cache_launcher)
    ctest --test-dir build --output-on-failure "${VEXA_CTEST_RETRY[@]}" -j"${VEXA_TEST_JOBS:-2}" "$@"
    ;;
esac
