#!/bin/sh
# coverage.sh [REGEX]: runs the tests, or those whose names match, and prints which part of each folder's
# lines and branches they reach. The counters lie in files that every process maps, so that also the
# processes count that a test kills.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
tree=$root/build/coverage
counters=$tree/counters
rm -rf "$counters"
mkdir -p "$counters"
# One file for each program and library, shared by all processes that have it.
export LLVM_PROFILE_FILE="$counters/%m%c.profraw"
tested=0
ctest --test-dir "$tree" --output-on-failure --no-tests=error --parallel "$(nproc)" ${1:+-R "$1"} >&2 || tested=1

cd "$tree"
# The tools of the compiler's own version: others cannot read what it wrote.
tools=$(dirname "$(readlink -f "$(command -v clang++)")")
"$tools/llvm-profdata" merge -sparse "$counters"/*.profraw -o all.profdata
# shellcheck disable=SC2046 # the paths of a build tree are words of their own
set -- $(find zorvan -name 'libzorvan-*.so.*.*.*' -type f -printf ' -object %p')
"$tools/llvm-cov" export -summary-only -instr-profile all.profdata "$@" >coverage.json
python3 "$root/scripts/coverage-table.py" "$root" coverage.json
exit $tested
