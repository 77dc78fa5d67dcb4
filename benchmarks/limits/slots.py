"""The limit of calls: the same methods on plain Python classes with `__slots__`."""


class Element:
    __slots__ = ()

    def mustBeOwned(self):
        return True


class Classifier(Element):
    __slots__ = ("parents",)

    def __init__(self, *parents):
        self.parents = parents

    def conformsTo(self, other):
        return self is other or any(parent.conformsTo(other) for parent in self.parents)


class Class(Classifier):
    __slots__ = ()
