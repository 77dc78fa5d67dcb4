"""What the filled classes tell of themselves: the one reader of descriptions, stubs and reference pages."""

import collections.abc
import functools
import keyword
import sys

from umlmm import _host  # type: ignore[attr-defined]

# Bits of a method's word.
_HIDDEN, _STATIC, _OVERRIDES_ALL = 2, 8, 512


def python_name(name):
    """The name that a script writes: one that Python reserves has an underscore behind it."""
    return name + "_" if keyword.iskeyword(name) else name


class Method:
    """A signature. `arguments` are types and `names` their names as published, the receiver left out."""

    def __init__(self, record):
        self.record = record
        self.name = record["name"]
        self.result = record["result"]
        self.description = record["description"] or ""
        self.names = [name.strip() for name in record["names"].split(",") if name.strip()]
        self.is_constructor = record["kind"] == "constructor"
        word = record["word"] or 0
        self.is_static = bool(word & _STATIC)
        self.is_hidden = bool(word & _HIDDEN)
        self.overrides_all = bool(word & _OVERRIDES_ALL)
        # The accessor of a meta property carries its place.
        self.is_meta_property = "owner" in record["details"]
        takes_receiver = not self.is_constructor and not self.is_static and record["receiver"] is None
        self.arguments = record["arguments"][int(takes_receiver):]


class Property:
    """A property. `summary` is what the metamodel says of the feature, in a line; empty for one that is none."""

    def __init__(self, record):
        self.record = record
        self.name = record["name"]
        self.type = record["type"]
        details = record["details"]
        self.summary = details.get("summary", "")
        self.is_optional = details.get("multiplicity") == 0
        self.is_read_only = details.get("mutability", 1) == 1


class Class:
    """A filled class. `short` is its name without the package; `superclasses` are full names, in order."""

    def __init__(self, record, package):
        self.record = record
        self.package = package
        self.name = record["name"]
        self.short = record["short"]
        self.description = record["description"] or ""
        self.superclasses = record["superclasses"]
        # What the class is about: the short name of a metaclass, enumeration or other value.
        self.subject = record["subject"] or self.short
        # The class that shows the same and lets one change it; empty for one that shows nothing of its subject.
        self.changeable = record["changeable"]
        self.methods = [Method(method) for method in record["methods"]]
        self.properties = [Property(entry) for entry in record["properties"]]

    @functools.cached_property
    def python(self):
        """The Python class that scripts see."""
        return getattr(self.package.module, self.short)

    @property
    def constructors(self):
        return [method for method in self.methods if method.is_constructor]

    def methods_named(self, name):
        """Those that the class itself declares, without constructors."""
        return [method for method in self.methods if method.name == name and not method.is_constructor]

    @property
    def is_list(self):
        return issubclass(self.python, collections.abc.Sequence)

    @property
    def is_changeable_list(self):
        return self.is_list and hasattr(self.python, "sort")

    @functools.cached_property
    def item(self):
        """The type of what a list or an iterator gives; None for another class."""
        method = self.methods_named("front" if self.is_list else "item")
        return method[0].result if method else None

    @functools.cached_property
    def literals(self):
        """Names of an enumeration's literals, in order."""
        if not self.methods_named("fromString"):
            return []
        return [method.name for method in self.methods
                if method.is_static and not method.arguments and method.result == self.name]


class Package:
    """The classes of a package by full name, in the order of announcement, and its functions."""

    def __init__(self, name):
        self.name = name
        self.functions = [Method(record) for record in _host.describe_functions(name)]
        self.classes = {full: Class(_host.describe_class(full), self) for full in _host.class_names(name)}

    @functools.cached_property
    def module(self):
        """The Python module that shows the package."""
        return sys.modules["umlmm" if self.name == "umlmm" else f"umlmm.{self.name}"]

    @functools.cached_property
    def other_members(self):
        """What the module shows beside classes and functions, such as exceptions."""
        known = {cls.short for cls in self.classes.values()} | {function.name for function in self.functions}
        return {name: getattr(self.module, name) for name in dir(self.module)
                if not name.startswith("_") and name not in known}


class Packages:
    """Packages "Kelm" and "umlmm" as one, with what only both together tell."""

    def __init__(self):
        self.packages = [Package("Kelm"), Package("umlmm")]
        self.classes = {name: cls for package in self.packages for name, cls in package.classes.items()}
        self._by_python = {cls.python: cls for cls in self.classes.values()}
        self._lists = {}
        for cls in self.classes.values():
            if cls.is_list:
                self._lists.setdefault((cls.item, cls.is_changeable_list), []).append(cls)

    @functools.cache
    def linear(self, cls):
        """The class and all above it in the order in which members are looked for."""
        return [self._by_python[base] for base in cls.python.__mro__ if base in self._by_python]

    @functools.cache
    def changeable(self, name):
        """The class through which what `name` shows can be changed; itself where there is none."""
        cls = self.classes.get(name)
        other = self.classes.get(cls.changeable) if cls else None
        return other.name if other and name in other.superclasses else name

    def is_element_of_uml(self, cls):
        """Whether the class shows elements of a metaclass."""
        return cls.package.name == "umlmm" and any(base.name == "Kelm.ImmutableClassObject" for base in self.linear(cls))

    def is_changeable(self, cls):
        """Whether the class is a changeable one whose first superclass is its read-only twin."""
        return bool(cls.superclasses) and cls.superclasses[0] != cls.name and \
            self.changeable(cls.superclasses[0]) == cls.name

    def type_through_changeable(self, prop):
        """The type that a property reads as through the changeable class of the one that declares it."""
        cls = self.classes.get(prop.type)
        if cls is None:
            return prop.type
        if not cls.is_list:
            return self.changeable(prop.type)
        wanted = self._lists[self.changeable(cls.item), not prop.is_read_only]
        return next(other.name for other in wanted if cls in self.linear(other))

    def signatures(self, cls, name):
        """The methods that a call of `name` on the class chooses among: for each class, nearest first, its own."""
        found = []
        for base in self.linear(cls):
            own = base.methods_named(name)
            found += [own] if own else []
            if any(method.overrides_all for method in own):
                break
        return found

    @functools.cached_property
    def _makers(self):
        return {(method.result, *method.arguments): method for cls in self.classes.values()
                for method in cls.methods if method.names and not method.is_constructor}

    def names_of_constructor(self, method):
        """A constructor's arguments have no names, but those of the factory method that makes the same."""
        maker = self._makers.get((method.result, *method.arguments[1:])) if method.is_constructor else None
        return ["model", *maker.names] if maker else []

    def accepts(self, wanted, given):
        """Whether an argument type takes all values of another."""
        cls = self.classes.get(given)
        return wanted == given or bool(cls) and self.classes.get(wanted) in self.linear(cls)
