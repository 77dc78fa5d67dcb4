"""The reference pages: every class once, no dead link, and what they say of one metaclass."""

import collections
import re

import pytest

from umlmm import _host
from umlmm.__main__ import main


@pytest.fixture(scope="module")
def pages(tmp_path_factory):
    folder = tmp_path_factory.mktemp("reference")
    main(["reference", str(folder)])
    return {path.name: path.read_text() for path in folder.iterdir()}


def anchors(text):
    return re.findall(r'<a id="([^"]+)">', text)


def test_every_class_and_feature_stands_on_one_page(pages):
    places = collections.Counter(anchor for text in pages.values() for anchor in anchors(text) if "." in anchor)
    announced = [name for package in ("umlmm", "Kelm") for name in _host.class_names(package)]
    assert places == collections.Counter(announced)
    features = [anchor for name, text in pages.items() if name != "Lists.md" for anchor in anchors(text)
                if "." not in anchor]
    assert len(features) == 368


def test_every_link_resolves_and_every_page_is_linked(pages):
    linked = set()
    for name, text in pages.items():
        for page, anchor in re.findall(r"\]\(([^)#]+)(?:#([^)]+))?\)", text):
            assert page in pages and (not anchor or anchor in anchors(pages[page])), (name, page, anchor)
            linked |= {page} if name == "index.md" else set()
    assert linked == set(pages) - {"index.md"}
    assert "- [Actor](Actor.md): A role that someone" in pages["index.md"]


def test_the_page_of_a_metaclass(pages):
    text = pages["Property.md"]
    rows = {row.split("</a>")[1].split(" |")[0]: row for row in text.splitlines() if row.startswith('| <a id="')}
    assert "- Superclasses: [StructuralFeature](StructuralFeature.md), " in text
    assert "- Subclasses: [ExtensionEnd](ExtensionEnd.md), [Port](Port.md)" in text
    assert "`class_`" in rows and "[Class](Class.md) [0..1]" in rows["`class_`"]
    assert "[`SequenceOfProperty`](Property.md#umlmm.SequenceOfProperty)" in rows["`subsettedProperty`"]
    assert "default `None`" in rows["`aggregation`"] and "| derived" in rows["`isComposite`"]
    assert "composite" in rows["`qualifier`"]
    assert "opposite [Property.associationEnd](Property.md#associationEnd); subsets [Element.ownedElement]" in \
        rows["`qualifier`"]
    assert "- **isNavigable**() → `bool`" in text
    assert "`umlmm.Generalization(model, aSpecific, aGeneral)`" in pages["Generalization.md"]
    assert '| 0 | `umlmm.AggregationKind.None_` | `"None"` |' in pages["AggregationKind.md"]
    assert "| as inherited |" in pages["LiteralString.md"] + pages["TimeConstraint.md"]
