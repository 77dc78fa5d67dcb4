"""What notebooks ask of elements, lists, models, reports and views."""

import xml.etree.ElementTree as xml

import pytest

import umlmm
from random_models import shop

SHOWN = {
    "an element": lambda top: top["Order"],
    "a package": lambda top: top,
    "a view of one": lambda top: top["Order"].asImmutable(),
    "a feature": lambda top: top["Order::total"],
    "a list": lambda top: top.packagedElement,
    "a model": lambda top: top.modelKelm,
    "a picture": lambda top: umlmm.draw(top),
}
PICTURES = {"an element", "a package", "a view of one", "a model", "a picture"}


@pytest.mark.parametrize("what", SHOWN)
@pytest.mark.parametrize("path", ["", None], ids=["without Graphviz", "with Graphviz"])
def test_what_is_shown(monkeypatch, what, path):
    top = shop()
    top["Order::total"].default = "<b>&"
    if path is not None:
        monkeypatch.setenv("PATH", path)
    bundle = SHOWN[what](top)._repr_mimebundle_()
    form = "image/svg+xml" if what in PICTURES and path is None else "text/html"
    assert set(bundle) == {"text/plain", form} - ({"text/html"} if what == "a picture" else set())
    assert all(isinstance(text, str) and "<b>" not in text for text in bundle.values())
    if form in bundle:
        assert len(list(xml.fromstring(bundle[form]).iter())) > 5
    top.modelKelm.close()


def test_large_things_are_shown_in_part():
    model = umlmm.new_model()
    top = umlmm.Package(model, name="shop")
    for at in range(2_000):
        umlmm.Class(owner=top, name=f"c{at}" * 50)
    table = top.packagedElement._repr_mimebundle_()["text/html"]
    assert "and 1970 more" in table and len(table) < 40_000
    assert "<td>Class</td><td>2000</td>" in model._repr_mimebundle_()["text/html"]
    assert "2001 boxes" in top._repr_mimebundle_()["image/svg+xml"]
    gone = top["c7" * 50]
    gone.destroy()
    assert list(gone._repr_mimebundle_()) == ["text/plain"]
    model.close()


def test_a_report_is_a_page(tmp_path):
    (tmp_path / "shop.uml").write_bytes(b'<uml:Model xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" name="shop"/>')
    model = umlmm.load(tmp_path / "shop.uml")
    assert "1 Model" in model.report._repr_mimebundle_()["text/html"]
    model.close()
