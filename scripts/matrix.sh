#!/bin/sh
# matrix.sh [SUITE...]: builds and tests the newest commit with g++ and with clang in a bare Debian of each
# suite (bookworm and trixie), and prints what came out. As root. The systems stay in build/matrix, so that a
# second run installs and compiles only what has changed.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
. "$root/scripts/bare-debian.sh"
[ $# -gt 0 ] || set -- bookworm trixie
[ -z "$(git -C "$root" status --porcelain)" ] || echo 'Only what is committed is tested.' >&2

results=
failed=0
for suite in "$@"; do
    system=$root/build/matrix/$suite
    log=$system.log
    make_bare_debian "$suite" "$system" >"$system.log" 2>&1 || { cat "$log" >&2; exit 1; }
    put_checkout "$root" "$system"
    for preset in release clang; do
        echo "$suite $preset ..." >&2
        if run_in "$system" ./run test "$preset" >"$system-$preset.log" 2>&1; then
            outcome=$(grep -E '^[0-9]+% tests passed' "$system-$preset.log")
        else
            outcome="FAILED, see $system-$preset.log"
            failed=1
        fi
        results="$results$(printf '%-9s %-8s %s' "$suite" "$preset" "$outcome")
"
    done
done
printf '%s' "$results"
exit $failed
