#!/bin/sh
# fuzz.sh SECONDS: runs every fuzz target for SECONDS and ends at the first that finds something. What
# they learn is kept in build/fuzz/corpus, what they find in build/fuzz/findings.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
fuzzers=$root/build/fuzz/fuzzers
found=$root/build/fuzz/findings

[ -n "$(ls "$fuzzers")" ] || { echo "There is no fuzz target in $fuzzers" >&2; exit 1; }
mkdir -p "$found"
for program in "$fuzzers"/*; do
    name=$(basename "$program")
    corpus=$root/build/fuzz/corpus/$name
    log=$found/$name.log
    mkdir -p "$corpus"
    # Whole pictures to start from, for the targets that read pictures.
    seeds=
    case $name in *image* | *picture* | *decode* | *metadata* | *thumbnail*) seeds=$root/examples/samples ;; esac
    # shellcheck disable=SC2086 # no word at all when empty
    if LSAN_OPTIONS=print_suppressions=0:suppressions="$root/cmake/leaks.supp" "$program" "$corpus" $seeds -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -malloc_limit_mb=1024 -artifact_prefix="$found/$name-" -print_final_stats=1 >"$log" 2>&1; then
        printf '%-32s %s runs, nothing found\n' "$name" \
            "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
    else
        printf '%-32s FOUND A FAULT\n' "$name"
        tail -n 60 "$log" >&2
        exit 1
    fi
done
