#!/bin/sh
# bench.sh [FILTER]: runs the benchmarks whose name matches FILTER (a regular expression), ours beside
# their peers, then whole programs that shrink pictures (those named batch and thumbnails). Prints medians.
# Fails when a program does, or when one has a benchmark of that name and prints no row.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
filter=${1:-.}

csv=$(mktemp)
trap 'rm -f "$csv"' EXIT

# Prints the rows of a program, none when the filter leaves all of its benchmarks out.
rows_of() { # PROGRAM
    # A program with a main function of its own prints its own table.
    if ! nm -DC "$1" | grep -q 'benchmark::RunSpecifiedBenchmarks'; then
        ! basename "$1" | grep -Eq "$filter" || "$1"
        return
    fi
    wanted=$("$1" --benchmark_list_tests --benchmark_filter="$filter" 2>/dev/null) || return
    [ -n "$wanted" ] || return 0
    # Interleaved, so that a noisy moment of the machine falls on ours and on the peer alike.
    "$1" --benchmark_filter="$filter" --benchmark_repetitions=5 \
        --benchmark_enable_random_interleaving=true --benchmark_min_time=0.1 \
        --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null >"$csv" || return
    awk -f "$root/scripts/ratios.awk" "$csv" | grep . || return
}

for program in $(find "$root/build/bench/bench" -type f -perm -u+x ! -path '*/CMakeFiles/*' | sort); do
    name=$(basename "$program")
    if ! table=$(rows_of "$program"); then
        echo "bench: $name fails, or prints no row" >&2
        exit 1
    fi
    [ -z "$table" ] || printf '\n== %s\n%s\n' "$name" "$table"
done

if echo batch | grep -Eq "$filter"; then
    printf '\n== batch of pictures, whole programs\n'
    "$root/scripts/batch-bench.sh"
fi
if echo thumbnails | grep -Eq "$filter"; then
    printf '\n== thumbnails, whole programs\n'
    exec "$root/scripts/thumbnail-bench.sh"
fi
