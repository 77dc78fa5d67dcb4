"""Descriptions of packages as plain data, for JSON."""

from umlmm._classes import Package


def describe(name):
    """All functions and classes of a package; classes in the order of announcement. Fills them all.

    ValueError for a package that is not loaded."""
    package = Package(name)
    return {
        "package": name,
        "functions": [_method(function) for function in package.functions],
        "classes": [_class(cls) for cls in package.classes.values()],
    }


def _class(cls):
    # Methods that carry the place of a meta property are listed as such.
    keys = ("name", "short", "description", "detailedDescription", "superclasses")
    return {
        **{key: cls.record[key] for key in keys},
        "methods": [_method(method) for method in cls.methods if not method.is_meta_property],
        "properties": [_property(prop.record) for prop in cls.properties],
        "metaProperties": [{"name": method.name, **method.record["details"]}
                           for method in cls.methods if method.is_meta_property],
    }


def _method(method):
    keys = ("name", "kind", "word", "names", "result", "receiver", "arguments")
    return {key: method.record[key] for key in keys}


def _property(entry):
    details = entry["details"]
    return {
        "name": entry["name"],
        "id": details.get("id"),
        "type": entry["type"],
        "multiplicity": details.get("multiplicity"),
        "mutability": details.get("mutability"),
    }
