"""Where everything in a picture stands. Sizes are worked out here, Graphviz places boxes of these sizes and leads lines
around them, and the texts at the ends of lines go where they find room."""

from __future__ import annotations

import collections
import dataclasses
import math

from umlmm.drawing import borders, labels, programs
from umlmm.drawing.metrics import LINE, PAD, width
from umlmm.drawing.notation import wrapped
from umlmm.drawing.rects import Rect, border, contains

_RANKS = {"down": "TB", "up": "BT", "right": "LR", "left": "RL"}
_MARGIN = 16
_TAB = LINE + 4  # the height of a package's tab
FIGURE = 40  # of an actor
_LOOP = 44  # how far a line that comes back to its box goes away from it
_SIZES = {"diamond": (28, 18), "initial": (16, 16), "final": (20, 20), "ball": (16, 16), "port": (12, 12)}
_SHAPES = {"diamond": "shape=diamond", "ellipse": "shape=ellipse", "initial": "shape=circle", "final": "shape=circle",
           "ball": "shape=circle"}


@dataclasses.dataclass(slots=True)
class Layout:
    """Frames of boxes by key, and of names beside boxes; of relations, by key, the points of the line; of their
    qualifiers, by key and side, the frames; captions and texts at ends with their frames."""

    w: float
    h: float
    frames: dict
    lines: dict
    names: dict
    qualifiers: dict
    texts: list


def lay_out(view):
    best = None
    for spread in (1, 1.5, 2.2, 3.2):
        found = _attempt(view, spread)
        overlaps = found[1]
        if best is None or overlaps < best[1]:
            best = found
        if not overlaps:
            break
    return best[0]


# --- sizes

def head_lines(box):
    """What stands in the compartment of the name: text and whether it is that name."""
    keywords = wrapped(f"\xab{', '.join(box.keywords)}\xbb", 48) if box.keywords else []
    return [*((row, False) for row in keywords), (box.name.text, True)]


def head_size(box):
    lines = head_lines(box)
    icon = 44 if box.shape == "component" else 0
    return max(width(text, is_name) for text, is_name in lines) + 2 * PAD + icon, LINE * len(lines) + PAD


def size(box, side=0):
    """The size of a box, of which lines that come back to it take so much of a side."""
    if box.shape == "point":
        return 2, 2
    if box.shape in _SIZES:
        return _SIZES[box.shape]
    texts = [line.text for lines in box.compartments for line in lines]
    w, h = (0, 0) if box.shape == "note" else head_size(box)
    w = max([w, 48, *(width(text) + 2 * PAD for text in texts)])
    h += sum(LINE * len(lines) + PAD for lines in box.compartments)
    if box.shape == "ellipse":
        w, h = max(w * 1.25, 90), h * 1.6
    elif box.shape == "actor":
        w, h = max(width(box.name.text, True), FIGURE), h + FIGURE + 8
    elif box.shape == "package":
        w, h = max(w, 90), h + _TAB + LINE
    elif box.shape == "note":
        w += 10
    return math.ceil(w), math.ceil(max(h, side))


def is_open(box):
    return bool(box.inside)


def tab(box, frame):
    """The tab of an open package, in which its name stands; of others that are open, where the name is."""
    w = head_size(box)[0]
    return Rect(frame.middle[0] - w / 2 if box.shape == "component" else frame.x, frame.y, w,
                _TAB * len(head_lines(box)))


# --- Graphviz

def _attempt(view, spread):
    boxes = {box.key: box for box in view.all_boxes()}
    sizes = _sizes(view, boxes)
    graph = _graph(view, boxes, sizes, spread)
    try:
        answer = programs.laid_out(graph)
    except programs.Failed:  # its bent lines are what it fails at
        answer = programs.laid_out(graph.replace("splines=polyline", "splines=line", 1))
    _, _, right, top = map(float, answer["bb"].split(","))

    def point(text):
        x, y = text.split(",")[:2]
        return round(float(x) + _MARGIN, 1), round(top - float(y) + _MARGIN, 1)

    frames = {}
    for each in answer.get("objects", ()):
        if "bb" in each:
            left, bottom, far, high = map(float, each["bb"].split(","))
            frames[each["name"].removeprefix("cluster_")] = Rect(
                round(left + _MARGIN, 1), round(top - high + _MARGIN, 1), round(far - left, 1), round(high - bottom, 1))
        elif "pos" in each and not each["name"].startswith("in_"):
            x, y = point(each["pos"])
            w, h = sizes.get(each["name"], (0, 0))
            if each["name"] in boxes and boxes[each["name"]].shape == "port":
                x -= _room_beside(boxes[each["name"]]) / 2
            frames[each["name"]] = Rect(round(x - w / 2, 1), round(y - h / 2, 1), w, h)
    parts = {}
    for edge in answer.get("edges", ()):
        key, _, part = edge.get("id", "").partition(" ")
        parts.setdefault(key, {})[part] = [point(each) for each in edge["pos"].split()] if "pos" in edge else []
    lines = _lines(view, frames, parts, boxes)
    borders.spread_ends(view, boxes, frames, lines)
    heads = {key: tab(boxes[key], frame) for key, frame in frames.items() if key in boxes and is_open(boxes[key])}
    names = borders.put_ports(view, boxes, frames, lines, heads) | borders.put_balls(view, boxes, frames, lines)
    qualifiers = borders.put_qualifiers(view, frames, lines)
    w = max([right + 2 * _MARGIN, *(x + _MARGIN for line in lines.values() for x, _ in line)])
    layout = Layout(w, top + 2 * _MARGIN, frames, lines, names, qualifiers, [])
    overlaps = labels.place(view, layout, boxes)
    return layout, overlaps


def _sizes(view, boxes):
    """Of all boxes that are closed."""
    loops = _loops(view)
    below = collections.Counter(relation.target.box for relation in view.relations if relation.upward)
    sizes = {}
    for key, box in boxes.items():
        if not is_open(box):
            w, h = size(box, sum(labels.loop_size(relation)[1] for relation in loops.get(key, ())))
            sizes[key] = max(w, borders.room_of_ends(min(below[key], 20))) if box.shape == "box" else w, h
    return sizes


def _loops(view):
    """The lines that come back to each box."""
    loops = {}
    for relation in view.relations:
        if labels.is_loop(relation):
            loops.setdefault(relation.source.box, []).append(relation)
    return loops


def _room_beside(box):
    """What is kept free to the right of a port for its name."""
    return math.ceil(8 + width(box.name.text, True))


def _graph(view, boxes, sizes, spread):
    rows = [f"digraph {{ graph [rankdir={_RANKS[view.direction]} compound=true splines=polyline "
            f"nodesep={0.45 * spread:.2f} ranksep={0.75 * spread:.2f} fontsize=1];",
            'node [shape=box fixedsize=true label=""]; edge [dir=none fontsize=1];']
    ends = {end.box for relation in view.relations for end in (relation.source, relation.target)}
    outer = view.outer_boxes()
    knots = {}
    for relation in view.relations:
        if relation.knot:
            both = outer.get(relation.target.box, ())
            home = next((box.key for box in outer.get(relation.source.box, ()) if box in both), None)
            knots.setdefault(home, []).append(f"{relation.knot} [shape=point width=0.02 height=0.02];")
    rows += knots.pop(None, [])
    _add_boxes(rows, view.boxes, sizes, ends, knots, "b" if view.direction == "up" else "t")
    above = {key: ways[0].key for key, ways in outer.items()}
    for relation in view.relations:
        first, second = relation.source.box, relation.target.box
        if relation.upward:
            first, second = second, first
        label = f"label={_room(*room)}" if (room := _caption_room(relation)) else ""
        if relation.knot:
            rows.append(_edge(boxes, above, first, relation.knot, f'id="{relation.key} 1" {label}'))
            rows.append(_edge(boxes, above, relation.knot, second, f'id="{relation.key} 2"'))
        else:
            rows.append(_edge(boxes, above, first, second, f'id="{relation.key} 1" {label}'))
    return "\n".join([*rows, "}"])


def _caption_room(relation):
    """What is to be kept free beside a line: its caption and its qualifiers; the names of pins, too, which stand close
    together."""
    texts = [labels.measured(relation.caption)[1:]] if relation.caption else []
    ends = (relation.source, relation.target)
    qualifiers = [borders.qualifier_size(end) for end in ends if end.qualifiers]
    if labels.is_loop(relation):
        w, h = labels.loop_size(relation)
        return w + _LOOP + 12 + max([0, *(w for w, _ in qualifiers)]), h
    texts += [labels.measured(text)[1:] for end in ends if "pin" in end.mark
              for text in (end.role, end.multiplicity) if text]
    if not texts and not qualifiers:
        return None
    return max(w for w, _ in texts + qualifiers) + 8, sum(h + 2 for _, h in texts + qualifiers)


def _add_boxes(rows, boxes, sizes, ends, knots, side):
    """`side` is where Graphviz sees the upper end of a frame: it turns all of a picture that goes up."""
    lonely = []
    for box in boxes:
        if is_open(box):
            name = tab(box, Rect(0, 0, 0, 0))
            rows.append(f"subgraph cluster_{box.key} {{ "
                        f"graph [labelloc={side} labeljust=l margin=16 label={_room(name.w, name.h)}];")
            if box.key in ends:
                rows.append(f"in_{box.key} [shape=point width=0.02 height=0.02];")
            rows += knots.get(box.key, [])
            _add_boxes(rows, box.inside, sizes, ends, knots, side)
            rows.append("}")
        else:
            w, h = sizes[box.key]
            lonely += [box.key] * (box.key not in ends)
            shape = _SHAPES.get(box.shape, "")
            if box.shape in ("port", "ball"):
                rows.append(f"{box.key} [shape=plain fixedsize=false label={_with_name(box, w, h)}];")
            else:
                rows.append(f"{box.key} [{shape} width={w / 72:.5f} height={h / 72:.5f}];")
    # Boxes without lines would stand in one row: what is not seen keeps them below each other.
    columns = math.ceil(math.sqrt(len(lonely) * 1.5))
    rows += [f"{above} -> {below} [style=invis];" for above, below in zip(lonely, lonely[columns:])]


def _room(w, h):
    """A label of a size and without a text: what Graphviz knows of fonts must not matter."""
    return (f'<<TABLE BORDER="0" CELLBORDER="0" CELLPADDING="0" CELLSPACING="0" FIXEDSIZE="TRUE" '
            f'WIDTH="{math.ceil(w)}" HEIGHT="{math.ceil(h)}"><TR><TD></TD></TR></TABLE>>')


def _with_name(box, w, h):
    """Room for a small box, to which lines go, and for its name: of a port beside, of a ball above or below."""
    cell = '<TD FIXEDSIZE="TRUE" WIDTH="{}" HEIGHT="{}"{}></TD>'
    own = cell.format(w, h, ' PORT="p"')
    if box.shape == "port":
        rows = f"<TR>{own}{cell.format(_room_beside(box), h + 2 * LINE, '')}</TR>"
    else:
        beside = f"<TR>{cell.format(max(math.ceil(width(box.name.text, True)), w), LINE + 2, '')}</TR>"
        rows = f"{beside}<TR>{own}</TR>{beside}"
    return f'<<TABLE BORDER="0" CELLBORDER="0" CELLPADDING="0" CELLSPACING="0">{rows}</TABLE>>'


def _edge(boxes, above, first, second, more):
    """An edge; one that comes to an open package ends at its frame."""
    names = []
    for end, other, word in ((first, second, "ltail"), (second, first, "lhead")):
        if end in boxes and is_open(boxes[end]):
            names.append(f"in_{end}")
            if not _is_in(other, end, above):
                more += f" {word}=cluster_{end}"
        else:
            names.append(f"{end}:p" if end in boxes and boxes[end].shape in ("port", "ball") else end)
    return f"{names[0]} -> {names[1]} [{more}];"


def _is_in(key, outer, above):
    while key is not None and key != outer:
        key = above.get(key)
    return key == outer


# --- lines

def _lines(view, frames, parts, boxes):
    lines = {}
    for box, loops in _loops(view).items():
        y = frames[box].middle[1] - sum(labels.loop_size(loop)[1] for loop in loops) / 2
        for loop in loops:
            taken = labels.loop_size(loop)[1]
            lines[loop.key] = _loop(frames[box], y + taken / 2, loop)
            y += taken
    for relation in view.relations:
        if relation.key in lines:
            continue
        source, target = relation.source.box, relation.target.box
        found = parts.get(relation.key, {})
        points = []
        for part in ("1", "2"):
            points += found.get(part, [])[::3]
        if relation.upward:
            points.reverse()
        outer = contains(frames[source], frames[target]), contains(frames[target], frames[source])
        if len(points) < 2 or any(outer):
            points = _straight(frames[source], frames[target], *outer)
        else:
            for at, end in ((0, source), (-1, target)):
                points[at] = _below_tab(points[at], frames[end], boxes.get(end))
        lines[relation.key] = _without_repeats(points)
    return lines


def _loop(frame, y, relation):
    """The way of a line that comes back to its box."""
    far = frame.right + _LOOP + max((borders.qualifier_size(end)[0] for end in (
        relation.source, relation.target) if end.qualifiers), default=0)
    half = 15  # between its ends; multiplicities stand above and below
    return [(frame.right, y - half), (far, y - half), (far, y + half), (frame.right, y + half)]


def _below_tab(point, frame, box):
    """Where a line that comes to a package from above, beside its tab, meets the frame."""
    if box is None or not is_open(box):
        return point
    if box.shape != "package":
        return point
    above = tab(box, frame)
    x, y = point
    return (x, above.bottom) if x > above.right and y < above.bottom else point


def _straight(one, other, is_around, is_inside):
    """A line between two frames; from a frame to one in it, the way down to the frame's lower edge."""
    if is_around or is_inside:
        outer, inner = (one, other) if is_around else (other, one)
        x = inner.middle[0]
        way = [(x, outer.bottom), (x, inner.bottom)]
        return way if is_around else way[::-1]
    return [border(one, other.middle), border(other, one.middle)]


def _without_repeats(points):
    kept = points[:1]
    for at, (x, y) in enumerate(points[1:], 1):
        if math.dist(kept[-1], (x, y)) > .5 or at == len(points) - 1 and len(kept) == 1:
            kept.append((x, y))
    return kept
