"""Proves the tables against each other: first the rows alone, then what was derived from them.

Every failure is a TableError that names table, row and reason.
"""

from __future__ import annotations

from collections.abc import Iterable

from generator.model import Create, Feature, Metaclass, Model
from generator.read import ROLES, FeatureRow, MetaclassRow, TableError, Tables, Where

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
        for key in (*row.subsets, *row.redefines, *filter(None, [row.opposite, row.forgets])):
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
        if row.flags & set(ROLES) and "union" not in row.flags:
            raise TableError(row.where, "only a union has a role")
        if "name" in row.flags and (row.type != "String" or row.upper != 1 or "derived" in row.flags):
            raise TableError(row.where, "a name is a text that is stored")
    _unique((f"the role {role}", row.where) for row in tables.features for role in ROLES if role in row.flags)


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
    references, and an element knows its container."""
    rows = {row.key: row.where for row in tables.features}
    for feature in model.features:
        _check_opposite(feature, rows[feature.key])
        _check_wider(feature, rows[feature.key])
        _check_containment(feature, model, rows[feature.key])
    for row in tables.metaclasses:
        _check_kind(model.metaclass(row.name), row.where)
    for row, create in zip(tables.creates, model.creates):
        _check_create(create, row.where)


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


def _check_containment(feature: Feature, model: Model, where: Where) -> None:
    owner = model.role("owner")
    parts = owner.opposite
    if feature.is_composite and not feature.is_reference:
        raise TableError(where, "only references can be composite")
    if feature.is_containment and not feature.leads_to(parts):
        raise TableError(where, f"it holds parts, but does not lead up to {parts}")
    if feature.is_container and not feature.leads_to(owner):
        raise TableError(where, f"it names the container, but does not lead up to {owner}")
    if feature.has_context_end and not feature.is_composite:
        raise TableError(where, "only a containment has a context end")
    if feature.forgets and not (feature.is_containment and feature.forgets.remembers_default):
        raise TableError(where, f"it holds no parts, or {feature.forgets} has no default to forget")


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
