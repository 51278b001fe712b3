#!/usr/bin/env bash
# Builds everything and demonstrates the applet on the virtual board.
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages "${BUILD_PACKAGES[@]}"
build release appletctl common-logging-dispatcher

bin=build/release/bin/appletctl

# show COMMAND...: prints a command line, then runs it. A refusal (status 1) is part of the demonstration.
show() {
    say "appletctl $*"
    local status=0
    "$bin" "$@" || status=$?
    [ "$status" -le 1 ] || exit "$status"
}

# Configuration files of the demonstration.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
station=$folder/station.mcf

show info
show list 'FG_*WIDTH'
show list LINETRIGGER
show describe FG_VANTAGEPOINT
show set FG_WIDTH=2048 FG_LINEPERIODE=150 FG_LINETRIGGERMODE=ASYNC_TRIGGER
say 'What reaches the board, in order'
show trace set FG_VANTAGEPOINT=FG_VANTAGEPOINT_BOTTOM_RIGHT
say 'A refusal says what is possible instead'
show set FG_WIDTH=20000
show set FG_LINETRIGGERINSRC=8
say 'The state as a file'
show save "$station" FG_WIDTH=2048 FG_LINEPERIODE=150.4 FG_LINETRIGGERMODE=ASYNC_TRIGGER
show load "$station"
show diff "$station"
say 'What a file loses on the way: one key is missing, one value is refused'
sed -e '/^FG_HEIGHT=/d' -e 's/^FG_WIDTH=.*/FG_WIDTH=1022;/' "$station" >"$folder/edited.mcf"
show check "$folder/edited.mcf"
show diff "$station" "$folder/edited.mcf"
say 'All parameters as an XML document'
show xml --out "$folder/parameters.xml"
head -c 1500 "$folder/parameters.xml"
say 'The same, for a program'
show --json get FG_WIDTH FG_LINEEXPOSURE
say 'Without a board'
show --offline list SENSOR
say 'A picture of the test pattern, through region, gains and format into memory, and from there to disk'
picture=build/release/chart.png
show grab -o "$picture" --hash FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR FG_WIDTH=640 FG_HEIGHT=400 \
    FG_SCALINGFACTOR_RED=3 FG_SCALINGFACTOR_GREEN=1.5
say "The picture is $PWD/$picture"
