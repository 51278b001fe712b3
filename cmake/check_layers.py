#!/usr/bin/env python3
"""Checks that every file includes only what its layer may know, and that layers without output print nothing:
check_layers.py REPOSITORY"""
import pathlib
import re
import sys

HEADERS = ["include/vexo/**"]
LOCKS = ["src/templates/**"]
SUPPORT = [*HEADERS, *LOCKS, "src/support/**"]
CATALOGUE = [*SUPPORT, "src/catalogue/**"]
# Required by a source that implements members of the object.
MEMBERS = ["src/entry/sdk_parameters.h", "src/entry/setter_tools.h"]
ENTRY = [*CATALOGUE, *(f"src/{layer}/*.h" for layer in ("image", "trigger", "files")), "src/entry/*",
         "src/entry/runtime/*"]

SIGNALS = ["station/signals/**"]
SCENE = [*SIGNALS, "station/scene/**"]
TIMING = [*SCENE, "station/timing/**"]
PICTURE = [*SCENE, "station/timing/Record.h", "station/picture/**"]
BOARD_TABLES = [*HEADERS, "virtual_board/tables/**"]
BOARD_IMAGES = ["station/**", "virtual_board/images/**"]
BOARD = [*BOARD_TABLES, *BOARD_IMAGES, "virtual_board/virtual_board.h", "virtual_board/board/**"]
BOARD_LIBRARIES = [*BOARD, "virtual_board/libraries/**"]
HOST = [*HEADERS, "virtual_board/virtual_board.h", "tools/applet_host/**"]
TOOLS = "tools/applet_tools/"
TOOLS_BASE = [*HEADERS, "tools/applet_host/text_encoding.h", "tools/applet_host/codes.h", f"{TOOLS}base/**"]
TOOLS_APPLET = [*TOOLS_BASE, *HOST, f"{TOOLS}applet/**"]
TOOLS_SCRATCH = [*TOOLS_APPLET, f"{TOOLS}station/StationFile.h", f"{TOOLS}scratch/*"]
TOOLS_PROBE = [*TOOLS_SCRATCH, f"{TOOLS}scratch/probe/*"]
TOOLS_PICTURES = [*TOOLS_BASE, "virtual_board/virtual_board.h", f"{TOOLS}pictures/**"]
TOOLS_STATION = [*TOOLS_APPLET, *TOOLS_PICTURES, f"{TOOLS}station/**"]
TOOLS_LOADING = [*TOOLS_PROBE, f"{TOOLS}answers/loading/*"]
TOOLS_ANSWERS = [*TOOLS_LOADING, *TOOLS_STATION, f"{TOOLS}answers/*"]
TOOLS_LINT = [*TOOLS_ANSWERS, f"{TOOLS}answers/lint/*"]
TOOLS_ALL = [*TOOLS_LINT, f"{TOOLS}*"]
SOCKET_FILES = [f"{TOOLS}base/{name}.h" for name in ("Descriptor", "socket_descriptors")]
CHANNEL = ["tools/applet_host/Parameter.h", *SOCKET_FILES, "tools/station_channel/**"]
SERVE = [*TOOLS_BASE, "tools/serve/*"]
SERVE_LIVE = [*TOOLS_SCRATCH, *TOOLS_STATION, *CHANNEL, "tools/serve/live/*"]
SERVE_CHANNEL = [*SERVE_LIVE, *SERVE, "tools/serve/channel/*"]
HTTP = "tools/serve/http/"
HTTP_TRANSPORT = [f"{TOOLS}base/block_signals.h",
                  *(f"{HTTP}{name}" for name in ("protocol/HttpMessage.h", "protocol/HttpTransport.h", "transport/**"))]
HTTP_PROTOCOL = [*TOOLS_BASE, f"{HTTP}protocol/**"]
HTTP_STATE = [*TOOLS_ALL, *SERVE_LIVE, *HTTP_PROTOCOL, f"{HTTP}state/**"]
HTTP_ROUTES = [*HTTP_STATE, f"{HTTP}routes/**"]
TOOL = "tools/appletctl/"
BASE = [*TOOLS_BASE, f"{TOOL}base/**"]
DRAW = [*BASE, *TOOLS_PICTURES, f"{TOOL}draw/**"]
PRODUCER = "producer/"
PRODUCER_BASE = [*HEADERS, f"{PRODUCER}gentl.h", f"{PRODUCER}base/**"]
PRODUCER_FEATURES = [*PRODUCER_BASE, "tools/applet_host/Parameter.h", "tools/applet_host/text_encoding.h",
                     f"{PRODUCER}features/**"]
STATION_FILES = [f"{TOOLS}{name}.h"
                 for name in ("applet/Instance", "applet/ParameterList", "base/errors", "station/StationFile")]
SERVED = [*CHANNEL, "tools/serve/StationLocation.h", "tools/serve/local_socket.h"]
PRODUCER_DEVICE = [*PRODUCER_FEATURES, *HOST, *STATION_FILES, *SERVED, f"{PRODUCER}device/**"]
PRODUCER_MODULES = [*PRODUCER_DEVICE, f"{PRODUCER}modules/**"]
HOST_LIBRARY = [*TOOLS_ALL, "host/**"]
COMMANDS = [*TOOLS_ALL, *DRAW, f"{TOOL}commands/*"]
CLI = [*COMMANDS, f"{TOOL}commands/**", "tools/serve/*", f"{TOOL}cli/*"]
SHELL = [*CLI, f"{TOOL}cli/shell/*"]
PAGE_BASE = ["page/base/*"]
PAGE_DRAW = [*PAGE_BASE, "page/draw/*"]

# The files of a layer, and the files that they may include. A file belongs to the first row that it matches. One star
# matches within a folder, two stars also match subfolders.
LAYERS = [
    ("include/vexo/**", HEADERS),
    ("src/templates/platform/*", ["src/templates/platform/*"]),
    ("src/templates/**", LOCKS),
    ("src/support/**", SUPPORT),
    ("src/files/**", [*SUPPORT, "src/files/**"]),
    ("src/catalogue/**", CATALOGUE),
    # State and pure limits of a subject.
    ("src/image/*.h", [*CATALOGUE, "src/image/*.h"]),
    ("src/trigger/*.h", [*CATALOGUE, "src/trigger/*.h"]),
    # The setters of a subject.
    ("src/image/*.cpp", [*CATALOGUE, *MEMBERS, "src/image/*.h", "src/files/*.h"]),
    ("src/trigger/events.cpp", [*CATALOGUE, "src/trigger/*.h", "src/entry/PublishedParameters.h"]),
    ("src/trigger/*.cpp", [*CATALOGUE, *MEMBERS, "src/trigger/*.h"]),
    ("src/entry/runtime/*", [*HEADERS, "src/entry/runtime/*"]),
    ("src/entry/api/*", [*HEADERS, "src/**.h"]),
    ("src/entry/*", ENTRY),
    ("station/signals/**", SIGNALS),
    ("station/scene/**", SCENE),
    ("station/timing/**", TIMING),
    ("station/picture/**", PICTURE),
    ("station/**", ["station/**"]),
    ("virtual_board/tables/**", BOARD_TABLES),
    ("virtual_board/images/**", BOARD_IMAGES),
    ("virtual_board/board/**", BOARD),
    ("virtual_board/libraries/**", BOARD_LIBRARIES),
    ("virtual_board/virtual_board.h", HEADERS),
    ("tools/applet_host/**", HOST),
    (f"{TOOLS}base/**", TOOLS_BASE),
    (f"{TOOLS}applet/**", TOOLS_APPLET),
    (f"{TOOLS}scratch/*", TOOLS_SCRATCH),
    (f"{TOOLS}scratch/probe/*", TOOLS_PROBE),
    (f"{TOOLS}pictures/**", TOOLS_PICTURES),
    (f"{TOOLS}station/**", TOOLS_STATION),
    (f"{TOOLS}answers/loading/*", TOOLS_LOADING),
    (f"{TOOLS}answers/lint/*", TOOLS_LINT),
    (f"{TOOLS}answers/*", TOOLS_ANSWERS),
    (f"{TOOLS}*", TOOLS_ALL),
    ("tools/station_channel/**", CHANNEL),
    ("tools/serve/live/**", SERVE_LIVE),
    ("tools/serve/channel/**", SERVE_CHANNEL),
    (f"{HTTP}transport/**", HTTP_TRANSPORT),
    (f"{HTTP}protocol/**", HTTP_PROTOCOL),
    (f"{HTTP}state/**", HTTP_STATE),
    (f"{HTTP}routes/**", HTTP_ROUTES),
    (f"{HTTP}*", [*HTTP_ROUTES, f"{HTTP}*"]),
    ("tools/serve/**", SERVE),
    # Programs in C++ see only the two headers.
    ("host/vexo.h", []),
    ("host/vexo.hpp", ["host/vexo.h"]),
    ("host/**", HOST_LIBRARY),
    ("python/**", ["host/vexo.h", "python/module/*"]),
    (f"{PRODUCER}base/**", PRODUCER_BASE),
    (f"{PRODUCER}features/**", PRODUCER_FEATURES),
    (f"{PRODUCER}device/**", PRODUCER_DEVICE),
    (f"{PRODUCER}modules/**", PRODUCER_MODULES),
    (f"{PRODUCER}**", [*PRODUCER_MODULES, f"{PRODUCER}**"]),
    (f"{TOOL}base/**", BASE),
    (f"{TOOL}draw/**", DRAW),
    # The layers of the commands may include their common code, and not each other.
    *((f"{TOOL}commands/{layer}/**", [*COMMANDS, f"{TOOL}commands/{layer}/**"])
      for layer in ("read", "change", "files", "signals")),
    (f"{TOOL}commands/**", COMMANDS),
    (f"{TOOL}cli/*", CLI),
    (f"{TOOL}cli/scenario/*", [*CLI, f"{TOOL}cli/scenario/*"]),
    (f"{TOOL}cli/shell/*", SHELL),
    (f"{TOOL}cli/station/*", [*SHELL, "tools/serve/**", f"{TOOL}cli/station/*"]),
    ("page/base/*", PAGE_BASE),
    ("page/draw/*", PAGE_DRAW),
    ("page/image/*", [*PAGE_DRAW, "page/image/*"]),
    ("page/panels/*", [*PAGE_DRAW, "page/panels/*"]),
    ("page/*", ["page/**"]),
]
# Printing code, in files that must not print.
SILENT = [f"{TOOLS}**", "host/**.h", "host/**.hpp", "host/**.cpp", "python/**", "tools/serve/**",
          "tools/station_channel/**", f"{PRODUCER}**"]
PRINTING = re.compile(r"#\s*include\s+<(?:iostream|cstdio|stdio\.h|print)>|"
                      r"\bstd::(?:cout|cerr|clog)\b|\b(?:f?printf|f?puts|putchar)\(")
CHECKED = ["include", "src", "station", "virtual_board", "tools", "host", "python", "producer", "page"]
INCLUDE_ROOTS = ["include", "src", "tools", "producer", "."]
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<][^">]+)[">]', re.MULTILINE)
IMPORT = re.compile(r"\b(?:from |import\()('[^']+)'")
SUFFIXES = {".h": INCLUDE, ".hpp": INCLUDE, ".c": INCLUDE, ".cpp": INCLUDE, ".def": INCLUDE, ".js": IMPORT}


def matches(path, *patterns):
    expressions = (re.escape(pattern).replace(r"\*\*", ".*").replace(r"\*", "[^/]*") for pattern in patterns)
    return any(re.fullmatch(expression, path) for expression in expressions)


def resolved(root, file, include):
    """The included file, relative to the root; None if the project has no such file."""
    for folder in [file.parent, *(root / name for name in INCLUDE_ROOTS)]:
        if (folder / include).is_file():
            return (folder / include).resolve().relative_to(root).as_posix()
    return None


def violations(root, file):
    path = file.relative_to(root).as_posix()
    allowed = next((allowed for pattern, allowed in LAYERS if matches(path, pattern)), None)
    if allowed is None:
        return [f"{path} belongs to no layer"]
    text = file.read_text(encoding="utf-8")
    includes = SUFFIXES[file.suffix].findall(text)
    targets = [(include, resolved(root, file, include[1:])) for include in includes]
    wrong = [f"{path} may not include {include[1:]}" for include, target in targets
             if not (target is None and include[0] == "<" or target is not None and matches(target, *allowed))]
    if matches(path, *SILENT):
        wrong += [f"{path} may not print: {found}" for found in PRINTING.findall(text)]
    return wrong


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    files = [file for name in CHECKED for file in sorted((root / name).rglob("*")) if file.suffix in SUFFIXES]
    wrong = [line for file in files for line in violations(root, file)]
    print("\n".join(wrong) or f"{len(files)} files include only what their layers may know")
    sys.exit(1 if wrong or not files else 0)


main()
