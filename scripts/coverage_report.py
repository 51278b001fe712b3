#!/usr/bin/env python3
"""Sums up counts of lines and branches: coverage_report.py FOLDER lines=PERCENT branches=PERCENT <COUNTS

COUNTS is the lcov format. Lists by file what was never reached; fails if one share is below its percentage.
"""
import os
import sys
from collections import defaultdict


def read(stream):
    """By kind, file and place: whether it was reached. A branch's place is its line and one of its outcomes."""
    reached = {"lines": defaultdict(dict), "branches": defaultdict(dict)}
    file = None
    for row in stream:
        key, _, rest = row.strip().partition(":")
        words = rest.split(",")
        if key == "SF":
            file = rest
        elif key == "DA":
            place = int(words[0])
            reached["lines"][file][place] = reached["lines"][file].get(place, False) or words[1] != "0"
        elif key == "BRDA":
            place = (int(words[0]), words[1], words[2])
            hit = words[3] not in ("0", "-")
            reached["branches"][file][place] = reached["branches"][file].get(place, False) or hit
    return reached


def numbers_of(places):
    lines = sorted({place if isinstance(place, int) else place[0] for place in places})
    return " ".join(map(str, lines))


def main():
    folder, *promises = sys.argv[1:]
    reached = read(sys.stdin)
    for file in sorted(reached["lines"]):
        for kind, files in reached.items():
            left = [place for place, hit in files[file].items() if not hit]
            if left:
                print(f"{os.path.relpath(file, folder)}: {len(left)} {kind} not reached: {numbers_of(left)}")
    broken = False
    for kind, _, least in (promise.partition("=") for promise in promises):
        hits = [hit for places in reached[kind].values() for hit in places.values()]
        share = 100 * sum(hits) / len(hits)
        print(f"{kind}: {sum(hits)} of {len(hits)}, {share:.2f} % (promised: {least} %)")
        broken |= share < float(least)
    sys.exit(broken)


main()
