#!/usr/bin/env bash
# Plants faults into a copy of the sources, one at a time, and lets the tests look for them. Prints which test saw each;
# fails if a fault survives, or no longer applies.
#   scripts/planted-faults.sh           all of tests/planted_faults
#   scripts/planted-faults.sh 03 '1?'   those whose numbers are these
# A patch that begins with "Seen by: asan" or "Seen by: tsan" is looked for by the tests under that sanitizer, the others
# by the tests of the release build.
set -euo pipefail
source "$(dirname "$0")/common.sh"

planted=$PWD/build/planted
copy=$planted/source
results=$planted/results.txt

# The copy's files that differ are replaced, and they alone, so that no more than they is built again.
refresh_copy() {
    local file
    git ls-files -z --cached --others --exclude-standard | while IFS= read -r -d '' file; do
        [ -f "$file" ] || continue
        cmp -s "$file" "$copy/$file" || install -D "$file" "$copy/$file"
    done
}

# The programs of each run, and the tests of each of its stages: what is quick and sees most comes first.
programs=(class_tests logging_tests)
library_tests='^(class|logging)_tests\.'
declare -A options=(
    [release]='-DCMAKE_BUILD_TYPE=Release'
    [asan]='-DCMAKE_BUILD_TYPE=Debug -DAPPLET_SANITIZE=address'
    [tsan]='-DCMAKE_BUILD_TYPE=Debug -DAPPLET_SANITIZE=thread'
)
declare -A more_programs=(
    [release]='applet_tests allocation_tests endurance_tests file_tests'
    [asan]='applet_tests'
    [tsan]='endurance_tests'
)
declare -A more_tests=(
    [release]='^(applet|allocation)_tests\. ^(endurance_tests\.Endurance|file_tests)\.'
    [asan]='^applet_tests\.'
    [tsan]='^endurance_tests\.Threads\.'
)

# build_copy RUN
build_copy() {
    # shellcheck disable=SC2086 # lists of words
    cmake --build "$planted/$1" --parallel "$(nproc)" --target "${programs[@]}" ${more_programs[$1]} \
        >"$planted/build.log" 2>&1
}

# test_copy RUN: true if the tests pass.
test_copy() {
    local tests
    for tests in "$library_tests" ${more_tests[$1]}; do
        ctest --test-dir "$planted/$1" --parallel "$(nproc)" --stop-on-failure --tests-regex "$tests" \
            >"$results" 2>&1 || return 1
    done
}

# prepare RUN: the copy without a fault is built and passes.
declare -A prepared=()
prepare() {
    [ -z "${prepared[$1]:-}" ] || return 0
    prepared[$1]=yes
    say "The copy without a fault: $1"
    # shellcheck disable=SC2086
    cmake -S "$copy" -B "$planted/$1" ${options[$1]} --log-level=WARNING \
        -DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
    build_copy "$1" || {
        tail "$planted/build.log"
        exit 1
    }
    test_copy "$1" || {
        tail "$results"
        exit 1
    }
}

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" ccache patch
mkdir -p "$copy"
refresh_copy

lost=0
numbers=("${@:-??}")
for number in "${numbers[@]}"; do
    for fault in "tests/planted_faults/"$number-*.patch; do
        name=$(basename "$fault" .patch)
        run=$(sed -n '1s/^Seen by: //p' "$fault")
        run=${run:-release}
        prepare "$run"
        change=(patch --strip=1 --directory="$copy" --quiet --force --no-backup-if-mismatch --reject-file=-)
        if ! "${change[@]}" <"$fault"; then
            echo "$name: does not apply any more"
            lost=$((lost + 1))
            continue
        fi
        if ! build_copy "$run"; then
            echo "$name: does not compile"
            lost=$((lost + 1))
        elif test_copy "$run"; then
            echo "$name: SURVIVES ($run)"
            lost=$((lost + 1))
        else
            echo "$name: $(sed -n 's/.*[0-9]* - \([^ ]*\) (.*/\1/p' "$results" | paste -sd ' ')"
        fi
        "${change[@]}" --reverse <"$fault"
    done
done
[ "$lost" -eq 0 ] || {
    echo "$lost faults are not seen"
    exit 1
}
