#!/bin/sh
# bench.sh [FILTER]: runs the benchmarks whose name matches FILTER (a regular expression), ours beside
# their peers, then whole programs that shrink pictures (those named batch and thumbnails). Prints medians.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
filter=${1:-.}

run_one() { # PROGRAM
    # A program with a main function of its own prints its own table.
    if nm -DC "$1" | grep -q 'benchmark::RunSpecifiedBenchmarks'; then
        # Interleaved, so that a noisy moment of the machine falls on ours and on the peer alike.
        "$1" --benchmark_filter="$filter" --benchmark_repetitions=5 \
            --benchmark_enable_random_interleaving=true --benchmark_min_time=0.1 \
            --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
            awk -f "$root/scripts/ratios.awk"
    elif basename "$1" | grep -Eq "$filter"; then
        "$1"
    fi
}

find "$root/build/bench/bench" -type f -perm -u+x ! -path '*/CMakeFiles/*' | sort | while read -r program; do
    table=$(run_one "$program")
    [ -z "$table" ] || printf '\n== %s\n%s\n' "$(basename "$program")" "$table"
done

if echo batch | grep -Eq "$filter"; then
    printf '\n== batch of pictures, whole programs\n'
    "$root/scripts/batch-bench.sh"
fi
if echo thumbnails | grep -Eq "$filter"; then
    printf '\n== thumbnails, whole programs\n'
    exec "$root/scripts/thumbnail-bench.sh"
fi
