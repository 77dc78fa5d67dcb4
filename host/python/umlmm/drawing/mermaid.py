"""A view as a class diagram of Mermaid. Packages lie in no others there, and lines go to classes alone: what has no
notation is drawn as the nearest there is, and a remark says so."""

from __future__ import annotations

import re

_SOURCE = {"": "", "arrow": "<", "triangle": "<|", "filled triangle": "<|", "diamond": "o", "filled diamond": "*",
           "nesting": "*"}
_TARGET = {**_SOURCE, "arrow": ">", "triangle": "|>", "filled triangle": "|>"}
_RANKS = {"down": "TB", "up": "BT", "right": "LR", "left": "RL"}
_MARKED = re.compile(r"[^\w .,:=\[\]\xab\xbb-]|(?<=-)-|_(?=_)|:(?=:)")


def write(view):
    if view.kind in ("component", "object", "use case", "activity"):
        from umlmm.drawing import flow_texts
        return flow_texts.mermaid(view, text)
    if view.kind == "sequence":
        from umlmm.drawing import sequence_texts
        return sequence_texts.mermaid(view, text)
    rows = ["classDiagram", *(f"  %% {note}" for note in view.notes), f"  direction {_RANKS[view.direction]}"]
    ends = {end.box for relation in view.relations for end in (relation.source, relation.target)}
    notes, remarks = {}, {}
    _boxes(view.boxes, rows, ends, notes, None, remarks)
    knots = {relation.knot: relation for relation in view.relations if relation.knot}
    noted = set()
    for relation in view.relations:
        if relation.source.box in notes:
            if relation.target.box not in knots:
                rows.append(f'  note for {relation.target.box} "{notes[relation.source.box]}"')
                noted.add(relation.source.box)
            continue
        goals = _goals(relation.target.box, knots)
        if len(goals) > 1:
            remarks["A line to another line goes to the classes at both of its ends."] = None
        if "nesting" in (relation.source.mark, relation.target.mark):
            remarks["What owns a nested class is drawn as a composite of it."] = None
        rows += [_relation(relation, source, goal) for source in _goals(relation.source.box, knots) for goal in goals]
    rows += [f'  note "{body}"' for key, body in notes.items() if key not in noted]
    rows[1:1] = [f"  %% {remark}" for remark in remarks]
    return "\n".join([*rows, ""])


def _goals(key, knots):
    if key not in knots:
        return [key]
    relation = knots[key]
    return list(dict.fromkeys(each for end in (relation.source, relation.target) for each in _goals(end.box, knots)))


def _boxes(boxes, rows, ends, notes, space, remarks):
    """Classes, those of a package together, then what is in the packages among them."""
    packages = [box for box in boxes if box.shape == "package"]
    shown = [box for box in boxes if box.shape != "note" and (box.shape != "package" or not box.inside)]
    indent = "  "
    if space is not None and shown:
        rows.append(f"  namespace {space} {{")
        indent = "    "
    for box in shown:
        _class(box, rows, indent, remarks)
    if indent != "  ":
        rows.append("  }")
    for box in boxes:
        if box.shape == "note":
            notes[box.key] = "<br>".join(text(line.text) for lines in box.compartments for line in lines)
    for box in packages:
        if box.inside:
            if box.key in ends:
                remarks["A package to which lines go is drawn as a class."] = None
                _class(box, rows, "  ", remarks)
            if any(inner.shape == "package" for inner in box.inside):
                remarks["Packages in packages stand beside them."] = None
            name = re.sub(r"[^A-Za-z0-9]+", "_", box.name.text)[:40]
            _boxes(box.inside, rows, ends, notes, f"{name}_{box.key}", remarks)


def _class(box, rows, indent, remarks):
    words = list(box.keywords)
    if box.shape == "package":
        words.insert(0, "package")
    elif box.shape in ("point", "diamond"):
        words = [box.kind]
        remarks["Where more than two lines meet there is a class."] = None
    if box.name.italic and not words:
        words.append("abstract")
    rows.append(f'{indent}class {box.key}["{text(box.name.text)}"] {{')
    if words:
        rows.append(f"{indent}  <<{text(', '.join(words))}>>")
    rows += [f"{indent}  {_line(line)}" for lines in box.compartments for line in lines if line.text]
    rows.append(indent + "}")


def _line(line):
    mark = line.text[:1] if line.text[:2] in ("+ ", "- ", "# ", "~ ") else ""
    shown = line.text[2:] if mark else line.text
    classifier = "*" if line.italic else "$" if line.underlined else ""
    name, _, rest = shown.partition("(")
    if line.kind not in ("operation", "reception") or not name:
        return mark + text(shown) + classifier
    parameters, _, result = rest.rpartition(")")
    words = (text(each) if each else "" for each in (name, parameters, result.removeprefix(" : ")))
    return "{}{}({}) {}".format(mark, *words).rstrip() + classifier


def _relation(relation, first, second):
    source, target = relation.source, relation.target
    body = ".." if relation.dashed else "--"
    if relation.upward:
        first, second, source, target = second, first, target, source
    words = [first, *([f'"{text(source.text)}"'] if source.text else ()),
             f"{_SOURCE[source.mark]}{body}{_TARGET[target.mark]}",
             *([f'"{text(target.text)}"'] if target.text else ()), second]
    return "  " + " ".join(words) + (
        f" : {text(relation.caption).replace(':', '#58;')}" if relation.caption else "")


def text(shown):
    """A text that Mermaid shows as it is: what it could read as its own is written by number."""
    written = _MARKED.sub(lambda found: f"#{ord(found[0])};", shown)
    # Mermaid takes the last semicolon of a line with "style" in it for the end of a statement, and a line with a
    # direction in it for that direction.
    return written.replace("style", "#115;tyle").replace("direction ", "#100;irection ") or " "
