#!/bin/sh
# docs-group.sh HEADER: prints a header with what it declares put into the group of its family, for doxygen.
folder=zorvan/$(dirname "${1#*zorvan/}")
group="$(echo "$folder" | tr / -) $folder"
sed "/^namespace zorvan[a-z:]* {\$/{/internal/!s|\$| /** \\\\addtogroup $group\n@{ */|;}
     /^} \/\/ namespace zorvan/{/internal/!s,^,/** @} */ ,;}" "$1"
