"""The way in for what this package adds to the published classes in Python.

    @_front.adds_to(_front.MODELS)
    class _Model:
        def __contains__(self, path): ...

        @property
        def report(self): ...

A kind is one of those below or the full name of a published class; what is added is on all classes below it, too.
Whatever a class can define is added: methods, properties and other descriptors, and the special members that the
host allows, such as item access. `__construct__(cls, arguments, keywords)` is called for `cls(*arguments,
**keywords)` when there are keywords, and answers the object; for enumerations also without. `__class_iter__(cls)`
iterates a class. A name that is published on any class of the kind is refused with a TypeError, and so is one that
was added before; a class is added as a whole or not at all. Lists take names only: what Python's syntax means on
them stays.

`state(object)` is a dictionary that belongs to a model or to the model of an element, the same for all objects that
show it, and ends when the model is closed. What is kept there for an element goes by its `hash`. The
collector does not see the dictionary: an object of the model that is kept in it would keep the model open.

Annotations, written as the stubs should have them (`umlmm.Class`, `typing.Any`), tell checkers the types.
"""

from umlmm import _host

ELEMENTS = "Kelm.ImmutableClassObject"
MODELS = "Kelm.ImmutableModel"
LISTS = "List"
LISTS_OF_ELEMENTS = "Kelm.ImmutableSequenceOfImmutableClassObject"
ENUMERATIONS = "Enumeration"

# What Python puts into every class.
_OF_ALL_CLASSES = set(vars(type("_", (), {}))) | {"__annotations__", "__static_attributes__", "__firstlineno__"}


def adds_to(kind):
    """A decorator that adds the members of a class to a kind; the class itself is of no other use."""
    def add(cls):
        _host.add(kind, {name: member for name, member in vars(cls).items() if name not in _OF_ALL_CLASSES})
        return cls
    return add


state = _host.state
