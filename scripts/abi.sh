#!/bin/sh
# abi.sh [OLD [NEW]]: compares the binary interface of the libraries of two commits: of the newest tag (without tags,
# of the commit before) with that of HEAD, unless said. Fails when a program that was built with the old ones may not
# run with the new ones; whether it really may not is for the reader of the report to judge. Builds stay in build/abi,
# by commit, and the reports beside them.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
old=$(git -C "$root" rev-parse --short "${1:-$(git -C "$root" describe --tags --abbrev=0 2>/dev/null || echo HEAD~1)}")
new=$(git -C "$root" rev-parse --short "${2:-HEAD}")
work=$root/build/abi

# Builds the libraries of a commit with the debug information that tells the types.
build_commit() {
    tree=$work/$1
    [ ! -f "$tree/.built" ] || return 0
    rm -rf "$tree"
    mkdir -p "$tree/source"
    git -C "$root" archive "$1" | tar -x -C "$tree/source"
    cmake -G Ninja -S "$tree/source" -B "$tree/build" -D CMAKE_BUILD_TYPE=Debug -D CMAKE_CXX_FLAGS_DEBUG='-g -O0' \
        -D ZORVAN_TESTS=OFF >"$tree/log"
    cmake --build "$tree/build" --parallel "$(nproc)" >>"$tree/log" || {
        tail -n 20 "$tree/log" >&2
        exit 1
    }
    : >"$tree/.built"
}

libraries_of() {
    find "$work/$1/build/zorvan" -name 'libzorvan-*.so' | sort
}

build_commit "$old"
build_commit "$new"
reports=$work/$old-$new
rm -rf "$reports"
mkdir -p "$reports"
failed=0
for library in $(libraries_of "$old"); do
    name=$(basename "$library" .so)
    other=$(libraries_of "$new" | grep "/$name[.]so$") || {
        echo "$name: GONE"
        failed=1
        continue
    }
    # What is new breaks no program that was there; of all else abidiff alone cannot tell.
    status=0
    abidiff --no-added-syms --suppressions "$root/scripts/abi.suppr" "$library" "$other" >"$reports/$name" 2>&1 ||
        status=$?
    if [ $((status & 3)) -ne 0 ]; then # of its own
        cat "$reports/$name" >&2
        exit 1
    elif [ "$status" -ne 0 ]; then
        echo "$name: CHANGED, see $reports/$name"
        failed=1
    else
        echo "$name: compatible"
    fi
done
exit $failed
