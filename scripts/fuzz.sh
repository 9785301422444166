#!/bin/sh
# fuzz.sh SECONDS [TARGET...]: runs every fuzz target, or those named, for SECONDS each and prints a table
# of what came of it. What they learn is kept in build/fuzz/corpus, what they find in build/fuzz/findings.
# Fails when one found something.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
[ $# -eq 0 ] || shift
fuzzers=$root/build/fuzz/fuzzers
found=$root/build/fuzz/findings

# shellcheck disable=SC2046 # the names are words of their own
[ $# -gt 0 ] || set -- $(ls "$fuzzers")
[ $# -gt 0 ] || { echo "There is no fuzz target in $fuzzers" >&2; exit 1; }
mkdir -p "$found"
# What the sanitizers take for a leak stands in a file; what is found ends the target's run, not the others'.
export LSAN_OPTIONS="print_suppressions=0:intercept_tls_get_addr=0:suppressions=$root/cmake/leaks.supp"
table=$(mktemp)
trap 'rm -f "$table"' EXIT
failed=0
for name in "$@"; do
    corpus=$root/build/fuzz/corpus/$name
    log=$found/$name.log
    mkdir -p "$corpus"
    seeds=
    [ ! -d "$root/fuzz/corpus/$name" ] || seeds=$root/fuzz/corpus/$name
    # Whole pictures to start from, for the targets that read pictures.
    case $name in *image* | *decode*) seeds="$seeds $root/examples/samples $root/tests/platform/imageio/samples" ;; esac
    # FFmpeg asks for up to two gigabytes of addresses for what a file speaks of, and writes to few of them.
    most=1024
    [ "$name" != movie-fuzz ] || most=2048
    findings=0
    # shellcheck disable=SC2086 # no word at all when empty
    "$fuzzers/$name" "$corpus" $seeds -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -malloc_limit_mb=$most -artifact_prefix="$found/$name-" -print_final_stats=1 2>"$log" >/dev/null || findings=1
    if [ $findings = 1 ]; then
        failed=1
        tail -n 60 "$log" >&2
    fi
    # The last line that says how far it came: "#N DONE cov: C ft: F corp: ..."
    executed=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    edges=$(sed -n 's/^#.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)
    features=$(sed -n 's/^#.* ft: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)
    printf '%-24s %12s %8s %8s %9s\n' "$name" "${executed:-?}" "${edges:-?}" "${features:-?}" $findings >>"$table"
    echo "$name: ${executed:-?} executions, $findings found" >&2
done
printf '%-24s %12s %8s %8s %9s\n' target executions edges features findings
cat "$table"
exit $failed
