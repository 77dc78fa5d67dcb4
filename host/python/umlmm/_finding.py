"""Finding: elements by class, below and above an element, and along associations. What is found can be changed where
that through which it was asked can."""

from umlmm import _front

_look = None  # the library's functions, from the first look-up on
_queries = None  # the module, from the first search on


def _found_list(elements):
    global _queries
    if _queries is None:
        from umlmm import queries as _queries
    return _queries.Found(elements)


def _looking():
    global _look
    import umlmm
    umlmm._host.load("uml_finding_mi")
    _look = umlmm._show("umlmm._look", "umlmm_finding")
    return _look


def _found(owner, path):
    """What a path leads to from a model or an element, or None; as changeable as that."""
    if not isinstance(path, str):
        return None
    from umlmm import Kelm
    look = _look or _looking()
    changeable = owner.asMutable()
    if isinstance(owner, Kelm.ImmutableModel):
        found = look.find(changeable, path)
    else:
        found = look.findIn(changeable.modelKelm, changeable, path)
    if not found:
        return None
    return found if changeable is owner else found.asImmutable()


def _at(owner, path):
    found = _found(owner, path)
    if found is not None:
        return found
    if not isinstance(path, str):
        from umlmm import errors
        raise errors.WrongType(f"Elements are found by their path, a text such as 'shop::Order', not by {path!r}")
    # Where the path breaks off, and what is there instead.
    names = path.split("::")
    known = owner
    while len(names) > 1 and (part := _found(known, names[0])) is not None:
        known, names = part, names[1:]
    import difflib
    from umlmm import Kelm, errors
    inside = known.rootElements() if isinstance(known, Kelm.ImmutableModel) else known.containeeKelm
    near = difflib.get_close_matches(names[0], _names(inside), 1)
    raise errors.NotFound(f"{known!r} has no part {names[0]!r}" + (f"; did you mean {near[0]!r}?" if near else ""))


def _each(elements, kind):
    return _found_list(elements if kind is None else (element for element in elements if isinstance(element, kind)))


def _names(elements):
    return list(dict.fromkeys(name for part in elements if (name := _name(part))))


def _name(element):
    from umlmm import ImmutableNamedElement
    return element.name if isinstance(element, ImmutableNamedElement) else ""


@_front.adds_to(_front.MODELS)
class _Model:
    def all(self, kind: "type[_T] | None" = None, *, exact: bool = False) -> "umlmm.queries.Found[_T]":
        """The elements of a class in document order, `model.all(umlmm.Class)`, with those of more special classes
        unless `exact`; all elements if no class is given. The model has an index of them."""
        if kind is None:
            return _found_list(self.allElements())
        metaclass = kind.MetaClass()
        found = self.instancesOf(metaclass)
        return _found_list((element for element in found if element.MetaClass() == metaclass) if exact else found)

    def where(self, kind: "type[_T]", predicate: "collections.abc.Callable[[_T], object]") -> "umlmm.queries.Found[_T]":
        """The elements of a class for which a function is true."""
        return self.all(kind).having(predicate)

    def __iter__(self) -> "collections.abc.Iterator[umlmm.Kelm.ClassObject]":
        return iter(self.allElements())

    def __getitem__(self, path: str) -> "typing.Any":
        """The element at a path of names: `model["shop::Order"]`. A look-up, in large models too."""
        return _at(self, path)

    def __contains__(self, path: object) -> bool:
        """Whether a path leads to an element, or an element is in the model."""
        if isinstance(path, str):
            return _found(self, path) is not None
        return bool(path) and getattr(path, "modelKelm", None) == self.asMutable()

    def check(self) -> "list[str]":
        """What is wrong with ownership, types and multiplicities, a line each, parts among it that were taken out of
        a list and have no owner any more."""
        from umlmm import _check
        return list(_check.findings(self))

    def _ipython_key_completions_(self):
        return _names(self.rootElements())


@_front.adds_to(_front.ELEMENTS)
class _Element:
    def descendants(self, kind: "type[_T] | None" = None) -> "umlmm.queries.Found[_T]":
        """All that the element owns, directly or through what it owns, each behind its owner; of a class if one is
        given."""
        found = _found_list(())
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

    def __getitem__(self, path: str) -> "typing.Any":
        """The part at a path of names: `shop["Order::items"]`. A look-up, in large models too."""
        return _at(self, path)

    def __contains__(self, path: object) -> bool:
        """Whether a path leads to a part, or an element is one, directly or further down."""
        if isinstance(path, str):
            return _found(self, path) is not None
        return self in path.ancestors() if hasattr(path, "ancestors") else False

    def _ipython_key_completions_(self):
        return _names(self.containeeKelm)

    def ancestors(self, kind: "type[_T] | None" = None) -> "umlmm.queries.Found[_T]":
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
        return "::".join(_name(at) or f"<{at.MetaClass().name}>"
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
