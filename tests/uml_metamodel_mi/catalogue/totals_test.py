"""The published package: what its tables add up to. A slip in a row nearly always shows here.

The totals stand beside this test and not among the tables, so that an addition is made in the tables alone.
"""

import pathlib


def count(model):
    """The totals of the catalogue, by the names of totals.csv."""
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


def _methods(model, creates):
    elements = sum(_MUTABLE + _IMMUTABLE + 2 * len(metaclass.operations) + _OF_SEVERAL * metaclass.has_several_supers
                   for metaclass in model.metaclasses)
    enumerations = sum(_ENUMERATION + len(enumeration.literals) for enumeration in model.enumerations)
    factories = _FACTORIES + creates
    return elements + creates + enumerations + factories + _VALUE_SEQUENCES * len(model.value_types)


def test_the_published_tables_add_up(model):
    from generator.read import read_rows

    rows = read_rows(pathlib.Path(__file__).with_name("totals.csv"), "total | number", lambda cells, _: (cells[0], int(cells[1])))
    assert count(model) == dict(rows)
