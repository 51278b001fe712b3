"""The protections that the files of a build carry, as readelf and objdump show them.

usage: hardening_test.py checked|unchecked FILE...

`checked` files check the bounds of the standard library's containers.
"""
import re
import subprocess
import sys

GUARDS = {"checked": True, "unchecked": False}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def protections(path, is_checked):
    """What each protection is called, and whether the file has it."""
    read = output("readelf", "-W", "--segments", "--dynamic", "--notes", "--dyn-syms", path)
    code = output("objdump", "--disassemble", "--no-show-raw-insn", path)
    imported = set(re.findall(r"UND (\w+)", read))
    defined = re.findall(r"FUNC +GLOBAL +DEFAULT +\d+ (\w+)", read)
    stack = re.search(r"GNU_STACK.*?\s([RWE ]{3})\s+0x", read)
    yield "a stack that is not executable", stack and "E" not in stack.group(1)
    yield "no segment to write and to execute", not re.search(r"LOAD.*\sRWE\s", read)
    yield "relocations that are read-only", "GNU_RELRO" in read
    yield "symbols bound at load", re.search(r"BIND_NOW|\bNOW\b", read)
    yield "stack guards", "__stack_chk_fail" in imported
    yield "the mark of the shadow stack", re.search(r"x86 feature:.*SHSTK", read)
    entries = re.findall(r"^[0-9a-f]+ <(\w+)>:\n.*?\t(\w+)", code, re.MULTILINE)
    landing = {name for name, first in entries if first == "endbr64"}
    yield "indirect branch targets", landing and landing.issuperset(name for name in defined if name in dict(entries))
    if not re.search("vexo_hw|tslrt|grabcore5|dispatcher|producer", path):  # which have small frames and no such calls
        yield "probes of large stack frames", re.search(r"\tor[ql]\s+\$0x0,(0x[0-9a-f]+)?\(%rsp\)", code)
        yield "checked calls of the C library", any(name.endswith("_chk") for name in imported)
    has_checks = any("__glibcxx_assert_fail" in name for name in imported)
    yield ("bounds of containers checked" if is_checked else "no cost of checks in the library"), has_checks == is_checked


failures = []
is_checked = False
for argument in sys.argv[1:]:
    if argument in GUARDS:
        is_checked = GUARDS[argument]
        continue
    failures += [f"{argument}: not there: {name}" for name, holds in protections(argument, is_checked) if not holds]
print(*failures, sep="\n")
sys.exit(bool(failures))
