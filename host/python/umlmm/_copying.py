"""Copies: `element.clone()`, and what Python's module `copy` makes of elements, models and literals."""

import sys

from umlmm import _front, _host


@_front.adds_to("Kelm.ClassObject")
class _ChangeableElement:
    def clone(self) -> "typing_extensions.Self":
        """A copy of the element with all that it owns, at the top level of its model.

        References among what is copied lead to the copies, others where they did. Those that the other element
        knows of are copied where an element must have them and the other takes one more: the ends of a dependency,
        but not the association of a property. Nothing has changed when it raises."""
        return _host.copy(self)


@_front.adds_to(_front.ELEMENTS)
class _Element:
    """What an element owns belongs to it alone, so that both kinds of copy are `clone`."""

    def __copy__(self):
        return _host.copy(self)

    def __deepcopy__(self, memo):
        return _host.copy(self)


@_front.adds_to(_front.MODELS)
class _Model:
    """A copy of a model is a new one, which goes with its last object, with copies of all elements. What belongs to the files of
    the model goes along; the copy is saved to a path of its own."""

    def __copy__(self):
        import umlmm
        made = umlmm.new_model()
        try:
            copy = _host.copy(self, made)
            if files := sys.modules.get("umlmm.files"):  # else no model came from files
                files._copy_files(self, copy)
            return copy
        except BaseException:
            made.close()
            raise

    def __deepcopy__(self, memo):
        return self.__copy__()


@_front.adds_to(_front.ENUMERATIONS)
class _Enumeration:
    """There is one of each literal."""

    def __copy__(self):
        return self

    def __deepcopy__(self, memo):
        return self
