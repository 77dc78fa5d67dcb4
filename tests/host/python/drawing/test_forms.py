"""The forms of a view: what texts of a model may do in them, files, and what is missing on a machine."""

import io
import os
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as xml

import pytest

import umlmm
from pictures import Picture, graphviz
from random_models import activity, components, objects, shop, talk, use_cases

TEXTS = ["<script>alert(1)</script>", "a\"b'c", "]]>", "--> <!-- x", "javascript:alert(1)", "\u202egnp.exe",
         "x" * 10_000,
         "&lt;", "\u5b57\u05d0\u0301",
         "a\nb\r\n@enduml\n}", "\\N\\l\\", "[[http://x y]]", "!include /etc/hosts", "%%{init: {}}%%", "`*_~bold~_*`",
         "__under__ **bold** //it//", "<&icon> <img:x>", "{", "}", "|", "#quot; #35;", "style a:b #c;d;", "\x1b[0m",
         "-- x",
         "' remark", "/' x '/", "$a %date()", "::c", "\ufffe", "class", "+ x", "..", "direction TB", ""]
ELEMENTS = {"svg", "g", "a", "title", "rect", "path", "circle", "text"}
WORDS = {"plantuml": r"(?:(?:[\w .,:()\[\]*=+«»-]|<U\+[0-9A-F]{4,5}>)+)",
         "mermaid": r"(?:(?:[\w .,:=\[\]«»-]|#\d+;)+)"}
PLANTUML = (
    r"(@startuml|@enduml|skinparam classAttributeIconSize 0|hide empty members|--|}|<> b\d+|"
    r'(package|class|abstract class|enum|interface) "T" as b\d+( <<T>>)*( \{)?|note "T(\\nT)*" as b\d+|'
    r"(\{(field|method|static|abstract)\} )+([-+#~] )?T|"
    r'(b\d+|\(b\d+, b\d+\))( "T")? (<\||<|o|\*|\+)?(--|\.\.)(\|>|>|o|\*|\+)?( "T")? (b\d+|\(b\d+, b\d+\))( : T)?)?')
MERMAID = (
    r"(classDiagram|direction TB|%% [\w ,.]+|\}|namespace \w+ \{|"
    r'class b\d+\["T"\] \{|<<T>>|[-+#~]?(T|T?\(T?\)( T)?)[*$]?|note (for b\d+ )?"T(<br>T)*"|'
    r'b\d+( "T")? (<\||<|o|\*)?(--|\.\.)(\|>|>|o|\*)?( "T")? b\d+( : T)?)?')


@pytest.fixture(params=TEXTS, ids=lambda text: ascii(text[:12]))
def hostile(request):
    """The shop, with that text wherever there is a text."""
    top = shop()
    for element in [top, *top.descendants()]:
        if isinstance(element, umlmm.Comment):
            element.body = request.param
        elif isinstance(element, umlmm.NamedElement) and not isinstance(element, umlmm.ValueSpecification):
            element.name = request.param
    for element in top.descendants(umlmm.Property):
        element.default = request.param
    yield umlmm.draw(top, show="comments"), request.param
    top.modelKelm.close()


def test_texts_stay_texts(hostile):
    view, text = hostile
    picture = Picture(view, links=lambda element: "page.html?a=1&b=2#x")
    assert {element.tag.rpartition("}")[2] for element in picture.root.iter()} <= ELEMENTS
    attributes = [pair for element in picture.root.iter() for pair in element.items()]
    assert {value for name, value in attributes if name == "href"} == {"page.html?a=1&b=2#x"}
    assert not any(name.startswith("on") or name == "style" for name, _ in attributes)
    assert not re.search("[\u202a-\u202e\x00-\x08\x1b]", picture.text)
    assert max(len(each) for each, _ in picture.texts()) <= 100 and len(picture.text) < 200_000
    # Each line of the other forms is of one of their shapes, in which T is what stands for texts of the model.
    for form, lines in (("plantuml", PLANTUML), ("mermaid", MERMAID)):
        line = re.compile(re.sub(r"T(?!B)", lambda _: WORDS[form], lines))
        for each in getattr(view, form)().split("\n"):
            assert line.fullmatch(each.strip()), (form, each)
    assert len(re.findall(r"direction\s+TB", view.mermaid())) == 1
    laid_out = graphviz(view.dot(), "svg")
    assert laid_out.stderr == b""
    xml.fromstring(laid_out.stdout)


@pytest.mark.parametrize("make, kind", [(talk, "sequence"), (use_cases, "use case"), (objects, "object"),
                                        (activity, "activity"), (components, "component")])
def test_texts_stay_texts_in_other_kinds(make, kind):
    drawn = make()
    usual = umlmm.draw(drawn, kind)
    values = drawn.descendants(umlmm.LiteralString)
    named = [element for element in [drawn, *drawn.descendants(umlmm.NamedElement)]
             if not isinstance(element, umlmm.ValueSpecification) and element.name]
    words = {element.name for element in named} | {f"[{value.value}]" for value in values} | {"sd Talk"}
    known = re.compile("|".join(sorted((re.escape(re.escape(word)) for word in words), key=len, reverse=True)))
    shapes = {form: [known.sub(lambda _: WORDS[form], re.escape(line)) for line in getattr(usual, form)().split("\n")]
              for form in WORDS}
    for text in filter(None, TEXTS):
        for element in named:
            element.name = text
        for value in values:
            value.value = text
        view = umlmm.draw(drawn, kind)
        for form, lines in shapes.items():
            for line, shape in zip(getattr(view, form)().split("\n"), lines, strict=True):
                assert re.fullmatch(shape, line), (form, text, line)
        if text in TEXTS[::4]:
            assert {element.tag.rpartition("}")[2] for element in Picture(view).root.iter()} <= ELEMENTS | {"ellipse"}
            if kind != "sequence":
                laid_out = graphviz(view.dot(), "svg")
                assert laid_out.stderr == b"" and xml.fromstring(laid_out.stdout) is not None
    drawn.modelKelm.close()


@pytest.mark.parametrize("link", ["javascript:alert(1)", "JavaScript:x", " javascript:x", "java\nscript:x",
                                  "data:text/html,x", "vbscript:x"])
def test_a_picture_leads_to_addresses_alone(link):
    top = shop()
    with pytest.raises(ValueError, match="no address"):
        umlmm.draw(top).svg(links=lambda element: link)
    top.modelKelm.close()


def test_files_by_their_suffix(tmp_path):
    top = shop()
    view = umlmm.draw(top)
    beginnings = {"svg": b"<svg", "png": b"\x89PNG", "dot": b"digraph", "puml": b"@startuml", "mmd": b"classDiagram"}
    for suffix, beginning in beginnings.items():
        view.save(tmp_path / f"shop.{suffix}")
        assert (tmp_path / f"shop.{suffix}").read_bytes().startswith(beginning)
    view.save(str(tmp_path / "dark.SVG"), theme="dark")
    assert (tmp_path / "dark.SVG").read_text() != (tmp_path / "shop.svg").read_text()
    with pytest.raises(ValueError, match="shop.bmp.*no form.*svg"):
        view.save(tmp_path / "shop.bmp")
    with pytest.raises(ValueError, match="'blue' is no theme; what is: light, dark"):
        view.save(tmp_path / "shop.svg", theme="blue")
    assert {path.name for path in tmp_path.iterdir()} == {"dark.SVG", *(f"shop.{each}" for each in beginnings)}
    top.modelKelm.close()


def test_without_other_programs_the_texts_are_there(monkeypatch):
    top = shop()
    view = umlmm.draw(top)
    picture = view.svg()
    monkeypatch.setenv("PATH", "")
    with pytest.raises(umlmm.drawing.Missing, match="apt-get install graphviz"):
        view.svg()
    monkeypatch.setattr(view.__class__, "svg", lambda *_, **__: picture)
    with pytest.raises(umlmm.drawing.Missing, match="apt-get install librsvg2-bin"):
        view.png()
    assert "enum" in view.plantuml() and "<<enumeration>>" in view.mermaid() and "State" in view.dot()
    top.modelKelm.close()


def test_a_layout_that_fails_is_tried_with_plain_lines(monkeypatch, tmp_path):
    top = shop()
    real = shutil.which("dot")
    program = tmp_path / "dot"
    program.write_text("#!/bin/sh\ngraph=$(cat)\n"
                       f'case "$graph" in *polyline*) exit 1;; esac; printf %s "$graph" | {real} "$@"\n')
    program.chmod(0o755)
    monkeypatch.setenv("PATH", f"{tmp_path}:{os.environ['PATH']}")
    assert "Order" in umlmm.draw(top).svg()
    program.write_text("#!/bin/sh\necho no memory >&2; exit 1\n")
    with pytest.raises(RuntimeError, match="dot failed: no memory"):
        umlmm.draw(top).svg()
    top.modelKelm.close()


def test_a_long_layout_tells_how_long_it_takes(monkeypatch, tmp_path):
    class Terminal(io.StringIO):
        def isatty(self):
            return True

    top = shop()
    for at in range(600):  # more than a pipe takes that nobody reads yet
        top["Order"].ownedComment.create(body=f"{at}")
    program = tmp_path / "dot"
    program.write_text(f'#!/bin/sh\nsleep 1.7; exec {shutil.which("dot")} "$@"\n')
    program.chmod(0o755)
    monkeypatch.setenv("PATH", f"{tmp_path}:{os.environ['PATH']}")
    told = Terminal()
    monkeypatch.setattr(sys, "stderr", told)
    assert "Order" in umlmm.draw(top["Order"], depth=0, show="comments", limit=None).svg()
    assert re.search(r"\rWaiting for dot: 1 s \(Ctrl-C ends it\).*\r +\r", told.getvalue(), re.DOTALL)
    top.modelKelm.close()


@pytest.mark.parametrize("arguments, words", [
    (("clas",), "no kind of view"), ((None, {"direction": "west"}), "no direction"),
    ((None, {"depth": -1}), "levels from 0 on"), ((None, {"limit": 0}), "number of boxes"),
    ((None, {"show": "operation"}), "did you mean 'operations'"),
    ((None, {"show": "types", "hide": "types"}), "to be shown and to be hidden")])
def test_what_is_asked_for_in_vain(arguments, words):
    model = umlmm.new_model()
    kind, options = (*arguments, {})[:2]
    with pytest.raises(ValueError, match=words):
        umlmm.draw(model, kind, **options)
    with pytest.raises(TypeError, match="can be drawn, not 7"):
        umlmm.draw(7)
    model.close()


def test_who_draws_nothing_brings_in_nothing():
    script = "import sys, umlmm; umlmm.new_model().close(); print([name for name in sys.modules if 'drawing' in name])"
    assert subprocess.run([sys.executable, "-c", script], capture_output=True, text=True).stdout == "[]\n"
