"""What notebooks show of models, elements, lists and reports, by type of content. All of it is bounded."""

from __future__ import annotations

from html import escape

import umlmm
from umlmm import Kelm
from umlmm.drawing import notation
from umlmm.drawing.class_diagram import Diagram
from umlmm.drawing.options import Options
from umlmm.drawing.view import Missing, View

_BOXES, _ROWS = 40, 30


def of(shown):
    bundle = {"text/plain": repr(shown)}
    if isinstance(shown, Kelm.ImmutableClassObject) and not shown:
        return bundle
    if isinstance(shown, (Kelm.ImmutableModel, Kelm.ImmutableClassObject)):
        picture = _picture(shown)
        if picture:
            return bundle | {"image/svg+xml": picture}
        return bundle | {"text/html": _counts(shown) if isinstance(shown, Kelm.ImmutableModel) else _features(shown)}
    return bundle | {"text/html": _elements(shown)}


def of_view(view: View) -> dict[str, str]:
    try:
        return {"text/plain": view.title, "image/svg+xml": view.svg()}
    except Missing as missing:
        return {"text/plain": f"{view.title}\n{missing}"}


def of_report(report) -> dict[str, str]:
    text = str(report)
    return {"text/plain": text, "text/html": f"<pre>{escape(text[:20_000])}</pre>"}


def _picture(shown):
    """A picture, where one says more than a table: of a model with few boxes, and of what has a box."""
    is_model = isinstance(shown, Kelm.ImmutableModel)
    if not is_model and not Diagram(View("class", "", "down"), Options()).has_box(shown) \
            and not isinstance(shown, (umlmm.ImmutableInteraction, umlmm.ImmutableActivity)):
        return None
    try:
        view = umlmm.draw(shown, limit=_BOXES)
        boxes = len(list(view.all_boxes()))
        return view.svg() if boxes and not (is_model and view.notes) else None
    except Missing:
        return None


def _counts(model):
    counts = {}
    for element in model:
        name = element.MetaClass().name
        counts[name] = counts.get(name, 0) + 1
    rows = sorted(counts.items(), key=lambda row: (-row[1], row[0]))
    return _table(("class", "elements"), rows)


def _features(element):
    """The features that have a value."""
    rows = []
    for feature in element.MetaClass().allProperties():
        value = element.getProperty(feature.name) if element.isSet(feature.name) else None
        if value is not None:
            rows.append((feature.name, _shown(value)))
    return _table((element.MetaClass().name, element.path), rows)


def _shown(value):
    if isinstance(value, Kelm.ImmutableClassObject):
        return value.path
    if hasattr(value, "__len__") and not isinstance(value, str):
        first = ", ".join(_shown(value[at]) for at in range(min(len(value), 5)))
        return first + (f" and {len(value) - 5} more" if len(value) > 5 else "")
    return str(getattr(value, "value", value))


def _elements(elements):
    rows = [(element.MetaClass().name, getattr(element, "name", "") or "", element.path)
            for element in (elements[at] for at in range(min(len(elements), _ROWS)))]
    return _table(("class", "name", "path"), rows, len(elements) - len(rows))


def _table(head, rows, more=0):
    more += max(len(rows) - _ROWS, 0)
    cells = "".join(f"<th>{escape(notation.clean(each, 200))}</th>" for each in head)
    body = "".join("<tr>" + "".join(f"<td>{escape(notation.clean(str(each), 200))}</td>" for each in row) + "</tr>"
                   for row in rows[:_ROWS])
    last = f'<tr><td colspan="{len(head)}">and {more} more</td></tr>' if more else ""
    return f"<table><thead><tr>{cells}</tr></thead><tbody>{body}{last}</tbody></table>"
