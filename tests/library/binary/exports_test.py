"""What a loader sees of the applet library: exported symbols, needed libraries, work at load.

usage: exports_test.py LIBRARY
"""
import re
import subprocess
import sys

EXPORTED = set("""
    Std_entry Info mkstemps
    Fg_getAppletId Fg_AcquireEx Fg_stopAcquireEx Fg_getStatusEx Fg_getLastPicNumberEx
    Fg_getLastPicNumberBlockingEx
    Fg_setParameterWithType Fg_getParameterWithType Fg_freeParameterStringWithType Fg_getNrOfParameter
    Fg_getParameterName Fg_getParameterId Fg_getParameterIdByName Fg_saveConfig Fg_loadConfig
    Fg_getParameterInfoXML Fg_getEventMask Fg_getEventName Fg_getLastErrorNumber Fg_getParameterInfo
    Fg_AllocShading Fg_FreeShading Shad_SetSubValueLine Shad_SetMultValueLine Shad_SetFixedPatternNoiseLine
    Shad_GetMaxLine Shad_GetAccess Shad_FreeAccess Shad_WriteActLine
    Fg_FreeGrabber
""".split())
PLATFORM = {"libtslrt.so", "libvexo_hw.so"}
SYSTEM = re.compile(r"(libstdc\+\+|libm|libc|libgcc_s|libpthread|libdl|ld-linux-x86-64)\.so\.\d+$")
SANITIZERS = re.compile(r"lib(asan|ubsan|tsan)\.so\.\d+$")


def read(*options):
    return subprocess.run(["readelf", "-W", *options, sys.argv[1]],
                          check=True, capture_output=True, text=True).stdout


def symbols():
    """Kind, binding and name of each symbol that the library defines for others."""
    for line in read("--dyn-syms").splitlines():
        words = line.split()
        if len(words) >= 8 and words[0].rstrip(":").isdigit() and words[6] != "UND":
            yield words[3], words[4], words[7].split("@")[0]


failures = []


def check(holds, text):
    if not holds:
        failures.append(text)


assert len(EXPORTED) == 33
defined = list(symbols())
names = {name for _, _, name in defined}
check(names == EXPORTED, f"missing: {sorted(EXPORTED - names)}, not wanted: {sorted(names - EXPORTED)}")
for kind, binding, name in defined:
    check((kind, binding) == ("FUNC", "GLOBAL"), f"{name} is {binding} {kind}")

dynamic = read("--dynamic")
needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic))
sanitized = {name for name in needed if SANITIZERS.match(name)}
check(PLATFORM <= needed, f"not needed: {sorted(PLATFORM - needed)}")
others = sorted(name for name in needed - PLATFORM - sanitized if not SYSTEM.match(name))
check(not others, f"needed and not of the system: {others}")
check(re.search(r"\(SONAME\).*\[libGrab_TwinLaneLineColor\.so\]", dynamic), "another soname")
check("TEXTREL" not in dynamic, "text is relocated")
check(not re.search(r"\((RPATH|RUNPATH)\)", dynamic), "carries a search path of its build")

# What a library does while it is loaded costs every process that loads it: this one notes its working directory, for
# relative paths, and builds constant data only.
if not sanitized:
    check(not re.search(r"\.(init_array)\s", read("--sections")) or
          int(re.search(r"\(INIT_ARRAYSZ\)\s+(\d+)", dynamic).group(1)) <= 16,
          "more than the compiler's own initialiser and that of the working directory runs at load")

for failure in failures:
    print(failure)
sys.exit(bool(failures))
