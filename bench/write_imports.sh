#!/bin/sh
# Writes an assembly source that refers to each symbol that a library imports.
#   write_imports.sh NM LIBRARY SOURCE
set -eu
{
    echo '.section .data.rel.ro,"aw"'
    "$1" -D --undefined-only "$2" | sed -n 's/^ *U \([^@]*\).*/.quad \1/p'
    echo '.section .note.GNU-stack,"",@progbits'
} >"$3"
