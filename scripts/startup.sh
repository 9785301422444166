#!/bin/sh
# startup.sh: what linking with the library costs a program: for each component, and for all of them, how many
# libraries the loader opens and how long an empty program takes from start to end, beside an empty program alone
# and one that has Qt6Core; then how long the compiler takes to read the header of each family, without optimising.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$root/build/release" --prefix "$work/prefix" >/dev/null
pc=$(dirname "$(find "$work/prefix" -name zorvan.pc)")
export PKG_CONFIG_PATH="$pc"
export LD_LIBRARY_PATH="${pc%/pkgconfig}"
compiler=${CXX:-g++}
echo 'int main() {}' >"$work/empty.cpp"

# The mean of ten starts in ms, of the quickest of eleven tries, since whatever disturbs only adds.
milliseconds() {
    for _ in 1 2 3 4 5 6 7 8 9 10 11; do
        begin=$(date +%s%N)
        for _ in 1 2 3 4 5 6 7 8 9 10; do "$1"; done
        echo $((($(date +%s%N) - begin) / 10000))
    done | sort -n | awk 'NR == 1 { printf "%.2f", $1 / 1000 }'
}

row() { # NAME [PACKAGE]
    flags=
    [ $# -eq 1 ] || flags=$(pkg-config --libs "$2")
    # shellcheck disable=SC2086 # the flags are words of their own
    "$compiler" "$work/empty.cpp" -o "$work/program" -Wl,--no-as-needed $flags
    printf '%-32s %9d %8s\n' "$1" "$(ldd "$work/program" | grep -c '=>')" "$(milliseconds "$work/program")"
}

printf '%-32s %9s %8s\n' 'program linked with' libraries ms
row 'nothing'
! pkg-config --exists Qt6Core || row Qt6Core Qt6Core
for file in "$pc"/zorvan-*.pc; do
    name=$(basename "$file" .pc)
    row "$name" "$name"
done
row 'all but what is apart' zorvan

printf '\n%-32s %8s\n' 'header' seconds
for header in "$work"/prefix/include/zorvan/*.h; do
    name=zorvan/$(basename "$header")
    echo "#include <$name>" >"$work/header.cpp"
    for _ in 1 2 3 4 5; do
        begin=$(date +%s%N)
        "$compiler" -std=c++20 -O0 -I"$work/prefix/include" -c "$work/header.cpp" -o "$work/header.o"
        echo $(($(date +%s%N) - begin))
    done | sort -n | awk -v name="$name" 'NR == 1 { printf "%-32s %8.2f\n", name, $1 / 1e9 }'
done
