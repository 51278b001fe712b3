"""Plants known faults into a copy of the sources, one at a time, and lets the tests look for them.

usage: planted_faults.py [--named-tests-only] [PATTERN...]

A PATTERN selects faults by TABLE/NAME, such as 'image/*'; without one, all are planted. --check only compares the
tables with the sources. tests/planted_faults/README.md describes the tables.
"""

import fnmatch
import os
import re
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass, field
from pathlib import Path

TABLES = Path("tests/planted_faults")
PLANTED = Path("build/planted")
COPY = PLANTED / "source"
LEAST_SHARE = 0.95
SECONDS_PER_TEST = 300  # a fault may hang a test

# The presets to test a fault in, with the programs and tests to run if the tests named with the fault miss it.
FALLBACK = {
    "release": (["all"], "."),
    "asan": (["class_tests", "logging_tests", "applet_tests"], r"^(class|logging|applet)_tests\."),
    "tsan": (["class_tests", "logging_tests", "endurance_tests"],
             r"^((class|logging)_tests\.|endurance_tests\.Threads)"),
}


class TableError(Exception):
    pass


@dataclass
class Fault:
    table: str
    name: str
    file: str
    run: str
    targets: list
    tests: str  # a regular expression
    lines: list = field(default_factory=list)  # (sign, text) of a context or changed line

    @property
    def full_name(self):
        return f"{self.table}/{self.name}"

    def planted_in(self, source):
        """The text of the source with the fault. Indentation is not compared."""
        before = [text for sign, text in self.lines if sign in " -"]
        lines = source.split("\n")
        stripped = [line.strip() for line in lines]
        matches = [i for i in range(len(lines)) if stripped[i:i + len(before)] == before]
        if len(matches) != 1:
            raise TableError(f"{self.full_name}: {len(matches)} places in {self.file} have the lines\n    "
                             + "\n    ".join(before))
        after, index = [], matches[0]
        for sign, text in self.lines:
            if sign == "+":
                after.append(text)
                continue
            if sign == " ":
                after.append(lines[index])
            index += 1
        return "\n".join(lines[:matches[0]] + after + lines[index:])


def read_table(path):
    """The faults of one table; see tests/planted_faults/README.md."""
    values = {"file": "", "run": "release", "tests": ""}
    faults = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        word, _, rest = line.partition(" ")
        if line[:1] in ("+", "-", " ") and faults:
            faults[-1].lines.append((line[0], line[1:].strip()))
        elif word in values:
            values[word] = rest.strip()
        elif word == "fault":
            *targets, tests = values["tests"].split() or [""]
            faults.append(Fault(path.stem, rest.strip(), values["file"], values["run"], targets, tests))
        elif line and word != "#":
            raise TableError(f"{path}:{number}: '{line}' is not a line of a table")
    return faults


def read_tables(patterns):
    faults = [fault for path in sorted(TABLES.glob("*.txt")) for fault in read_table(path)]
    names = [fault.full_name for fault in faults]
    for name in names:
        if names.count(name) > 1:
            raise TableError(f"{name}: two faults have this name")
    misfits = []
    for fault in faults:
        try:
            fault.planted_in(Path(fault.file).read_text(encoding="utf-8"))
        except TableError as error:
            misfits.append(str(error))
    if misfits:
        raise TableError("\n".join(misfits))
    wanted = [fault for fault in faults
              if not patterns or any(fnmatch.fnmatch(fault.full_name, pattern) for pattern in patterns)]
    if not wanted:
        raise TableError(f"no fault is called {' or '.join(patterns)}")
    return sorted(wanted, key=lambda fault: list(FALLBACK).index(fault.run))


def refresh_copy():
    """Copies the files that differ, and no others, so that no more than they is built again."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            check=True, capture_output=True, text=True).stdout
    names = {name for name in listed.split("\0") if name and Path(name).is_file()}
    for old in [path for path in COPY.rglob("*") if path.is_file()]:
        name = str(old.relative_to(COPY))
        if name not in names and not name.startswith("build/"):
            old.unlink()
    for name in sorted(names):
        target = COPY / name
        if target.is_file() and target.read_bytes() == Path(name).read_bytes():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(name, target)


def run_logged(command, log):
    with open(PLANTED / log, "w", encoding="utf-8") as output:
        return subprocess.run(command, stdout=output, stderr=subprocess.STDOUT, check=False).returncode == 0


def build(run, targets):
    return run_logged(["cmake", "--build", str(COPY / "build" / run), "--parallel", str(os.cpu_count()), "--target", *targets],
                      "build.log")


def tests_pass(run, regex):
    return run_logged(["ctest", "--test-dir", str(COPY / "build" / run), "--parallel", str(os.cpu_count()),
                       "--stop-on-failure", "--timeout", str(SECONDS_PER_TEST), "--no-tests=error",
                       "--tests-regex", regex], "tests.log")


def failed_tests():
    log = (PLANTED / "tests.log").read_text(encoding="utf-8", errors="replace")
    return " ".join(re.findall(r"^\s*\d+ - (\S+) .*\(", log, re.MULTILINE)) or "no test: see build/planted/tests.log"


def prepare(run, faults, named_only):
    """Builds the copy without a fault; its tests must pass."""
    print(f"The copy without a fault: {run}", flush=True)
    configure = ["cmake", "--preset", run, "--log-level=WARNING"]
    if shutil.which("ninja"):
        configure += ["-G", "Ninja"]
    if shutil.which("ccache"):
        configure += [f"-DCMAKE_{language}_COMPILER_LAUNCHER=ccache" for language in ("C", "CXX")]
    subprocess.run(configure, cwd=COPY, check=True)
    targets, regexes = FALLBACK[run][0], {FALLBACK[run][1]}
    if named_only:
        targets = sorted({target for fault in faults if fault.run == run for target in fault.targets})
        regexes = {fault.tests for fault in faults if fault.run == run}
    if not build(run, targets):
        sys.exit("It does not build: see build/planted/build.log")
    if not all(tests_pass(run, regex) for regex in regexes):
        sys.exit(f"A test fails without a fault: {failed_tests()}")


def outcome(fault, named_only):
    """Runs the tests on the fault. Returns the text to print, and whether a test detected it."""
    if not build(fault.run, fault.targets):
        return "DOES NOT COMPILE", False
    if not tests_pass(fault.run, fault.tests):
        return f"caught by {failed_tests()}", True
    if not named_only:
        targets, regex = FALLBACK[fault.run]
        if build(fault.run, targets) and not tests_pass(fault.run, regex):
            return f"caught, but not by the tests named with it: {failed_tests()}", True
    return "SURVIVED", False


def main():
    arguments = sys.argv[1:]
    named_only = "--named-tests-only" in arguments
    check_only = "--check" in arguments
    try:
        faults = read_tables([argument for argument in arguments if not argument.startswith("--")])
    except TableError as error:
        sys.exit(str(error))
    if check_only:
        print(f"{len(faults)} faults fit the sources")
        return
    # The copy's objects are found in the cache of a neighbouring build: the paths are the same below both.
    os.environ.setdefault("CCACHE_BASEDIR", str(Path.cwd()))
    os.environ.setdefault("CCACHE_NOHASHDIR", "1")
    COPY.mkdir(parents=True, exist_ok=True)
    refresh_copy()
    prepared, caught = set(), 0
    for fault in faults:
        if fault.run not in prepared:
            prepare(fault.run, faults, named_only)
            prepared.add(fault.run)
        source = COPY / fault.file
        sound = source.read_text(encoding="utf-8")
        begin = time.monotonic()
        try:
            source.write_text(fault.planted_in(sound), encoding="utf-8")
            text, is_caught = outcome(fault, named_only)
        finally:
            source.write_text(sound, encoding="utf-8")
        caught += is_caught
        print(f"{fault.full_name} ({fault.run}, {time.monotonic() - begin:.0f} s): {text}", flush=True)
    print(f"{caught} of {len(faults)} faults are caught: {100 * caught / len(faults):.1f} %")
    if caught < LEAST_SHARE * len(faults):
        sys.exit(f"Fewer than {100 * LEAST_SHARE:.0f} %: write a test that sees the others")


main()
