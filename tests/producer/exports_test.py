#!/usr/bin/env python3
"""The producer shows a loader the functions of its header, and nothing else: producer_exports_test.py PRODUCER HEADER"""
import re
import subprocess
import sys

listed = subprocess.run(["nm", "--dynamic", "--defined-only", sys.argv[1]], check=True, capture_output=True, text=True)
shown = {line.split()[-1] for line in listed.stdout.splitlines()}
with open(sys.argv[2], encoding="utf-8") as header:
    declared = set(re.findall(r"^GC_ERROR (\w+)\(", header.read(), re.MULTILINE))
assert len(declared) == 64, len(declared)
assert shown == declared, sorted(shown ^ declared)
