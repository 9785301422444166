#!/bin/sh
# docs-group.sh HEADER: prints a header with what it declares put into the group of its family, for doxygen, and
# without what it defines of members, which the group would list again, unless it has a docstring. Lines keep their
# numbers, so the empty line after the namespace begins makes room.
folder=zorvan/$(dirname "${1#*zorvan/}")
awk -v folder="$folder" '
    function blanks(text) { gsub(/[^\n]/, "", text); return text }
    BEGIN { group = folder; gsub("/", "-", group) }
    /^namespace zorvan[a-z:]* {$/ && !/internal/ { print $0, "/** \\addtogroup", group, folder; print "@{ */"; opened = 1; next }
    opened { opened = 0; if ($0 == "") next }
    /^} \/\/ namespace zorvan/ && !/internal/ { $0 = "/** @} */ " $0 }
    /^(template|requires)/ { head = head $0 "\n"; next }
    /^[^(\/#]*[A-Z][A-Za-z0-9]*(<[A-Za-z]*>)?::[A-Za-z_]+ ?[({=]/ && !/^(class|struct|enum) / && before !~ /^\/\/\// { head = blanks(head); defines = 1 }
    { printf "%s", head; head = ""; before = $0 }
    defines {
        depth += gsub("{", "") - gsub("}", "x") # the line still ends with something
        if (depth == 0 && /[;x]$/) defines = 0
        print ""
        next
    }
    { print }' "$1"
