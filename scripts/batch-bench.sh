#!/bin/sh
# batch-bench.sh [COUNT] [ROUNDS] [PEER]...: the time that COUNT pictures of 12 megapixels, turned in four ways,
# take to become upright JPEGs of at most 1,600 pixels: ours and each PEER (vips for vipsthumbnail, magick for
# ImageMagick; both unless told otherwise) on two processors and taking turns, without a process for each
# picture; then the peak memory of ours for COUNT and for ten times as many.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
count=${1:-100}
rounds=${2:-3}
if [ $# -gt 2 ]; then
    shift 2
    peers=$*
fi
peers=${peers:-vips magick}
ours=${ZORVAN_BATCH:-$root/build/bench/bench/media/bench-batch-export}
work=$root/build/bench/batch
rm -rf "$work/in" "$work/out"
mkdir -p "$work/in" "$work/out"
cd "$work"

if [ ! -f turned-8.jpg ]; then
    "$root/scripts/camera-picture.sh" 'large.jpg[Q=90]'
    for orientation in 1 3 6 8; do
        exiftool -q -n -Orientation=$orientation -o unfinished.jpg large.jpg
        mv unfinished.jpg turned-$orientation.jpg
    done
fi
seq 1 $((count * 10)) | while read -r number; do
    case $((number % 4)) in
    0) ln turned-1.jpg "in/$number.jpg" ;;
    1) ln turned-3.jpg "in/$number.jpg" ;;
    2) ln turned-6.jpg "in/$number.jpg" ;;
    3) ln turned-8.jpg "in/$number.jpg" ;;
    esac
done

pictures() { seq -f 'in/%.0f.jpg' 1 "$1"; }
halves() { pictures "$count" | xargs -P 2 -n $(((count + 1) / 2)) "$@"; }
ours() { # COUNT
    pictures "$1" | xargs -n "$1" "$ours" out
}

run() { # PROGRAM
    case $1 in
    ours) ours "$count" >ours.peak ;;
    vips) VIPS_CONCURRENCY=1 halves vipsthumbnail --size 1600x1600 -o "$work/out/%s.jpg[Q=85]" ;;
    magick) MAGICK_THREAD_LIMIT=1 halves mogrify -path out -define jpeg:size=3200x3200 -auto-orient \
        -thumbnail 1600x1600 -quality 85 ;;
    esac
}

rm -f ./*.time
round=0
while [ "$round" -lt "$rounds" ]; do
    for program in ours $peers; do
        rm -f out/*
        start=$(date +%s%N)
        run "$program"
        echo $((($(date +%s%N) - start) / 1000000)) >>"$program.time"
        [ "$(find out -name '*.jpg' | wc -l)" -eq "$count" ] || { echo "$program left pictures out" >&2 && exit 1; }
    done
    round=$((round + 1))
done
for program in ours $peers; do
    sort -n "$program.time" | awk -v program="$program" '{ v[NR] = $1 } END { print program, v[int((NR + 1) / 2)] }'
done | awk 'NR == 1 { ours = $2 } { printf "%-8s %8d ms, ours to it %.2f\n", $1, $2, ours / $2 }'
echo "peak memory: $(ours "$count") KB for $count, $(ours $((count * 10))) KB for $((count * 10))"
