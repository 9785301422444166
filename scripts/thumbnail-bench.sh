#!/bin/sh
# thumbnail-bench.sh [ROUNDS]: the time and the peak memory of whole processes that make a 256-pixel
# thumbnail of a 12-megapixel picture: shelf, vipsthumbnail and GraphicsMagick, taking turns.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
rounds=${1:-9}
shelf=${ZORVAN_SHELF:-$root/build/bench/examples/shelf/shelf}
work=$root/build/bench/thumbnails
mkdir -p "$work/out"
cd "$work"

if [ ! -f large.heic ]; then
    "$root/scripts/camera-picture.sh" large.png 'large.jpg[Q=90]' 'large.tiff[compression=lzw]'
    heif-enc -q 80 -o unfinished.heic large.png >making-heic.log 2>&1
    mv unfinished.heic large.heic
fi
if [ ! -f tiled.heic ]; then
    mkdir -p tiles
    vips embed large.png tiles/whole.v 0 0 4096 3072 --extend copy
    for y in 0 1 2 3 4 5; do
        for x in 0 1 2 3 4 5 6 7; do
            vips crop tiles/whole.v tiles/one.png $((x * 512)) $((y * 512)) 512 512
            heif-enc -q 80 -o "tiles/$y-$x.heic" tiles/one.png >>making-heic.log 2>&1
        done
    done
    "$root/scripts/tiled-heic.py" unfinished.heic 4000 3000 8 tiles/?-?.heic
    rm -r tiles
    mv unfinished.heic tiled.heic
fi

run() { # PROGRAM PICTURE
    set -- "$1" "$2" /usr/bin/time -f %M -a -o "$1.memory"
    program=$1 picture=$2
    shift 2
    case $program in
    shelf) "$@" "$shelf" "$picture" --export out --size 256 --format jpg ;;
    vips) "$@" vipsthumbnail "$picture" --size 256x256 -o "$work/out/vips.jpg" ;;
    gm) "$@" gm convert -size 512x512 "$picture" -thumbnail 256x256 out/gm.jpg ;;
    esac
}

measure() { # PROGRAM PICTURE
    start=$(date +%s%N)
    if run "$1" "$2" >one.log 2>&1; then
        echo $((($(date +%s%N) - start) / 1000)) >>"$1.time"
    else
        echo "$1 refuses $2: $(tail -n 1 one.log)" >"$1.refused"
    fi
}

median() { # FILE
    sort -n "$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'
}

printf '%-11s %10s %10s %10s %10s %10s %9s %9s %9s\n' picture 'shelf ms' 'vips ms' 'gm ms' 'to vips' 'to gm' \
    'shelf MB' 'vips MB' 'gm MB'
for picture in large.jpg large.png large.tiff large.heic tiled.heic; do
    rm -f ./*.time ./*.memory ./*.refused
    round=0
    while [ "$round" -lt "$rounds" ]; do
        rm -f out/*
        for program in shelf vips gm; do
            measure "$program" "$picture"
        done
        round=$((round + 1))
    done
    for program in shelf vips gm; do
        if [ -f "$program.time" ]; then
            echo "$(median "$program.time") $(median "$program.memory")"
        else
            cat "$program.refused" >&2
            echo '0 0'
        fi
    done | awk -v picture="$picture" '
        { time[NR] = $1 / 1000; memory[NR] = $2 / 1024 }
        function shown(value) { return value > 0 ? sprintf("%.1f", value) : "-" }
        function ratio(peer) { return time[1] > 0 && peer > 0 ? sprintf("%.2f", time[1] / peer) : "-" }
        END { printf "%-11s %10s %10s %10s %10s %10s %9s %9s %9s\n", picture, shown(time[1]), shown(time[2]), shown(time[3]),
              ratio(time[2]), ratio(time[3]), shown(memory[1]), shown(memory[2]), shown(memory[3]) }'
done
