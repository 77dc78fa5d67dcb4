"""Finding: elements by class, below and above an element, and along associations. What is found can be changed where
that through which it was asked can."""

from umlmm import _front


def _each(elements, kind):
    if kind is None:
        return list(elements)
    return [element for element in elements if isinstance(element, kind)]


@_front.adds_to(_front.MODELS)
class _Model:
    def all(self, kind: "type[_T] | None" = None, *, exact: bool = False) -> "list[_T]":
        """The elements of a class in document order, `model.all(umlmm.Class)`, with those of more special classes
        unless `exact`; all elements if no class is given. The model has an index of them."""
        if kind is None:
            return list(self.allElements())
        metaclass = kind.MetaClass()
        found = self.instancesOf(metaclass)
        return [element for element in found if element.MetaClass() == metaclass] if exact else list(found)

    def where(self, kind: "type[_T]", predicate: "collections.abc.Callable[[_T], object]") -> "list[_T]":
        """The elements of a class for which a function is true."""
        return [element for element in self.all(kind) if predicate(element)]

    def __iter__(self) -> "collections.abc.Iterator[umlmm.Kelm.ClassObject]":
        return iter(self.allElements())


@_front.adds_to(_front.ELEMENTS)
class _Element:
    def descendants(self, kind: "type[_T] | None" = None) -> "list[_T]":
        """All that the element owns, directly or through what it owns, each behind its owner; of a class if one is
        given."""
        found = []
        walks = [iter(self.containeeKelm)]
        while walks:
            part = next(walks[-1], None)
            if part is None:
                walks.pop()
                continue
            if kind is None or isinstance(part, kind):
                found.append(part)
            walks.append(iter(part.containeeKelm))
        return found

    def ancestors(self, kind: "type[_T] | None" = None) -> "list[_T]":
        """The owner, its owner and so on to the top; those of a class if one is given."""
        found = []
        at = self.containerKelm
        while at is not None:
            found.append(at)
            at = at.containerKelm
        return _each(found, kind)

    @property
    def path(self) -> str:
        """The names of the owners from the top and the element's own, joined as in a qualified name; what has no name
        is told by its metaclass in angle brackets."""
        return "::".join(getattr(at, "name", "") or f"<{at.MetaClass().name}>"
                         for at in reversed([self, *self.ancestors()]))


@_front.adds_to("umlmm.ImmutableProperty")
class _Property:
    @property
    def other_end(self) -> "umlmm.Property | None":
        """The other end of a binary association, whoever owns it; None for a property that is no such end.
        (`opposite` tells of ends alone that are owned by the types.)"""
        if self.association is None:
            return None
        ends = [end for end in self.association.memberEnd if end != self]
        return ends[0] if len(ends) == 1 else None
