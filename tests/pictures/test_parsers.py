"""Every text of a view is accepted by the program that it is for."""

import concurrent.futures
import random
import re
import subprocess

import pytest

import random_models
import umlmm
from conftest import ROOT, gallery
from pictures import graphviz
from test_forms import TEXTS

MADE = {"talk": "sequence", "use_cases": "use case", "objects": "object", "activity": "activity",
        "components": "component", "shop": "class"}


def hostile(name, text):
    """A model whose names, bodies and values are all one text."""
    top = getattr(random_models, name)()
    for element in [top, *top.descendants()]:
        if isinstance(element, umlmm.Comment):
            element.body = text
        elif isinstance(element, umlmm.LiteralString):
            element.value = text
        elif isinstance(element, umlmm.NamedElement) and not isinstance(element, umlmm.ValueSpecification):
            element.name = text
    return top


def views():
    for picture in gallery.pictures():
        yield f"gallery {picture.name}", picture.view
    for seed in range(200):
        yield f"random {seed}", random_models.random_view(random.Random(seed))
    for name, kind in MADE.items():
        for text in TEXTS:
            top = hostile(name, text)
            yield f"{kind} of {text[:20]!a}", umlmm.draw(top, kind, show="comments")
            top.modelKelm.close()


@pytest.fixture(scope="module")
def texts():
    """Texts by form and by what they are of."""
    found = {"plantuml": {}, "mermaid": {}, "dot": {}}
    for name, view in views():
        for form, of in found.items():
            if form != "dot" or view.kind != "sequence":
                of[name] = getattr(view, form)()
    assert len(found["plantuml"]) > 400
    return found


def test_plantuml(texts):
    done = subprocess.run(["plantuml", "-syntax"], input="".join(texts["plantuml"].values()), capture_output=True,
                          text=True)
    answers = re.findall(r"^(?:CLASS|SEQUENCE|DESCRIPTION|OTHER|ERROR\n.*\n.*)$", done.stdout, re.MULTILINE)
    assert len(answers) == len(texts["plantuml"])  # one for each text, in their order
    assert {name: answer for name, answer in zip(texts["plantuml"], answers) if "ERROR" in answer} == {}


def test_mermaid(texts, browser, tmp_path):
    script = ROOT / "tools/node/node_modules/mermaid/dist/mermaid.min.js"
    page = tmp_path / "page.html"
    page.write_text(f'<meta charset="utf-8"><script src="{script.as_uri()}"></script>')
    browser.show(page)
    accepted, refused = browser.run("""return (async texts => {
        const accepted = [], refused = {};
        for (const [name, text] of Object.entries(texts))
          await mermaid.parse(text).then(() => accepted.push(name), error => { refused[name] = String(error); });
        return [accepted, refused];
      })(arguments[0])""", texts["mermaid"])
    assert refused == {} and set(accepted) == set(texts["mermaid"])


def test_dot(texts):
    def refusal(text):  # with straight lines, as Graphviz itself fails at some curves
        done = graphviz(text, "canon", "-Gsplines=line")
        return (done.returncode, done.stderr)

    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        answers = dict(zip(texts["dot"], pool.map(refusal, texts["dot"].values()), strict=True))
    assert {name: answer for name, answer in answers.items() if answer != (0, b"")} == {}
