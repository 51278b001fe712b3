#!/usr/bin/env bash
# Fuzzes the file readers, the exported functions, the station and the producer. fuzz/ describes the inputs.
#   scripts/fuzz.sh [SECONDS [TARGET...]]   all targets, or those named, each for SECONDS (60)
# The corpus stays in build/fuzz/corpus and is extended by the next run. A finding becomes a file in
# fuzz/seeds/TARGET, which the tests replay from then on.
set -euo pipefail
source "$(dirname "$0")/common.sh"

seconds=${1:-60}
targets=("${@:2}")
[ ${#targets[@]} -gt 0 ] || targets=(mcf lut load api station station_file image producer request)

install_packages "${BUILD_PACKAGES[@]}" "${TEST_PACKAGES[@]}" clang
build fuzz "${targets[@]/#/fuzz_}"

root=$PWD work=$PWD/build/fuzz
cp fuzz/*.dict "$work"
# A whole load uses all keys of a saved state.
{ cat fuzz/mcf.dict && sed -n 's/^\([A-Za-z]\w*=\).*/"\1"/p' tests/data/saved_state.mcf; } >"$work/load.dict"
declare -A longest=([mcf]=600 [lut]=300 [load]=8000 [api]=600 [station]=1500 [station_file]=1500 [image]=2000 [producer]=480 [request]=2000) # bytes

# For speed: files in memory, and no stack traces of allocations, which a replay has.
[ -w /dev/shm ] && export TMPDIR=/dev/shm
export ASAN_OPTIONS=malloc_context_size=0:quarantine_size_mb=1

for target in "${targets[@]}"; do
    say "Fuzzing '$target' for $seconds seconds"
    mkdir -p "$work/corpus/$target"
    dictionary=()
    [ -f "$work/$target.dict" ] && dictionary=("-dict=$work/$target.dict")
    "$work/bin/fuzz_$target" -max_total_time="$seconds" -max_len="${longest[$target]}" -timeout=20 \
        -print_final_stats=1 -artifact_prefix="$root/fuzz/seeds/$target/" "${dictionary[@]}" \
        "$work/corpus/$target" "$root/fuzz/seeds/$target" 2>&1 | grep -vE 'NEW|REDUCE|DE: ' || {
        say "Something was found. To see it again: $work/bin/fuzz_$target fuzz/seeds/$target/FILE"
        git status --short "fuzz/seeds/$target"
        exit 1
    }
done
