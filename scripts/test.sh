#!/usr/bin/env bash
# Builds everything and runs every test.
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}"
build release
say "Testing"
ctest --preset release --parallel "$(nproc)"
