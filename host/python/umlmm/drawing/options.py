"""What is shown of elements: names that `show` and `hide` take."""

from __future__ import annotations

DIRECTIONS = ("down", "up", "left", "right")
LIMIT = 200  # boxes that can still be read

# By name, whether it is shown unless said.
_SHOWN = {
    "attributes": True, "operations": True, "receptions": True, "literals": True, "inherited": False,
    "types": True, "multiplicities": True, "visibility": True, "parameters": True, "defaults": True, "modifiers": True,
    "stereotypes": True, "roles": True, "names": True, "comments": False, "primitives": False,
    "associations": True, "generalizations": True, "realizations": True, "dependencies": True, "imports": True,
    "nesting": True,
}


class Options:
    """`"operations" in options` tells whether operations are shown, `options.hides(element)` whether an element is
    not."""

    def __init__(self, show=(), hide=()):
        shown, no_elements = _sorted_out(show)
        hidden, self._elements = _sorted_out(hide)
        if no_elements:
            raise TypeError("show takes names; say which elements are drawn by the first argument: draw([a, b])")
        for name in sorted(shown & hidden):
            raise ValueError(f"{name!r} is to be shown and to be hidden; say one of them")
        self._names = {name for name, is_shown in _SHOWN.items() if is_shown} - hidden | shown

    def __contains__(self, name):
        return name in self._names

    def hides(self, element):
        return element in self._elements


def _sorted_out(given):
    """Names and elements among what was given, which may be one of them alone."""
    if isinstance(given, str) or hasattr(given, "MetaClass"):
        given = [given]
    names, elements = set(), set()
    for one in given:
        if not isinstance(one, str):
            elements.add(one)
        elif one in _SHOWN:
            names.add(one)
        else:
            import difflib
            near = difflib.get_close_matches(one, _SHOWN, 1)
            raise ValueError(f"{one!r} is nothing that can be shown or hidden; "
                             + (f"did you mean {near[0]!r}?" if near else f"what can: {', '.join(_SHOWN)}"))
    return names, elements
