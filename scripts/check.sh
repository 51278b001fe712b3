#!/usr/bin/env bash
# Checks that take longer than the tests: a second compiler without warnings, and the tests under memory and
# thread checkers.
#   scripts/check.sh            all of it
#   scripts/check.sh style      only the format of the sources, and the shell scripts
#   scripts/check.sh clang      only the build with clang, which checks the locks
#   scripts/check.sh tidy       only the static analysis of clang-tidy
#   scripts/check.sh asan|tsan  only the tests under that sanitizer
#   scripts/check.sh threads    only the tests that have threads, under the thread sanitizer
#   scripts/check.sh memcheck   only the tests of the release build under valgrind
set -euo pipefail
source "$(dirname "$0")/common.sh"

check_style() {
    install_packages clang-format shellcheck
    say "Checking the format of the sources"
    git ls-files -z '*.c' '*.cpp' '*.h' '*.hpp' | xargs -0 clang-format --dry-run -Werror
    say "Checking the shell scripts"
    git ls-files -z '*.sh' .ci/run | xargs -0 shellcheck
}

check_clang() {
    install_packages clang
    CC=clang CXX=clang++ cmake -S . -B build/clang -DAPPLET_WERROR=ON --log-level=WARNING
    say "Building with clang, warnings are errors"
    cmake --build build/clang --parallel "$(nproc)"
}

# Analyses each folder as one translation unit that includes its sources; the disabled check would report that.
check_tidy() {
    install_packages clang clang-tidy
    cmake --preset tidy --log-level=WARNING
    say "Analysing with clang-tidy, warnings are errors"
    local tidy=(run-clang-tidy -quiet -p build/tidy -j "$(nproc)") checks=-bugprone-suspicious-include
    "${tidy[@]}" -checks=$checks "^$PWD/build/tidy/(src|station|virtual_board|host|producer|python|tools)/.*xx$"
    # The variable of a benchmark's loop is never read.
    "${tidy[@]}" -checks=$checks,-clang-analyzer-deadcode.DeadStores "^$PWD/build/tidy/bench/.*xx$"
}

check_sanitizer() {
    build "$1"
    say "Testing under preset '$1'"
    ctest --preset "$1" --parallel "$(nproc)"
}

check_threads() {
    build tsan class_tests logging_tests endurance_tests
    say "Testing threads under preset 'tsan'"
    ctest --preset tsan --parallel "$(nproc)" --tests-regex '^(class|logging)_tests\.|^endurance_tests\.(Cancelled)?Thread'
}

# All programs except the one that replaces malloc, which hides everything from valgrind. A runtime that lacks
# functions cannot free its allocations: the leaks of these tests are intended. Left out: tests that need more speed
# than valgrind has, and those of a forked child, which exits with valgrind's code, and of a second C library.
check_memcheck() {
    install_packages valgrind
    build release
    local program watch=(valgrind --quiet --error-exitcode=99)
    local left_out='EntryPoints*:*ShowsProgressUntilTheEnd:*RendersOnManyThreadsWhileTheBoardIsInUse'
    left_out+=':*ForkedChildLeavesTheParentAlone:*ClientMayUnloadWithoutClosing'
    for program in build/release/{,tests/logging-sdk/}bin/*_tests; do
        case $program in *allocation_tests) continue ;; esac
        say "Testing $program under valgrind"
        "${watch[@]}" --leak-check=full --errors-for-leak-kinds=definite \
            "$program" --gtest_brief=1 --gtest_filter="-$left_out"
    done
    say "Testing runtimes that lack functions under valgrind"
    "${watch[@]}" build/release/bin/applet_tests --gtest_brief=1 --gtest_filter=EntryPoints*
}

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
case "${1:-all}" in
style) check_style ;;
clang) check_clang ;;
tidy) check_tidy ;;
asan | tsan) check_sanitizer "$1" ;;
threads) check_threads ;;
memcheck) check_memcheck ;;
all)
    check_style
    check_tidy
    check_clang
    check_sanitizer asan
    check_sanitizer tsan
    check_memcheck
    ;;
*)
    echo "scripts/check.sh takes style, clang, tidy, asan, tsan, threads or memcheck, or nothing for all of them; not '$1'" >&2
    exit 2
    ;;
esac
