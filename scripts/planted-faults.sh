#!/usr/bin/env bash
# Plants faults into a copy of the sources, one at a time, and runs the tests. Prints which test detected each
# one, and the share detected; fails if it is below 95 %, or if a fault no longer fits the sources.
#   scripts/planted-faults.sh                       all of tests/planted_faults
#   scripts/planted-faults.sh 'image/*' files/keys  those of a table, or with this name
#   scripts/planted-faults.sh --named-tests-only    without the whole run for faults that the named tests miss
#   scripts/planted-faults.sh --check               only whether each fault still fits the sources
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" ccache ninja-build
exec python3 scripts/planted_faults.py "$@"
