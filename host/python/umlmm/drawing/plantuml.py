"""A view as a text of PlantUML."""

from __future__ import annotations

import re

_SOURCE = {"": "", "arrow": "<", "triangle": "<|", "filled triangle": "<|", "diamond": "o", "filled diamond": "*",
           "nesting": "+"}
_TARGET = {**_SOURCE, "arrow": ">", "triangle": "|>", "filled triangle": "|>"}
_WORDS = {"Interface": "interface", "Enumeration": "enum"}
# Marks that stand for more than themselves, all or when they are doubled; `..` is as good as any text inside of a line.
_MARKED = re.compile(
    r"[^\w .,:()\[\]*=+\xab\xbb-]"
    r"|([*=_\[\]:()+-])(?=\1)|^[=*+.:-]")


def write(view):
    if view.kind in ("component", "object", "use case", "activity"):
        from umlmm.drawing import flow_texts
        return flow_texts.plantuml(view, text)
    if view.kind == "sequence":
        from umlmm.drawing import sequence_texts
        return sequence_texts.plantuml(view, text)
    rows = ["@startuml", *(f"' {note}" for note in view.notes), "skinparam classAttributeIconSize 0",
            "hide empty members"]
    if view.direction in ("left", "right"):
        rows.append("left to right direction")
    if view.direction in ("left", "up"):
        rows.append("' PlantUML has no such direction: the nearest one is taken")
    _boxes(view.boxes, rows, "")
    knots = _knots(view, rows)
    for relation in view.relations:
        rows += _relation(relation, knots)
    return "\n".join([*rows, "@enduml\n"])


def _boxes(boxes, rows, indent):
    for box in boxes:
        stereotypes = "".join(f" <<{text(word)}>>" for word in _keywords(box))
        if box.shape == "package":
            rows.append(f'{indent}package "{text(box.name.text)}" as {box.key}{stereotypes} {{')
            _boxes(box.inside or (), rows, indent + "  ")
            rows.append(indent + "}")
        elif box.shape in ("diamond", "point"):
            rows.append(f"{indent}<> {box.key}")
        elif box.shape == "note":
            lines = [text(line.text) for lines in box.compartments for line in lines]
            rows.append(indent + 'note "' + "\\n".join(lines) + f'" as {box.key}')
        else:
            word = _WORDS.get(box.kind, "class")
            if box.name.italic and word == "class":
                word = "abstract class"
            rows.append(f'{indent}{word} "{text(box.name.text)}" as {box.key}{stereotypes} {{')
            for at, lines in enumerate(box.compartments):
                rows += [f"{indent}  --"] * (at > 0)
                rows += [f"{indent}  {_line(line)}" for line in lines]
            rows.append(indent + "}")


def _keywords(box):
    return [word for word in box.keywords if _WORDS.get(box.kind) is None or word not in ("interface", "enumeration")]


def _line(line):
    mark = line.text[:2] if line.text[:2] in ("+ ", "- ", "# ", "~ ") else ""
    return ("{method} " if line.kind in ("operation", "reception") else "{field} ") + "{static} " * line.underlined \
        + "{abstract} " * line.italic + mark + text(line.text.removeprefix(mark))


def _knots(view, rows):
    """How lines to other lines name these, by knot: the two classes that the other line is between. PlantUML knows one
    such line for any two classes; further ones are cut in two by a diamond."""
    names, taken = {}, set()
    ends = {relation.knot: {relation.source.box, relation.target.box} for relation in view.relations if relation.knot}
    for relation in view.relations:
        if relation.knot:
            both = frozenset(ends[relation.knot])
            if both & ends.keys() or both in taken:
                rows.append(f"<> {relation.knot}")
                names[relation.knot] = relation.knot
            else:
                taken.add(both)
                names[relation.knot] = f"({relation.source.box}, {relation.target.box})"
    return names


def _relation(relation, knots):
    source, target = relation.source, relation.target
    first, second = knots.get(source.box, source.box), knots.get(target.box, target.box)
    if relation.upward:
        first, second, source, target = second, first, target, source
    body = ".." if relation.dashed else "--"
    near = " ".join([first, *([f'"{text(source.text)}"'] if source.text else ()), _SOURCE[source.mark] + body])
    far = " ".join([*([f'"{text(target.text)}"'] if target.text else ()), second])
    far += f" : {text(relation.caption)}" if relation.caption else ""
    if relation.knot and knots[relation.knot] == relation.knot:
        return [f"{near} {relation.knot}", f"{relation.knot} {body}{_TARGET[target.mark]} {far}"]
    return [f"{near}{_TARGET[target.mark]} {far}"]


def text(shown):
    """A text that PlantUML shows as it is: what it could read as its own is written by number."""
    return _MARKED.sub(lambda found: f"<U+{ord(found[0]):04X}>", shown) or " "
