"""What the stubs of umlmm share. There is no such module when a script runs."""

from collections.abc import Iterable, MutableSequence, Sequence
from typing import Any, ClassVar, Generic, NoReturn, SupportsIndex, TypeVar, overload

from typing_extensions import Self

_Read = TypeVar("_Read", covariant=True)
_Write = TypeVar("_Write", contravariant=True)
_Item = TypeVar("_Item")

class ReadOnlyProperty(Generic[_Read]):
    @overload
    def __get__(self, instance: None, owner: type, /) -> Self: ...
    @overload
    def __get__(self, instance: object, owner: type | None = ..., /) -> _Read: ...
    def __set__(self, instance: object, cannot_be_set: NoReturn, /) -> None: ...

class Property(ReadOnlyProperty[_Read], Generic[_Read, _Write]):
    """A property that takes more than it gives: a reference takes None, a list any iterable."""

    def __set__(self, instance: object, value: _Write, /) -> None: ...

class Instance:
    def __init__(self, has_no_constructor: NoReturn, /) -> None: ...

class List(Instance, Sequence[_Item]):
    """A list counts from 0 in Python's own ways, and from 1 in the published methods."""

    __hash__: ClassVar[None]  # type: ignore[assignment]
    @overload
    def __getitem__(self, place: SupportsIndex, /) -> _Item: ...
    @overload
    def __getitem__(self, places: slice, /) -> list[_Item]: ...
    def __len__(self) -> int: ...
    def __add__(self, other: Iterable[_Item], /) -> list[_Item]: ...

class ChangeableList(List[_Item], MutableSequence[_Item]):
    @overload
    def __setitem__(self, place: SupportsIndex, value: _Item, /) -> None: ...
    @overload
    def __setitem__(self, places: slice, values: Iterable[_Item], /) -> None: ...
    def insert(self, number: int, value: _Item, /) -> Any: ...
    def __delitem__(self, places: SupportsIndex | slice, /) -> None: ...
