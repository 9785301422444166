#!/bin/sh
# check.sh PROGRAM EXPECTED SAMPLES: runs a recipe as a user with nothing in the home folder would, and compares
# what it prints.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -m 700 "$work/home" "$work/home/run" "$work/here"
cd "$work/here"
ln -s "$3" samples
case $1 in
*-movie)
    ffmpeg -v error -nostdin -f lavfi -i testsrc=size=64x48:rate=25:duration=2 -c:v mpeg4 \
        -metadata location=+47.5+008.75/ -metadata creation_time=2024-05-31T14:34:56Z lake.mov
    ;;
esac
env -i PATH="$PATH" HOME="$work/home" XDG_RUNTIME_DIR="$work/home/run" TMPDIR="$work/home" LC_ALL=C.UTF-8 TZ=UTC \
    QT_QPA_PLATFORM=offscreen \
    ASAN_OPTIONS="${ASAN_OPTIONS:-}" LSAN_OPTIONS="${LSAN_OPTIONS:-}" TSAN_OPTIONS="${TSAN_OPTIONS:-}" \
    "$1" >"$work/output"
diff "$2" "$work/output"
