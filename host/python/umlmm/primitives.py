"""The standard's primitive types in a model."""

from __future__ import annotations

from collections.abc import Iterator

import umlmm
from umlmm import Kelm, errors

TYPE_CHECKING = False
NAMES = ("Boolean", "Integer", "Real", "String", "UnlimitedNatural")


class Primitives:
    """`model.primitives.String`: one type of each name for a model, at its top level, made when it is first asked for.
    Files have the standard's addresses (UML 2.5.1, clause 21) for them."""

    Boolean: umlmm.PrimitiveType
    Integer: umlmm.PrimitiveType
    Real: umlmm.PrimitiveType
    String: umlmm.PrimitiveType
    UnlimitedNatural: umlmm.PrimitiveType

    def __init__(self, model: Kelm.Model):
        self._model = model

    if not TYPE_CHECKING:  # checkers know the names above and no others
        def __getattr__(self, name: str) -> umlmm.PrimitiveType:
            if name not in NAMES:
                raise errors.NoSuchMember(f"The standard has no primitive type '{name}'; it has {', '.join(NAMES)}")
            # A reading has made those that its files name.
            for element in self._model.instancesOf(umlmm.PrimitiveType.MetaClass()):
                if element.name == name and element.owner is None and not element.externalId:  # type: ignore[attr-defined]
                    return element  # type: ignore[return-value]
            return umlmm.PrimitiveType(self._model, name=name)

    def __iter__(self) -> Iterator[umlmm.PrimitiveType]:
        return (getattr(self, name) for name in NAMES)

    def __dir__(self) -> list[str]:
        return list(NAMES)
