"""Reads the tables into small typed records, one for each row, and knows nothing of what they mean.

A table is a text file of columns between "|". "#" starts a remark line, blank lines are free, the first line
names the columns. A cell in double quotes keeps its blanks.
"""

from __future__ import annotations

import dataclasses
import pathlib
import re
from collections.abc import Callable, Iterator


class TableError(Exception):
    """A row that cannot stand: tells table, row and reason."""

    def __init__(self, where: Where, reason: str):
        super().__init__(f"{where.table}, line {where.line} ({where.row}): {reason}")


@dataclasses.dataclass(frozen=True)
class Where:
    table: str
    line: int
    row: str


@dataclasses.dataclass(frozen=True)
class MetaclassRow:
    name: str
    kind: str
    superclasses: tuple[str, ...]
    where: Where


@dataclasses.dataclass(frozen=True)
class FeatureRow:
    owner: str
    id: int
    name: str
    type: str
    lower: int
    upper: int | None
    flags: frozenset[str]
    default: str
    opposite: str
    subsets: tuple[str, ...]
    redefines: tuple[str, ...]
    forgets: str
    where: Where

    @property
    def key(self) -> str:
        return f"{self.owner}.{self.name}"


@dataclasses.dataclass(frozen=True)
class TypeRow:
    """A type as operations name it: "Property" for one value, "Property[*]" for a sequence."""

    name: str
    many: bool


@dataclasses.dataclass(frozen=True)
class OperationRow:
    owner: str
    name: str
    argument_text: str
    argument_types: tuple[TypeRow, ...]
    result: TypeRow
    where: Where


@dataclasses.dataclass(frozen=True)
class CreateRow:
    metaclass: str
    argument_text: str
    argument_types: tuple[str, ...]
    where: Where


@dataclasses.dataclass(frozen=True)
class EnumerationRow:
    name: str
    literals: tuple[str, ...]
    where: Where


@dataclasses.dataclass(frozen=True)
class PrimitiveRow:
    name: str
    value: str
    required: str
    optional: str
    where: Where


@dataclasses.dataclass(frozen=True)
class NameRow:
    """A row that is a name alone."""

    name: str
    where: Where


@dataclasses.dataclass(frozen=True)
class Tables:
    metaclasses: tuple[MetaclassRow, ...]
    features: tuple[FeatureRow, ...]
    operations: tuple[OperationRow, ...]
    interface_operations: tuple[OperationRow, ...]
    creates: tuple[CreateRow, ...]
    enumerations: tuple[EnumerationRow, ...]
    primitives: tuple[PrimitiveRow, ...]
    kernel_features: tuple[NameRow, ...]
    registration: tuple[NameRow, ...]


# What an element's owner can be to it.
ROLES = ("owner", "namespace", "featuring", "redefining")
FLAGS = ("composite", "ordered", "repeatable", "derived", "union", "readonly", "context", *ROLES, "name")
RELATIONS = ("opposite", "subsets", "redefines", "forgets")


_FEATURE = "metaclass | id | feature | type | bounds | flags | default | relations"
_OPERATION = "metaclass | operation | argument names | argument types | result"


def _names(text: str) -> tuple[str, ...]:
    return tuple(name.strip() for name in text.split(",")) if text else ()


def _quoted(text: str, where: Where) -> str:
    if not text:
        return ""
    if len(text) < 2 or text[0] != '"' or text[-1] != '"':
        raise TableError(where, f"the text {text} is not in double quotes")
    return text[1:-1]


def _number(text: str, where: Where) -> int:
    if not text.isdecimal():
        raise TableError(where, f"'{text}' is not a number")
    return int(text)


def _type(text: str) -> TypeRow:
    return TypeRow(text.removesuffix("[*]"), text.endswith("[*]"))


def _bounds(text: str, where: Where) -> tuple[int, int | None]:
    match = re.fullmatch(r"(\d+)\.\.(\d+|\*)", text)
    if not match:
        raise TableError(where, f"'{text}' is no pair of bounds such as 0..1 or 1..*")
    return int(match[1]), None if match[2] == "*" else int(match[2])


def _flags(text: str, where: Where) -> frozenset[str]:
    words = text.split()
    if words != [flag for flag in FLAGS if flag in words]:
        raise TableError(where, f"flags are '{text}', but must be among {', '.join(FLAGS)}, in this order")
    return frozenset(words)


def _relations(text: str, where: Where) -> dict[str, tuple[str, ...]]:
    found: dict[str, tuple[str, ...]] = {}
    for relation in text.split("; ") if text else ():
        word, _, names = relation.partition(" ")
        if word not in RELATIONS or word in found:
            words = ", ".join(RELATIONS)
            raise TableError(where, f"'{relation}' does not start with one of {words}, each at most once")
        found[word] = _names(names)
    return found


def _feature(cells: list[str], where: Where) -> FeatureRow:
    owner, id_, name, type_, bounds, flags, default, relations = cells
    lower, upper = _bounds(bounds, where)
    related = _relations(relations, where)
    for relation in ("opposite", "forgets"):
        if len(related.get(relation, ())) > 1:
            raise TableError(where, f"a feature has one {relation} at most")
    return FeatureRow(owner, _number(id_, where), name, type_, lower, upper, _flags(flags, where), default,
                      "".join(related.get("opposite", ())), related.get("subsets", ()), related.get("redefines", ()),
                      "".join(related.get("forgets", ())), where)


def _operation(cells: list[str], where: Where) -> OperationRow:
    owner, name, text, types, result = cells
    return OperationRow(owner, name, _quoted(text, where), tuple(map(_type, _names(types))), _type(result), where)


def _lines(path: pathlib.Path) -> Iterator[tuple[int, list[str]]]:
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.strip() and not line.startswith("#") and set(line) - set("-| "):
            yield number, [cell.strip() for cell in line.split("|")]


def read_rows(path: pathlib.Path, columns: str, make: Callable[[list[str], Where], object]) -> tuple:
    """The rows of one table. `columns` is its head; cells that a row leaves out at its end are empty."""
    lines = _lines(path)
    number, head = next(lines, (0, []))
    expected = columns.split(" | ")
    if head != expected:
        raise TableError(Where(path.name, number, "head"), f"the columns are not {columns}")
    rows = []
    for number, cells in lines:
        where = Where(path.name, number, " ".join(cells[:3]).strip())
        if len(cells) > len(expected):
            raise TableError(where, f"{len(cells)} cells for {len(expected)} columns")
        rows.append(make(cells + [""] * (len(expected) - len(cells)), where))
    return tuple(rows)


def read_tables(folder: pathlib.Path) -> Tables:
    """Reads all tables of a folder. Raises TableError for a row that has not the form of its table."""
    return Tables(
        read_rows(folder / "metaclasses.txt", "metaclass | kind | superclasses",
                  lambda c, w: MetaclassRow(c[0], c[1], _names(c[2]), w)),
        read_rows(folder / "features.txt", _FEATURE, _feature),
        read_rows(folder / "operations.txt", _OPERATION, _operation),
        read_rows(folder / "interface_operations.txt", _OPERATION, _operation),
        read_rows(folder / "create_methods.txt", "metaclass | argument names | argument types",
                  lambda c, w: CreateRow(c[0], _quoted(c[1], w), _names(c[2]), w)),
        read_rows(folder / "enumerations.txt", "enumeration | literals",
                  lambda c, w: EnumerationRow(c[0], _names(c[1]), w)),
        read_rows(folder / "primitives.txt", "primitive | value | required | optional",
                  lambda c, w: PrimitiveRow(c[0], c[1], c[2], c[3], w)),
        read_rows(folder / "kernel_features.txt", "feature", lambda c, w: NameRow(c[0], w)),
        read_rows(folder / "registration.txt", "unit", lambda c, w: NameRow(c[0], w)),
    )
