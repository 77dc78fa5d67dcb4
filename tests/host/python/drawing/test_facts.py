"""Pictures against their models: what is shown is there, what is there is shown once, and each end says what it
should."""

import collections
import random
import re

import pytest

import umlmm
from pictures import Picture, graphviz
from random_models import random_model, shop

SEEDS = range(25)


def bounds(end):
    text = end.multiplicity
    return "*" if text == "0..*" else text


def expected(model):
    """The relations of a model, told from the model alone: kind, element, where its ends go, marks, multiplicities."""
    for each in model.all(umlmm.DirectedRelationship):
        triangle = isinstance(each, (umlmm.Generalization, umlmm.Realization))
        yield (each.MetaClass().name, each.path, each.source[0].path, each.target[0].path, "",
               "triangle" if triangle else "arrow", None, None)
    for each in model.all(umlmm.Association):
        ends = list(each.memberEnd)
        kind = each.MetaClass().name
        if len(ends) > 2:
            for end in ends:
                yield kind, each.path, each.path, end.type.path, "", "", None, bounds(end)
        else:
            marks = [mark(end, other) for end, other in (ends, ends[::-1])]
            yield kind, each.path, ends[0].type.path, ends[1].type.path, *marks, *map(bounds, ends)
        if kind == "AssociationClass":
            yield "association class", each.path, each.path, each.path, "", "", None, None


def mark(end, other):
    if other.aggregation != "none":
        return {"shared": "diamond", "composite": "filled diamond"}[other.aggregation]
    navigable = [each.owner != each.association or each in each.association.navigableOwnedEnd for each in (end, other)]
    return "arrow" if navigable == [True, False] else ""


@pytest.mark.parametrize("seed", SEEDS)
def test_each_relation_is_shown_once_and_says_what_the_model_says(seed):
    model = random_model(random.Random(seed))
    view = umlmm.draw(model, direction=random.Random(seed).choice(["down", "up", "left", "right"]))
    picture = Picture(view)
    told = [(line.kind, line.path, line.source, line.target, line.source_mark, line.target_mark,
             line.texts.get(("source", "multiplicity")), line.texts.get(("target", "multiplicity")))
            for line in picture.lines()]
    assert collections.Counter(told) == collections.Counter(expected(model))
    for line in picture.lines():
        if line.kind in ("Association", "AssociationClass"):
            ends = [end for each in model.all(umlmm.Association) if each.path == line.path for end in each.memberEnd]
            names = {end.name for end in ends if end.name}
            shown = {line.texts[key].strip("+-#~ ") for key in line.texts if key[1] == "role"}
            assert shown == names or len(ends) > 2 and shown <= names
    for _, frame in picture.texts():  # and it is inside of the picture
        assert frame[0] >= 0 and frame[2] <= float(picture.root.get("width")), seed
    assert picture.text == umlmm.draw(model, direction=view.direction).svg()
    accepted = graphviz(view.dot(), "canon")
    assert accepted.returncode == 0 and not re.search(b"syntax|label|cluster", accepted.stderr)
    model.close()


@pytest.mark.parametrize("seed", SEEDS)
def test_texts_stand_in_their_boxes_and_on_no_other_text(seed):
    model = random_model(random.Random(seed))
    picture = Picture(umlmm.draw(model))
    texts = list(picture.texts())
    for at, (text, one) in enumerate(texts):
        for other_text, other in texts[:at]:
            apart = one[2] <= other[0] or other[2] <= one[0] or one[3] <= other[1] or other[3] <= one[1]
            assert apart, (text, other_text)
    inner = dict(texts)
    for key, group in picture.boxes.items():
        frames = [frame for each, frame in picture.frames() if each == key]
        for text in {group.get("data-name")} & set(inner):
            assert any(frame[0] <= inner[text][0] and inner[text][2] <= frame[2] for frame in frames)
    model.close()


def test_the_notation_of_everything_in_a_class_diagram():
    top = shop()
    picture = Picture(umlmm.draw(top, show="comments"))
    assert {group.get("data-name"): group.get("data-box") for group in picture.boxes.values()} == {
        "shop": "package", "users": "package", "billing": "package", "empty": "package", "Order": "box", "Line": "box",
        "Item": "box", "State": "box", "Sellable": "box", "Person": "box", "Customer": "box", "Invoice": "box",
        "Payment": "box", None: "note"}
    styles = {each.text: (each.get("font-style"), each.get("text-decoration"))
              for each in picture.root.iter() if each.tag.endswith("text")}
    assert styles["- total : Integer [0..1] = 0"] == (None, None)
    assert styles["/count {readOnly}"] == (None, "underline")
    assert styles["# add(item : Item) : Boolean"] == ("italic", None)
    assert styles["Person"] == ("italic", None)
    assert {"«interface»", "«enumeration»", "open", "«access»", "«use»", "deal",
            "What a customer wants", "number : Integer"} <= set(styles)
    assert not any("items :" in text for text in styles), "an end is no attribute as well"
    dashed = {line.get("data-relation"): line.find("{*}path").get("stroke-dasharray") is not None
              for line in picture.groups.values() if line.get("data-relation")}
    assert dashed == {"Association": False, "AssociationClass": False, "association class": True, "annotation": True,
                      "Generalization": False, "InterfaceRealization": True, "Usage": True, "Dependency": True,
                      "PackageImport": True, "nesting": False}
    top.modelKelm.close()


def test_what_is_said_of_features_and_ends():
    model = umlmm.new_model()
    order, item = (umlmm.Class(model, name=name) for name in ("Order", "Item"))
    general = order.ownedAttribute.create(name="all", isDerivedUnion=True, isReadOnly=True, multiplicity="*")
    order.ownedAttribute.create(name="some", type=item, isDerived=True, visibility="package", multiplicity="2..5",
                                isOrdered=True, isUnique=False, subsettedProperty=[general])
    find = order.ownedOperation.create(name="find", isQuery=True)
    find.ownedParameter.create(name="key", direction="inout", type=item, multiplicity="0..1", default="1")
    has = umlmm.associate(order, item, name="has", ends=("order", "items"), multiplicity=("1", "*"))
    has.isDerived = True
    order["items"].isOrdered = True
    order["items"].qualifier.create(name="number", type=item)
    assert [line.text for box in umlmm.draw([order]).boxes for lines in box.compartments for line in lines] == [
        "all [*] {readOnly, union}", "~ /some : Item [2..5] {subsets all, ordered, nonunique}",
        "items : Item [*] {ordered}", "find(inout key : Item [0..1] = 1) {query}"]
    [line] = umlmm.draw([order, item]).relations
    assert (line.source.text, line.caption, line.target.text) == (
        "[number : Item] order 1", "/has", "items {ordered} *")
    model.close()


@pytest.mark.parametrize("options, has, has_not", [
    ({}, ["total", "add(", "items", "0..1"], ["~"]),
    ({"hide": "attributes"}, ["add("], ["total"]),
    ({"hide": ["operations", "roles", "multiplicities"]}, ["total"], ["add(", "items", "0..1"]),
    ({"hide": ["visibility", "types", "defaults"]}, ["total [0..1]"], ["- total", "Integer", "= 0"]),
    ({"hide": "associations"}, ["items : Item"], ["items<"]),
    ({"hide": "nesting"}, [], ["Line"]),
    ({"depth": 1}, ["Order", "users"], ["Customer"]),
])
def test_what_is_shown_and_hidden(options, has, has_not):
    top = shop()
    text = umlmm.draw(top, **options).svg()
    assert [word for word in has if word not in text] == []
    assert [word for word in has_not if f">{word}" in text or f" {word}" in text] == []
    top.modelKelm.close()


def test_an_element_is_drawn_with_what_is_around_it():
    top = shop()
    near = umlmm.draw(top["users::Person"])
    assert {box.name.text for box in near.boxes} == {"Person", "Customer", "Order", "Item", "State", ""}
    assert {box.name.text for box in umlmm.draw([top["Order"], top["Item"]]).boxes} == {"Order", "Item"}
    assert {box.name.text for box in umlmm.draw(top, "inheritance").boxes} == {"Customer", "Person"}
    referring = umlmm.draw(top["Item"], "references")
    assert {(line.kind, line.label) for line in referring.relations} >= {("Property", "items"), ("Parameter", "item")}
    inherited = umlmm.draw(top["users::Customer"], show="inherited", depth=0)
    top["users::Person"].ownedAttribute.create(name="age")
    assert "age" not in inherited.svg() and "age" in umlmm.draw(top["users::Customer"], show="inherited").svg()
    top.modelKelm.close()


def test_a_large_view_says_what_it_leaves_out():
    model = umlmm.new_model()
    packages = [umlmm.Package(model, name=f"p{at}") for at in range(3)]
    for package in packages:
        for at in range(30):
            umlmm.Class(owner=package, name=f"c{at}")
    view = umlmm.draw(model, limit=20)
    assert len(view.boxes) == 3 and len(list(view.all_boxes())) == 3
    assert "93 boxes, more than 20" in view.notes[0] and "93 boxes" in view.svg()
    shown = [box.path for page in view.pages() for box in page.all_boxes() if box.kind == "Class"]
    assert len(shown) == len(set(shown)) == 90 and max(len(list(page.all_boxes())) for page in view.pages()) <= 20
    assert not umlmm.draw(model, limit=None).notes
    lines = [umlmm.depend(*packages[0].packagedElement[:2]) for _ in range(7)]
    assert "There are 7 lines" in umlmm.draw(packages[0].packagedElement[:3], limit=3).notes[0]
    for line in lines:
        line.destroy()
    assert "nothing in it" in umlmm.draw(model, "inheritance").notes[0]
    for package in packages[1:]:
        umlmm.depend(packages[0]["c0"], package)
    around = umlmm.draw(packages[0]["c0"], limit=2)
    assert len(around.boxes) == 1 and "more than 2" in around.notes[0]
    several = umlmm.draw(model.all(umlmm.Class), limit=40)
    assert len(several.boxes) == 40 and "90 elements" in several.notes[0]
    assert [len(page.boxes) for page in several.pages()] == [40, 40, 10]
    model.close()
