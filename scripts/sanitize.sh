#!/bin/sh
# sanitize.sh PRESET...: runs the tests that were built under sanitizers and tells what each found; with tsan
# those of what has threads. sanitize.sh --threaded: prints the programs of these tests.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
threaded='collections-test dispatch-test files-test graphics-test imageio-test interface-test launch-tracking-test
media-images-test media-playback-test media-test messagebus-test observation-test qt-host-test
qt-models-test security-test settings-database-test settings-test trials-test'
[ "${1:-}" != --threaded ] || { echo "$threaded"; exit 0; }

failed=0
for preset in "$@"; do
    tree=$root/build/$preset
    log=$tree/sanitized.log
    set --
    [ "$preset" != tsan ] || set -- -R "^($(echo "$threaded" | tr '\n' ' ' | sed 's/ $//;s/ /|/g'))[.]"
    ctest --test-dir "$tree" --output-on-failure --no-tests=error --parallel "$(nproc)" "$@" >"$log" 2>&1 ||
        failed=1
    sed -n '/^The following tests FAILED/,$p' "$log"
    echo "$preset: $(grep 'tests passed' "$log" || tail -n 1 "$log");" \
        "$(grep -cE 'ERROR: (Address|Leak)Sanitizer|WARNING: ThreadSanitizer|runtime error:' "$log" || true) reports"
done
exit $failed
