#!/usr/bin/env python3
"""Checks that every file includes only what its room may know: check_layers.py REPOSITORY"""
import pathlib
import re
import sys

HEADERS = ["include/vexo/**"]
LOCKS = ["src/templates/**"]
SUPPORT = [*HEADERS, *LOCKS, "src/support/**"]
CATALOGUE = [*SUPPORT, "src/catalogue/**"]
# What a source needs that implements members of the object.
MEMBERS = ["src/entry/sdk_parameters.h", "src/entry/setter_tools.h"]

TIMING = ["station/timing/**"]
PICTURE = ["station/picture/**", "station/timing/Record.h", "station/timing/Simulator.h", "station/timing/Tick.h"]
BOARD = [*HEADERS, "station/**", "virtual_board/**"]
HOST = [*HEADERS, "virtual_board/virtual_board.h", "tools/applet_host/**"]
TOOL = "tools/appletctl/"
BASE = [*HEADERS, f"{TOOL}base/**"]
DRAW = [*BASE, f"{TOOL}draw/**"]
APPLET = [*BASE, *HOST, f"{TOOL}applet/**"]
SCRATCH = [*APPLET, f"{TOOL}scratch/**"]
COMMANDS = [*SCRATCH, *DRAW, f"{TOOL}commands/**"]

# The files of a room, and what they may include. A file belongs to the first row that it matches. A star stays within a
# folder, two stars do not.
ROOMS = [
    ("include/vexo/**", HEADERS),
    ("src/templates/**", LOCKS),
    ("src/support/**", SUPPORT),
    ("src/files/**", [*SUPPORT, "src/files/**"]),
    # The published names and trees of the object, with the records that they are made of.
    ("src/catalogue/build_parameter_info.cpp", [*CATALOGUE, *MEMBERS]),
    ("src/catalogue/publish_parameter_tables.cpp", [*CATALOGUE, "src/entry/PublishedParameters.h"]),
    ("src/catalogue/**", CATALOGUE),
    # State and pure limits of a subject.
    ("src/image/*.h", [*CATALOGUE, "src/image/*.h"]),
    ("src/trigger/*.h", [*CATALOGUE, "src/trigger/*.h"]),
    # The setters of a subject.
    ("src/image/*.cpp", [*CATALOGUE, *MEMBERS, "src/image/*.h", "src/files/*.h"]),
    ("src/trigger/events.cpp", [*CATALOGUE, "src/trigger/*.h", "src/entry/PublishedParameters.h"]),
    ("src/trigger/*.cpp", [*CATALOGUE, *MEMBERS, "src/trigger/*.h"]),
    ("src/entry/**", [*HEADERS, "src/**"]),
    ("station/timing/**", TIMING),
    ("station/picture/**", PICTURE),
    ("station/**", ["station/**"]),
    ("virtual_board/**", BOARD),
    ("tools/applet_host/**", HOST),
    (f"{TOOL}base/**", BASE),
    # Draws lookup tables as the applet has them, not a mere span of numbers.
    (f"{TOOL}draw/curve.*", [*DRAW, f"{TOOL}applet/LutTables.h"]),
    (f"{TOOL}draw/**", DRAW),
    (f"{TOOL}applet/**", APPLET),
    (f"{TOOL}scratch/**", SCRATCH),
    (f"{TOOL}commands/**", COMMANDS),
    (f"{TOOL}cli/**", [*HEADERS, "virtual_board/virtual_board.h", "tools/**"]),
]
CHECKED = ["include", "src", "station", "virtual_board", "tools"]
INCLUDE_ROOTS = ["include", "src", "tools", "."]
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
SUFFIXES = {".h", ".hpp", ".cpp", ".def"}


def matches(path, *patterns):
    expressions = (re.escape(pattern).replace(r"\*\*", ".*").replace(r"\*", "[^/]*") for pattern in patterns)
    return any(re.fullmatch(expression, path) for expression in expressions)


def resolved(root, file, include):
    """The included file, seen from the root; none if there is no such file of ours."""
    for folder in [file.parent, *(root / name for name in INCLUDE_ROOTS)]:
        if (folder / include).is_file():
            return (folder / include).resolve().relative_to(root).as_posix()
    return None


def violations(root, file):
    path = file.relative_to(root).as_posix()
    allowed = next((allowed for pattern, allowed in ROOMS if matches(path, pattern)), None)
    if allowed is None:
        return [f"{path} belongs to no room"]
    includes = INCLUDE.findall(file.read_text(encoding="utf-8"))
    targets = [(include, resolved(root, file, include)) for include in includes]
    return [f"{path} may not include {include}" for include, target in targets
            if target is None or not matches(target, *allowed)]


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    files = [file for name in CHECKED for file in sorted((root / name).rglob("*")) if file.suffix in SUFFIXES]
    wrong = [line for file in files for line in violations(root, file)]
    print("\n".join(wrong) or f"{len(files)} files include only what their rooms may know")
    sys.exit(1 if wrong or not files else 0)


main()
