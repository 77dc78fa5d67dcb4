"""Proves the tables against each other: first the rows alone, then what was derived from them.

Every failure is a TableError that names table, row and reason.
"""

from __future__ import annotations

from collections.abc import Iterable

from generator.model import Create, Feature, Metaclass, Model
from generator.read import FeatureRow, MetaclassRow, TableError, Tables, Where

KINDS = ("abstract", "concrete", "concrete+")
PRIMITIVES = ("Boolean", "Integer", "String", "UnlimitedNatural")


def check_tables(tables: Tables) -> None:
    """What must hold before anything can be derived: names are known and unique, graphs have no cycles."""
    metaclasses = {row.name for row in tables.metaclasses}
    values = {row.name for row in tables.enumerations} | {row.name for row in tables.primitives}
    _unique((row.name, row.where) for row in (*tables.metaclasses, *tables.enumerations, *tables.primitives))
    _unique((row.key, row.where) for row in tables.features)
    _unique((f"{row.owner}.{row.name}", row.where) for row in tables.operations)
    _unique((row.metaclass, row.where) for row in tables.creates)
    _unique((row.name, row.where) for row in tables.registration)
    for row in tables.metaclasses:
        if row.kind not in KINDS:
            raise TableError(row.where, f"the kind is '{row.kind}', but must be one of {', '.join(KINDS)}")
        for base in row.superclasses:
            _known(base, metaclasses, row.where)
    for row in tables.primitives:
        _known(row.name, PRIMITIVES, row.where)
    for row in tables.enumerations:
        if len(set(row.literals)) != len(row.literals) or not 0 < len(row.literals) <= 16:
            raise TableError(row.where, "literals must be unique, at least 1 and at most 16")
    _check_feature_rows(tables, metaclasses, metaclasses | values)
    _check_operation_rows(tables, metaclasses, metaclasses | values)
    _check_cycles({row.name: row.superclasses for row in tables.metaclasses}, tables.metaclasses, "superclasses")
    features = {row.key: row for row in tables.features}
    _check_cycles({key: row.subsets for key, row in features.items()}, tables.features, "subsets")
    _check_cycles({key: row.redefines for key, row in features.items()}, tables.features, "redefines")
    _check_registration(tables)


def _unique(names: Iterable[tuple[str, Where]]) -> None:
    seen: dict[str, Where] = {}
    for name, where in names:
        if name in seen:
            raise TableError(where, f"'{name}' stands in line {seen[name].line} already")
        seen[name] = where


def _known(name: str, names, where: Where) -> None:
    if name not in names:
        raise TableError(where, f"'{name}' is not known")


def _check_feature_rows(tables: Tables, metaclasses: set[str], types: set[str]) -> None:
    keys = {row.key for row in tables.features}
    literals = {row.name: row.literals for row in tables.enumerations}
    last_id: dict[str, int] = {}
    for row in tables.features:
        _known(row.owner, metaclasses, row.where)
        _known(row.type, types, row.where)
        for key in (*row.subsets, *row.redefines, *filter(None, [row.opposite])):
            _known(key, keys, row.where)
        if row.id != last_id.get(row.owner, 0) + 1:
            raise TableError(row.where, f"the id is {row.id}; ids of a metaclass run from 1 without gaps")
        last_id[row.owner] = row.id
        if row.upper is not None and row.lower > row.upper:
            raise TableError(row.where, "the lower bound is above the upper one")
        if row.default and not _fits(row, literals):
            raise TableError(row.where, f"the default '{row.default}' is no value of {row.type}")
        if "union" in row.flags and not {"derived", "readonly"} <= row.flags:
            raise TableError(row.where, "a union is derived and read-only")


def _fits(row: FeatureRow, literals: dict[str, tuple[str, ...]]) -> bool:
    if row.type in literals:
        return row.default in literals[row.type]
    return {"Boolean": row.default in ("true", "false"), "String": True}.get(
        row.type, row.type in PRIMITIVES and row.default.isdecimal())


def _check_operation_rows(tables: Tables, metaclasses: set[str], types: set[str]) -> None:
    for row in (*tables.operations, *tables.interface_operations):
        _known(row.owner, metaclasses, row.where)
        for type_ in (*row.argument_types, row.result):
            _known(type_.name, types, row.where)
        if len(_split(row.argument_text)) != len(row.argument_types):
            raise TableError(row.where, "names and types of arguments differ in number")
    for row in tables.creates:
        _known(row.metaclass, metaclasses, row.where)
        for type_ in row.argument_types:
            _known(type_, metaclasses, row.where)


def _split(text: str) -> list[str]:
    return [name.strip() for name in text.split(",")] if text else []


def _check_cycles(steps: dict[str, tuple[str, ...]], rows: tuple[MetaclassRow | FeatureRow, ...], what: str) -> None:
    done: set[str] = set()

    def walk(name: str, path: tuple[str, ...]) -> None:
        if name in path:
            row = next(row for row in rows if name == (row.key if isinstance(row, FeatureRow) else row.name))
            raise TableError(row.where, f"its {what} lead back to it: {' > '.join((*path, name))}")
        if name not in done:
            for near in steps[name]:
                walk(near, (*path, name))
            done.add(name)

    for name in steps:
        walk(name, ())


def _check_registration(tables: Tables) -> None:
    units = {row.name for row in tables.registration}
    wanted = {"Factory"} | {row.name for row in (*tables.metaclasses, *tables.enumerations, *tables.primitives)}
    for row in tables.registration:
        _known(row.name, wanted, row.where)
    for row in (*tables.metaclasses, *tables.enumerations, *tables.primitives):
        _known(row.name, units, row.where)


def check_model(model: Model, tables: Tables) -> None:
    """What must hold of the whole: pairs, subsets and redefinitions conform, create arguments are the required
    references, an element knows its container, and the totals come out."""
    rows = {row.key: row.where for row in tables.features}
    for feature in model.features:
        _check_opposite(feature, rows[feature.key])
        _check_wider(feature, rows[feature.key])
        _check_containment(feature, rows[feature.key])
    for row in tables.metaclasses:
        _check_kind(model.metaclass(row.name), row.where)
    for row, create in zip(tables.creates, model.creates):
        _check_create(create, row.where)
    totals = count(model)
    for row in tables.totals:
        if totals.get(row.name) != row.number:
            raise TableError(row.where, f"the tables give {totals.get(row.name)}, but {row.number} are expected")


def _check_opposite(feature: Feature, where: Where) -> None:
    far = feature.own_opposite
    if far is None:
        return
    if far.own_opposite is not feature:
        raise TableError(where, f"the opposite {far} names {far.own_opposite} as its opposite")
    if feature.type is not far.owner or far.type is not feature.owner:
        raise TableError(where, f"the opposite {far} belongs to another pair of metaclasses")


def _check_wider(feature: Feature, where: Where) -> None:
    """A subset or redefinition is at home where the wider feature is, and holds no more than it."""
    for wide in (*feature.subsets, *feature.redefines):
        if not feature.owner.conforms_to(wide.owner):
            raise TableError(where, f"{feature.owner} has no feature {wide}")
        if isinstance(feature.type, Metaclass) and isinstance(wide.type, Metaclass):
            conforms = feature.type.conforms_to(wide.type)
        else:
            conforms = feature.type is wide.type
        if not conforms:
            raise TableError(where, f"the type {feature.type} does not conform to {wide.type} of {wide}")
        if wide.upper is not None and (feature.upper is None or feature.upper > wide.upper):
            raise TableError(where, f"the upper bound is above that of {wide}")
    roots = {hidden.root for hidden in feature.redefines}
    if len(roots) > 1:
        raise TableError(where, "it redefines features of different slots")
    if feature.redefines and feature.is_derived != feature.root.is_derived:
        raise TableError(where, f"{feature.root} is computed and the redefinition stored, or the other way round")


def _check_containment(feature: Feature, where: Where) -> None:
    if feature.is_composite and not feature.is_reference:
        raise TableError(where, "only references can be composite")
    if feature.is_containment and not feature.leads_to("Element.ownedElement"):
        raise TableError(where, "it holds parts, but does not lead up to Element.ownedElement")
    if feature.is_container and not feature.leads_to("Element.owner"):
        raise TableError(where, "it names the container, but does not lead up to Element.owner")
    if feature.has_context_end and not feature.is_composite:
        raise TableError(where, "only a containment has a context end")


def _check_kind(metaclass: Metaclass, where: Where) -> None:
    create = metaclass.create
    found = "abstract" if create is None else "concrete+" if create.arguments else "concrete"
    if found != metaclass.kind:
        raise TableError(where, f"the kind is {metaclass.kind}, but the create methods make it {found}")


def _check_create(create: Create, where: Where) -> None:
    """The arguments are exactly the required stored references, in meta-property order, named after them."""
    if [argument.type for argument in create.arguments] != [feature.type for feature in create.features]:
        wanted = ", ".join(feature.type.name for feature in create.features)
        raise TableError(where, f"the required references are of the types {wanted or 'none'}")
    text = ",".join(" a" + _prefix(feature) + feature.meta_name for feature in create.features)
    if create.argument_text != text:
        raise TableError(where, f'the text of argument names is expected to be "{text}"')


def _prefix(feature: Feature) -> str:
    """A redefinition under the same name carries its owner, once for each level that it hides."""
    if feature.is_scripted:
        return ""
    return f"Umlmm_{feature.owner.name}_" * len(feature.redefines)


def count(model: Model) -> dict[str, int]:
    """The totals of the catalogue, by the names of totals.txt."""
    metaclasses, features = model.metaclasses, model.features
    kinds = [metaclass.kind for metaclass in metaclasses]
    several = [metaclass for metaclass in metaclasses if metaclass.has_several_supers]
    with_operations = [metaclass for metaclass in metaclasses if metaclass.operations]
    creates = sum(len(create.overloads) for create in model.creates)
    return {
        "metaclasses": len(metaclasses),
        "metaclasses without constructor": kinds.count("abstract"),
        "metaclasses with one constructor": kinds.count("concrete"),
        "metaclasses with two": kinds.count("concrete+"),
        "metaclasses with several supers": len(several),
        "enumerations": len(model.enumerations),
        "primitives": len(model.primitives),
        "features": len(features),
        "script properties": sum(feature.is_scripted for feature in features),
        "redefinitions without property": sum(not feature.is_scripted for feature in features),
        "redefining features": sum(bool(feature.redefines) for feature in features),
        "read-only features": sum(feature.is_read_only for feature in features),
        "operations": len(model.operations),
        "metaclasses with operations": len(with_operations),
        "create methods": creates,
        "registration units": len(model.units),
        "classes": sum(unit.classes for unit in model.units),
        "methods": _methods(model, creates),
        "meta-property entries": sum(len(metaclass.meta_properties) for metaclass in metaclasses),
        "meta-property accessors": sum(bool(metaclass.features) for metaclass in metaclasses) + 1,
    }


# Methods that every class of a family has, whatever its row says.
_MUTABLE, _IMMUTABLE, _OF_SEVERAL = 4, 5, 8
_ENUMERATION, _VALUE_SEQUENCES, _FACTORIES = 13, 43, 18


def _methods(model: Model, creates: int) -> int:
    elements = sum(_MUTABLE + _IMMUTABLE + 2 * len(metaclass.operations) + _OF_SEVERAL * metaclass.has_several_supers
                   for metaclass in model.metaclasses)
    enumerations = sum(_ENUMERATION + len(enumeration.literals) for enumeration in model.enumerations)
    factories = _FACTORIES + creates
    return elements + creates + enumerations + factories + _VALUE_SEQUENCES * len(model.value_types)
