# Shared by run.sh and test.sh: install what is missing (Debian packages only), configure and build.
# shellcheck shell=bash

VEXA_PACKAGES=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev libgl-dev
    zlib1g-dev libcurl4-openssl-dev libarchive-dev nlohmann-json3-dev libcli11-dev
    libgtest-dev libgmock-dev
    python3 python3-pyftpdlib
    xvfb xauth binutils-mingw-w64-x86-64 binutils-mingw-w64-i686 poppler-utils
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
    cmake -G Ninja -S . -B "$build_dir" -DCMAKE_BUILD_TYPE="${VEXA_BUILD_TYPE:-RelWithDebInfo}" >/dev/null
    cmake --build "$build_dir" -j"$(nproc)"
}
