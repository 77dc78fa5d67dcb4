"""Stereotypes that are applied to elements, as `umlmm.files` shows them. Objects here hold an element and a number, by
which the library knows the application; they read and change what the model has."""

from __future__ import annotations

from umlmm._answers import decoded

TYPE_CHECKING = False  # but for checkers: the module typing takes longer to bring in than a file to read
if TYPE_CHECKING:
    from collections.abc import Iterable, Iterator
    from typing import Any, NoReturn, Union

    from umlmm import Kelm

    Text = Union[str, bool, int, float, Kelm.ImmutableClassObject]
    Value = Union[Text, Iterable[Text], None]

_SEPARATOR = "\x1f"  # before each value; no XML can hold it


class Stereotype:
    """One application of a stereotype. `profile` is the prefix of its namespace and `uri` the address behind it.

    `application["tag"]` is a tagged value: a text, or a list of texts where there are several; it can be assigned and
    deleted, and `values` has all of them. A boolean or number is assigned as its text, an element as its id in the
    file. `remove()` takes the application away."""

    __slots__ = ("_call", "_number", "element", "name", "profile", "uri")
    element: Kelm.ImmutableClassObject
    name: str
    profile: str
    uri: str

    def __init__(self, element, call, number, name, profile, uri):
        self.element, self._call, self._number = element, call, number
        self.name, self.profile, self.uri = name, profile, uri

    @property
    def values(self) -> Values:
        """The tagged values by name, as they are now. What is changed in this dictionary is changed in the model."""
        [[*_, values]] = decoded(self._call("stereotype", self.element, self._number))
        return Values(self, values)

    def remove(self) -> None:
        """Takes the application away."""
        _change(self._call, "removeStereotype", self.element, self._number)

    def get(self, tag: str, default: Any = None) -> Any:
        return self.values.get(tag, default)

    def __getitem__(self, tag: str) -> str | list[str]:
        return self.values[tag]

    def __setitem__(self, tag: str, value: Value) -> None:
        self._set(tag, _texts(value))

    def __delitem__(self, tag: str) -> None:
        del self.values[tag]

    def __contains__(self, tag: object) -> bool:
        return tag in self.values

    def __iter__(self) -> Iterator[str]:
        return iter(self.values)

    def __bool__(self) -> bool:
        return True

    def _set(self, tag, texts):
        if any(_SEPARATOR in text for text in texts):
            raise ValueError("A control character can't be written in XML")
        _change(self._call, "setTaggedValues", self.element, self._number, tag,
                "".join(_SEPARATOR + text for text in texts))

    def _told(self):
        return self.name, self.profile, self.uri, self.values

    def __eq__(self, other):
        return self._told() == other._told() if type(other) is type(self) else NotImplemented

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self):
        return f"Stereotype(name={self.name!r}, profile={self.profile!r}, uri={self.uri!r}, values={self.values!r})"

    def __reduce__(self):
        place = [one._number for one in self.element.stereotypes].index(self._number)
        return _at, (self.element, place)


def _at(element, place):
    return element.stereotypes[place]


class Values(dict[str, "str | list[str]"]):
    """The tagged values of an application. What is changed in this dictionary is changed in the model."""

    __slots__ = ("_stereotype",)

    def __init__(self, stereotype, values):
        self._stereotype = stereotype
        for tag, value in values:
            known = self.get(tag)
            super().__setitem__(tag, value if known is None else
                                [*(known if isinstance(known, list) else [known]), value])

    def __setitem__(self, tag: str, value: Value) -> None:
        texts = _texts(value)
        self._stereotype._set(tag, texts)
        if texts:
            super().__setitem__(tag, texts[0] if len(texts) == 1 else texts)
        else:
            super().pop(tag, None)

    def __delitem__(self, tag: str) -> None:
        self[tag]  # raises for one that is not there
        self[tag] = None

    def pop(self, tag, *default):  # type: ignore[override]
        value = super().pop(tag, *default)
        if tag in self._stereotype:
            self[tag] = None
        return value

    def popitem(self):
        for tag in reversed(self):
            return tag, self.pop(tag)
        return super().popitem()

    def clear(self) -> None:
        for tag in list(self):
            self[tag] = None

    def setdefault(self, tag, default=None):
        if tag not in self:
            self[tag] = default
        return self.get(tag)

    def update(self, *values, **more):
        for tag, value in dict(*values, **more).items():
            self[tag] = value

    def __ior__(self, values):  # type: ignore[override,misc]
        self.update(values)
        return self

    def __reduce__(self):
        return dict, (dict(self),)


class Stereotypes(list[Stereotype]):
    """The applications of an element, as they were when it was asked. Taking one out takes it away from the element;
    `add` applies a stereotype."""

    __module__ = "umlmm.files"

    def __init__(self, element, call, answers):
        super().__init__(Stereotype(element, call, *answer[:-1]) for answer in answers)
        self._element, self._call = element, call

    def add(self, name: str, profile: str = "", /, **values: Value) -> Stereotype:
        """Applies a stereotype of a profile that the model uses already, with tagged values. `profile` is the prefix or
        the address of its namespace; it is needed where the name alone does not tell."""
        texts = {tag: _texts(value) for tag, value in values.items()}
        number = _change(self._call, "applyStereotype", self._element, name, profile)
        try:
            [answer] = decoded(self._call("stereotype", self._element, number))
            made = Stereotype(self._element, self._call, *answer[:-1])
            for tag, value in texts.items():
                made._set(tag, value)
        except BaseException:
            self._call("removeStereotype", self._element, number)
            raise
        super().append(made)
        return made

    def remove(self, application: Stereotype) -> None:
        del self[[one._number for one in self].index(application._number)]

    def __delitem__(self, place):
        gone = self[place]
        for application in gone if isinstance(place, slice) else [gone]:
            application.remove()
        super().__delitem__(place)

    def pop(self, place: Any = -1) -> Stereotype:
        application = self[place]
        del self[place]
        return application

    def clear(self) -> None:
        del self[:]

    def _refuse(self, *ignored) -> NoReturn:
        raise TypeError("stereotypes are applied by add(name), and taken away by remove(application)")

    append = extend = insert = __setitem__ = __iadd__ = __imul__ = _refuse  # type: ignore[assignment]

    def __reduce__(self):
        return _of, (self._element,)


def _of(element):
    return element.stereotypes


def _change(call, name, element, *arguments):
    import umlmm
    if not isinstance(element, umlmm.Kelm.ClassObject):
        raise umlmm.Kelm.ReadOnlyError("A read-only view of an element shows its stereotypes; change those of "
                                       "element.asMutable()")
    return call(name, element, *arguments)


def _texts(value):
    """The texts that a value is given as: none, one or several."""
    if value is None:
        return []
    if isinstance(value, (str, bool, int, float)) or hasattr(value, "externalId"):
        return [_text(value)]
    return [_text(one) for one in value]


def _text(value):
    if isinstance(value, str):
        return value
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, (int, float)):
        return str(value)
    if not hasattr(value, "externalId"):
        raise TypeError(f"a tagged value is a text, a truth, a number or an element, not {type(value).__name__!r}")
    if not value.externalId:
        raise ValueError("The element has no id yet, so nothing can refer to it; save the model first")
    return value.externalId
