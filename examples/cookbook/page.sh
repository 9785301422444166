#!/bin/sh
# page.sh: prints docs/cookbook.md, made of the recipes in the order of contents.txt:
#   examples/cookbook/page.sh >docs/cookbook.md
set -eu
cd "$(dirname "$0")"
cat <<'TEXT'
# Cookbook

What desktop applications do, each as a whole program to copy from. The tests build every one of them with
nothing but the libraries that its head names, run it, and compare what it prints. The files are in
`examples/cookbook`; this page is made of them by `examples/cookbook/page.sh`.
TEXT
while read -r name; do
    case $name in
    '#'*) printf '\n#%s\n' "$name" ;;
    *)
        printf '\n### %s\n\n' "$(sed -n '1s,^// ,,p' "$name.cpp")"
        # The head, without the marks of a comment; then the code as it is.
        sed -n '3,/^$/{s,^// *,,;p;}' "$name.cpp" | sed 's/Zorvan::[A-Za-z]*/`&`/g'
        printf '```cpp\n'
        sed '1,/^$/d' "$name.cpp"
        printf '```\n\nprints\n\n```text\n'
        cat "$name.out"
        printf '```\n'
        ;;
    esac
done <contents.txt
