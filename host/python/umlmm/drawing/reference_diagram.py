"""Who refers to elements: each that does is told by the classifier or package in which it stands."""

from __future__ import annotations

from umlmm.drawing import notation
from umlmm.drawing.class_diagram import Diagram
from umlmm.drawing.view import End, View


def build(chosen, options, depth, direction, limit):
    """`depth` is how many steps back references are followed, one unless said."""
    view = View("references", f"References to {chosen.title}", direction)
    diagram = Diagram(view, options)
    for element in chosen.elements:
        view.boxes.append(diagram.box(element, is_full=False))
    edge, left_out = list(chosen.elements), {}
    drawn = set()
    for _ in range(1 if depth is None else depth):
        near = []
        for element in edge:
            for other in element.referencedBy():
                place = _place_of(other, diagram)
                if place is None or options.hides(place) or place == element or (other, element) in drawn:
                    continue
                if place not in diagram.shown:
                    if limit is not None and len(diagram.shown) >= limit:
                        left_out[place] = None
                        continue
                    view.boxes.append(diagram.box(place, is_full=False))
                    near.append(place)
                drawn.add((other, element))
                name = notation.clean(getattr(other, "name", "") or "") if other != place else ""
                metaclass = other.MetaClass().name
                diagram.line(other, End(diagram.shown[place]), End(diagram.shown[element], "arrow"),
                             dashed=True, keyword=metaclass[0].lower() + metaclass[1:], label=name)
        edge = near
    diagram.finish()
    if left_out:
        view.notes.append(f"{len(left_out)} more that refer to it are left out; limit=None draws all")
    return view


def _place_of(element, diagram):
    while element is not None and not diagram.has_box(element):
        element = element.containerKelm
    return element
