# Shared by run.sh and test.sh: install what is missing (Debian packages only), configure and build.
# shellcheck shell=bash

VEXA_PACKAGES=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev libgl-dev
    zlib1g-dev libcurl4-openssl-dev libarchive-dev nlohmann-json3-dev libcli11-dev
    libgtest-dev libgmock-dev
    libnetcdf-dev
    python3 python3-pyftpdlib python3-scipy
    xvfb xauth binutils-mingw-w64-x86-64 binutils-mingw-w64-i686 poppler-utils
    clang-14 libclang-rt-14-dev
    scdoc file lintian desktop-file-utils appstream
)

vexa_install_missing() {
    local missing=()
    for p in "${VEXA_PACKAGES[@]}"; do
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

# Any sanitizer report fails the run at once, with the stack that led to it.
vexa_sanitizer_options() {
    export ASAN_OPTIONS=${ASAN_OPTIONS:-abort_on_error=1:detect_leaks=1:strict_string_checks=1}
    export UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
}
