"""Makes the page of all parameters for the site: parameters.py PAGE.html PARAMETERS.md

PAGE.html is what `appletctl docs --html` writes. Its groups and names become headings, which the contents and the search of
the site show; the descriptions stay as they are.
"""
import pathlib
import re
import sys

HEAD = """# Parameters

All parameters of the applet with their limits, and what moves these. `appletctl docs --html` writes the same as one page.
"""
GROUP = re.compile(r'<h2\b[^>]*>(?P<group>.*?)</h2>')
PARAMETER = re.compile(r'<article id="(?P<name>\w+)">\s*<h3>.*?(?:<small>(?P<title>.*?)</small>)?</h3>(?P<text>.*?)</article>', re.DOTALL)


def main():
    source, target = map(pathlib.Path, sys.argv[1:])
    page = source.read_text(encoding="utf-8")
    parts = [HEAD]
    names = 0
    for found in re.finditer(f"{GROUP.pattern}|{PARAMETER.pattern}", page, re.DOTALL):
        if found["group"]:
            parts.append(f"\n## {found['group']}\n")
            continue
        names += 1
        title = f", {found['title']}" if found["title"] else ""
        parts.append(f"\n### {found['name']}{title}\n\n```{{raw}} html\n"
                     f"<div id=\"{found['name']}\" class=\"parameter\">{found['text'].strip()}</div>\n```\n")
    if names != page.count("<article"):
        sys.exit(f"{source}: {page.count('<article')} parameters, and {names} of them were understood")
    target.write_text("".join(parts), encoding="utf-8")


if __name__ == "__main__":
    main()
