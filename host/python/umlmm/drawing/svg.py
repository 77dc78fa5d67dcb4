"""A view as a picture. It has attributes alone, no style, no script and no font, and tells what it shows: elements and
relations as `data-` attributes, names and kinds as titles."""

from __future__ import annotations

import math
import re
from xml.sax.saxutils import escape

from umlmm.drawing import layout as layouts, notation
from umlmm.drawing.metrics import LINE, PAD, SIZE, width
from umlmm.drawing.rects import Rect

_THEMES = {
    "light": {"page": "#ffffff", "fill": "#ffffff", "note": "#fffbe6", "line": "#303030", "text": "#101010",
              "faint": "#6a6a6a"},
    "dark": {"page": "#1b1d21", "fill": "#26292e", "note": "#35321f", "line": "#c8ccd2", "text": "#f0f2f4",
             "faint": "#9aa0a8"},
}
_ADDRESS = re.compile(r"(?:https?:|mailto:|#|[^:/?#\s]*(?:[/?#]|$))", re.IGNORECASE)


def write(view, theme="light", links=None, layout=None):
    """The text of a picture; `layout` is that of `layout.lay_out` if it is there already."""
    if theme not in _THEMES:
        raise ValueError(f"{theme!r} is no theme; what is: {', '.join(_THEMES)}")
    if view.kind == "sequence":
        from umlmm.drawing import sequence_svg
        return sequence_svg.SequencePicture(view, _THEMES[theme], links).text()
    return _Boxes(view, _THEMES[theme], links, layout or layouts.lay_out(view)).text()


def address(text):
    """An address that a picture may lead to; anything else raises."""
    if any(ord(character) <= 32 for character in text) or not _ADDRESS.match(text):
        raise ValueError(f"{text!r} is no address that a picture leads to; what is: https:, http:, mailto:, and "
                         f"addresses of files beside it")
    return text


def _attributes(**values):
    return "".join(f' {name.rstrip("_").replace("_", "-")}="{_quoted(value)}"' for name, value in values.items()
                   if value is not None and value != "")


def _quoted(value):
    if isinstance(value, float):
        value = _number(value)
    return escape(str(value), {'"': "&quot;"})


def _number(value):
    return f"{value:.1f}".removesuffix(".0")


class Picture:
    """What pictures of all kinds are drawn with. A kind knows its size, `w` and `h`, and how to `draw`."""

    w: float
    h: float

    def __init__(self, view, colors, links):
        self._view = view
        self._colors = colors
        self._links = links
        self._rows = []

    def draw(self):
        raise NotImplementedError

    def text(self):
        view = self._view
        notes = [row for note in view.notes for row in notation.wrapped(note, 90)]
        w = max([self.w, width(view.title) + 32, *(width(row) + 32 for row in notes)])
        h = self.h + LINE * len(notes) + (8 if notes else 0)
        self._add(f"<svg{_attributes(xmlns='http://www.w3.org/2000/svg', width=float(w), height=float(h))}"
                  f' viewBox="0 0 {_number(w)} {_number(h)}" role="img" '
                  f'font-family="Helvetica, Arial, Liberation Sans, sans-serif"{_attributes(font_size=SIZE, data_view=view.kind)}>')
        self._add(f"<title>{escape(view.title)}</title>")
        self._add(f'<rect width="100%" height="100%"{_attributes(fill=self._colors["page"])}/>')
        self.draw()
        for at, row in enumerate(notes):
            self._write(16.0, self.h + LINE * at + SIZE, row, fill=self._colors["faint"], data_note="note")
        self._add("</svg>\n")
        return "\n".join(self._rows)

    def _add(self, row):
        self._rows.append(row)

    def _write(self, x, y, text, bold=False, **attributes):
        """A line of text, at its base line, as wide as it was thought to be in whatever font a reader has."""
        wide = width(text, bold)
        if not wide:
            return
        attributes.setdefault("fill", self._colors["text"])
        self._add(f"<text{_attributes(x=float(x), y=float(y), textLength=float(wide), lengthAdjust='spacingAndGlyphs')}"
                  f' xml:space="preserve"{_attributes(font_weight="bold" if bold else None, **attributes)}>'
                  f"{escape(text)}</text>")

    def _opened(self, element, title, **facts):
        """Begins a group, inside of a link if the element has one; answers what ends it."""
        link = self._links(element) if self._links is not None and element is not None else None
        self._add((f"<a{_attributes(href=address(link))}>" if link else "") + f"<g{_attributes(**facts)}>"
                  + (f"<title>{escape(title)}</title>" if title else ""))
        return "</g></a>" if link else "</g>"

    def _rect(self, frame, fill="fill", corner=None, is_framed=True):
        self._add(f"<rect{_attributes(x=float(frame.x), y=float(frame.y), width=float(frame.w), height=float(frame.h))}"
                  f"{_attributes(rx=corner)}"
                  f"{self._stroke(fill) if is_framed else _attributes(fill=self._colors[fill])}/>")

    def _stroke(self, fill=None, dashed=False):
        return _attributes(fill=self._colors[fill] if fill else "none", stroke=self._colors["line"],
                           stroke_dasharray="6 4" if dashed else None)

    def _line(self, points, dashed=False, source_mark="", target_mark=""):
        """A line through points, with what is drawn at its ends."""
        points = list(points)
        marks = []
        for name, at, before in ((source_mark, 0, 1), (target_mark, -1, -2)):
            if name:
                mark, points[at] = _mark(name, points[at], points[before])
                marks.append(mark)
        self._add(f"<path{_attributes(d=_open(points))}{self._stroke(dashed=dashed)}/>")
        for shape, is_filled in marks:
            fill = "none" if is_filled is None else self._colors["line" if is_filled else "fill"]
            self._add(f"<path{_attributes(d=shape, fill=fill, stroke=self._colors['line'])}/>")


class _Boxes(Picture):
    """Boxes and lines where Graphviz has put them."""

    def __init__(self, view, colors, links, layout):
        super().__init__(view, colors, links)
        self._layout = layout
        self._heads = []  # which are to be read whatever lines cross them
        self.w, self.h = self._layout.w, self._layout.h
        self._labels = {}
        for label in self._layout.texts:
            self._labels.setdefault(label.relation, []).append(label)

    def draw(self):
        self._boxes(self._view.boxes)
        for relation in self._view.relations:
            self._relation(relation)
        self._qualifiers()
        self._rows += self._heads

    def _boxes(self, boxes):
        for box in boxes:
            frame = self._layout.frames[box.key]
            ends = self._opened(box.element, box.title, id=box.key, data_box=box.shape, data_kind=box.kind,
                                data_path=box.path, data_name=box.name.text)
            getattr(self, f"_{box.shape}")(box, frame)
            self._add(ends)
            self._boxes(box.inside or ())

    def _box(self, box, frame):
        self._rect(frame)
        self._contents(box, frame, frame.y)

    def _head(self, box, x, y, is_left=False):
        for text, is_name in layouts.head_lines(box):
            y += LINE
            left = x if is_left else x - width(text, is_name) / 2
            self._write(left, y - 3, text, bold=is_name,
                        font_style="italic" if is_name and box.name.italic else None,
                        text_decoration="underline" if is_name and box.name.underlined else None)
        return y

    def _contents(self, box, frame, y):
        self._head(box, frame.middle[0], y + PAD / 2)
        y += layouts.head_size(box)[1]
        for lines in box.compartments:
            self._add(f'<path d="M{_number(frame.x)} {_number(y)}H{_number(frame.right)}"{self._stroke()}/>')
            y = self._compartment(lines, frame.x + PAD, y + PAD / 2) + PAD / 2

    def _compartment(self, lines, x, y):
        for line in lines:
            y += LINE
            ends = self._opened(line.element, line.title, data_feature=line.element.MetaClass().name) \
                if line.title or self._links is not None else None
            self._write(x, y - 4, line.text, bold=line.bold, fill=self._colors["faint" if line.faint else "text"],
                        font_style="italic" if line.italic else None,
                        text_decoration="underline" if line.underlined else None)
            if ends:
                self._add(ends)
        return y

    def _package(self, box, frame):
        tab = layouts.tab(box, frame) if layouts.is_open(box) else Rect(frame.x, frame.y, 45, 12)
        body = Rect(frame.x, tab.bottom, frame.w, frame.h - tab.h)
        self._rect(body)
        if layouts.is_open(box):
            self._open_head(box, tab, tab.x + PAD, is_left=True)
        else:
            self._rect(tab)
            height = LINE * len(layouts.head_lines(box))
            self._head(box, frame.middle[0], body.middle[1] - height / 2)

    def _note(self, box, frame):
        x, y, right, bottom = map(_number, (frame.x, frame.y, frame.right, frame.bottom))
        fold, low = _number(frame.right - 9), _number(frame.y + 9)
        way = f"M{x} {y}H{fold}L{right} {low}V{bottom}H{x}ZM{fold} {y}V{low}H{right}"
        self._add(f'<path d="{way}"{self._stroke("note")}/>')
        for lines in box.compartments:
            self._compartment(lines, frame.x + PAD, frame.y + PAD / 2)

    def _diamond(self, box, frame):
        x, y = frame.middle
        self._add(f"<path{_attributes(d=_closed([(x, frame.y), (frame.right, y), (x, frame.bottom), (frame.x, y)]))}"
                  f"{self._stroke('fill')}/>")

    def _open_head(self, box, plate, x, is_left=False, is_framed=True):
        """The head of a box with others in it, on a plate, which lines may cross but the text not."""
        rows, self._rows = self._rows, []
        ends = self._opened(box.element, box.title, data_head=box.key)
        self._rect(plate, is_framed=is_framed)
        self._head(box, x, plate.y, is_left)
        self._add(ends)
        self._heads += self._rows
        self._rows = rows

    def _frame(self, box, frame):
        self._rect(frame)
        w, h = layouts.head_size(box)
        self._open_head(box, Rect(frame.x + 1, frame.y + 1, w - PAD, h), frame.x + PAD, is_left=True, is_framed=False)

    def _ellipse(self, box, frame):
        x, y = frame.middle
        self._add(f"<ellipse{_attributes(cx=float(x), cy=float(y), rx=frame.w / 2, ry=frame.h / 2)}"
                  f"{self._stroke('fill')}/>")
        self._head(box, x, y - LINE * len(layouts.head_lines(box)) / 2 - 2)

    def _actor(self, box, frame):
        x, y, h = frame.middle[0], frame.y, layouts.FIGURE
        body, leg = f"v{h * .4:.0f}", f"{h * .3:.0f}"
        self._add(f'<path d="M{_number(x)} {_number(y + 16)}{body}l-11 {leg}m11 -{leg}l11 {leg}'
                  f'M{_number(x - 14)} {_number(y + 22)}h28"{self._stroke()}/>')
        self._add(f"<circle{_attributes(cx=float(x), cy=y + 9.0, r='7')}{self._stroke('fill')}/>")
        self._head(box, x, y + h + 4)

    def _action(self, box, frame):
        self._rect(frame, corner=10)
        self._contents(box, frame, frame.y)

    def _component(self, box, frame):
        self._rect(frame)
        x, y = _number(frame.right - 20), _number(frame.y + 6)
        self._add(f'<path d="M{x} {y}h12v14h-12zm-4 3h8v3h-8zm0 5h8v3h-8z"{self._stroke("fill")}/>')
        if layouts.is_open(box):
            plate = layouts.tab(box, frame)
            self._open_head(box, Rect(plate.x + 22, plate.y + 1, plate.w - 44, plate.h - 2), plate.middle[0], is_framed=False)
        else:
            self._contents(box, frame, frame.y)

    def _initial(self, box, frame):
        x, y = frame.middle
        self._add(f"<circle{_attributes(cx=float(x), cy=float(y), r='8', fill=self._colors['line'])}/>")

    def _final(self, box, frame):
        x, y = frame.middle
        self._add(f"<circle{_attributes(cx=float(x), cy=float(y), r='10')}{self._stroke('fill')}/>")
        self._add(f"<circle{_attributes(cx=float(x), cy=float(y), r='6', fill=self._colors['line'])}/>")

    def _ball(self, box, frame):
        x, y = frame.middle
        self._add(f"<circle{_attributes(cx=float(x), cy=float(y), r='8')}{self._stroke('fill')}/>")
        self._name_beside(box)

    def _port(self, box, frame):
        self._rect(frame)
        self._name_beside(box)

    def _name_beside(self, box):
        place = self._layout.names[box.key]
        self._write(place.x, place.bottom - 4, box.name.text, bold=True)

    def _point(self, box, frame):
        x, y = frame.middle
        self._add(f"<circle{_attributes(cx=float(x), cy=float(y), r='1.5', fill=self._colors['line'])}/>")

    # --- relations

    def _relation(self, relation):
        source, target = relation.source, relation.target
        ends = self._opened(relation.element, relation.title, id=relation.key, data_relation=relation.kind,
                            data_path=relation.path, data_source=source.box, data_target=target.box,
                            data_knot=relation.knot, data_source_mark=source.mark, data_target_mark=target.mark)
        self._line(self._layout.lines[relation.key], relation.dashed, source.mark, target.mark)
        for label in self._labels.get(relation.key, ()):
            for at, row in enumerate(reversed(label.rows)):
                self._write(label.frame.x + 1, label.frame.bottom - 3 - LINE * at, row, data_end=label.side,
                            data_label=label.what)
        self._add(ends)

    def _qualifiers(self):
        """Over lines of others that go to the same box."""
        for relation in self._view.relations:
            for side, end in (("source", relation.source), ("target", relation.target)):
                if frame := self._layout.qualifiers.get((relation.key, side)):
                    self._add(f"<g{_attributes(data_qualified=relation.key, data_end=side)}>")
                    self._rect(frame)
                    for at, text in enumerate(end.qualifiers, 1):
                        self._write(frame.x + PAD / 2, frame.y + LINE * at - 2, text)
                    self._add("</g>")


def _mark(mark, tip, before):
    """What is drawn at the end of a line: its path, whether it is filled (None: open), and where the line ends."""
    long = math.dist(tip, before) or 1
    dx, dy = (before[0] - tip[0]) / long, (before[1] - tip[1]) / long

    def at(along, aside):
        return tip[0] + dx * along - dy * aside, tip[1] + dy * along + dx * aside

    if mark == "arrow":
        return (_open([at(11, 5), tip, at(11, -5)]), None), tip
    if mark.endswith("triangle"):
        return (_closed([tip, at(14, 7), at(14, -7)]), mark.startswith("filled")), at(14, 0)
    if mark.endswith("diamond"):
        return (_closed([tip, at(9, 5), at(18, 0), at(9, -5)]), mark.startswith("filled")), at(18, 0)
    if mark == "pin":
        return (_closed(_square(at)), False), at(12, 0)
    if mark == "arrow pin":
        wings = "".join(_open([at(23, side), at(12, 0)]) for side in (5, -5))
        return (_closed(_square(at)) + wings, False), at(12, 0)
    if mark == "socket":
        (x1, y1), (x2, y2) = at(-2, 10.4), at(-2, -10.4)  # around the middle of the ball
        return (f"M{_number(x1)} {_number(y1)}A12 12 0 0 0 {_number(x2)} {_number(y2)}", None), at(4, 0)
    x, y = at(7, 0)  # a circle with a cross in it: what owns the other end
    circle = (f"M{_number(x - 7)} {_number(y)}a7 7 0 1 0 14 0a7 7 0 1 0 -14 0M{_number(x - 7)} {_number(y)}h14"
              f"M{_number(x)} {_number(y - 7)}v14")
    return (circle, False), at(14, 0)


def _square(at):
    return [at(0, 6), at(12, 6), at(12, -6), at(0, -6)]


def _open(points):
    return "".join(f"{'L' if at else 'M'}{_number(x)} {_number(y)}" for at, (x, y) in enumerate(points))


def _closed(points):
    return _open(points) + "Z"
