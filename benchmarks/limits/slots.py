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


class Named:
    """The shape of the workloads: elements that know their owner, and a class by whom it is the type."""

    __slots__ = ("name", "owner")


class Property(Named):
    __slots__ = ("class_", "type")


class Operation(Named):
    __slots__ = ()


class Container(Named):
    __slots__ = ("ownedAttribute", "ownedOperation", "users")

    def __init__(self):
        self.ownedAttribute = []
        self.ownedOperation = []
        self.users = []

    @property
    def member(self):
        return [*self.ownedAttribute, *self.ownedOperation]

    def destroy(self):
        del self.owner.packagedElement[self]
        self.owner = None
        for user in self.users:
            user.type = None
        for part in (*self.ownedAttribute, *self.ownedOperation):
            part.owner = None


class Package(Named):
    __slots__ = ("packagedElement",)

    def __init__(self):
        self.packagedElement = {}

    def allOwnedElements(self):
        found = []
        for part in self.packagedElement:
            found.append(part)
            found += part.ownedAttribute
            found += part.ownedOperation
        return found
