"""What libvexo.so exports and needs: exports_test.py LIBRARY HEADER"""
import re
import subprocess
import sys

PRIVATE = {"vexo_private_run_scratch_board"}  # for vexo-scratch


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def main():
    library, header = sys.argv[1:]
    exported = {line.split()[-1].split("@")[0] for line in output("nm", "-D", "--defined-only", library).splitlines()
                if " A " not in line}
    with open(header, encoding="utf-8") as file:
        declared = set(re.findall(r"^\w[\w *]*?\b(vexo_\w+)\(", file.read(), re.MULTILINE))
    dynamic = output("readelf", "-d", library)
    needed = re.findall(r"NEEDED.*\[(.*)\]", dynamic)
    problems = []
    if len(declared) < 40:
        problems.append(f"the header has only {len(declared)} functions")
    if exported != declared | PRIVATE:
        problems.append(f"exported and declared differ: {sorted(exported ^ (declared | PRIVATE))}")
    if "[libvexo.so.1]" not in dynamic:
        problems.append("the soname is not libvexo.so.1")
    # Those of the applet and the board are opened, not linked.
    if own := [name for name in needed if re.match(r"lib(vexo|tslrt|grabcore|Grab)", name)]:
        problems.append(f"it is linked to {own}")
    print("\n".join(problems) or f"{len(exported)} functions")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
