"""Makes the model out of checked tables: every order, list and code that follows from them."""

from __future__ import annotations

from generator.model import (Argument, Create, Enumeration, Feature, KernelFeature, Metaclass, MetaProperty, Model,
                             Operation, Primitive, Unit, ValueType)
from generator.read import ROLES, Tables

_CLASSES_OF_UNIT = {"factory": 2, "metaclass": 11, "enumeration": 5, "primitive": 4}


def derive_model(tables: Tables) -> Model:
    primitives = [Primitive(row.name, row.value, row.required, row.optional) for row in tables.primitives]
    enumerations = [Enumeration(row.name, row.literals) for row in tables.enumerations]
    metaclasses = [Metaclass(row.name, index, row.kind) for index, row in enumerate(tables.metaclasses)]
    types: dict[str, ValueType] = {value.name: value for value in (*primitives, *enumerations, *metaclasses)}
    for row in tables.metaclasses:
        _link_supers(types[row.name], [types[name] for name in row.superclasses])
    features = _features(tables, types)
    for metaclass in metaclasses:
        metaclass.ancestors = _visit(metaclass, [])
        metaclass.linear = _linearize(metaclass)
    for metaclass in metaclasses:
        metaclass.descendants = [other for other in metaclasses
                                 if other is not metaclass and other.conforms_to(metaclass)]
    kernel = [KernelFeature(row.name, id_) for id_, row in enumerate(tables.kernel_features, 1)]
    for metaclass in metaclasses:
        metaclass.meta_properties = list(_meta_properties(metaclass, kernel))
        metaclass.visible = [entry.feature for entry in metaclass.meta_properties if not entry.is_kernel]
    operations = _operations(tables, types)
    creates = [_create(row, types) for row in tables.creates]
    units = [_unit(row.name, types) for row in tables.registration]
    return Model(metaclasses, enumerations, primitives, features, operations, creates, kernel, units)


def _link_supers(metaclass: Metaclass, supers: list[Metaclass]) -> None:
    metaclass.supers = supers
    for base in supers:
        base.subs.append(metaclass)


def _features(tables: Tables, types: dict[str, ValueType]) -> list[Feature]:
    features = [Feature(row.name, index, types[row.owner], row.id, types[row.type], row.lower, row.upper,
                        "composite" in row.flags, "ordered" in row.flags, "repeatable" not in row.flags,
                        "derived" in row.flags, "union" in row.flags, "readonly" in row.flags,
                        "context" in row.flags, next((role for role in ROLES if role in row.flags), ""),
                        "name" in row.flags, row.default)
                for index, row in enumerate(tables.features)]
    by_key = {feature.key: feature for feature in features}
    for row, feature in zip(tables.features, features):
        feature.owner.features.append(feature)
        feature.own_opposite = by_key.get(row.opposite)
        feature.forgets = by_key.get(row.forgets)
        feature.subsets = [by_key[key] for key in row.subsets]
        feature.redefines = [by_key[key] for key in row.redefines]
    for feature in features:
        for wide in feature.subsets:
            wide.subsetted_by.append(feature)
        for hidden in feature.redefines:
            hidden.redefined_by.append(feature)
    return features


def _visit(metaclass: Metaclass, seen: list[Metaclass]) -> list[Metaclass]:
    """The metaclass and all above it, depth first, each at its first visit."""
    if metaclass not in seen:
        seen.append(metaclass)
        for base in metaclass.supers:
            _visit(base, seen)
    return seen


def _linearize(metaclass: Metaclass) -> list[Metaclass]:
    """The C3 order: every metaclass before those above it, supers in their order."""
    rows = [_linearize(base) for base in metaclass.supers] + [list(metaclass.supers)]
    order = [metaclass]
    while rows := [row for row in rows if row]:
        head = next((row[0] for row in rows if not any(row[0] in other[1:] for other in rows)), None)
        if head is None:
            raise ValueError(f"the superclasses of {metaclass.name} have no common order")
        order.append(head)
        rows = [[entry for entry in row if entry is not head] for row in rows]
    return order


def _meta_properties(metaclass: Metaclass, kernel: list[KernelFeature]):
    for visited in metaclass.ancestors:
        for feature in visited.features:
            if not any(other.owner in metaclass.ancestors for other in feature.redefined_by):
                yield MetaProperty(feature, False)
        if visited.is_root:
            yield from (MetaProperty(feature, True) for feature in kernel)


def _operations(tables: Tables, types: dict[str, ValueType]) -> list[Operation]:
    operations = [_operation(row, types) for row in tables.operations]
    for operation in operations:
        operation.owner.operations.append(operation)
        operation.owner.interface_operations.append(operation)
    for operation in (_operation(row, types) for row in tables.interface_operations):
        operation.owner.interface_operations.append(operation)
    for operation in operations:
        above = [other for base in operation.owner.linear[1:] for other in base.interface_operations]
        same = [other for other in above if other.name == operation.name]
        operation.overrides = next((other for other in same if other.argument_types == operation.argument_types), None)
        operation.hides = same[0] if same and not operation.overrides else None
    return operations


def _operation(row, types: dict[str, ValueType]) -> Operation:
    names = [name.strip() for name in row.argument_text.split(",")] if row.argument_text else []
    arguments = tuple(Argument(name, types[type_.name], type_.many)
                      for name, type_ in zip(names, row.argument_types))
    return Operation(row.name, types[row.owner], row.argument_text, arguments,
                     Argument("", types[row.result.name], row.result.many))


def _create(row, types: dict[str, ValueType]) -> Create:
    metaclass = types[row.metaclass]
    names = [name.strip() for name in row.argument_text.split(",")] if row.argument_text else []
    arguments = tuple(Argument(name, types[type_]) for name, type_ in zip(names, row.argument_types))
    required = tuple(feature for feature in metaclass.visible
                     if feature.is_reference and feature.lower == 1 == feature.upper and not feature.is_derived)
    metaclass.create = Create(metaclass, row.argument_text, arguments, required)
    return metaclass.create


def _unit(name: str, types: dict[str, ValueType]) -> Unit:
    kind = types[name].category if name in types else "factory"
    return Unit(name, kind, _CLASSES_OF_UNIT[kind])
