"""Changes that go further than one element."""

from __future__ import annotations

import umlmm
from umlmm import Kelm, _host  # type: ignore[attr-defined]
from umlmm._answers import _Record

__all__ = ["Removed", "new_model", "remove"]


def new_model(name: str = "") -> Kelm.Model:
    """A new model, with a package of that name if one is given. It goes with the last object that shows something of
    it; `with umlmm.new_model() as model:` closes it. One of `Factory.createNewModel` stays until it is closed."""
    model = umlmm.Factory.createNewModel()
    _host.let_go(model)
    if name:
        umlmm.Package(model, name=name)
    return model


class Removed(_Record):
    """What `remove` took: the metaclass of an element and its qualified name, its own or none."""

    __slots__ = ("kind", "name")
    kind: str
    name: str

    def __str__(self):
        return f"{self.kind} {self.name}".rstrip()


def remove(element: umlmm.Element) -> list[Removed]:
    """Destroys an element and the relations that mean nothing without it, and answers all that went: the element
    first, then what goes with it, without the parts of either.

    A relation goes with the last element at one of its sides: a generalization with either of its classifiers, a
    dependency with its only client or supplier, an association when one end is left or one of its types goes, with the
    attribute that is its other end; a connector, a flow and a message with either end. All else that refers to the
    element loses it."""
    going = {element: None}  # in order
    waiting = [element]
    gone = set()
    while waiting:
        at = waiting.pop()
        parts = [at, *at.allOwnedElements()]
        gone.update(parts)
        for part in parts:
            for other in part.referencedBy():
                for lost in _going_with(other.asMutable(), gone):
                    if lost not in gone and lost not in going:
                        going[lost] = None
                        waiting.append(lost)
    answer = [Removed(at.MetaClass().name, _name(at)) for at in going]
    for at in going:
        if at.isvalid():
            at.destroy()
    return answer


def _going_with(other, gone):
    """The element itself, and what goes with it, if it means nothing without those that are gone."""
    if isinstance(other, umlmm.Property) and other.type in gone and other.association is not None:
        other = other.association
    if isinstance(other, umlmm.ConnectorEnd):
        return [other.owner] if other.owner is not None else [other]
    if isinstance(other, umlmm.Association):
        ends = list(other.memberEnd)
        if len([end for end in ends if end not in gone and end.type not in gone]) < 2:
            return [other, *(end for end in ends if end.type in gone)]
    elif isinstance(other, umlmm.DirectedRelationship):
        if any(_all_gone(side, gone) for side in (other.source, other.target)):
            return [other]
    elif isinstance(other, umlmm.ActivityEdge):
        if other.source in gone or other.target in gone:
            return [other]
    elif isinstance(other, umlmm.Message):
        if other.sendEvent in gone or other.receiveEvent in gone:
            return [other]
    return []


def _all_gone(side, gone):
    return len(side) > 0 and all(element in gone for element in side)


def _name(element):
    if element.MetaClass().property("name"):
        return element.qualifiedName or element.name
    return ""
