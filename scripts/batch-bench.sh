#!/bin/sh
# batch-bench.sh [COUNT] [ROUNDS]: the time that COUNT pictures of 12 megapixels take to become upright
# JPEGs of at most 1,600 pixels: ours, vipsthumbnail and ImageMagick, each on two processors and taking
# turns; then the peak memory of ours for COUNT and for ten times COUNT.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
count=${1:-100}
rounds=${2:-3}
ours=${ZORVAN_BATCH:-$root/build/bench/bench/media/bench-batch-export}
work=$root/build/bench/batch
mkdir -p "$work/out"
cd "$work"

if [ ! -f large.jpg ]; then
    vips resize "$root/examples/samples/interlaced.png" shapes.v 12.5 --kernel cubic
    vips crop shapes.v framed.v 0 0 4000 3000
    vips gaussnoise grain.v 4000 3000 --sigma 5 --seed 1
    vips add framed.v grain.v grainy.v
    vips cast grainy.v picture.v uchar
    vips copy picture.v 'unfinished.jpg[Q=90]'
    exiftool -q -n -overwrite_original -Orientation=6 unfinished.jpg
    mv unfinished.jpg large.jpg
    rm -f ./*.v
fi

numbers() { seq 1 "$count"; }

run() { # PROGRAM
    case $1 in
    ours) "$ours" large.jpg out "$count" >ours.peak ;;
    vips) numbers | VIPS_CONCURRENCY=1 xargs -P 2 -I{} vipsthumbnail large.jpg --size 1600x1600 -o "$work/out/{}.jpg[Q=85]" ;;
    magick) numbers | MAGICK_THREAD_LIMIT=1 xargs -P 2 -I{} convert -define jpeg:size=3200x3200 large.jpg -auto-orient \
        -thumbnail 1600x1600 -quality 85 out/{}.jpg ;;
    esac
}

rm -f ./*.time
round=0
while [ "$round" -lt "$rounds" ]; do
    for program in ours vips magick; do
        start=$(date +%s%N)
        run "$program"
        echo $((($(date +%s%N) - start) / 1000000)) >>"$program.time"
    done
    round=$((round + 1))
done
for program in ours vips magick; do
    sort -n "$program.time" | awk -v program="$program" '{ v[NR] = $1 } END { print program, v[int((NR + 1) / 2)] }'
done | awk '{ t[$1] = $2; printf "%-8s %8d ms\n", $1, $2 }
    END { printf "ours to vips %.2f, to magick %.2f\n", t["ours"] / t["vips"], t["ours"] / t["magick"] }'
"$ours" large.jpg out "$count" >few.peak
"$ours" large.jpg out $((count * 10)) >many.peak
echo "peak memory: $(cat few.peak) KB for $count, $(cat many.peak) KB for $((count * 10))"
