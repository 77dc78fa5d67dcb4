"""A view as a graph in Graphviz's language, for who wants to lay it out otherwise."""

from __future__ import annotations

from xml.sax.saxutils import escape

_RANKS = {"down": "TB", "up": "BT", "right": "LR", "left": "RL"}
_MARKS = {"": "none", "arrow": "vee", "triangle": "onormal", "filled triangle": "normal", "diamond": "odiamond",
          "filled diamond": "diamond", "nesting": "odot", "pin": "obox", "arrow pin": "oboxvee", "socket": "curve"}
# An actor has no figure in Graphviz; it is told by its keyword.
_SHAPES = {"ellipse": "ellipse", "actor": "plaintext", "action": "box style=rounded", "component": "component",
           "ball": "circle", "port": "square"}


def write(view):
    if view.kind == "sequence":
        raise ValueError("Graphviz has no sequences: svg(), plantuml() and mermaid() show them")
    rows = [f"digraph {_quoted(view.title)} {{", *(f"  // {note}" for note in view.notes),
            f'  graph [rankdir={_RANKS[view.direction]} compound=true fontname="Helvetica" fontsize=12];',
            '  node [shape=plain fontname="Helvetica" fontsize=12];',
            '  edge [fontname="Helvetica" fontsize=11 dir=both];']
    inside = {}
    outer = {key: {box.key for box in boxes} for key, boxes in view.outer_boxes().items()}
    _boxes(view.boxes, rows, "  ", inside)
    for relation in view.relations:
        if relation.knot:
            rows.append(f"  {relation.knot} [shape=point width=0.03];")
        rows += _edges(relation, inside, outer)
    return "\n".join([*rows, "}\n"])


def _boxes(boxes, rows, indent, inside):
    for box in boxes:
        if box.inside:
            rows.append(f"{indent}subgraph cluster_{box.key} {{")
            rows.append(f"{indent}  graph [labeljust=l label={_html(_head(box))}];")
            rows.append(f'{indent}  in_{box.key} [shape=point style=invis width=0.01 label=""];')
            inside[box.key] = f"in_{box.key}"
            _boxes(box.inside, rows, indent + "  ", inside)
            rows.append(indent + "}")
        elif box.shape in ("point", "diamond"):
            width = 0.3 if box.shape == "diamond" else 0.03
            rows.append(f'{indent}{box.key} [shape={box.shape} label="" width={width}];')
        elif box.shape == "note":
            text = "".join(f"{line.text}\n" for lines in box.compartments for line in lines)
            rows.append(f"{indent}{box.key} [shape=note label={_quoted(text, 'l')}];")
        elif box.shape in _SHAPES:
            rows.append(f"{indent}{box.key} [shape={_SHAPES[box.shape]} label={_html(_head(box))}];")
        elif box.shape in ("initial", "final"):
            shape = "circle style=filled fillcolor=black" if box.shape == "initial" else "doublecircle"
            rows.append(f'{indent}{box.key} [shape={shape} label="" width=0.2];')
        elif box.shape == "package":
            rows.append(f"{indent}{box.key} [shape=tab margin=0.2 label={_html(_head(box))}];")
        else:
            cells = [_head(box), *("<BR ALIGN=\"LEFT\"/>".join(_line(line) for line in lines) + "<BR ALIGN=\"LEFT\"/>"
                                   for lines in box.compartments)]
            table = "".join(f'<TR><TD BALIGN="{"LEFT" if at else "CENTER"}" ALIGN="{"LEFT" if at else "CENTER"}">{cell}'
                            f"</TD></TR>" for at, cell in enumerate(cells))
            rows.append(f'{indent}{box.key} [label=<<TABLE BORDER="0" CELLBORDER="1" CELLSPACING="0" CELLPADDING="4">'
                        f"{table}</TABLE>>];")


def _head(box):
    keywords = f"&#171;{_text(', '.join(box.keywords))}&#187;<BR/>" if box.keywords else ""
    name = f"<B>{_text(box.name.text)}</B>"
    for is_set, tag in ((box.name.italic, "I"), (box.name.underlined, "U")):
        name = f"<{tag}>{name}</{tag}>" if is_set else name
    return keywords + name


def _line(line):
    text = _text(line.text)
    for is_set, tag in ((line.italic, "I"), (line.underlined, "U"), (line.bold, "B")):
        if is_set:
            text = f"<{tag}>{text}</{tag}>"
    return f'<FONT COLOR="gray40">{text}</FONT>' if line.faint else text


def _edges(relation, inside, outer):
    ends = [(relation.source, "tail"), (relation.target, "head")]
    if relation.upward:
        ends.reverse()
    (first, _), (second, _) = ends
    common = ["style=dashed"] if relation.dashed else []
    caption = [f"label={_quoted(relation.caption)}"] if relation.caption else []
    parts = [(first, None, relation.knot), (None, second, relation.knot)] if relation.knot else [(first, second, "")]
    for at, (one, two, knot) in enumerate(parts):
        words = [*common, *([] if at else caption)]
        names = []
        for end, side in ((one, "tail"), (two, "head")):
            words.append(f"arrow{side}={_MARKS[end.mark] if end else 'none'}")
            if end is not None and end.text:
                words.append(f"{side}label={_quoted(end.text)}")
            around = {other.box, *outer.get(other.box, ())} if (other := two if end is one else one) else ()
            if end is not None and end.box in inside and end.box not in around:
                words.append(f"l{side}=cluster_{end.box}")
            names.append(inside.get(end.box, end.box) if end else knot)
        yield f"  {names[0]} -> {names[1]} [{' '.join(words)}];"


def _text(text):
    return escape(text, {'"': "&quot;"}) or "&#160;"


def _html(content):
    return f"<{content}>"


def _quoted(text, line_end="n"):
    """A text between quotes, in which Graphviz reads entities, too."""
    text = text.replace("&", "&amp;").replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\" + line_end)
    return f'"{text}"'
