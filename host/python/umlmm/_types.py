"""How the types of signatures and properties are written in Python."""

from umlmm._classes import python_name

# By data type: what a script reads, and what it may give.
_VALUES = {
    "void": ("None", "None"),
    "any": ("_Any", "_Any"),
    "logical scalar": ("bool", "bool"),
    "int32 scalar": ("int", "int"),
    "char": ("str", "str"),
    "char vector": ("str", "str"),
    "kelmint32": ("int | None", "int"),
    "kelmlogical": ("bool | None", "bool"),
    "kelmunlimitedNatural": ("str | None", "int | str"),
}
# Data types that have no value for absence.
_ALWAYS_PRESENT = ("logical scalar", "int32 scalar")


class Types:
    """Types as annotations in the module of one package."""

    def __init__(self, packages, package):
        self._packages = packages
        self._package = package

    def shown(self, class_name):
        """A class as it is named in the module."""
        package, _, short = class_name.partition(".")
        return short if package == self._package else class_name

    def read(self, type_name):
        """The type of what a script gets."""
        return self.shown(type_name) if type_name in self._packages.classes else _value(type_name)[0]

    def given(self, type_name):
        """The type of what a script may hand over: for a literal also its text, for a list any sequence."""
        cls = self._packages.classes.get(type_name)
        if cls is None:
            return _value(type_name)[1]
        if cls.is_list:
            return f"_Sequence[{self.given(cls.item)}]"
        if type_name == "Kelm.ImmutableClass":  # a script class stands for its metaclass
            return f"{self.shown(type_name)} | type"
        return f"{self.shown(type_name)} | _{cls.short}Text" if cls.literals else self.shown(type_name)

    def property_read(self, prop, type_name):
        """The type of what a property reads as, which is of `type_name` when it is there."""
        read = self.read(type_name)
        cls = self._packages.classes.get(prop.type)
        return f"{read} | None" if cls and not cls.is_list and prop.is_optional else read

    def property_given(self, prop):
        """The type of what a property may be set to."""
        cls = self._packages.classes.get(prop.type)
        if cls and cls.is_list:
            return f"_Iterable[{self.given(cls.item)}] | None"
        given = self.given(prop.type)
        return given if prop.type in _ALWAYS_PRESENT else f"{given} | None"

    def parameters(self, method, receiver=""):
        """The parameters of a signature. Arguments are given by position alone."""
        texts = [receiver] if receiver else []
        texts += [f"{name}: {self.given(type_name)}"
                  for name, type_name in zip(self.argument_names(method), method.arguments)]
        return ", ".join(texts + ["/"] if method.arguments else texts)

    def argument_names(self, method):
        """The published names; where there are none, names that tell the types."""
        published = method.names or self._packages.names_of_constructor(method)
        names = []
        for place, type_name in enumerate(method.arguments):
            name = python_name(published[place] if place < len(published) else self._name_for(type_name))
            names.append(name if name not in names else f"{name}{place + 1}")
        return names

    def _name_for(self, type_name):
        cls = self._packages.classes.get(type_name)
        if cls is None:
            return {"int32 scalar": "number", "logical scalar": "flag", "any": "value"}.get(type_name, "text")
        return "iterator" if cls.item and not cls.is_list else cls.subject[0].lower() + cls.subject[1:]


def _value(type_name):
    if type_name not in _VALUES:
        raise ValueError(f"Data type '{type_name}' has no Python type; add it to the table in _types.py")
    return _VALUES[type_name]
