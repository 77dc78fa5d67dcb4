"""Descriptions of packages, read back from the filled classes."""

from umlmm import _host


def describe(package):
    """All functions and classes of a package; classes in the order of announcement."""
    return {
        "package": package,
        "functions": [_method(function) for function in _host.describe_functions(package)],
        "classes": [_class(_host.describe_class(name)) for name in _host.class_names(package)],
    }


def _class(cls):
    # Methods that carry the place of a meta property are listed as such.
    methods = [method for method in cls["methods"] if "owner" not in method["details"]]
    accessors = [method for method in cls["methods"] if "owner" in method["details"]]
    return {
        "name": cls["name"],
        "short": cls["short"],
        "description": cls["description"],
        "detailedDescription": cls["detailedDescription"],
        "superclasses": cls["superclasses"],
        "methods": [_method(method) for method in methods],
        "properties": [_property(entry) for entry in cls["properties"]],
        "metaProperties": [{"name": entry["name"], **entry["details"]} for entry in accessors],
    }


def _method(method):
    keys = ("name", "kind", "word", "names", "result", "receiver", "arguments")
    return {key: method[key] for key in keys}


def _property(entry):
    details = entry["details"]
    return {
        "name": entry["name"],
        "id": details.get("id"),
        "type": entry["type"],
        "multiplicity": details.get("multiplicity"),
        "mutability": details.get("mutability"),
    }
