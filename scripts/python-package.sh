#!/usr/bin/env bash
# Installs the Python package by `pip install .` in a virtual environment and runs its tests there. pip fetches the build
# tools and numpy, so this needs the network; without it nothing is tested, and the script says so.
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages "${BUILD_PACKAGES[@]}" python3-venv ninja-build

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
python3 -m venv "$folder"
say "Fetching the tools"
if ! "$folder/bin/pip" install --quiet 'scikit-build-core>=0.10' 'pybind11>=2.10' numpy pytest nbclient ipykernel; then
    say "SKIPPED: pip cannot fetch packages here, so the package was not built"
    exit 0
fi
say "Building and installing the package"
"$folder/bin/pip" install --quiet --no-build-isolation .
say "Testing the installed package"
env -u PYTHONPATH "$folder/bin/python" -m pytest -q -p no:cacheprovider tests/python
