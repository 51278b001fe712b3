#!/usr/bin/env python3
"""Lists what was never reached, and fails below a promise.

coverage_report.py FOLDER SUMMARY lines=PERCENT branches=PERCENT <COUNTS

SUMMARY and COUNTS are what llvm-cov exports of FOLDER, as a summary in JSON and in the lcov format. The shares are those of
the summary, which counts the instances of a template as one; the list has them all.
"""
import json
import os
import sys
from collections import defaultdict


def read(stream):
    """By kind, file and location: whether it was reached. A branch's location is its line and one of its outcomes."""
    reached = {"lines": defaultdict(dict), "branches": defaultdict(dict)}
    file = None
    for row in stream:
        key, _, rest = row.strip().partition(":")
        words = rest.split(",")
        if key == "SF":
            file = rest
        elif key == "DA":
            location = int(words[0])
            reached["lines"][file][location] = reached["lines"][file].get(location, False) or words[1] != "0"
        elif key == "BRDA":
            location = (int(words[0]), words[1], words[2])
            hit = words[3] not in ("0", "-")
            reached["branches"][file][location] = reached["branches"][file].get(location, False) or hit
    return reached


def numbers_of(locations):
    lines = sorted({location if isinstance(location, int) else location[0] for location in locations})
    return " ".join(map(str, lines))


def main():
    folder, summary, *promises = sys.argv[1:]
    reached = read(sys.stdin)
    for file in sorted(reached["lines"]):
        for kind, files in reached.items():
            left = [location for location, hit in files[file].items() if not hit]
            if left:
                print(f"{os.path.relpath(file, folder)}: {kind} not reached: {numbers_of(left)}")
    with open(summary, encoding="utf-8") as file:
        totals = json.load(file)["data"][0]["totals"]
    broken = False
    for kind, _, least in (promise.partition("=") for promise in promises):
        total = totals[kind]
        print(f"{kind}: {total['covered']} of {total['count']}, {total['percent']:.2f} % (promised: {least} %)")
        broken |= total["percent"] < float(least)
    sys.exit(broken)


main()
