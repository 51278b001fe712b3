#!/usr/bin/env bash
# Checks the Debian packages: two builds in different folders have the same bytes, lintian finds nothing, and in a fresh
# Debian 12 tree they install, work and leave nothing behind. The tree is fetched by apt.
set -euo pipefail
source "$(dirname "$0")/common.sh"

packages=$PWD/build/packages
again=$PWD/build/packages-again/in/another/folder

compare_builds() {
    scripts/debian-packages.sh "$packages"
    # Other conditions of a build: folder, time zone, language, rights of new files, no compiler cache.
    (umask 027 && TZ=Asia/Tokyo LC_ALL=C.UTF-8 CCACHE_DISABLE=1 scripts/debian-packages.sh "$again")
    say "Comparing the two builds"
    local file different=0
    for file in "$packages"/*.deb; do
        cmp "$file" "$again/${file##*/}" || different=1
    done
    if [ "$different" -ne 0 ]; then
        echo "The builds differ; diffoscope $packages/FILE $again/FILE shows where" >&2
        exit 1
    fi
    rm -r build/packages-again
}

run_lintian() {
    say "lintian"
    lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$packages"/*.changes
}

# mmdebstrap makes the tree, runs the check in it, and removes it.
# shellcheck disable=SC2016 # the hooks expand $1, the tree
try_in_fresh_tree() {
    say "Installing in a fresh Debian 12 tree"
    mmdebstrap --variant=apt --format=null \
        --include=ca-certificates,cmake,curl,g++,make,pkg-config,python3 \
        --customize-hook='mkdir "$1/tmp/vexo"' \
        --customize-hook="cp '$packages'/*.deb docs/packages.md scripts/try_packages.sh \"\$1/tmp/vexo\"" \
        --customize-hook='chroot "$1" bash /tmp/vexo/try_packages.sh' \
        bookworm /dev/null
}

install_packages lintian mmdebstrap uidmap
compare_builds
run_lintian
try_in_fresh_tree
say "The packages are in order"
