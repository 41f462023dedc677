#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The load test for a whole minute (CTest runs it for a few seconds). Needs a built tree: ./test.sh
# first, or BUILD=build-asan to run it under the sanitizers.
set -euo pipefail
cd "$(dirname "$0")/../../.."
VEXA_LOAD_SECONDS=${VEXA_LOAD_SECONDS:-60} ctest --test-dir "${BUILD:-build}" -R '^load_test$' \
    --output-on-failure -V
