"""Settings of Sphinx for the site that scripts/docs-site.sh builds."""
import os
import pathlib
import re
import textwrap

import furo
from pygments.lexers.special import TextLexer

project = "Grab_TwinLaneLineColor"
html_title = project
extensions = ["myst_parser", "breathe", "sphinx.ext.autodoc"]
nitpicky = False
smartquotes = False # commands and values keep their characters
highlight_language = "none"
suppress_warnings = ["misc.highlighting_failure"] # of languages without a lexer

myst_heading_anchors = 4
myst_update_mathjax = False

breathe_projects = {"vexo": os.environ["DOXYGEN_XML"]}
breathe_default_project = "vexo"
breathe_domain_by_extension = {"h": "c", "hpp": "cpp"}

autodoc_member_order = "bysource"
autodoc_typehints = "signature"

html_theme = "furo"
html_use_index = False
html_domain_indices = False

# The theme as built by Debian lacks the rule that lets a page follow the browser's choice of dark: its own colours, repeated here.
STYLES = pathlib.Path(furo.__file__).parent / "theme/furo/static/styles/furo.css"
dark = re.search(r'body\[data-theme="dark"\] \{(.*?)\}', STYLES.read_text(encoding="utf-8"), re.DOTALL)[1]
html_theme_options = {"dark_css_variables": dict(re.findall(r"--([\w-]+): ([^;]+);", dark))}
html_static_path = ["site.css"]
html_css_files = ["site.css"]
html_copy_source = False
html_show_copyright = False
html_show_sphinx = False
html_favicon = "../page/icon.svg"


def as_restructured_text(app, what, name, obj, options, lines):
    """Docstrings are plain text: `names` in single quotes, and tables and examples by their columns."""
    paragraphs = "\n".join(lines).strip().split("\n\n")
    for index, text in enumerate(paragraphs):
        if re.search(r"^    |\w  +\w", text, re.MULTILINE):
            paragraphs[index] = "::\n\n" + textwrap.indent(text, "    ")
        else:
            paragraphs[index] = re.sub(r"`([^`]*)`|([_*\\])", lambda found: f"``{found[1]}``" if found[1] else f"\\{found[2]}",
                                       text)
    lines[:] = "\n\n".join([*paragraphs, ""]).split("\n")


def complete_theme(app, exception):
    """Debian's theme takes one style sheet from a web server, and imports a script, which only a module may."""
    if exception is not None:
        return
    static = pathlib.Path(app.outdir) / "_static"
    sheet = static / "styles/furo.css"
    imported = re.search(r"@import url\((/javascript/.*?)\);", sheet.read_text(encoding="utf-8"))
    if imported:
        base = pathlib.Path("/usr/share" + imported[1]).read_text(encoding="utf-8")
        sheet.write_text(base + sheet.read_text(encoding="utf-8").replace(imported[0], ""), encoding="utf-8")
    script = static / "scripts/furo.js"
    library = re.match(r'import \w+ from "\./(.*?)";', script.read_text(encoding="utf-8"))
    if library:
        code = (script.parent / library[1]).read_text(encoding="utf-8")
        script.write_text(code + script.read_text(encoding="utf-8")[library.end():], encoding="utf-8")


def setup(app):
    app.connect("build-finished", complete_theme)
    app.connect("autodoc-process-docstring", as_restructured_text)

    for language in ("lark", "scenario"):  # Pygments does not know them
        app.add_lexer(language, TextLexer)
