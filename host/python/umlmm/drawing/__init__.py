"""Pictures of models.

    view = umlmm.draw(model["shop"])          # what is in a package; umlmm.draw(order): a class and what is around it
    view.save("shop.svg")                     # also .png, .dot, .puml and .mmd

A view is a plain description of boxes and relations (`umlmm.drawing.view`), made once, as the model was then. Each form
is written from it alone. Pictures are laid out by Graphviz's `dot`; the other forms need no other program.
"""

from __future__ import annotations

import functools
from typing import Any, Callable

from umlmm.drawing.options import DIRECTIONS, LIMIT, Options
from umlmm.drawing.view import Missing, View

__all__ = ["Missing", "View", "draw"]


def draw(what: Any, kind: str | None = None, *, depth: int | None = None, show: Any = (), hide: Any = (),
         direction: str = "down", limit: int | None = LIMIT) -> View:
    """A view of a model, of an element, or of several elements.

    `kind` is "class", "package" (packages alone and what they import), "component", "object", "use case", "activity",
    "sequence", "inheritance" or "references" (who refers to the elements); unless said it is found from the element:
    "sequence" for an interaction, "class" for most. `depth` is how many levels of packages are opened, of other
    elements how many relations are followed. `show` and `hide` name what is to be seen, such as "inherited",
    "comments", "operations", "visibility"; `hide` takes elements, too. `direction` is where subordinate boxes go:
    "down", "up", "left" or "right". A view that would have more boxes than `limit` keeps packages closed, or stays nearer to its
    elements, and says so in `notes`; `limit=None` draws whatever there is.
    """
    from umlmm.drawing import choosing, class_diagram, other_diagrams, reference_diagram, sequence_diagram
    kinds: dict[str, Callable[..., View]] = {
        "class": class_diagram.build, "sequence": sequence_diagram.build,
        **{name: functools.partial(class_diagram.build, of=of) for name, of in other_diagrams.KINDS.items()},
        "inheritance": class_diagram.build_inheritance, "references": reference_diagram.build}
    if kind is not None and kind not in kinds:
        raise ValueError(f"{kind!r} is no kind of view; what is: {', '.join(kinds)}")
    if direction not in DIRECTIONS:
        raise ValueError(f"{direction!r} is no direction; what is: {', '.join(DIRECTIONS)}")
    if depth is not None and (not isinstance(depth, int) or depth < 0):
        raise ValueError(f"depth is a number of levels from 0 on, not {depth!r}")
    if limit is not None and (not isinstance(limit, int) or limit < 1):
        raise ValueError(f"limit is a number of boxes from 1 on, or None for any, not {limit!r}")
    options = Options(show, hide)
    chosen = choosing.Chosen(what)
    view = kinds[kind or chosen.kind](chosen, options, depth, direction, limit)
    if not view.boxes:
        view.notes.append("There is nothing in it that this kind of view shows.")
    elif limit is not None and len(view.relations) > 2 * limit:
        view.notes.append(f"There are {len(view.relations)} lines among the boxes, more than can be told apart: fewer "
                          f"elements, or hide=\"associations\" and the like, make a picture that can be read.")
    return view
