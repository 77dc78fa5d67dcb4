"""What `umlmm.files` tells of models, as plain objects."""

from __future__ import annotations

TYPE_CHECKING = False  # but for checkers: the module typing takes longer to bring in than a file to read
if TYPE_CHECKING:
    from umlmm import Kelm


def decoded(text):
    """The values of a text of JSON."""
    import json
    return json.loads(text)


class _Record:
    """An object with the attributes of `__slots__`, shown and compared by their values."""

    __slots__: tuple[str, ...] = ()

    def __init__(self, *values):
        for name, value in zip(self.__slots__, values, strict=True):
            setattr(self, name, value)

    def _values(self):
        return tuple(getattr(self, name) for name in self.__slots__)

    def __eq__(self, other):
        return self._values() == other._values() if type(other) is type(self) else NotImplemented

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self):
        shown = ", ".join(f"{name}={value!r}" for name, value in zip(self.__slots__, self._values()))
        return f"{type(self).__name__}({shown})"


class Unresolved(_Record):
    """A reference that leads nowhere: the element and the name of its feature, the address as written, the place."""

    __slots__ = ("element", "feature", "address", "file", "line", "column")
    element: Kelm.ClassObject
    feature: str
    address: str
    file: str
    line: int
    column: int


class Unknown(_Record):
    """Something that stood with an element: a tag with what is in it, or an attribute, with its value for text."""

    __slots__ = ("tag", "attributes", "text", "children")
    tag: str
    attributes: dict[str, str]
    text: str
    children: list[Unknown]

    def __init__(self, tag, attributes, text, children):
        super().__init__(tag, dict(attributes), text, [Unknown(*child) for child in children])


class ReportFile(_Record):
    """A file as it was read."""

    __slots__ = ("path", "dialect", "tool", "tool_version", "encoding", "bytes")
    path: str
    dialect: str
    tool: str
    tool_version: str
    encoding: str
    bytes: int


class Finding(_Record):
    """One kind of thing that was not understood, or not as it was written: how often, where first, what became of
    it."""

    __slots__ = ("kind", "what", "outcome", "count", "file", "line", "column")
    kind: str
    what: str
    outcome: str
    count: int
    file: str
    line: int
    column: int


class DuplicateId(_Record):
    """An id that is declared again, and the place of the second declaration. The first is meant."""

    __slots__ = ("id", "file", "line", "column")
    id: str
    file: str
    line: int
    column: int


class Report:
    """What reading has met. Its text is a page for people, `json()` the same for programs."""

    files: list[ReportFile]
    elements: dict[str, int]
    element_count: int
    findings: list[Finding]
    duplicate_ids: list[DuplicateId]
    unresolved_count: int
    stereotype_count: int
    parse_time: float
    build_time: float

    _RECORDS = {"files": ReportFile, "findings": Finding, "duplicate_ids": DuplicateId}

    def __init__(self, text, page):
        self._json = text
        self._page = page
        for name, value in decoded(text).items():
            kind = self._RECORDS.get(name)
            setattr(self, name, [kind(*(row[key] for key in kind.__slots__)) for row in value] if kind else value)

    def json(self) -> str:
        return self._json

    def __str__(self):
        return self._page

    def _repr_mimebundle_(self, include=None, exclude=None):
        """What a notebook shows."""
        from umlmm.drawing import bundles
        return bundles.of_report(self)

    def __repr__(self):
        return f"<report on {', '.join(file.path for file in self.files)}: {self.element_count} elements>"
