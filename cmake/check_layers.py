#!/usr/bin/env python3
"""Checks that the rooms of the library know only lower ones: check_layers.py SRC_FOLDER"""
import pathlib
import re
import sys

# What each room may include. The sources that implement the wrapper's own members may see everything.
ALLOWED = {
    "templates": {"templates"},
    "support": {"templates", "support"},
    "catalogue": {"templates", "support", "catalogue"},
    "files": {"templates", "support", "files"},
    "image": {"templates", "support", "catalogue", "image"},
    "trigger": {"templates", "support", "catalogue", "trigger"},
    "entry": {"templates", "support", "catalogue", "files", "image", "trigger", "entry"},
}
# Tools of the setters without the object itself: open to every subject.
OPEN_HEADERS = {"entry/setter_tools.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def is_wrapper_source(text):
    return re.search(r"^[^\n/]*\bFgLoomWrapperImpl::\w+\(", text, re.MULTILINE) is not None


def main():
    source = pathlib.Path(sys.argv[1])
    wrong, read = [], 0
    for file in sorted(source.rglob("*")):
        if file.suffix not in {".h", ".cpp", ".def"}:
            continue
        read += 1
        text = file.read_text(encoding="utf-8")
        room = file.relative_to(source).parts[0]
        if file.suffix == ".cpp" and is_wrapper_source(text):
            continue
        for include in INCLUDE.findall(text):
            target = include.split("/")[0]
            if target in ALLOWED and target not in ALLOWED[room] and include not in OPEN_HEADERS:
                wrong.append(f"{file.relative_to(source)} may not include {include}")
    print("\n".join(wrong) or f"{read} files, every include leads downwards")
    sys.exit(1 if wrong or not read else 0)


main()
