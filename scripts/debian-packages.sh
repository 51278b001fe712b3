#!/usr/bin/env bash
# Builds the Debian packages of the present sources, without network, in a folder of its own:
#   scripts/debian-packages.sh           into build/packages
#   scripts/debian-packages.sh FOLDER    into another folder
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages "${BUILD_PACKAGES[@]}" debhelper dh-python dpkg-dev fakeroot scdoc

folder=${1:-build/packages}
say "Building the packages in $folder"
rm -rf "$folder"
mkdir -p "$folder/vexo"
git ls-files -z --cached --others --exclude-standard | tar -c --null -T - | tar -x -C "$folder/vexo"
cd "$folder/vexo"
# With it a compiler cache compiles relative paths, which the debug information shows.
unset CCACHE_BASEDIR
# Without network, if this user may take it away.
network=()
unshare --net true 2>/dev/null && network=(unshare --net)
"${network[@]}" dpkg-buildpackage --build=binary --no-sign --jobs="$(nproc)"
cd ..
rm -r vexo
say "Built in $folder"
ls ./*.deb
