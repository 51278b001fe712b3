#!/usr/bin/env bash
# Runs all checks, those that fail soonest first. Takes some hours: for nightly runs.
set -euo pipefail
cd "$(dirname "$0")"
bash test-ratio.sh 0.34
bash test.sh
bash check.sh
bash python-package.sh
bash docs-site.sh
bash check-packages.sh
bash fuzz.sh 60
bash coverage.sh
bash planted-faults.sh
