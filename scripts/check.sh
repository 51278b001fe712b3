#!/usr/bin/env bash
# What takes longer than the tests: a second compiler without a warning, and the tests under the sanitizers.
#   scripts/check.sh            all of it
#   scripts/check.sh clang      only the build with clang, which checks the locks
#   scripts/check.sh asan|tsan  only the tests under that sanitizer
set -euo pipefail
source "$(dirname "$0")/common.sh"

check_clang() {
    install_packages clang
    say "Building with clang, warnings are errors"
    CC=clang CXX=clang++ cmake -S . -B build/clang -DAPPLET_WERROR=ON --log-level=WARNING
    cmake --build build/clang --parallel "$(nproc)"
}

check_sanitizer() {
    build "$1"
    say "Testing under preset '$1'"
    ctest --preset "$1" --parallel "$(nproc)"
}

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
case "${1:-all}" in
clang) check_clang ;;
asan | tsan) check_sanitizer "$1" ;;
all)
    check_clang
    check_sanitizer asan
    check_sanitizer tsan
    ;;
*)
    echo "scripts/check.sh takes clang, asan or tsan, or nothing for all of them; not '$1'" >&2
    exit 2
    ;;
esac
