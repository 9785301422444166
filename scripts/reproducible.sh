#!/bin/sh
# reproducible.sh [TARGET...]: builds one commit twice and compares every library, program and package byte by byte;
# with targets, the libraries and programs among what was built. Between the two differ the time, the folder and the
# length of its name, the file system where there is one in memory, the time zone and the mask for new files. No cache
# of the compiler's takes part.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
commit=$(git -C "$root" rev-parse --short HEAD)
first=$(mktemp -d)/a
second=$(mktemp -d -p "$([ ! -w /dev/shm ] || echo /dev/shm)")/another-folder
trap 'rm -rf "${first%/*}" "${second%/*}"' EXIT
export CCACHE_DISABLE=1

# build_in FOLDER TARGET...
build_in() {
    copy=$1
    shift
    git clone -q "$root" "$copy"
    git -C "$copy" checkout -q --detach "$commit"
    (cd "$copy" && cmake --preset package -D ZORVAN_QT=ON -D ZORVAN_GTK=ON >&2)
    cmake --build "$copy/build/package" --parallel "$(nproc)" --target "${@:-all}" -- --quiet >&2
    [ $# -gt 0 ] || "$copy/scripts/package.sh"
}

# What is compared, in a copy.
results_in() {
    (cd "$1" && find build -type f \( -name '*.so.*' -o -name '*.deb' -o -perm -u+x \) \
        ! -path '*/CMakeFiles/*' ! -path '*/_CPack_Packages/*' | sort)
}

build_in "$first" "$@"
(
    umask 077
    export TZ=Asia/Tokyo
    build_in "$second" "$@"
)
same=0
differ=0
for result in $(results_in "$first"); do
    if cmp -s "$first/$result" "$second/$result"; then
        same=$((same + 1))
    else
        differ=$((differ + 1))
        echo "differs: $result"
    fi
done
echo "$commit: $same libraries, programs and packages are the same byte by byte," \
    "$differ differ"
[ "$differ" = 0 ] && [ "$same" -gt 0 ]
