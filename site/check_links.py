"""Fails if a link between the pages of a site has no target: check_links.py SITE

Looks at each page, picture, script and style sheet that a page or a style sheet refers to, and at each anchor within a page. Addresses of other
sites are not opened.
"""
import html.parser
import pathlib
import re
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    def __init__(self, file):
        super().__init__()
        self.anchors, self.links = set(), []
        self.feed(file.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id" or (tag, name) == ("a", "name"):
                self.anchors.add(value)
            elif name in ("href", "src") and value is not None:
                self.links.append((self.getpos()[0], value))


class StyleSheet:
    def __init__(self, file):
        lines = file.read_text(encoding="utf-8").splitlines()
        self.links = [(number, link) for number, line in enumerate(lines, 1)
                      for link in re.findall(r"""url\(["']?([^"')]+)""", line)]


def is_dead(site, pages, file, link):
    parts = urllib.parse.urlsplit(link)
    if parts.scheme or parts.netloc:
        return False
    path = urllib.parse.unquote(parts.path)
    target = (file.parent / path).resolve() if path else file
    if not target.is_file() or not target.is_relative_to(site):
        return True
    anchor = urllib.parse.unquote(parts.fragment)
    return bool(anchor) and target in pages and anchor not in pages[target].anchors


def main():
    site = pathlib.Path(sys.argv[1]).resolve()
    pages = {file: Page(file) for file in site.rglob("*.html")}
    sources = pages | {file: StyleSheet(file) for file in site.rglob("*.css")}
    count = sum(len(source.links) for source in sources.values())
    if not pages or count < len(pages):
        sys.exit(f"{site} is no site: {len(pages)} pages with {count} links")
    dead = [f"{file.relative_to(site)}:{line}: {link}" for file, source in sorted(sources.items())
            for line, link in source.links if is_dead(site, pages, file, link)]
    print(*dead, f"{len(pages)} pages, {count} links, {len(dead)} dead", sep="\n")
    sys.exit(1 if dead else 0)


if __name__ == "__main__":
    main()
