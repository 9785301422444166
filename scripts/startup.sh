#!/bin/sh
# startup.sh: what linking with the library costs a program: for each component, and for all of them, how many
# libraries the loader opens and what processor time an empty program takes from start to end, beside an empty program
# alone and one that has Qt6Core; then what the compiler takes to read the header of each family, without optimising.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for component in core media playback development windows qt-models development-qt gtk-models development-gtk; do
    cmake --install "$root/build/release" --prefix "$work/prefix" --component "$component" >/dev/null
done
pc=$(dirname "$(find "$work/prefix" -name zorvan.pc)")
export PKG_CONFIG_PATH="$pc"
export LD_LIBRARY_PATH="${pc%/pkgconfig}"
compiler=${CXX:-g++}
echo 'int main() {}' >"$work/empty.cpp"

# cpu_time TIMES COMMAND...: the milliseconds of processor time of one run, in the mean; unlike time by the clock
# it hardly depends on what else the machine does.
cpu_time() {
    runs=$1
    shift
    (
        for _ in $(seq "$runs"); do "$@"; done
        times
    ) | tail -n 1 | awk -v runs="$runs" '
        { for (i = 1; i <= 2; ++i) { split($i, part, /[ms]/); total += 60 * part[1] + part[2] } }
        END { printf "%.2f", 1000 * total / runs }'
}

row() { # NAME [PACKAGE]
    flags=
    [ $# -eq 1 ] || flags=$(pkg-config --libs "$2")
    # shellcheck disable=SC2086 # the flags are words of their own
    "$compiler" "$work/empty.cpp" -o "$work/program" -Wl,--no-as-needed $flags
    printf '%-32s %9d %8s\n' "$1" "$(ldd "$work/program" | grep -c '=>')" "$(cpu_time 50 "$work/program")"
}

printf '%-32s %9s %8s\n' 'program linked with' libraries ms
row 'nothing'
! pkg-config --exists Qt6Core || row Qt6Core Qt6Core
for file in "$pc"/zorvan-*.pc; do
    name=$(basename "$file" .pc)
    row "$name" "$name"
done
row 'all but what is apart' zorvan

printf '\n%-32s %8s\n' 'header' ms
for header in "$work"/prefix/include/zorvan/*.h; do
    name=zorvan/$(basename "$header")
    echo "#include <$name>" >"$work/header.cpp"
    printf '%-32s %8d\n' "$name" "$(cpu_time 3 "$compiler" -std=c++20 -O0 -I"$work/prefix/include" \
        -c "$work/header.cpp" -o "$work/header.o" | cut -d. -f1)"
done
