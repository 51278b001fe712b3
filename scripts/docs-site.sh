#!/usr/bin/env bash
# Builds all pages as a site of static pages with a search: guides, formats, parameters, and the references of C, C++ and Python.
# A warning or a dead link is an error.
#   scripts/docs-site.sh           into build/site; open build/site/index.html
#   scripts/docs-site.sh FOLDER    into another folder
set -euo pipefail
source "$(dirname "$0")/common.sh"

install_packages "${BUILD_PACKAGES[@]}" doxygen furo jupyter-nbconvert python3-breathe python3-ipykernel \
    python3-myst-parser python3-numpy python3-sphinx
build release appletctl vexo_python

site=${1:-build/site}
work=build/site-work
pages=$work/pages
say "Building the site in $site"
rm -rf "$work" "$site"
mkdir -p "$pages"
git ls-files -z --cached --others --exclude-standard ':(glob)*.md' ':(glob)site/reference/*.md' docs examples include |
    tar -c --null -T - | tar -x -C "$pages"
cat README.md site/contents.md >"$pages/index.md"
rm "$pages/README.md"
(cat site/Doxyfile && echo "OUTPUT_DIRECTORY = $work/doxygen") >"$work/Doxyfile"
mkdir "$work/doxygen"
doxygen "$work/Doxyfile"
build/release/bin/appletctl --quiet docs --html "$work/parameters.html"
python3 site/parameters.py "$work/parameters.html" "$pages/site/reference/parameters.md"
export PYTHONPATH=$PWD/build/release/python PYTHONDONTWRITEBYTECODE=1 PYDEVD_DISABLE_FILE_VALIDATION=1
/usr/bin/python3 -m nbconvert --log-level=ERROR --execute --to markdown "$pages"/docs/notebooks/*.ipynb
DOXYGEN_XML=$PWD/$work/doxygen/xml /usr/bin/python3 -m sphinx -q -W --keep-going -c site -d "$work/doctrees" "$pages" "$site"
rm "$site/objects.inv" "$site/.buildinfo"
python3 site/check_links.py "$site"
rm -r "$work"
