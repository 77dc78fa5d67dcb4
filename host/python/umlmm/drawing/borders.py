"""What stands on the border of a box: the ports of a component, the qualifiers of an association; and the names of what
is too small to hold its name."""

from __future__ import annotations

import math

from umlmm.drawing.metrics import LINE, PAD, width
from umlmm.drawing.rects import Rect, border, contains, meet


_APART = 17  # what is drawn at the ends of lines is so wide


def room_of_ends(count):
    return _APART * (count - 1) + 12


def spread_ends(view, boxes, frames, lines):
    """Lines that come to a box from above or below come to one point of it, where their ends could not be told from
    each other: they are spread, in the order in which they come."""
    ends = {}
    for relation in view.relations:
        for end, at, next_ in ((relation.source, 0, 1), (relation.target, -1, -2)):
            box, points = boxes.get(end.box), lines[relation.key]
            if box is not None and box.shape == "box" and relation.source.box != relation.target.box:
                for side in (frames[end.box].y, frames[end.box].bottom):
                    if abs(points[at][1] - side) < 2:
                        ends.setdefault((end.box, side), []).append((points[next_][0], points[at][0], at, points))
    for (key, _), group in ends.items():
        frame, places = frames[key], sorted(x for _, x, _, _ in group)
        apart = min(_APART, (frame.w - 12) / max(len(group) - 1, 1))
        if all(other - one >= apart - 1 for one, other in zip(places, places[1:])):
            continue
        far = apart * (len(group) - 1)
        first = min(max(sum(places) / len(places) - far / 2, frame.x + 6), frame.right - 6 - far)
        for number, (_, _, at, points) in enumerate(sorted(group, key=lambda each: each[:2])):
            points[at] = round(first + apart * number, 1), points[at][1]


def put_ports(view, boxes, frames, lines, heads):
    """Graphviz knows nothing that stands on the border of what is around it: a port goes to the nearest border where
    there is room for it and its name, and its lines follow. The upper border is where the name of the other is. The
    names of ports are the answer, by key."""
    names = {}
    for key, (outer, *_) in view.outer_boxes().items():
        if boxes[key].shape != "port":
            continue
        port, around = frames[key], frames[outer.key]
        x, y = port.middle
        others = [heads[outer.key], *names.values(), *(
            frame for other, frame in frames.items() if other not in (key, outer.key)
            and not contains(frame, around))]
        names[key] = _port_name(boxes[key], port, "left")
        ways = [(abs(to - at), side, place) for side, to, at, place in (
            ("bottom", around.bottom, y, (x, around.bottom)), ("left", around.x, x, (around.x, y)),
            ("right", around.right, x, (around.right, y)))]
        for _, side, (far_x, far_y) in sorted(ways):
            way = Rect(min(x, far_x) - 8, min(y, far_y) - 8, abs(far_x - x) + 16, abs(far_y - y) + 16)
            moved = Rect(far_x - port.w / 2, far_y - port.h / 2, port.w, port.h)
            name = _port_name(boxes[key], moved, side)
            if not any(meet(way, other) or meet(name, other) for other in others):
                frames[key], names[key] = moved, name
                _lead_to(view, key, moved, (x, y), lines)
                break
    return names


def _port_name(box, frame, side):
    """Inside of what the port stands on, beside a line that may come to it from there."""
    w = width(box.name.text, True)
    if side == "bottom":
        return Rect(frame.right + 4, frame.middle[1] - LINE - 1, w, LINE)
    return Rect(frame.right + 4 if side == "left" else frame.x - 4 - w, frame.middle[1] + 1, w, LINE)


def _lead_to(view, key, moved, old, lines):
    """Lines that went to a port go on to where it is now."""
    for relation in view.relations:
        for end, at in ((relation.source, 0), (relation.target, -1)):
            if end.box == key:
                added = [border(moved, old), old]
                line = lines[relation.key]
                lines[relation.key] = added + line[1:] if at == 0 else line[:-1] + added[::-1]


def put_balls(view, boxes, frames, lines):
    """Lines end at the ball, which is rounder than what Graphviz knows of it. The names of balls are the answer, by
    key: below or above, where fewer lines come."""
    coming = {}
    for relation in view.relations:
        points = lines[relation.key]
        for end, at, next_ in ((relation.source, 0, 1), (relation.target, -1, -2)):
            if end.box in boxes and boxes[end.box].shape == "ball" and len(points) > 1:
                (x, y), (far_x, far_y) = frames[end.box].middle, points[next_]
                long = math.dist((x, y), (far_x, far_y)) or 1
                half = frames[end.box].w / 2
                points[at] = round(x + (far_x - x) / long * half, 1), round(y + (far_y - y) / long * half, 1)
                coming.setdefault(end.box, []).append(far_y > y)
    names = {}
    for key, box in boxes.items():
        if box.shape == "ball":
            frame, w = frames[key], width(box.name.text, True)
            below = coming.get(key, [])
            y = frame.bottom + 1 if below.count(True) <= below.count(False) else frame.y - LINE - 1
            names[key] = Rect(frame.middle[0] - w / 2, y, w, LINE)
    return names


def qualifier_size(end):
    return math.ceil(max(map(width, end.qualifiers))) + PAD, LINE * len(end.qualifiers) + 4


def put_qualifiers(view, frames, lines):
    """Frames of qualifiers, by relation and side, between the box and the line, which begins at them."""
    found = {}
    for relation in view.relations:
        for side, end in (("source", relation.source), ("target", relation.target)):
            if end.qualifiers and end.box in frames:
                points = lines[relation.key] if side == "source" else lines[relation.key][::-1]
                found[relation.key, side], points = _qualifier(frames[end.box], points, *qualifier_size(end))
                lines[relation.key] = points if side == "source" else points[::-1]
    return found


def _qualifier(frame, points, w, h):
    x, y = points[0]
    _, side = min((abs(y - frame.bottom), "bottom"), (abs(y - frame.y), "top"), (abs(x - frame.right), "right"),
                  (abs(x - frame.x), "left"))
    if side in ("bottom", "top"):
        placed = Rect(round(x - w / 2, 1), frame.bottom if side == "bottom" else frame.y - h, w, h)
        start = (x, placed.bottom if side == "bottom" else placed.y)
    else:
        placed = Rect(frame.right if side == "right" else frame.x - w, round(y - h / 2, 1), w, h)
        start = (placed.right if side == "right" else placed.x, y)
    inside = Rect(placed.x - 1, placed.y - 1, placed.w + 2, placed.h + 2)
    rest = points[1:]
    while len(rest) > 1 and meet(inside, Rect(*rest[0], 0, 0)):
        del rest[0]
    return placed, [start, *rest]
