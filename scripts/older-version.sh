#!/bin/sh
# older-version.sh [COMMIT]: builds the stores of settings and secrets as they were at a commit, by default of the
# newest tag, else of the commit that last changed the number of a format; and with them the program that the trials
# of two versions run, whose path it prints. Builds stay in build/versions, by commit.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
stores='zorvan/platform/settingsdatabase zorvan/platform/security'
numbers='(formatVersion|int version) = [0-9]+'

# The numbers of the formats at a commit.
formats_at() {
    # shellcheck disable=SC2086 # the folders are words of their own
    git grep -hoE "$numbers" "$1" -- $stores 2>/dev/null | sort
}

last_change_of_format() {
    # shellcheck disable=SC2086
    for commit in $(git log --format=%h -G"$numbers" --extended-regexp -- $stores); do
        [ "$(formats_at "$commit")" = "$(formats_at "$commit~1")" ] || { echo "$commit"; return; }
    done
}

commit=${1:-$(git describe --tags --abbrev=0 2>/dev/null || last_change_of_format)}
commit=$(git rev-parse --short "$commit^{commit}")
tree=$root/build/versions/$commit
if [ ! -f "$tree/.built" ]; then
    rm -rf "$tree"
    mkdir -p "$tree/source"
    git archive "$commit" | tar -x -C "$tree/source"
    cmake -G Ninja -S "$tree/source" -B "$tree/build" -D CMAKE_BUILD_TYPE=Release -D ZORVAN_TESTS=OFF >"$tree/log"
    cmake --build "$tree/build" --target Security SettingsDatabase --parallel "$(nproc)" >>"$tree/log" || {
        tail -n 20 "$tree/log" >&2
        exit 1
    }
    : >"$tree/.built"
fi
# With the libraries of that commit, and what its headers say; the program is of today.
set --
# shellcheck disable=SC2044 # no name there has a space
for library in $(find "$tree/build/zorvan" -name 'libzorvan-*.so'); do
    set -- "$@" "$library" "-Wl,-rpath,$(dirname "$library")"
done
c++ -std=c++20 -O1 -I "$tree/source" -I "$tree/build/include" tests/trials/versionsPeer.cpp "$@" -o "$tree/versions-peer"
echo "The older version is that of $(git log -1 --format='%h, %cs' "$commit")." >&2
echo "$tree/versions-peer"
