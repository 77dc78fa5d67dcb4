"""Room for the texts of lines: roles and multiplicities as near to their end as nothing else is in the way, captions
as near to the middle. Crossing another line is the lesser evil."""

from __future__ import annotations

import dataclasses
import math
import textwrap

from umlmm.drawing.metrics import LINE, width
from umlmm.drawing.rects import Rect

_CELL = 50
_MARK = 20  # what is drawn at the end of a line reaches so far
_WIDE = 30  # characters of a line
_BLOCKED, _CROSSED = 1_000, 12


@dataclasses.dataclass(slots=True)
class Label:
    relation: str
    side: str  # source, target, or nothing for the caption
    what: str  # role, multiplicity or caption
    text: str
    frame: Rect | None = None  # until there is a place
    is_at_pin: bool = False

    @property
    def rows(self):
        return measured(self.text)[0]


def place(view, layout, boxes):
    """Adds the texts of lines to a layout; how many of them stand on something else."""
    from umlmm.drawing.layout import tab
    taken, crossed = _Grid(), _Grid()
    ways = list(layout.lines.values())
    for key, frame in layout.frames.items():
        if key not in boxes or not boxes[key].inside:
            taken.add(frame)
        else:
            taken.add(tab(boxes[key], frame))
            corners = [(frame.x, frame.y), (frame.right, frame.y), (frame.right, frame.bottom), (frame.x, frame.bottom)]
            ways.append([*corners, corners[0]])
    for frame in (*layout.names.values(), *layout.qualifiers.values()):
        taken.add(frame)
        layout.w, layout.h = max(layout.w, frame.right + 4), max(layout.h, frame.bottom + 4)
    for points in ways:
        for one, other in zip(points, points[1:]):
            for piece in _pieces(one, other):
                crossed.add(Rect(*piece))
    overlaps = 0
    wanted = [label for relation in view.relations if is_loop(relation)
              for label in _beside_loop(relation, layout.lines[relation.key])]
    for label in [*wanted, *_texts(view)]:
        frame = label.frame
        if frame is None or taken.hits(frame, 1):
            way = layout.lines[label.relation]
            places = _from_end(way[::-1] if label.side == "target" else way) if label.side else _from_middle(way)
            _, w, h = measured(label.text)
            label.frame, cost = _best(places, 9 if label.is_at_pin else 5, w, h, taken, crossed)
            overlaps += cost >= _BLOCKED
        taken.add(label.frame)
        layout.texts.append(label)
        layout.w, layout.h = max(layout.w, label.frame.right + 4), max(layout.h, label.frame.bottom + 4)
    return overlaps


def measured(text):
    """The rows of a text, and how wide and high it is."""
    rows = textwrap.wrap(text, _WIDE, break_long_words=False, break_on_hyphens=False) or [text]
    return rows, max(map(width, rows)) + 2, LINE * len(rows) - 2


def is_loop(relation):
    """Whether a line comes back to its box, in a way that is not Graphviz's."""
    return relation.source.box == relation.target.box and not relation.knot


def _texts_of_loop(relation):
    """What stands to the right of it, from above."""
    return [(side, what, text, *measured(text)) for side, what, text in (
        ("source", "role", relation.source.role), ("", "caption", relation.caption),
        ("target", "role", relation.target.role)) if text]


def loop_size(relation):
    """What is kept free beside a box for a line that comes back to it, without the way of the line itself; and how much
    of the box's side."""
    texts = _texts_of_loop(relation)
    return max((w for *_, w, _ in texts), default=0), max(4 * LINE, sum(h + 2 for *_, h in texts) + 6)


def _beside_loop(relation, way):
    """Multiplicities above and below the line, the rest to the right of it."""
    (far, upper), (_, lower) = way[1:3]
    for side, end, y in (("source", relation.source, upper - LINE + 1), ("target", relation.target, lower + 1)):
        if end.multiplicity:
            _, w, h = measured(end.multiplicity)
            yield Label(relation.key, side, "multiplicity", end.multiplicity,
                        Rect(max(far - w, way[0][0] + 2), y, w, h))
    texts = _texts_of_loop(relation)
    y = (upper + lower) / 2 - sum(h + 2 for *_, h in texts) / 2
    for side, what, text, _, w, h in texts:
        yield Label(relation.key, side, what, text, Rect(far + 5, y, w, h))
        y += h + 2


def _texts(view):
    """What stands beside lines; what belongs to an end first, as it can go nowhere else."""
    relations = [relation for relation in view.relations if not is_loop(relation)]
    for relation in relations:
        for side, end in (("source", relation.source), ("target", relation.target)):
            for what in ("multiplicity", "role"):
                if getattr(end, what):
                    yield Label(relation.key, side, what, getattr(end, what), is_at_pin="pin" in end.mark)
    for relation in relations:
        if relation.caption:
            yield Label(relation.key, "", "caption", relation.caption)


def _best(places, near, w, h, taken, crossed):
    """The cheapest frame for a text, and what it costs."""
    found, least = None, math.inf
    for distance, (x, y), (dx, dy) in places:
        for gap in (near, 18, 40):
            cheapest = distance * .1 + gap * .3
            if cheapest >= least:
                break
            for sign in (1, -1):
                nx, ny = -dy * sign, dx * sign
                off = gap + abs(nx) * w / 2 + abs(ny) * h / 2
                frame = Rect(round(x + nx * off - w / 2, 1), round(y + ny * off - h / 2, 1), w, h)
                cost = cheapest
                if frame.x < 2 or frame.y < 2 or taken.hits(frame, 1):
                    cost += _BLOCKED
                if cost < least:
                    cost += _CROSSED * crossed.hits(frame, (least - cost) / _CROSSED)
                if cost < least:
                    found, least = frame, cost
    return found, least


def _from_end(way):
    """Places along a line from its end on, up to a little more than half of it, with the line's direction there."""
    total = _length(way)
    return _at(way, [at for step in range(40) if (at := _MARK * .6 + 8 * step) < total * .55] or [total * .3], 0)


def _from_middle(way):
    total = _length(way)
    return _at(way, [at for step in range(40) for at in (total / 2 + 8 * step, total / 2 - 8 * step)
                     if _MARK < at < total - _MARK] or [total / 2], total / 2)


def _length(way):
    return sum(math.dist(one, other) for one, other in zip(way, way[1:]))


def _at(way, distances, wanted):
    """How far each place is from the wanted one, where it is, and the direction of the line there."""
    passed = 0
    if not _length(way):
        yield 0, way[0], (1, 0)
    for one, other in zip(way, way[1:]):
        long = math.dist(one, other)
        if not long:
            continue
        direction = (other[0] - one[0]) / long, (other[1] - one[1]) / long
        for distance in distances:
            if passed <= distance < passed + long:
                at = distance - passed
                yield abs(distance - wanted), (one[0] + direction[0] * at, one[1] + direction[1] * at), direction
        passed += long


def _pieces(one, other):
    """A line as small frames."""
    count = max(1, math.ceil(math.dist(one, other) / 10))
    for at in range(count):
        x1, y1 = (one[axis] + (other[axis] - one[axis]) * at / count for axis in (0, 1))
        x2, y2 = (one[axis] + (other[axis] - one[axis]) * (at + 1) / count for axis in (0, 1))
        yield min(x1, x2) - .5, min(y1, y2) - .5, abs(x2 - x1) + 1, abs(y2 - y1) + 1


class _Grid:
    """Frames by the cells that they lie in."""

    def __init__(self):
        self._cells = {}

    def _around(self, frame):
        for column in range(int(frame.x // _CELL), int(frame.right // _CELL) + 1):
            for row in range(int(frame.y // _CELL), int(frame.bottom // _CELL) + 1):
                yield column, row

    def add(self, frame):
        for cell in self._around(frame):
            self._cells.setdefault(cell, []).append((frame.x, frame.y, frame.right, frame.bottom))

    def hits(self, frame, enough):
        """How many frames meet one, counted as far as it matters; one in several cells may count for each."""
        x, y, right, bottom = frame.x, frame.y, frame.right, frame.bottom
        count = 0
        for cell in self._around(frame):
            for left, top, far, low in self._cells.get(cell, ()):
                if left < right and x < far and top < bottom and y < low:
                    count += 1
                    if count >= enough:
                        return count
        return count
