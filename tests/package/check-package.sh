#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the Debian package of a built tree and checks it the way a user meets it: unpacked into a
# fresh root, every program finds its libraries and prints its version, the simulator serves its
# installed demo instrument to the installed vexa, and the desktop data and lintian find no error.
#   tests/package/check-package.sh BUILD_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
work=$(mktemp -d)
sim=""
cleanup() {
    [ -n "$sim" ] && kill "$sim" 2>/dev/null && wait "$sim" 2>/dev/null
    rm -rf "$work"
}
trap cleanup EXIT
fail() {
    echo "FAIL: $*" >&2
    exit 1
}

(cd "$build" && cpack -G DEB -B "$work/out" -D CPACK_OUTPUT_FILE_PREFIX="$work/out" >"$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; fail "cpack"; }
deb=$work/out/vexasens_${version}_amd64.deb
[ -f "$deb" ] || fail "no $(basename "$deb"); cpack made: $(ls "$work/out")"
depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
for library in libc6 libstdc++6 libqt6widgets6 libcurl4 libarchive13 zlib1g; do
    [[ $depends == *"$library "* || $depends == *"$library," || $depends == *"$library" ]] ||
        fail "Depends lacks $library"
done

root=$work/root
dpkg -x "$deb" "$root"
usr=$root/usr
for path in bin/vexa bin/vexa-sim bin/vexa-studio lib/vexa-studio/plugins/VexaSens.sdll \
    share/vexa-sim/demo/Method share/man/man1/vexa.1.gz share/man/man1/vexa-sim.1.gz \
    share/man/man1/vexa-studio.1.gz share/bash-completion/completions/vexa \
    share/applications/org.vexasens.VexaStudio.desktop share/metainfo/org.vexasens.VexaStudio.metainfo.xml \
    share/icons/hicolor/scalable/apps/org.vexasens.VexaStudio.svg \
    share/icons/hicolor/256x256/apps/org.vexasens.VexaStudio.png share/doc/vexasens/copyright; do
    [ -e "$usr/$path" ] || fail "the package lacks /usr/$path"
done
if [ -f "$build/bin/plugins/DefaultMethods.ddll" ]; then
    [ -f "$usr/lib/vexa-studio/plugins/DefaultMethods.ddll" ] || fail "the .ddll modules are not beside the plug-in"
fi

for program in vexa vexa-sim vexa-studio; do
    missing=$(ldd "$usr/bin/$program" | grep 'not found' || true)
    [ -z "$missing" ] || fail "$program: $missing"
done
for program in vexa vexa-sim vexa-studio; do
    out=$(QT_QPA_PLATFORM=offscreen "$usr/bin/$program" --version) || fail "$program --version failed"
    [[ $out == "$program $version"* ]] || fail "$program --version printed '$out'"
done

# The installed simulator finds its demo tree beside its bin folder and the installed vexa lists it.
address=127.$((RANDOM % 200 + 20)).$((RANDOM % 250 + 1)).$(($$ % 250 + 2))
XDG_DATA_HOME=$work/data "$usr/bin/vexa-sim" --demo --address "$address" >"$work/sim.log" 2>&1 &
sim=$!
for _ in $(seq 100); do
    "$usr/bin/vexa" --quiet ping "$address" >/dev/null 2>&1 && break
    kill -0 "$sim" 2>/dev/null || { cat "$work/sim.log"; fail "the installed simulator did not start"; }
    sleep 0.1
done
listing=$("$usr/bin/vexa" ls "@$address:/") || fail "vexa ls of the demo instrument failed"
[[ $listing == *Method* && $listing == *Data* ]] || fail "the demo instrument lists '$listing'"
[ -f "$work/data/vexa-sim/demo/hostname" ] || fail "--demo did not copy the demo tree"

desktop-file-validate "$usr/share/applications/org.vexasens.VexaStudio.desktop" || fail "desktop entry"
appstreamcli validate --no-net "$usr/share/metainfo/org.vexasens.VexaStudio.metainfo.xml" >"$work/as.log" 2>&1 ||
    { cat "$work/as.log"; fail "AppStream data"; }
if command -v lintian >/dev/null; then
    lintian --tag-display-limit 0 "$deb" >"$work/lintian.log" 2>&1 || true
    cat "$work/lintian.log"
    ! grep -q '^E: ' "$work/lintian.log" || fail "lintian found errors"
fi
echo "ok: $(basename "$deb") ($(du -k "$deb" | cut -f1) KiB)"
