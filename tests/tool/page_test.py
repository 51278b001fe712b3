#!/usr/bin/env python3
"""The page of a station in a real browser.

page_test.py APPLETCTL VENV PICTURES

Makes a virtual environment in the folder VENV with the package playwright, unless it is there, and drives Debian's
chromium. Where one of them cannot be had it says so and answers 77: skipped. Pictures of the page go to PICTURES;
PAGE_RENEW=1 also writes docs/images/page.png. PAGE_UNDER_TEST=FOLDER takes the page's files from there instead of
those in the program."""
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

PACKAGE = "playwright>=1.40,<2"
SKIPPED = 77


def run_in_environment():
    browser = shutil.which("chromium") or shutil.which("chromium-browser")
    if not browser:
        print("skipped: there is no chromium (Debian: the package chromium)")
        sys.exit(SKIPPED)
    folder = pathlib.Path(sys.argv[2])
    python = folder / "bin" / "python"
    if not python.exists() or subprocess.run([python, "-c", "import playwright"], capture_output=True).returncode != 0:
        for what, command in (
                ("no virtual environment can be made (Debian: python3-venv)",
                 [sys.executable, "-m", "venv", "--clear", folder]),
                ("the package playwright cannot be had from the package index",
                 [python, "-m", "pip", "install", "--quiet", "--disable-pip-version-check", "--timeout", "20",
                  "--retries", "1", PACKAGE])):
            done = subprocess.run(command, capture_output=True, text=True)
            if done.returncode != 0:
                print(f"skipped: {what}:\n{done.stderr}")
                sys.exit(SKIPPED)
    os.execve(python, [str(python), __file__, *sys.argv[1:]], {**os.environ, "PAGE_BROWSER": browser})


if "PAGE_BROWSER" not in os.environ:
    if "--port" not in subprocess.run([sys.argv[1], "serve", "--help"], capture_output=True, text=True).stdout:
        print("skipped: this appletctl was built without the page")
        sys.exit(SKIPPED)
    run_in_environment()

sys.dont_write_bytecode = True  # the tests are in the sources
from page.image import Image  # noqa: E402,F401
from page.panels import Panels  # noqa: E402,F401
from page.whole import Whole  # noqa: E402,F401

if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
