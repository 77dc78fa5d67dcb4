"""Diagrams of use cases, objects, activities and components, told by what their pictures say of themselves."""

import pytest

import umlmm
from pictures import Picture
from random_models import activity, components, objects, shop, use_cases


@pytest.mark.parametrize("make, kind, boxes, lines", [
    (shop, "package", {"shop": "package", "users": "package", "billing": "package", "empty": "package"},
     {"PackageImport billing -> users arrow", "Dependency billing -> users arrow"}),
    (use_cases, "use case",
     {"shop": "package", "Webshop": "frame", "Customer": "actor", "Member": "actor", "Order": "ellipse",
      "Pay": "ellipse", "Wrap": "ellipse"},
     {"Generalization Member -> Customer triangle", "Association Customer -> Order arrow", "Include Order -> Pay arrow",
      "Extend Wrap -> Order arrow"}),
    (objects, "object", {"shop": "package", "o1 : Order": "box", "i1 : Item": "box"},
     {"Slot o1 -> i1 arrow", "InstanceSpecification o1 -> i1 "}),
    (activity, "activity", {"Ship": "frame", "start": "initial", "Take": "action", "Pack": "action", "stop": "final"},
     {"ControlFlow start -> Take arrow", "ControlFlow Take -> Pack arrow", "ControlFlow Pack -> stop arrow",
      "ObjectFlow Take -> Pack arrow pin"}),
    (components, "component",
     {"shop": "package", "Web": "component", "Store": "component", "Orders": "ball", "http": "port",
      "view : Engine": "box", "cart : Engine": "box"},
     {"provided Store -> Orders ", "required Web -> Orders socket", "Connector view -> cart ",
      "Connector http -> view pin"}),
])
def test_what_is_drawn(make, kind, boxes, lines):
    drawn = make()
    view = umlmm.draw(drawn, kind)
    picture = Picture(view)
    assert {group.get("data-name"): group.get("data-box") for group in picture.boxes.values()} == boxes
    told = [f"{line.kind} {line.source.rpartition('::')[2]} -> {line.target.rpartition('::')[2]} {line.target_mark}"
            for line in picture.lines()]
    assert sorted(told) == sorted(lines)
    drawn.modelKelm.close()


def test_ports_stand_on_the_border():
    package = components()
    frames = {}
    picture = Picture(umlmm.draw(package, "component"))
    for key, frame in picture.frames():
        frames.setdefault(picture.boxes[key].get("data-name"), frame)
    left, top, right, bottom = frames["http"]
    around = frames["Web"]
    assert any(one < border < other for one, other, border in (
        (left, right, around[0]), (left, right, around[2]), (top, bottom, around[1]), (top, bottom, around[3])))
    package.modelKelm.close()


def test_the_kind_is_found_from_the_element():
    package = use_cases()
    assert umlmm.draw(package["Customer"]).kind == umlmm.draw(package["Webshop::Order"]).kind == "use case"
    ship = activity()
    assert umlmm.draw(ship).kind == "activity" and umlmm.draw(ship.owner).kind == "class"
    assert umlmm.draw(objects()["o1"]).kind == "object"


def test_an_element_of_any_class_is_drawn_or_refused_in_a_sentence():
    model = umlmm.new_model()
    classes = [getattr(umlmm, name) for name in dir(umlmm) if not name.startswith(("_", "Immutable"))]
    elements = [cls(model) for cls in classes if isinstance(cls, type) and issubclass(cls, umlmm.Element)
                and not cls.MetaClass().isAbstract()]
    assert len(elements) > 120
    for element in elements:
        for kind in (None, "class", "package", "component", "object", "use case", "activity", "sequence", "inheritance",
                     "references"):
            try:
                view = umlmm.draw(element, kind, show=["comments", "inherited"])
            except ValueError as refused:
                assert " drawn of " in str(refused)
                continue
            assert view.plantuml() and view.mermaid()
    model.close()
