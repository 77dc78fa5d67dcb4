"""A sequence as a picture: lifelines are columns, steps are rows."""

from __future__ import annotations

from umlmm.drawing import notation
from umlmm.drawing.layout import Rect
from umlmm.drawing.metrics import LINE, PAD, width
from umlmm.drawing.svg import Picture

_HEAD = LINE + 2 * PAD
_MARGIN, _TITLE = 20, 24
_LOOP = 36  # how far a message to the own lifeline reaches
_BAR = 5  # half of an execution
# How much room a step takes, and how far down in it its line is.
_HEIGHTS = {"message": (36, 26), "fragment": (8, 0), "operand": (26, 0), "end": (14, 6), "use": (50, 0),
            "state": (36, 0), "event": (12, 6)}
# Of messages by their sort: dashed, what is drawn at their end.
_ARROWS = {"synchCall": (False, "filled triangle"), "asynchCall": (False, "arrow"), "asynchSignal": (False, "arrow"),
           "reply": (True, "arrow"), "createMessage": (True, "arrow"), "deleteMessage": (False, "filled triangle")}


class SequencePicture(Picture):
    def __init__(self, view, colors, links):
        super().__init__(view, colors, links)
        self._order = {box.key: at for at, box in enumerate(view.boxes)}
        self._depths, self._deepest = _depths(view.steps)
        self._made = {step.lifelines[1]: at for at, step in enumerate(view.steps)
                      if step.sort == "createMessage" and step.lifelines[1]}
        self._place_columns()
        self._place_rows()

    # --- places

    def _place_columns(self):
        """The middles of the lifelines: as far apart as their heads, and what is written between them, need."""
        boxes = self._view.boxes
        inset = _MARGIN + 10 * self._deepest
        halves = [max(width(box.name.text) / 2 + PAD, 30) for box in boxes]
        gaps = [halves[at] + halves[at + 1] + 24 for at in range(len(boxes) - 1)]
        left = right = 0.0
        for step in self._view.steps:
            places = [self._order[key] for key in step.lifelines if key]
            if not places:
                continue
            first, last, wide = min(places), max(places), width(step.text) + 40
            if step.kind == "message" and "" in step.lifelines:
                left, right = (max(left, wide), right) if last == 0 else (left, max(right, wide))
                if last != 0 and last < len(gaps):
                    gaps[last] = max(gaps[last], wide)
            elif step.kind == "message" and first == last or step.kind == "state":
                wide += _LOOP if step.kind == "message" else 0
                if last < len(gaps):
                    gaps[last] = max(gaps[last], wide)
                else:
                    right = max(right, wide)
                if step.kind == "state":
                    left = max(left, wide / 2) if first == 0 else left
                    if first:
                        gaps[first - 1] = max(gaps[first - 1], wide)
            elif first < last:
                lack = wide - sum(gaps[first:last])
                gaps[last - 1] += max(lack, 0)
            else:
                right = max(right, wide)
        at = inset + max([left, *halves[:1]])
        self._x = {}
        for number, box in enumerate(boxes):
            self._x[box.key] = round(at, 1)
            at += gaps[number] if number < len(gaps) else 0
        self._halves = dict(zip(self._order, halves))
        self.w = max(at + max([right, *halves[-1:]]) + inset, width(self._view.title) + 3 * _MARGIN)

    def _place_rows(self):
        at = _MARGIN + _TITLE + _HEAD + 14.0
        self._tops, self._lines = [], []
        for step in self._view.steps:
            height, down = _HEIGHTS[step.kind]
            if step.kind == "message":
                height += 20 if step.lifelines[0] == step.lifelines[1] else 0
                height += _HEAD / 2 if step.sort == "createMessage" else 0
            self._tops.append(at)
            self._lines.append(at + down)
            at += height
        self._bottom = at + 10
        self.h = at + 10 + _MARGIN

    # --- drawing

    def draw(self):
        frame = Rect(_MARGIN / 2, _MARGIN / 2, self.w - _MARGIN, self.h - _MARGIN)
        self._rect(frame)
        self._tab(frame.x, frame.y, self._view.title, bold=True)
        ends = self._ends()
        for box in self._view.boxes:
            self._lifeline(box, ends.get(box.key))
        for execution in self._view.executions:
            self._execution(execution)
        waiting = []
        for at, step in enumerate(self._view.steps):
            if step.kind == "fragment":
                waiting.append(at)
            if step.kind == "end":
                self._fragment(waiting.pop(), at)
        for at, step in enumerate(self._view.steps):
            if step.kind in ("message", "use", "state"):
                getattr(self, f"_{step.kind}")(at, step)

    def _ends(self):
        """Where lifelines end: at the message that destroys them."""
        return {step.lifelines[1]: self._lines[at] for at, step in enumerate(self._view.steps)
                if step.sort == "deleteMessage" and step.lifelines[1]}

    def _tab(self, x, y, text, bold=False):
        """A corner with a text, such as that of a fragment with its operator."""
        w, h = round(width(text, bold) + 18, 1), LINE + 4
        self._add(f'<path d="M{x} {y}H{x + w:.1f}V{y + h - 6}L{x + w - 6:.1f} {y + h}H{x}Z"{self._stroke("fill")}/>')
        self._write(x + 6, y + 14, text, bold=bold, data_label="corner")

    def _on_plate(self, x, y, text, **facts):
        """A text that may stand on lifelines, and is to be read there."""
        if text:
            self._add(f'<rect x="{x - 1:.1f}" y="{y - 11:.1f}" width="{width(text) + 2:.1f}" height="14" '
                      f'fill="{self._colors["page"]}"/>')
        self._write(x, y, text, **facts)

    def _lifeline(self, box, end):
        x, half = self._x[box.key], self._halves[box.key]
        top = _MARGIN + _TITLE
        if box.key in self._made:
            top = self._lines[self._made[box.key]] - _HEAD / 2
        done = self._opened(box.element, box.title, id=box.key, data_box="lifeline", data_path=box.path,
                            data_name=box.name.text)
        bottom = end if end is not None else self._bottom
        self._line([(x, top + _HEAD), (x, bottom)], dashed=True)
        self._rect(Rect(round(x - half, 1), top, round(2 * half, 1), _HEAD))
        self._write(x - width(box.name.text) / 2, top + PAD + 12, box.name.text)
        if end is not None:
            self._add(f'<path d="M{x - 8:.1f} {end - 8:.1f}l16 16m0 -16l-16 16"{self._stroke()}/>')
        self._add(done)

    def _execution(self, execution):
        x = self._x[execution.lifeline] - _BAR + 4 * execution.level
        top, bottom = self._lines[execution.first], self._lines[execution.last]
        done = self._opened(execution.element, notation.title(f"Execution {execution.element.path}"),
                            data_execution=execution.lifeline)
        self._rect(Rect(round(x, 1), top, 2 * _BAR, max(bottom - top, 14)))
        self._add(done)

    def _fragment(self, first, last):
        steps = self._view.steps
        inset = 6 + 10 * (self._deepest - self._depths[first])
        places = [self._x[key] for key in steps[first].lifelines]
        halves = [self._halves[key] for key in steps[first].lifelines]
        inner = [key for step in steps[first:last] for key in step.lifelines if key]
        far = max([self._x[key] for key in inner] + places, default=self.w - _MARGIN)
        near = min([self._x[key] for key in inner] + places, default=_MARGIN)
        loops = [self._x[step.lifelines[0]] + _LOOP + width(step.text) + 14 for step in steps[first:last]
                 if step.kind == "message" and step.lifelines[0] == step.lifelines[1] and step.lifelines[0]]
        x = near - max(halves[:1] or [20]) - inset
        right = max([far + max(halves[-1:] or [20]) + inset, *(each + inset for each in loops)])
        top, bottom = self._tops[first], self._lines[last]
        done = self._opened(steps[first].element, "", data_fragment=steps[first].text,
                            data_path=notation.title(steps[first].element.path))
        x, right = round(max(x, _MARGIN / 2 + 3), 1), round(min(right, self.w - _MARGIN / 2 - 3), 1)
        self._add(f'<path d="M{x} {top}H{right}V{bottom}H{x}Z"{self._stroke()}/>')
        self._tab(x, top, steps[first].text)
        tab = x + width(steps[first].text) + 28
        own = [at for at in range(first, last) if steps[at].kind == "operand"
               and self._depths[at] == self._depths[first]]
        for number, at in enumerate(own):
            y = self._tops[at]
            if number:
                self._line([(x, y), (right, y)], dashed=True)
            if steps[at].text:
                self._on_plate(tab if not number else x + 10, y + (6 if not number else 14), steps[at].text,
                               data_label="guard")
        self._add(done)

    def _message(self, at, step):
        source, target = step.lifelines
        y = self._lines[at]
        dashed, mark = _ARROWS[step.sort]
        done = self._opened(step.element, notation.title(f"Message {step.element.path}"), data_message=step.sort,
                            data_path=notation.title(step.element.path), data_source=source, data_target=target)
        if source == target:
            x = self._x[source] + self._reach(source, at)
            self._line([(x, y), (x + _LOOP, y), (x + _LOOP, y + 18), (x, y + 18)], dashed, target_mark=mark)
            self._write(x + _LOOP + 6, y + 13, step.text, data_label="message")
        else:
            first, last = self._message_ends(step, at)
            self._line([(first, y), (last, y)], dashed, target_mark=mark)
            for key, x in ((source, first), (target, last)):
                if not key:
                    self._add(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="5" fill="{self._colors["line"]}"/>')
            self._on_plate((first + last) / 2 - width(step.text) / 2, y - 6, step.text, data_label="message")
        self._add(done)

    def _reach(self, key, at):
        """How far what is drawn of executions reaches beside a lifeline."""
        levels = [each.level for each in self._view.executions
                  if each.lifeline == key and each.first <= at <= each.last]
        return _BAR + 4 * max(levels) if levels else 0

    def _message_ends(self, step, at):
        source, target = step.lifelines
        if not source or not target:
            sign = -1 if self._order[source or target] == 0 else 1
            known = self._x[source or target] + sign * self._reach(source or target, at)
            away = known + sign * (width(step.text) + 30)
            return (known, away) if source else (away, known)
        first, last = self._x[source], self._x[target]
        sign = 1 if first < last else -1
        if step.sort == "createMessage":
            return first + sign * self._reach(source, at), last - sign * self._halves[target]
        return first + sign * self._reach(source, at), last - sign * self._reach(target, at)

    def _use(self, at, step):
        places = [self._x[key] for key in step.lifelines]
        x = min(places, default=_MARGIN * 2) - 30
        right = max([max(places, default=0) + 30, x + width(step.text) + 60])
        done = self._opened(step.element, "", data_use=step.text, data_path=notation.title(step.element.path))
        frame = Rect(x, self._tops[at] + 4, right - x, 40)
        self._rect(frame)
        self._tab(frame.x, frame.y, "ref")
        self._write(max(frame.middle[0] - width(step.text) / 2, x + 40), frame.bottom - 9, step.text, data_label="use")
        self._add(done)

    def _state(self, at, step):
        middle = sum(self._x[key] for key in step.lifelines) / max(len(step.lifelines), 1)
        wide = width(step.text) + 24
        done = self._opened(step.element, "", data_state=step.text, data_path=notation.title(step.element.path))
        self._rect(Rect(middle - wide / 2, self._tops[at] + 4, wide, 24), corner=10)
        self._write(middle - width(step.text) / 2, self._tops[at] + 20, step.text, data_label="state")
        self._add(done)


def _depths(steps):
    """How many fragments each step is in, and the most of that."""
    depths, depth, deepest = [], 0, 0
    for step in steps:
        depth -= step.kind == "end"
        depths.append(depth - (step.kind == "operand"))
        depth += step.kind == "fragment"
        deepest = max(deepest, depth)
    return depths, deepest
