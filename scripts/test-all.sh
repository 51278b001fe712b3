#!/usr/bin/env bash
# All that can be checked, what fails soonest first. Takes some hours: for every night.
set -euo pipefail
cd "$(dirname "$0")"
bash test.sh
bash check.sh
bash fuzz.sh 60
bash coverage.sh
bash planted-faults.sh
