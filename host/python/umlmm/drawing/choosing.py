"""What a view is of: the elements that were asked for, and what they are called together."""

from __future__ import annotations

import umlmm
from umlmm import Kelm
from umlmm.drawing import notation, relating


# Kinds of views by metaclass.
_KINDS = {"Interaction": "sequence", "Activity": "activity", "ActivityNode": "activity", "UseCase": "use case",
          "Actor": "use case", "EnumerationLiteral": "class", "InstanceSpecification": "object", "Element": "class"}


class Chosen:
    """`elements` in the order in which they were given. Elements whose contents are drawn (`opened`) are what a model
    has at its top, and a package that was given alone."""

    def __init__(self, what):
        if isinstance(what, Kelm.ImmutableModel):
            self.elements = [element for element in what.rootElements() if not _is_standard(element)]
            self.title = "model"
            self.opened = True
            return
        if isinstance(what, Kelm.ImmutableClassObject):
            self.elements = [what]
            self.opened = isinstance(what, umlmm.ImmutablePackage)
        else:
            try:
                self.elements = list(dict.fromkeys(what))
            except TypeError:
                self.elements = [what]
            self.opened = False
        for element in self.elements:
            if not isinstance(element, Kelm.ImmutableClassObject):
                raise TypeError(f"A model, an element or several elements can be drawn, not {element!r}")
        names = [notation.name_of(element) for element in self.elements]
        self.title = ", ".join(names[:3]) + (f" and {len(names) - 3} more" if len(names) > 3 else "")
        if len(names) == 1:
            self.title = f"{self.elements[0].MetaClass().name} {self.title}"
        self.is_one = isinstance(what, Kelm.ImmutableClassObject)

    is_one = False

    @property
    def kind(self):
        """The kind of view that shows the elements best."""
        kinds = {relating.nearest(_KINDS, element) for element in self.elements}
        return kinds.pop() if len(kinds) == 1 else "class"


def _is_standard(element):
    """Whether an element is one of the standard's primitive types, which stand at the top of each model that uses
    them."""
    return isinstance(element, umlmm.ImmutablePrimitiveType) and not element.externalId


def around(elements, depth, limit, fits):
    """The elements and those in relation to them, `depth` steps away, nearest first; and how many steps were gone
    before there were more than `limit`."""
    found = dict.fromkeys(elements)
    edge = list(found)
    for step in range(depth):
        near = dict.fromkeys(other for element in edge for relation in relating.relations_of(element)
                             for other in relating.related(relation)
                             if other is not None and other not in found and fits(other))
        if limit is not None and len(found) + len(near) > limit:
            return list(found), step
        found.update(near)
        edge = list(near)
    return list(found), depth
