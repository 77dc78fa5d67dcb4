"""The pages of a model: links lead somewhere, search has everything, and texts of the model stay texts."""

import html.parser
import json
import re
import subprocess
import sys

import pytest

import umlmm
from umlmm.drawing import site
from random_models import shop

HOSTILE = "</script><script>alert(1)</script><img src=x onerror=y>\"'"
VOID = {"meta", "link", "input", "img"}


class Page(html.parser.HTMLParser):
    """Links, words and tags of a page, whose tags must be closed in order."""

    def __init__(self, path):
        super().__init__()
        self.links, self.words, self.tags, self._open = [], [], set(), []
        self.feed(path.read_text())
        assert not self._open, path

    def handle_starttag(self, tag, attributes):
        self.tags |= {tag, *(name for name, _ in attributes)}
        self.links += [value for name, value in attributes if name in ("href", "src")]
        if tag not in VOID:
            self._open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.tags.add(tag)

    def handle_endtag(self, tag):
        while self._open[-1] in ("li", "td", "tr") and self._open[-1] != tag:
            self._open.pop()
        assert self._open.pop() == tag

    def handle_data(self, data):
        self.words.append(data.strip())


@pytest.mark.parametrize("name", ["Order", HOSTILE])
@pytest.mark.parametrize("path", ["", None], ids=["without Graphviz", "with Graphviz"])
def test_pages(monkeypatch, tmp_path, name, path):
    top = shop()
    order = top["Order"]
    order.name = name
    order.ownedComment.create(body=f"First line\n{name}")
    if path is not None:
        monkeypatch.setenv("PATH", path)
    index = site.write(top.modelKelm, tmp_path / "site")
    assert index == str(tmp_path / "site" / "index.html")
    pages = {page.name: Page(page) for page in (tmp_path / "site").glob("*.html")}
    assert all((tmp_path / "site" / link).is_file() for page in pages.values() for link in page.links)
    assert not {"onerror", "img"} & {tag for page in pages.values() for tag in page.tags}
    assert any("svg" in page.tags for page in pages.values()) == (path is None)
    text = (tmp_path / "site" / "search.js").read_text()
    rows = json.loads(re.search(r"^const rows = (.*);$", text, re.MULTILINE)[1])
    assert {row[3] for row in rows} == set(pages) - {"index.html"}
    assert len(rows) == sum(len(top.modelKelm.all(kind)) for kind in (umlmm.Package, umlmm.Classifier))
    [own] = [pages[row[3]] for row in rows if row[0].startswith(name[:5]) and row[1] == "Class"]
    assert f"First line\n{name}" in own.words and "Who refers to it" in own.words and "Attributes" in own.words
    again = {page.name: page.read_bytes() for page in (tmp_path / "site").iterdir()}
    site.write(top.modelKelm, tmp_path / "site")
    assert again == {page.name: page.read_bytes() for page in (tmp_path / "site").iterdir()}
    top.modelKelm.close()


def test_a_large_package_has_a_page_of_bounded_size(tmp_path, monkeypatch):
    monkeypatch.setenv("PATH", "")
    model = umlmm.new_model()
    top = umlmm.Package(model, name="shop")
    kinds = [umlmm.Class(owner=top, name=f"c{at}" * 10) for at in range(1_000)]
    for kind in kinds:
        kinds[0].ownedAttribute.create(name="x" * 100, type=kind)
        kind.ownedAttribute.create(name="y", type=kinds[0])
    site.write(model, tmp_path)
    assert max(page.stat().st_size for page in tmp_path.glob("*.html")) < 200_000
    model.close()


def test_the_command(tmp_path):
    (tmp_path / "shop.uml").write_bytes(b'<uml:Model xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" name="shop"/>')

    def run(folder):
        return subprocess.run([sys.executable, "-m", "umlmm", "site", "shop.uml", "-o", folder], cwd=tmp_path,
                              capture_output=True, text=True)

    assert run("pages").stdout == "pages/index.html\n" == run("pages").stdout
    assert "1 Model" in (tmp_path / "pages" / "index.html").read_text()
    refused = run(".")
    assert refused.returncode == 2 and "has other files in it" in refused.stderr
