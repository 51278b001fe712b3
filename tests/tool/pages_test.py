"""Runs the commands of a page and compares what they print with the page.

    pages_test.py FOLDER_OF_APPLETCTL PAGE...

Each section of a page has a folder of its own. In it, in order: a block marked "KIND file=NAME" becomes that file; in a
block marked "sh", or in an indented block that starts with "$ ", bash runs each line "$ COMMAND" (a backslash continues
it). The lines below a command are what it must print; a line "..." is any number of lines, "..." within a line is any text. A
command ends with 0, or with what a comment behind it says: "# exit 1"; "# until Ctrl-C" is one that has no end. A command
with the comment "# not run" is left out. Lines that begin with "appletctl> " are typed into the command above them.
A picture that a section shows and that its commands make, ![...](images/NAME), must be the stored one: a PNG by its
pixels, whatever the compression, all else by its bytes.

PAGES_RENEW=1 writes what is printed into the page, where the page has no "...", and stores the pictures; review the
difference.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import zlib


def sections(page):
    """Pairs of title and text: of what is above the first ## title, and of each section."""
    parts = ["the top", *re.split(r"^## (.*)$", page, flags=re.MULTILINE)]
    return zip(parts[::2], parts[1::2])


def blocks(text):
    """Pairs of mark and content of the fenced blocks and of the indented ones with commands."""
    fenced_or_indented = r"^```(.+)\n((?:.*\n)*?)```$|((?:^    .*\n(?:^\n(?=    ))*)+)"
    for mark, content, indented in re.findall(fenced_or_indented, text, flags=re.MULTILINE):
        if mark:
            yield mark, content
        elif indented.startswith("    $ "):
            yield "sh", re.sub(r"^    ", "", indented, flags=re.MULTILINE)


def commands(content):
    """Lists of command, expected lines and typed lines of a block."""
    found = []
    lines = iter(content.splitlines())
    for line in lines:
        if line.startswith("$ "):
            command = line[2:]
            while command.endswith("\\"):
                command = command[:-1] + next(lines)
            found.append((command, [], []))
        elif line.startswith("appletctl> "):
            found[-1][2].append(line[len("appletctl> "):])
        else:
            found[-1][1].append(line)
    return found


def matches(expected, printed):
    """True when the lines are the same, "..." standing for any number of them."""
    if not expected:
        return not printed
    if expected[0].strip() == "...":
        return any(matches(expected[1:], printed[i:]) for i in range(len(printed) + 1))
    pattern = ".*".join(re.escape(part) for part in expected[0].rstrip().split("..."))
    if not printed or not re.fullmatch(pattern, printed[0].rstrip()):
        return False
    return matches(expected[1:], printed[1:])


def run(command, expected, typed, folder, environment):
    """What is wrong with a command, nothing if all is well; and the lines that it printed."""
    code = re.search(r"# exit (\d+)$", command)
    if command.endswith("# until Ctrl-C"):
        command = "timeout --signal=INT 1 " + command + "\n[ $? = 124 ]"
    ended = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True, timeout=300,
                           input="\n".join(typed), stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    wanted = int(code.group(1)) if code else 0
    printed = ended.stdout.splitlines()
    if ended.returncode == wanted and matches(expected, printed):
        return "", printed
    return f"$ {command}\n-- expected, with exit code {wanted}:\n" + "\n".join(expected) + \
        f"\n-- printed, with exit code {ended.returncode}:\n{ended.stdout}", printed


def renewed(page, command, expected, printed):
    """The page with other lines below a command, unless they are given in part."""
    if any("..." in line for line in expected):
        return page
    old, new = ("".join(f"{line}\n" for line in (f"$ {command}", *lines)) for lines in (expected, printed))
    return page.replace(old, new)


def content_of(picture):
    """The bytes of a picture; of a PNG its chunks, their image data unpacked."""
    with open(picture, "rb") as file:
        content = file.read()
    if not picture.endswith(".png"):
        return content
    chunks, offset = {}, 8
    while offset < len(content):
        size = int.from_bytes(content[offset:offset + 4], "big")
        kind = content[offset + 4:offset + 8]
        chunks[kind] = chunks.get(kind, b"") + content[offset + 8:offset + 8 + size]
        offset += size + 12
    chunks[b"IDAT"] = zlib.decompress(chunks[b"IDAT"])
    return chunks


def different_pictures(text, folder, page_file):
    """The pictures of a section that are not as they are made now. They are stored if that is wanted."""
    different = []
    for path in re.findall(r"!\[[^]]*\]\((\S*images/\S+)\)", text):
        made, stored = os.path.join(folder, os.path.basename(path)), os.path.join(os.path.dirname(page_file), path)
        if not os.path.exists(made):
            continue
        if "PAGES_RENEW" in os.environ:
            shutil.copyfile(made, stored)
        elif not os.path.exists(stored) or content_of(made) != content_of(stored):
            different.append(path)
    return different


def check_page(page_file, environment):
    """Number of the commands on the page, and of those that print something else."""
    with open(page_file, encoding="utf-8") as file:
        page = file.read()
    count = failures = 0
    for title, text in sections(page):
        with tempfile.TemporaryDirectory() as folder:
            for mark, content in blocks(text):
                target = re.search(r"file=(\S+)", mark)
                if target:
                    with open(os.path.join(folder, target.group(1)), "w", encoding="utf-8") as file:
                        file.write(content)
                for command, expected, typed in commands(content) if mark == "sh" else []:
                    if command.endswith("# not run"):
                        continue
                    count += 1
                    wrong, printed = run(command, expected, typed, folder, environment)
                    if wrong:
                        failures += 1
                        print(f"{title}:\n{wrong}\n")
                        page = renewed(page, command, expected, printed)
            for picture in different_pictures(text, folder, page_file):
                failures += 1
                print(f"{title}: {picture} is not the picture that the commands make\n")
    if "PAGES_RENEW" in os.environ:
        with open(page_file, "w", encoding="utf-8") as file:
            file.write(page)
    print(f"{os.path.basename(page_file)}: {count} commands, {failures} not as on the page")
    return count, failures


def main(program_folder, *page_files):
    path = os.path.abspath(program_folder) + os.pathsep + os.environ["PATH"]
    environment = {"PATH": path, "LC_ALL": "C.UTF-8"}
    for name in ("APPLET_UNDER_TEST", "ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "LD_LIBRARY_PATH"):
        if name in os.environ:
            environment[name] = os.environ[name]
    results = [check_page(page, environment) for page in page_files]
    return 0 if all(count > 0 and failures == 0 for count, failures in results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
