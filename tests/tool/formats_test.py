"""Holds the pages of the file formats against the program.

    formats_test.py FOLDER_OF_PAGES APPLETCTL

Each page has a grammar, a block marked "lark", and an example, a block marked "... file=NAME". What the program
writes and the example must follow the grammar, and the program must read the example as the page says.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

import lark

# Page, arguments that write such a file, arguments that read the example, their exit code, part of the answer.
PAGES = [
    ("configuration-file", ["save"], ["load"], 1, "FG_WIDTH"),
    ("lookup-table-file", ["lut", "save"], ["lut", "load"], 0, "three-elements.lut"),
    ("parameter-document", ["xml", "-o"], None, 0, None),
]


def block(page, mark):
    """Content and mark of the first block of the page that has this in its mark."""
    found = re.search(rf"^```(\S*[ ]?{mark}\S*)\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
    return found.group(2), found.group(1)


def main(pages_folder, program):
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        for name, write, read, code, part in PAGES:
            page = (pathlib.Path(pages_folder) / f"{name}.md").read_text(encoding="utf-8")
            parser = lark.Lark(block(page, "lark")[0], parser="lalr")
            example, mark = block(page, "file=")
            file = pathlib.Path(folder) / mark.split("file=")[1]
            file.write_bytes(example.encode())
            written = pathlib.Path(folder) / ("written" + file.suffix)
            subprocess.run([program, *write, written], check=True, stdout=subprocess.DEVNULL)
            for source in (file, written):
                try:
                    parser.parse(source.read_bytes().decode())
                except lark.UnexpectedInput as error:
                    failures.append(f"{name}: {source.name} does not follow the grammar: {error}")
            if read:
                ended = subprocess.run([program, *read, file], capture_output=True, text=True)
                if ended.returncode != code or part not in ended.stdout + ended.stderr:
                    failures.append(f"{name}: the example is read with {ended.returncode}: {ended.stdout}{ended.stderr}")
    print("\n".join(failures) or f"{len(PAGES)} formats as on their pages")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
