"""What scripts do all day with a model, on umlmm and on plain classes of the same shape: a package with classes, each
with properties and operations, properties typed by classes far away."""

import figures
import umlmm
from figures import Figure
from limits import slots
from timing import Pass, compare

PROPERTIES, OPERATIONS = 6, 3
ROUNDS = 5


class Shape:
    """What a model has of each kind; `fresh` answers the arguments of `build`, without what was built before."""

    root = classes = properties = operations = named = None

    def fresh(self, elements):
        self.root = self.classes = self.properties = self.operations = self.named = None
        return (elements // 10,)

    def build(self, count):
        self.root, self.classes, self.properties, self.operations = self.create(count)

    def filled(self, elements):
        self.build(*self.fresh(elements))
        return self


class Ours(Shape):
    model = None

    def fresh(self, elements):
        arguments = super().fresh(elements)
        if self.model is not None:
            self.model.close()
        self.model = umlmm.Factory.createNewModel()
        return arguments

    def create(self, count):
        return _create_umlmm(count, self.model)

    def listed(self, count):
        """An empty list of a new element, and new elements for it."""
        return umlmm.Class(self.model).ownedAttribute, [umlmm.Property(self.model) for _ in range(count)]


class Plain(Shape):
    def create(self, count):
        return _create_plain(count)

    def listed(self, count):
        return slots.Container().ownedAttribute, [slots.Property() for _ in range(count)]


def _types(count):
    return [(7 * at + 13 * place + 1) % count for at in range(count) for place in range(PROPERTIES)]


def _create_umlmm(count, model):
    root = umlmm.Package(model)
    classes, properties, operations = [], [], []
    types = iter(_types(count))
    listed = root.packagedElement
    for at in range(count):
        added = umlmm.Class(model)
        added.name = f"C{at:012}"
        listed.append(added)
        classes.append(added)
    for at, owner in enumerate(classes):
        attributes, listed = owner.ownedAttribute, owner.ownedOperation
        for place in range(PROPERTIES):
            added = umlmm.Property(model)
            added.name = f"p{at * PROPERTIES + place:012}"
            attributes.append(added)
            added.type = classes[next(types)]
            properties.append(added)
        for place in range(OPERATIONS):
            added = umlmm.Operation(model)
            added.name = f"o{at * OPERATIONS + place:012}"
            listed.append(added)
            operations.append(added)
    return root, classes, properties, operations


def _create_plain(count):
    root = slots.Package()
    classes, properties, operations = [], [], []
    types = iter(_types(count))
    listed = root.packagedElement
    for at in range(count):
        added = slots.Container()
        added.name = f"C{at:012}"
        added.owner = root
        listed[added] = None
        classes.append(added)
    for at, owner in enumerate(classes):
        attributes, listed = owner.ownedAttribute, owner.ownedOperation
        for place in range(PROPERTIES):
            added = slots.Property()
            added.name = f"p{at * PROPERTIES + place:012}"
            added.owner = added.class_ = owner
            attributes.append(added)
            added.type = target = classes[next(types)]
            target.users.append(added)
            properties.append(added)
        for place in range(OPERATIONS):
            added = slots.Operation()
            added.name = f"o{at * OPERATIONS + place:012}"
            added.owner = owner
            listed.append(added)
            operations.append(added)
    return root, classes, properties, operations


def _read_names(elements):
    for element in elements:
        element.name


def _set_names(elements):
    for element in elements:
        element.name = "another name."


def _read_types(properties):
    for element in properties:
        element.type


def _walk(root):
    for owner in root.packagedElement:
        for element in owner.ownedAttribute:
            element.type
            element.owner
            element.class_


def _all_owned(root):
    for _ in root.allOwnedElements():
        pass


def _members(classes):
    for owner in classes:
        for _ in owner.member:
            pass


def _edit_and_members(classes):
    for owner in classes:
        owner.name = "another name."
        for _ in owner.member:
            pass


def _destroy(classes):
    for owner in classes:
        owner.destroy()


def _append(items, new):
    append = items.append
    for element in new:
        append(element)


def _extend(items, new):
    items.extend(new)


def measure():
    elements = 1_000 if figures.smoke else 100_000
    count = elements // 10

    def both(title, work, arguments, number, bound):
        """`arguments` are made for each round of a shape that stays, or of a fresh one."""
        value, limit = compare(
            Pass(work, lambda: arguments(ours), number), Pass(work, lambda: arguments(plain), number), ROUNDS
        )
        return Figure(f"script workload: {title}, to plain classes", value, limit=limit, bound=bound, goal=True)

    ours, plain = Ours(), Plain()
    value, limit = compare(
        Pass(ours.build, lambda: ours.fresh(elements), elements),
        Pass(plain.build, lambda: plain.fresh(elements), elements),
        ROUNDS,
    )
    yield Figure("script workload: create, to plain classes", value, limit=limit, bound=1.3, goal=True)
    for shape in (ours, plain):
        shape.named = [*shape.classes, *shape.properties, *shape.operations]
    yield both("read a name", _read_names, lambda shape: (shape.named,), elements, 2)
    yield both("set a name", _set_names, lambda shape: (shape.named,), elements, 2)
    yield both("read a type", _read_types, lambda shape: (shape.properties,), count * PROPERTIES, None)
    yield both("type, owner and class", _walk, lambda shape: (shape.root,), count * PROPERTIES * 3, 5)
    yield both("all owned elements, views made", _all_owned, lambda shape: (shape.root,), elements, 4)
    views = list(ours.root.allOwnedElements())
    yield both("all owned elements, views kept", _all_owned, lambda shape: (shape.root,), elements, 2)
    del views
    yield both("members", _members, lambda shape: (shape.classes,), count * 9, 4)
    yield both("members after an edit", _edit_and_members, lambda shape: (shape.classes,), count * 9, 6)
    for title, work, bound in (("append", _append, 4), ("extend, an element", _extend, 3)):
        yield both(title, work, lambda shape: shape.listed(count), count, bound)
    title = "destroy every second class"
    yield both(title, _destroy, lambda shape: (shape.filled(elements).classes[::2],), count // 2, 1.3)
    ours.fresh(elements)

