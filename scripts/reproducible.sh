#!/bin/sh
# reproducible.sh [TARGET...]: builds the libraries named, or all, of one commit twice, in two folders whose
# names differ in length, and compares them byte by byte. No cache of the compiler's takes part.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
[ $# -gt 0 ] || set -- all
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export CCACHE_DISABLE=1
SOURCE_DATE_EPOCH=$(git -C "$root" log -1 --format=%ct)
export SOURCE_DATE_EPOCH
for copy in "$work/a" "$work/another folder"; do
    mkdir -p "$copy"
    git -C "$root" archive HEAD | tar -x -C "$copy"
    cmake -S "$copy" -B "$copy/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DZORVAN_TESTS=OFF \
        -DCMAKE_BUILD_WITH_INSTALL_RPATH=ON >/dev/null
    cmake --build "$copy/build" --parallel "$(nproc)" --target "$@" -- --quiet >&2
done

differ=0
same=0
for library in $(cd "$work/a/build" && find . -name 'libzorvan-*.so.*.*.*' -type f | sort); do
    if cmp -s "$work/a/build/$library" "$work/another folder/build/$library"; then
        same=$((same + 1))
    else
        differ=$((differ + 1))
        echo "differs: $(basename "$library")"
    fi
done
echo "$(git -C "$root" rev-parse --short HEAD): $same libraries are the same byte by byte, $differ differ"
[ "$differ" = 0 ] && [ "$same" -gt 0 ]
