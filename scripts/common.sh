# Sourced by the other scripts: installs what is missing and builds a preset.
# shellcheck shell=bash

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

say() { printf '\n==> %s\n' "$*"; }

# install_packages PACKAGE...: calls apt only for missing ones.
install_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "These packages are missing and only root can install them: ${missing[*]}" >&2
            echo "Run as root: apt-get install ${missing[*]}" >&2
            exit 1
        }
        as_root=(sudo)
    fi
    say "Installing ${missing[*]}"
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]: configures once, then builds.
build() {
    local preset=$1
    shift
    say "Building preset '$preset'"
    cmake --preset "$preset" --log-level=WARNING
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}

# shellcheck disable=SC2034 # used by the scripts that source this file
BUILD_PACKAGES=(g++ make cmake python3 libcli11-dev nlohmann-json3-dev libedit-dev libmd-dev
    libpng-dev libtiff-dev libjpeg-dev libcpp-httplib-dev pybind11-dev python3-dev)
# shellcheck disable=SC2034
TEST_PACKAGES=(abigail-tools binutils chromium curl libgtest-dev libgmock-dev libbenchmark-dev
    pkg-config python3-ipykernel python3-jsonschema python3-lark python3-nbclient python3-numpy python3-pytest
    python3-venv scdoc)
