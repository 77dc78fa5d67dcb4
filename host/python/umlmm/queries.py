"""What was found, to be asked further:

    classes = model.all(umlmm.Class).having(name="Ifc*", isAbstract=False)
    classes.ownedAttribute.type.unique()
    print(classes.table("name", "package.name", "ownedAttribute.name"))
    classes.graph("general")
"""

from __future__ import annotations

import fnmatch
import functools
import re
from collections.abc import Sequence

import umlmm
from umlmm import Kelm, errors
from umlmm._classes import python_name

TYPE_CHECKING = False
if TYPE_CHECKING:
    from collections.abc import Callable, Iterator
    from typing import Any, SupportsIndex, TypeVar, overload

    from umlmm.files import Path

    _T = TypeVar("_T")
else:
    def overload(function):
        return function

__all__ = ["Found", "Table"]


class Found(list["_T"]):
    """A list of elements, or of values of theirs. A feature's name gives the values of all, one list of them:
    `classes.ownedAttribute.type`. What has no such feature, or no value, is left out."""

    __slots__ = ()

    def having(self, test: Callable[[_T], object] | None = None, /, **features: object) -> Found[_T]:
        """Those for which a function is true and whose features are as told: a text may be a pattern ("Ifc*"), a
        function is a test of the value, of several values one is enough. `type__name="String"` goes on from a feature
        to its value's."""
        wanted = [(name.split("__"), _test(value)) for name, value in features.items()]
        for names, _ in wanted:
            _check_known(self, names[0])
        return Found(each for each in self if (test is None or test(each))
                     and all(any(map(fits, _values(each, names) or (None,))) for names, fits in wanted))

    def unique(self) -> Found[_T]:
        """Each once, where it comes first."""
        return Found(dict.fromkeys(self))

    def table(self, *columns: str) -> Table:
        """A row for each element, with the features or paths of features (`"type.name"`) that are named."""
        if not columns:
            raise errors.WrongType('A table needs columns, such as table("name", "type.name")')
        paths = [column.split(".") for column in columns]
        for names in paths:
            _check_known(self, names[0])
        return Table(columns, [[_cell(each, names) for names in paths] for each in self])

    def graph(self, *paths: str) -> Any:
        """A graph of package networkx: an edge from each element to each value of the features or paths of features
        that are named; if none is, to the elements of the list that it refers to."""
        made = _package("networkx", "A graph").MultiDiGraph()
        for each in self:
            _add_node(made, each)
        for each in self:
            for path in paths:
                for value in _values(each, path.split(".")):
                    if isinstance(value, Kelm.ImmutableClassObject):
                        _add_node(made, value)
                        made.add_edge(each, value, feature=path)
            for name, value in () if paths else _references(each):
                if value in made:
                    made.add_edge(each, value, feature=name)
        return made

    def __getattr__(self, name: str) -> Found[Any]:
        if name.startswith("_"):
            raise AttributeError(name)
        return self[name]

    @overload
    def __getitem__(self, place: SupportsIndex, /) -> _T: ...
    @overload
    def __getitem__(self, place: slice, /) -> Found[_T]: ...
    @overload
    def __getitem__(self, place: str, /) -> Found[Any]: ...
    def __getitem__(self, place, /):
        """An element, several of them, or the values at a path of features: `found["type.name"]`."""
        if isinstance(place, str):
            names = place.split(".")
            _check_known(self, names[0])
            return Found(value for each in self for value in _values(each, names))
        found = list.__getitem__(self, place)
        return Found(found) if isinstance(place, slice) else found


class Table:
    """Rows of plain values: an element is shown by its path, an enumeration's literal as UML spells it, None is none.
    Where a feature has several values, a list of them."""

    columns: tuple[str, ...]
    rows: list[list[Any]]

    def __init__(self, columns, rows):
        self.columns = tuple(columns)
        self.rows = rows

    def __iter__(self) -> Iterator[list[Any]]:
        return iter(self.rows)

    def __len__(self) -> int:
        return len(self.rows)

    def markdown(self) -> str:
        """The table in Markdown."""
        rows = [[text.replace("|", "\\|").replace("\n", " ") for text in row] for row in self._texts()]
        widths = [max(3, *(len(row[at]) for row in rows)) for at in range(len(self.columns))]
        lines = ["| " + " | ".join(text.ljust(width) for text, width in zip(row, widths)) + " |" for row in rows]
        lines.insert(1, "|" + "|".join("-" * (width + 2) for width in widths) + "|")
        return "\n".join(lines)

    def csv(self, path: Path | None = None) -> str:
        """The table as comma-separated values, with a line of titles; written to a file if a path is given. A text that
        a spreadsheet would run, as it begins with =, +, - or @, gets an apostrophe before it."""
        import csv
        import io
        from umlmm import _tables
        text = io.StringIO()
        csv.writer(text, lineterminator="\n").writerows(map(_tables.guarded, row) for row in self._texts())
        if path is not None:
            with open(path, "w", encoding="utf-8", newline="") as file:
                file.write(text.getvalue())
        return text.getvalue()

    def dataframe(self) -> Any:
        """The table as a DataFrame of package pandas."""
        return _package("pandas", "A DataFrame").DataFrame(self.rows, columns=list(self.columns))

    def _texts(self):
        return [list(self.columns), *([_text(cell) for cell in row] for row in self.rows)]

    __str__ = markdown

    def __repr__(self) -> str:
        return f"<table of {len(self)} rows: {', '.join(self.columns)}>"

    def _repr_markdown_(self):
        return self.markdown()


# --- values of features

def _values(element, names):
    """The values at the end of a path of features, in a list."""
    return _walk(element, names)[0]


def _walk(element, names):
    """The same, and whether a feature on the way takes several."""
    values, are_several = [element], False
    for name in names:
        found = []
        for each in values:
            if _has(type(each), name):
                value = getattr(each, name)
                if isinstance(value, Sequence) and not isinstance(value, str):
                    found += value
                    are_several = True
                elif callable(value) and not hasattr(value, "toString"):
                    raise errors.NoSuchMember(f"'{name}' is a method: [each.{name}() for each in ...] calls it")
                elif value is not None:
                    found.append(value)
        values = found
    return values, are_several


def _has(cls, name):
    return any(name in vars(base) for base in cls.__mro__)


def _check_known(found, name):
    """Raises AttributeError for what no element of a list can have."""
    classes = set(map(type, found))
    if any(_has(cls, name) for cls in classes) or (not found and name in _all_features()):
        return
    import difflib
    known = {member for cls in classes for member in dir(cls)} if found else _all_features()
    near = difflib.get_close_matches(name, known, 1)
    kinds = ", ".join(sorted(cls.__name__ for cls in classes)[:3])
    raise errors.NoSuchMember((f"None of what was found ({kinds}) has '{name}'" if found else f"No element has '{name}'")
                         + (f"; did you mean '{near[0]}'?" if near else ""))


@functools.cache
def _all_features():
    return {python_name(feature.name) for cls in umlmm.MetaPackage().classes() for feature in cls.ownedProperties()}


def _test(wanted):
    if callable(wanted) and not hasattr(wanted, "toString"):
        return wanted
    if isinstance(wanted, str) and any(mark in wanted for mark in "*?["):
        matches = re.compile(fnmatch.translate(wanted)).match
        return lambda value: value == wanted or (isinstance(value, str) and matches(value) is not None)
    return lambda value: value == wanted


# --- tables and graphs

def _cell(element, names):
    values, are_several = _walk(element, names)
    values = [_plain(value) for value in values]
    return values if are_several else values[0] if values else None


def _plain(value):
    if isinstance(value, Kelm.ImmutableClassObject):
        return value.path
    return value.value if hasattr(value, "toString") else value


def _text(cell):
    if isinstance(cell, list):
        return ", ".join(map(_text, cell))
    return "" if cell is None else str(cell)


def _add_node(graph, element):
    if element not in graph:
        graph.add_node(element, kind=element.MetaClass().name, path=element.path)


def _references(element):
    """The elements that an element refers to in its stored features, with the names of these."""
    for feature in element.MetaClass().allProperties():
        if not feature.isDerived and hasattr(feature.type, "superClasses"):
            name = python_name(feature.name)
            for value in _values(element, [name]):
                yield name, value


def _package(name, what):
    import importlib
    try:
        return importlib.import_module(name)
    except ImportError as error:
        raise errors.CannotLoad(f"{what} needs the Python package {name}, which is not installed", name=name) from error
