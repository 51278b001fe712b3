"""The sessions of the page of the package show what is printed."""
import doctest
import pathlib
import re

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs/python.md"


def test_the_page_shows_what_is_printed(tmp_path, monkeypatch):
    text = re.sub(r"^```.*$", "", PAGE.read_text(encoding="utf-8"), flags=re.MULTILINE)
    test = doctest.DocTestParser().get_doctest(text, {}, PAGE.name, str(PAGE), 0)
    assert len(test.examples) > 12
    shown = []
    monkeypatch.chdir(tmp_path)
    failures, _ = doctest.DocTestRunner().run(test, out=shown.append)
    assert not failures, "".join(shown)
