#!/bin/sh
# docs-group.sh HEADER: prints a header with what it declares put into the group of its family, for doxygen. The
# empty line after the namespace begins makes room, so that lines keep their numbers.
folder=zorvan/$(dirname "${1#*zorvan/}")
group="$(echo "$folder" | tr / -) $folder"
sed "/^namespace zorvan[a-z:]* {\$/{/internal/!{s|\$| /** \\\\addtogroup $group\n@{ */|;n;/^\$/d;};}
     /^} \/\/ namespace zorvan/{/internal/!s,^,/** @} */ ,;}" "$1"
