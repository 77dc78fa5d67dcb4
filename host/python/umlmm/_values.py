"""Values as Python has them: literals of enumerations that can be iterated, called for and compared with texts, and
elements and models that are shown and have a truth value."""

from umlmm import _front

_literals = {}  # of an enumeration's class, by UML's spelling
_spelling = {}  # of a literal, by its published text


def _of(cls):
    found = _literals.get(cls)
    if found is None:
        import functools
        literals = [literal for literal in (getattr(cls, name) for name in dir(cls)) if isinstance(literal, cls)]
        literals.sort(key=functools.cmp_to_key(lambda one, other: -1 if one.lt(other) else 1))
        found = _literals[cls] = {literal.value: literal for literal in literals}
    return found


@_front.adds_to(_front.ENUMERATIONS)
class _Enumeration:
    """UML spells literals with a small letter: "private"."""

    @property
    def name(self) -> str:
        """The literal's name, as UML spells it."""
        return self.value

    @property
    def value(self) -> str:
        """The literal as UML spells it; it is equal to that text, and hashes alike."""
        published = self.toString()
        spelling = _spelling.get(published)
        if spelling is None:
            spelling = _spelling[published] = published[:1].lower() + published[1:]
        return spelling

    def __construct__(cls, arguments, keywords):
        from umlmm import errors
        if len(arguments) != 1 or keywords:
            raise errors.WrongType(f"{cls.__module__}.{cls.__qualname__} is called with the text of a literal")
        text, = arguments
        if isinstance(text, cls):
            return text
        literal = _of(cls).get(text[:1].lower() + text[1:]) if isinstance(text, str) else None
        if literal is None:
            raise errors.WrongValue(f"{text!r} is no literal of {cls.__module__}.{cls.__qualname__}; "
                                    f"these are: {', '.join(_of(cls))}")
        return literal

    def __class_iter__(cls):
        return iter(_of(cls).values())

    def __class_getitem__(cls, name):
        try:
            return cls(name)
        except ValueError as error:
            from umlmm import errors
            raise errors.NotFound(str(error)) from None

    def __eq__(self, other: object) -> bool:
        if self is other:
            return True
        return other == self.value if isinstance(other, str) else NotImplemented

    def __ne__(self, other: object) -> bool:
        if self is other:
            return False
        return other != self.value if isinstance(other, str) else NotImplemented

    def __hash__(self) -> int:
        return hash(self.value)


@_front.adds_to(_front.ELEMENTS)
class _Element:
    def __bool__(self) -> bool:
        """Whether there is an element: False for one that is gone, and for a query's answer that is none."""
        return self.isvalid()

    def __str__(self) -> str:
        """The qualified name; what has no name is told by its metaclass, as in `path`."""
        return self.path if self else repr(self)

    def __repr__(self) -> str:
        kind = f"{type(self).__module__}.{type(self).__qualname__}"
        return f"<{kind} {self.path!r}>" if self else f"<{kind} that is gone>"


@_front.adds_to(_front.MODELS)
class _Model:
    def __bool__(self) -> bool:
        """Whether the model is open."""
        return self.isvalid()

    def __repr__(self) -> str:
        kind = f"{type(self).__module__}.{type(self).__qualname__}"
        if not self:
            return f"<{kind} that is closed>"
        roots = self.rootElements()
        return f"<{kind}: {', '.join(map(str, roots[:3])) or 'empty'}{', ...' * (len(roots) > 3)}>"
