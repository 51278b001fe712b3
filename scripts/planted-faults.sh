#!/usr/bin/env bash
# Plants faults into a copy of the sources, one at a time, and lets the tests look for them. Prints which test saw each;
# fails if a fault survives, or no longer applies.
#   scripts/planted-faults.sh           all of tests/planted_faults
#   scripts/planted-faults.sh 03 '1?'   those whose numbers are these
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

build_copy() {
    cmake --build "$planted" --parallel "$(nproc)" \
        --target Grab_TwinLaneLineColor common-logging-dispatcher class_tests logging_tests >"$planted/build.log" 2>&1
}

# test_copy: true if the tests pass: those linked with the copy's classes, then those that open its library.
test_copy() {
    local options=(--parallel "$(nproc)" --stop-on-failure)
    ctest --test-dir "$planted" "${options[@]}" --tests-regex '^(class|logging)_tests\.' >"$results" 2>&1 &&
        APPLET_UNDER_TEST=$planted/lib/libGrab_TwinLaneLineColor.so \
            ctest --test-dir build/release "${options[@]}" --tests-regex '^(applet|allocation)_tests\.' >"$results" 2>&1
}

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" patch
build release applet_tests allocation_tests
say "The copy without a fault"
mkdir -p "$copy"
refresh_copy
cmake -S "$copy" -B "$planted" -DCMAKE_BUILD_TYPE=Release --log-level=WARNING
build_copy || {
    tail "$planted/build.log"
    exit 1
}
test_copy || {
    tail "$results"
    exit 1
}

lost=0
numbers=("${@:-??}")
for number in "${numbers[@]}"; do
    for fault in tests/planted_faults/$number-*.patch; do
        name=$(basename "$fault" .patch)
        change=(patch --strip=1 --directory="$copy" --quiet --force --no-backup-if-mismatch --reject-file=-)
        if ! "${change[@]}" <"$fault"; then
            echo "$name: does not apply any more"
            lost=$((lost + 1))
            continue
        fi
        if ! build_copy; then
            echo "$name: does not compile"
            lost=$((lost + 1))
        elif test_copy; then
            echo "$name: SURVIVES"
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
