# SPDX-License-Identifier: Apache-2.0
# Shared by run.sh and test.sh: install what is missing (Debian packages only), configure and build.
# shellcheck shell=bash

VEXA_PACKAGES=(
    build-essential cmake ninja-build pkg-config ccache
    qt6-base-dev libgl-dev
    zlib1g-dev libcurl4-openssl-dev libarchive-dev nlohmann-json3-dev libcli11-dev
    libgtest-dev libgmock-dev
    libnetcdf-dev
    python3 python3-pyftpdlib python3-scipy
    xvfb xauth binutils-mingw-w64-x86-64 binutils-mingw-w64-i686 poppler-utils
    clang-14 libclang-rt-14-dev
    scdoc file lintian desktop-file-utils appstream
)

# The Windows build (test.sh --windows): the MinGW-w64 cross compiler with POSIX threads, zlib for it,
# the GoogleTest sources to build with it, and Wine to run the programs.
VEXA_WINDOWS_PACKAGES=(
    g++-mingw-w64-x86-64-posix libz-mingw-w64-dev googletest wine64
)

# vexa_install_missing [PACKAGE...]: the given packages, or VEXA_PACKAGES.
vexa_install_missing() {
    local wanted=("$@")
    [ ${#wanted[@]} -gt 0 ] || wanted=("${VEXA_PACKAGES[@]}")
    local missing=()
    for p in "${wanted[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    echo "Installing: ${missing[*]}"
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    export DEBIAN_FRONTEND=noninteractive
    "${sudo[@]}" apt-get update -qq
    "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

vexa_build() {
    local build_dir=$1
    shift
    cmake -G Ninja -S . -B "$build_dir" -DCMAKE_BUILD_TYPE="${VEXA_BUILD_TYPE:-RelWithDebInfo}" "$@" >/dev/null
    cmake --build "$build_dir" -j"$(nproc)"
}

# Paths in the cache are taken relative to the checkout, so a fresh clone on the same machine (CI's)
# finds what an earlier build of the same sources compiled.
if command -v ccache >/dev/null; then
    export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$PWD} CCACHE_NOHASHDIR=${CCACHE_NOHASHDIR:-1}
fi

# Compiles through ccache when it is installed: the sanitizer and fuzz trees are extra builds of the
# same sources, and a CI machine keeps its cache between runs.
vexa_cache_launcher() {
    if command -v ccache >/dev/null; then
        echo "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache"
    fi
}

# The unit and integration tests under AddressSanitizer and UndefinedBehaviorSanitizer. The Qt parts
# are left out: their tests drive widgets, not the code that takes bytes from outside.
# -O1 with line tables only: what the sanitizers advise, half the compile time of -O2 -g, and the
# assertions stay on.
vexa_build_sanitized() {
    # shellcheck disable=SC2046
    vexa_build "$1" -DVEXA_SANITIZE=ON -DVEXA_BUILD_UI=OFF -DVEXA_BUILD_BENCH=OFF $(vexa_cache_launcher) \
        "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1" "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O1 -g1"
}

# The libFuzzer targets of tests/fuzz, built with clang in a tree of their own.
vexa_build_fuzzers() {
    local build_dir=$1
    # shellcheck disable=SC2046
    cmake -G Ninja -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo $(vexa_cache_launcher) \
        -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
        "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1" "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O1 -g1" \
        -DVEXA_FUZZ=ON -DVEXA_BUILD_UI=OFF -DVEXA_BUILD_TESTS=OFF >/dev/null
    cmake --build "$build_dir" -j"$(nproc)" --target vexa_fuzzers
}

# The tests whose code runs on several threads at once (the pollers, reconnection, the copy worker,
# the link's locks, the CLI's copy lanes), under ThreadSanitizer in a tree of their own. Only these
# are built there, at -O1 with line tables, to keep the pass short.
VEXA_TSAN_TESTS=(
    hostcore_sensor_test hostcore_pumpwait_test hostcore_settings_test hostcore_files_test sensor_link_test
    status_integration load_test fileaccess_cli_test
    hostui_filecopy hostui_threads filemanager_dialog_test studio_test
)

vexa_build_tsan() {
    local build_dir=$1
    # shellcheck disable=SC2046
    cmake -G Ninja -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVEXA_TSAN=ON -DVEXA_BUILD_BENCH=OFF \
        $(vexa_cache_launcher) "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1" "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O1 -g1" \
        >/dev/null
    cmake --build "$build_dir" -j"$(nproc)" --target "${VEXA_TSAN_TESTS[@]}" vexa vexa-sim VexaSens
}

# A ThreadSanitizer report fails the test at once; tests/tsan.supp holds Qt's own internals only.
vexa_tsan_options() {
    export TSAN_OPTIONS=${TSAN_OPTIONS:-halt_on_error=1:second_deadlock_stack=1:suppressions=$PWD/tests/tsan.supp}
}

# Any sanitizer report fails the run at once, with the stack that led to it.
vexa_sanitizer_options() {
    export ASAN_OPTIONS=${ASAN_OPTIONS:-abort_on_error=1:detect_leaks=1:strict_string_checks=1}
    export UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
}

# The Windows build in its own tree: the libraries, vexa.exe and their tests, cross-compiled; ctest runs
# them under Wine. The CLI's integration tests are the native ones of the Linux build in "$2" (its
# simulator and test programs), run against vexa.exe.
vexa_build_windows() {
    local build_dir=$1 native_dir=$2
    # shellcheck disable=SC2046
    cmake -G Ninja -S . -B "$build_dir" -DCMAKE_BUILD_TYPE="${VEXA_BUILD_TYPE:-RelWithDebInfo}" \
        -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw64.cmake -DVEXA_NATIVE_BUILD_DIR="$(realpath "$native_dir")" \
        $(vexa_cache_launcher) >/dev/null
    cmake --build "$build_dir" -j"$(nproc)"
}
