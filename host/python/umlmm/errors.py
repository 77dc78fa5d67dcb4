"""The failures of this package: all are of class `Error`, and each is what Python calls such a failure, too.

    try:
        order.name = 5
    except umlmm.Error as error:  # or TypeError
        ...

`umlmm.Kelm.Error`, which the library itself raises, is an `Error` and a RuntimeError; so are those of `umlmm.files`,
each with what Python has for it.
"""

from __future__ import annotations

__all__ = ["CannotLoad", "Error", "Failed", "NoSuchMember", "NotDefined", "NotFound", "OutOfRange", "WrongType",
           "WrongValue"]


class Error(Exception):
    """Something that was asked of this package cannot be."""


class WrongType(Error, TypeError):
    """A value, an argument or a class does not fit."""


class WrongValue(Error, ValueError):
    """A value is of the right type, and not one that is taken."""


class NotFound(Error, KeyError):
    """There is nothing at a path."""

    __str__ = Exception.__str__


class OutOfRange(Error, IndexError):
    """A list has no such place."""


class NoSuchMember(Error, AttributeError):
    """An element, a list, a class or the package has no member of that name, or it cannot be set."""


class NotDefined(Error, NameError):
    """There is no class of that name."""


class CannotLoad(Error, ImportError):
    """A library or a package cannot be loaded."""


class Failed(Error, RuntimeError):
    """The library cannot do what was asked."""


_BY_BUILTIN = {Exception: Error, KeyError: NotFound, IndexError: OutOfRange, AttributeError: NoSuchMember,
               NameError: NotDefined, ImportError: CannotLoad, RuntimeError: Failed, TypeError: WrongType,
               ValueError: WrongValue}


def _of_family(builtin):
    """The class of this family for one of Python's; that itself where there is none."""
    return _BY_BUILTIN.get(builtin, builtin)
