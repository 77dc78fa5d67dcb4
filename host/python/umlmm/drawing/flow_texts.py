"""Diagrams of use cases, objects, activities and components as texts: PlantUML has words for most of their shapes, and
of Mermaid the flowchart is the nearest."""

from __future__ import annotations

_WORDS = {"ellipse": "usecase", "actor": "actor", "component": "component", "ball": "interface", "port": "rectangle",
          "package": "package", "initial": "circle", "final": "circle"}
_SOURCE = {"arrow": "<", "arrow pin": "<", "triangle": "<|", "filled triangle": "<|", "diamond": "o", "filled diamond": "*",
           "socket": ")"}
_TARGET = {**_SOURCE, "arrow": ">", "arrow pin": ">", "triangle": "|>", "filled triangle": "|>", "socket": "("}
_SHAPES = {"ellipse": ("([", "])"), "actor": ("((", "))"), "ball": ("((", "))"), "action": ("(", ")"),
           "initial": ("((", "))"), "final": ("(((", ")))"), "diamond": ("{", "}"), "component": ("[[", "]]"),
           "note": (">", "]")}
_RANKS = {"down": "TB", "up": "BT", "right": "LR", "left": "RL"}


def plantuml(view, text):
    rows = ["@startuml", *(f"' {note}" for note in view.notes)]
    if view.direction in ("left", "right"):
        rows.append("left to right direction")
    _plantuml_boxes(view.boxes, rows, "", text)
    knots = {relation.knot: relation.source.box for relation in view.relations if relation.knot}
    for relation in view.relations:
        source, target = relation.source, relation.target
        first, second = knots.get(source.box, source.box), knots.get(target.box, target.box)
        if relation.upward:
            first, second, source, target = second, first, target, source
        line = _SOURCE.get(source.mark, "") + (".." if relation.dashed else "--") + _TARGET.get(target.mark, "")
        words = [first, *([f'"{text(source.text)}"'] if source.text else ()), line,
                 *([f'"{text(target.text)}"'] if target.text else ()), second]
        rows.append(" ".join(words) + (f" : {text(relation.caption)}" if relation.caption else ""))
    return "\n".join([*rows, "@enduml\n"])


def _plantuml_boxes(boxes, rows, indent, text):
    for box in boxes:
        lines = [line.text for lines in box.compartments for line in lines]
        if box.inside or box.shape == "package":
            word = box.shape if box.shape in ("package", "component") else "rectangle"
            rows.append(f'{indent}{word} "{text(box.name.text)}" as {box.key} {{')
            _plantuml_boxes(box.inside or (), rows, indent + "  ", text)
            rows.append(indent + "}")
        elif box.shape == "note":
            rows.append(f'{indent}note "' + "\\n".join(map(text, lines)) + f'" as {box.key}')
        else:
            shown = "\\n".join(map(text, [*_keywords(box), box.name.text, *lines]))
            rows.append(f'{indent}{_WORDS.get(box.shape, "rectangle")} "{shown}" as {box.key}')


def _keywords(box):
    words = [word for word in box.keywords if word != box.shape]
    return [f"\xab{', '.join(words)}\xbb"] if words else []


def mermaid(view, text):
    rows = [f"flowchart {_RANKS[view.direction]}", *(f"  %% {note}" for note in view.notes)]
    _mermaid_boxes(view.boxes, rows, "  ", text)
    knots = {relation.knot: relation.source.box for relation in view.relations if relation.knot}
    for relation in view.relations:
        source, target = relation.source, relation.target
        first, second = knots.get(source.box, source.box), knots.get(target.box, target.box)
        head, tail = (bool(end.mark and end.mark != "pin") for end in (target, source))
        if relation.upward:
            first, second, head, tail = second, first, tail, head
        if tail and not head:
            first, second, head, tail = second, first, True, False
        body = "-.-" if relation.dashed else "--"
        line = ("<" if tail else "") + body + (">" if head else "" if relation.dashed else "-")
        words = " ".join(filter(None, (source.text, relation.caption, target.text)))
        rows.append(f"  {first} {line}" + (f'|"{text(words)}"|' if words else "") + f" {second}")
    return "\n".join([*rows, ""])


def _mermaid_boxes(boxes, rows, indent, text):
    for box in boxes:
        if box.inside:
            rows.append(f'{indent}subgraph {box.key}["{text(box.name.text)}"]')
            _mermaid_boxes(box.inside, rows, indent + "  ", text)
            rows.append(indent + "end")
            continue
        lines = [*_keywords(box), box.name.text, *(line.text for lines in box.compartments for line in lines)]
        opening, closing = _SHAPES.get(box.shape, ("[", "]"))
        shown = "<br>".join(text(line) for line in lines if line)
        rows.append(f'{indent}{box.key}{opening}"{shown or " "}"{closing}')
