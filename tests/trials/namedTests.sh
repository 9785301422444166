#!/bin/sh
# namedTests.sh ROOT: whether every test that the page on trust names is there.
set -eu
cd "$1"
tests=$(find tests -name '*.cpp' -exec cat {} +)
missing=0
for name in $(sed -n '/^|/s/.*| \([^|]*\) |$/\1/p' docs/trust.md | grep -o '`[A-Za-z]*`' | tr -d '`' | sort -u); do
    case $tests in *", $name)"* | *"($name, "*) ;; *) echo "no test $name"; missing=1 ;; esac
done
exit $missing
