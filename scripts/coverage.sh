#!/usr/bin/env bash
# Test coverage of src/: prints the share of lines and branches and the uncovered ones; fails below the minimum.
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" clang llvm
build coverage

counts=build/coverage/counts
rm -rf "$counts"
say "Testing"
# The counters run code at load, which `exports` refuses, and are written at each of 1000 unloads in `Endurance`.
LLVM_PROFILE_FILE="$PWD/$counts/%4m.profraw" ctest --preset coverage --parallel "$(nproc)" --exclude-regex '^exports$|\.Endurance\.'
say "Counting"
llvm-profdata merge -sparse -o "$counts/all.profdata" "$counts"/*.profraw
export_counts() {
    llvm-cov export "$@" -instr-profile "$counts/all.profdata" build/coverage/lib/libGrab_TwinLaneLineColor.so \
        -object build/coverage/bin/class_tests -object build/coverage/tests/logging-sdk/bin/logging_tests "$PWD/src"
}
export_counts -summary-only >"$counts/summary.json"
export_counts -format=lcov | python3 scripts/coverage_report.py "$PWD/src" "$counts/summary.json" lines=97 branches=92
