#!/usr/bin/env bash
# Prints the lines of tests and fuzz targets for each line of code, without blank lines, comments and data.
#   scripts/test-ratio.sh           prints the counts and the ratio
#   scripts/test-ratio.sh LARGEST   fails if the ratio is larger, such as 0.34
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages cloc

code=(src include station virtual_board tools host python page producer bench examples)
tests=(tests fuzz)
languages='C,C++,C/C++ Header,Assembly,Python,JavaScript,HTML,CSS,Windows Module Definition' # the last is cloc's name for .def

# count FOLDER: lines of code of the tracked files below it.
count() {
    git ls-files -- "$1" | cloc --quiet --csv --list-file=- --include-lang="$languages" 2>/dev/null |
        awk -F, '$2 == "SUM" { sum = $5 } END { print sum + 0 }'
}

# total FOLDER...: prints a line for each folder and leaves the sum in `sum`.
total() {
    local folder lines
    sum=0
    for folder in "$@"; do
        lines=$(count "$folder")
        printf '%8d  %s\n' "$lines" "$folder"
        sum=$((sum + lines))
    done
}

echo "Code"
total "${code[@]}"
code_lines=$sum
echo "Tests"
total "${tests[@]}"
awk -v tests="$sum" -v code="$code_lines" -v largest="${1:-}" 'BEGIN {
    ratio = tests / code
    printf "%d lines of tests for %d lines of code: %.3f\n", tests, code, ratio
    if (largest != "" && ratio > largest) {
        printf "The ratio is larger than %s: shorten the tests, as rows of tables or shared helpers\n", largest
        exit 1
    }
}'
