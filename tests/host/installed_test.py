"""An installed tree, moved to another folder: its programs, packages and examples.

usage: installed_test.py CMAKE BUILD FOLDER LIBDIR
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

LARGEST_TOOL = 8_000_000  # bytes, stripped
# What examples print; empty words are not looked at.
EXAMPLES = [
    ("picture_c", ["c.ppm"], "640 x 480 pixels"),
    ("picture_cpp", ["cpp.ppm"], "picture 3 at tick"),
    ("limits_c", [], "set by FG_WIDTH"),
    ("events_c", [], "FG_TRIGGER_INPUT2_FALLING"),
    ("settings_cpp", [], "set: FG_VANTAGEPOINT_TOP_RIGHT, 2048 of 4096 pixels"),
    ("follow_cpp", ["line.mcf", "1"], "loaded: width 1024"),
]


class Tree:
    def __init__(self, cmake, build, folder, libdir):
        self.cmake, self.folder = cmake, folder
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("VEXO", "VBOARD", "APPLET", "LD_"))}
        self.run(cmake, "--install", build, "--prefix", folder / "first", "--strip")
        self.prefix = folder / "moved"
        (folder / "first").rename(self.prefix)
        self.libraries = self.prefix / libdir
        self.private = self.libraries / "vexo"
        self.environment["LD_LIBRARY_PATH"] = str(self.libraries)  # what ldconfig does for a package

    def run(self, *command, **options):
        done = subprocess.run([str(word) for word in command], cwd=self.folder, env=self.environment,
                              capture_output=True, text=True, **options)
        if done.returncode != 0:
            raise SystemExit(f"{' '.join(map(str, command))}: {done.returncode}\n{done.stdout}{done.stderr}")
        return done.stdout


def check_files(tree):
    wanted = ["include/vexo/vexo.h", "include/vexo/vexo.hpp", "include/vexo/fg_api.h", "share/doc/vexo/README.md",
              "share/doc/vexo/examples/picture.c", "share/vexo/stations/demo.json"]
    if (tree.prefix / "bin/appletctl").exists():
        wanted += ["share/bash-completion/completions/appletctl", "share/zsh/vendor-completions/_appletctl",
                   "share/fish/vendor_completions.d/appletctl.fish"]
        if shutil.which("scdoc"):
            wanted += ["share/man/man1/appletctl.1", "share/man/man7/appletctl-parameters.7"]
    paths = [tree.prefix / name for name in wanted]
    paths += [tree.private / "applets/libGrab_TwinLaneLineColor.so", tree.private / "virtual-board/libgrabcore5.so"]
    missing = [str(path) for path in paths if not path.exists() or path.stat().st_size == 0]
    assert not missing, f"missing or empty: {missing}"


def check_links(tree):
    """Each relative link of the installed pages has its file."""
    links = [(page, target) for page in (tree.prefix / "share/doc/vexo").rglob("*.md")
             for target in re.findall(r"\]\(([^)#:]+)[)#]", page.read_text())]
    dead = [f"{page}: {target}" for page, target in links if not (page.parent / target).exists()]
    assert len(links) > 20 and not dead, dead


def check_tool(tree):
    tool = tree.prefix / "bin/appletctl"
    if not tool.exists():
        return
    assert tool.stat().st_size < LARGEST_TOOL, f"appletctl has {tool.stat().st_size} bytes"
    shown = tree.run(tool, "info")
    assert str(tree.private / "applets") in shown, shown
    assert "set by FG_WIDTH" in tree.run(tool, "limits", "FG_XOFFSET")


def build_examples(tree):
    source = tree.prefix / "share/doc/vexo/examples"
    build = tree.folder / "examples"
    tree.run(tree.cmake, "-S", source, "-B", build, f"-DCMAKE_PREFIX_PATH={tree.prefix}")
    tree.run(tree.cmake, "--build", build)
    for program, arguments, words in EXAMPLES:
        shown = tree.run(build / program, *arguments, timeout=120)
        assert words in shown, f"{program}: {shown}"
    c, cpp = ((tree.folder / name).read_bytes() for name in ("c.ppm", "cpp.ppm"))
    assert c.startswith(b"P6\n640 480\n255\n") and len(set(c[15:])) > 100, "no picture in c.ppm"
    assert cpp.startswith(b"P6\n640 480\n65535\n"), cpp[:20]


def run_from_a_link(tree):
    links = tree.folder / "links"
    links.mkdir()
    (links / "libvexo.so.1").symlink_to(tree.libraries / "libvexo.so.1")
    shown = tree.run("env", f"LD_LIBRARY_PATH={links}", tree.folder / "examples/limits_c")
    assert "set by FG_WIDTH" in shown, shown


def run_python(tree):
    package = tree.prefix / "lib/python3/dist-packages"
    if not package.exists():
        print("the Python package was not built: its example is not run")
        return
    tree.environment["PYTHONPATH"] = str(package)
    shown = tree.run("/usr/bin/python3", tree.prefix / "share/doc/vexo/examples/picture.py", "py.png", "FG_FORMAT=FG_COL48")
    assert "640 x 480 pixels of Color 48bit" in shown, shown
    assert (tree.folder / "py.png").read_bytes().startswith(b"\x89PNG"), "py.png is not a picture"


def build_with_pkg_config(tree):
    if not shutil.which("pkg-config"):
        print("pkg-config is missing: vexo.pc is not checked")
        return
    tree.environment["PKG_CONFIG_PATH"] = str(tree.libraries / "pkgconfig")
    flags = tree.run("pkg-config", "--cflags", "--libs", "vexo").split()
    assert flags[-1] == "-lvexo", f"vexo.pc requires {flags}"
    source = tree.prefix / "share/doc/vexo/examples/limits.c"
    tree.run(os.environ.get("CC", "cc"), "-std=c11", "-Wall", "-Werror", source, "-o", "limits_pc", *flags)
    assert "set by FG_WIDTH" in tree.run(tree.folder / "limits_pc")


def main():
    cmake, build, folder, libdir = sys.argv[1:]
    tree = Tree(cmake, build, pathlib.Path(folder), libdir)
    for check in (check_files, check_links, check_tool, build_examples, run_from_a_link, run_python, build_with_pkg_config):
        check(tree)
    shutil.rmtree(folder)


if __name__ == "__main__":
    main()
