#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Puts the licence line at the top of every source file that lacks it (after a shebang, an XML
# declaration or a man page's title, which must stay first). Running it twice changes nothing.
#   scripts/spdx-headers.sh          add the line where it is missing
#   scripts/spdx-headers.sh --check  change nothing; list the files without it and fail if there are any
set -euo pipefail
cd "${VEXA_SOURCE_DIR:-$(dirname "$0")/..}"

readonly tag='SPDX-License-Identifier: Apache-2.0'
check=0
[ "${1:-}" = --check ] && check=1

# The comment that carries the line, by file name; empty for files that take none.
comment_for() {
    case $1 in
    *.cpp | *.h | *.c | *.rc | *.h.in) echo "// $tag" ;;
    CMakeLists.txt | */CMakeLists.txt | *.cmake | *.sh | *.py | *.desktop | */bash-completion/*) echo "# $tag" ;;
    *.ui | *.qrc | *.xml | *.xml.in) echo "<!-- $tag -->" ;;
    *.scd) echo "; $tag" ;;
    *) ;;
    esac
}

source_files() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files -z --cached --others --exclude-standard
    else
        find . -path './build*' -prune -o -type f -print0 | sed -z 's|^\./||'
    fi
}

# A file has the line when one of its first three lines holds it.
has_tag() {
    head -n 3 -- "$1" | grep -qF "$tag"
}

missing=()
while IFS= read -r -d '' file; do
    [ -f "$file" ] || continue
    line=$(comment_for "$file")
    [ -n "$line" ] || continue
    has_tag "$file" && continue
    if [ $check -eq 1 ]; then
        missing+=("$file")
        continue
    fi
    first=$(head -n 1 -- "$file")
    tmp=$(mktemp "$file.XXXXXX")
    case $first in
    '#!'* | '<?xml'* | *'('[1-9]')') { printf '%s\n%s\n' "$first" "$line"; tail -n +2 -- "$file"; } >"$tmp" ;;
    *) { printf '%s\n' "$line"; cat -- "$file"; } >"$tmp" ;;
    esac
    chmod --reference="$file" "$tmp"
    mv -- "$tmp" "$file"
    echo "added: $file"
done < <(source_files)

if [ ${#missing[@]} -gt 0 ]; then
    echo "These files lack '$tag' at the top (run scripts/spdx-headers.sh):" >&2
    printf '  %s\n' "${missing[@]}" >&2
    exit 1
fi
