#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test (unit, integration, ui).
set -euo pipefail
cd "$(dirname "$0")"
. scripts/common.sh

vexa_install_missing
vexa_build build

export QT_QPA_PLATFORM=offscreen
ctest --test-dir build --output-on-failure -j"${VEXA_TEST_JOBS:-2}" "$@"
