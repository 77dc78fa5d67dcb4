"""The records that templates see: the metamodel with everything that follows from the tables spelled out.

Records are filled by derive.py and read only from then on. README.md tells each attribute.
"""

from __future__ import annotations

import dataclasses


def upper_first(text: str) -> str:
    return text[:1].upper() + text[1:]


@dataclasses.dataclass(eq=False)
class Named:
    name: str

    def __str__(self) -> str:
        return self.name

    @property
    def full_name(self) -> str:
        """Name of the script class."""
        return f"umlmm.{self.name}"


@dataclasses.dataclass(eq=False)
class Primitive(Named):
    value_literal: str
    required_literal: str
    optional_literal: str
    category: str = "primitive"


@dataclasses.dataclass(eq=False)
class Enumeration(Named):
    literals: tuple[str, ...]
    category: str = "enumeration"


@dataclasses.dataclass(eq=False)
class Metaclass(Named):
    index: int
    kind: str
    supers: list[Metaclass] = dataclasses.field(default_factory=list)
    subs: list[Metaclass] = dataclasses.field(default_factory=list)
    ancestors: list[Metaclass] = dataclasses.field(default_factory=list)
    linear: list[Metaclass] = dataclasses.field(default_factory=list)
    descendants: list[Metaclass] = dataclasses.field(default_factory=list)
    features: list[Feature] = dataclasses.field(default_factory=list)
    operations: list[Operation] = dataclasses.field(default_factory=list)
    interface_operations: list[Operation] = dataclasses.field(default_factory=list)
    meta_properties: list[MetaProperty] = dataclasses.field(default_factory=list)
    visible: list[Feature] = dataclasses.field(default_factory=list)
    create: Create | None = None
    category: str = "metaclass"

    @property
    def is_abstract(self) -> bool:
        return self.kind == "abstract"

    @property
    def is_root(self) -> bool:
        return not self.supers

    @property
    def has_several_supers(self) -> bool:
        return len(self.supers) > 1

    @property
    def source(self) -> str:
        """The source name that failures report; "_h" behind it is the header's."""
        return "uml_metamodel/umlmm/" + ("MPackage" if self.name == "Package" else self.name)

    @property
    def script_features(self) -> list[Feature]:
        return [feature for feature in self.features if feature.is_scripted]

    def conforms_to(self, other: Metaclass) -> bool:
        return other in self.ancestors


ValueType = Primitive | Enumeration | Metaclass


def read_only_class(type_: ValueType, is_many: bool) -> str:
    """The script class that declarations name: read-only, be it of one element, of many elements or of many values."""
    elements = "Immutable" if isinstance(type_, Metaclass) else ""
    return f"umlmm.{'ImmutableSequenceOf' if is_many else ''}{elements}{type_.name}"


@dataclasses.dataclass(eq=False)
class Feature(Named):
    index: int
    owner: Metaclass
    id: int
    type: ValueType
    lower: int
    upper: int | None
    is_composite: bool
    is_ordered: bool
    is_unique: bool
    is_derived: bool
    is_union: bool
    is_read_only: bool
    has_context_end: bool
    role: str
    is_name: bool
    default: str
    own_opposite: Feature | None = None
    forgets: Feature | None = None
    subsets: list[Feature] = dataclasses.field(default_factory=list)
    subsetted_by: list[Feature] = dataclasses.field(default_factory=list)
    redefines: list[Feature] = dataclasses.field(default_factory=list)
    redefined_by: list[Feature] = dataclasses.field(default_factory=list)

    def __str__(self) -> str:
        return self.key

    @property
    def key(self) -> str:
        return f"{self.owner.name}.{self.name}"

    @property
    def meta_name(self) -> str:
        return upper_first(self.name)

    @property
    def is_many(self) -> bool:
        return self.upper is None or self.upper > 1

    @property
    def is_optional(self) -> bool:
        return self.lower == 0 and not self.is_many

    @property
    def is_reference(self) -> bool:
        return isinstance(self.type, Metaclass)

    @property
    def upper_number(self) -> int:
        return -1 if self.upper is None else self.upper

    @property
    def cpp_read_type(self) -> str:
        """What C++ reads through a read-only reference."""
        return self._cpp_type("Immutable")

    @property
    def cpp_type(self) -> str:
        """What C++ reads through a changeable reference."""
        return self._cpp_type("")

    @property
    def summary(self) -> str:
        """What UML says of the feature, in a line."""
        bounds = f"{self.lower}..{'*' if self.upper is None else self.upper}"
        words = (("composite", self.is_composite), ("ordered", self.is_ordered and self.is_many),
                 ("repeatable", not self.is_unique and self.is_many),
                 ("derived union" if self.is_union else "derived", self.is_derived), ("read-only", self.is_read_only))
        text = f"{self.name}: {self.type} [{bounds}]" + (f" = {self.default}" if self.default else "")
        text = ", ".join([text, *(word for word, holds in words if holds)])
        relations = (("opposite", [self.opposite] if self.opposite else []), ("subsets", self.subsets),
                     ("redefines", self.redefines))
        return "; ".join([text, *(f"{word} {', '.join(map(str, others))}" for word, others in relations if others)])

    def _cpp_type(self, prefix: str) -> str:
        single = (prefix if self.is_reference else "") + self.type.name
        if self.is_many:
            return f"Kelm::{'Immutable' if prefix or self.is_read_only else ''}Sequence<{single}>"
        return f"std::optional<{single}>" if self.is_optional and self.code in ("DT", "OP") else single

    @property
    def is_scripted(self) -> bool:
        """A redefinition that keeps its name is no property of its own: scripts see the inherited one."""
        return all(other.name != self.name for other in self.redefines)

    @property
    def root(self) -> Feature:
        """The feature whose slot this one is."""
        return self.redefines[0].root if self.redefines else self

    @property
    def opposite(self) -> Feature | None:
        return self.own_opposite or (self.redefines[0].opposite if self.redefines else None)

    @property
    def is_container(self) -> bool:
        """Reads the container of the element: the far side of a containment."""
        far = self.opposite
        return not self.root.is_derived and not self.is_many and far is not None and far.is_composite

    @property
    def storage(self) -> str:
        """Where the value comes from: a name of the engine's enumeration."""
        root = self.root
        if root.is_derived:
            return "Computed"
        if root.is_many:
            return "List" if root.is_reference else "PrimitiveList"
        if root.is_container:
            return "Container"
        if root.is_reference or isinstance(root.type, Enumeration):
            return "Reference" if root.is_reference else "Enumeration"
        return {"Boolean": "Flag", "String": "String"}.get(root.type.name, "Integer")

    @property
    def is_stored(self) -> bool:
        return not self.root.is_derived and not self.is_container

    @property
    def remembers_default(self) -> bool:
        """A computed value that starts as a default and never gets it back once it was unset."""
        writable = self.is_derived and not self.is_read_only and not self.redefines
        return writable and self.is_optional and bool(self.default)

    @property
    def is_containment(self) -> bool:
        """A slot that owns what it holds."""
        return self.is_stored and self.root.is_composite and self.is_reference

    @property
    def multiplicity(self) -> int:
        return 2 if self.is_many else min(self.lower, 1)

    @property
    def mutability(self) -> int:
        return int(self.is_read_only)

    @property
    def code(self) -> str:
        """How the property descriptor is made: CO, DT, PS, PR, ST or OP."""
        if self.is_reference:
            return "CO"
        if self.is_many:
            return "PS"
        if isinstance(self.type, Enumeration) or self.type.name == "UnlimitedNatural":
            return "DT"
        if self.type.name == "String":
            return "ST"
        return "OP" if self.lower == 0 else "PR"

    @property
    def literal(self) -> str:
        """The type literal of the property descriptor."""
        if self.is_reference or self.is_many:
            return read_only_class(self.type, self.is_many)
        if isinstance(self.type, Enumeration):
            return self.type.full_name
        return self.type.required_literal if self.lower else self.type.optional_literal

    @property
    def supersets(self) -> list[Feature]:
        """Features that this one is a direct subset of; a redefinition has those of what it redefines, too."""
        inherited = (wide for hidden in self.redefines for wide in hidden.supersets)
        return [*self.subsets, *(wide for wide in inherited if wide not in self.subsets)]

    @property
    def superset_closure(self) -> list[Feature]:
        """All features that hold what this one holds, nearest first, itself left out."""
        return _closure(self, lambda feature: feature.supersets)

    def leads_to(self, other: Feature) -> bool:
        return other in self.superset_closure


def _closure(start: Feature, step) -> list[Feature]:
    found: list[Feature] = []
    queue = [start]
    while queue:
        for near in step(queue.pop(0)):
            if near not in found:
                found.append(near)
                queue.append(near)
    return found


@dataclasses.dataclass(eq=False)
class KernelFeature(Named):
    id: int

    @property
    def meta_name(self) -> str:
        return upper_first(self.name)


@dataclasses.dataclass(frozen=True)
class MetaProperty:
    """One entry of a metaclass's meta-property list: a feature, or one of the kernel's."""

    feature: Feature | KernelFeature
    is_kernel: bool

    @property
    def name(self) -> str:
        return self.feature.meta_name

    @property
    def id(self) -> int:
        return self.feature.id


@dataclasses.dataclass(frozen=True)
class Argument:
    """An argument or a result of an operation or create method."""

    name: str
    type: ValueType
    is_many: bool = False

    @property
    def literal(self) -> str:
        """The literal of the signature, always of the immutable form."""
        if isinstance(self.type, Metaclass) or self.is_many:
            return read_only_class(self.type, self.is_many)
        return self.type.value_literal

    @property
    def cpp_type(self) -> str:
        """What C++ has for a value of the argument: a read-only reference or sequence, or a value type."""
        single = ("Immutable" if isinstance(self.type, Metaclass) else "") + self.type.name
        return f"Kelm::ImmutableSequence<{single}>" if self.is_many else single

    @property
    def cpp_parameter(self) -> str:
        by_value = not self.is_many and self.type.name in ("Boolean", "Integer", "UnlimitedNatural")
        return f"{self.cpp_type}{'' if by_value else ' const&'} {self.cpp_name}"

    @property
    def cpp_name(self) -> str:
        return self.name if self.name[:1] == "a" and self.name[1:2].isupper() else "a" + upper_first(self.name)


@dataclasses.dataclass(eq=False)
class Operation(Named):
    owner: Metaclass
    argument_text: str
    arguments: tuple[Argument, ...]
    result: Argument
    overrides: Operation | None = None
    hides: Operation | None = None

    @property
    def argument_types(self) -> tuple[tuple[ValueType, bool], ...]:
        return tuple((argument.type, argument.is_many) for argument in self.arguments)

    @property
    def key(self) -> str:
        return f"{self.owner.name}.{self.name}"


@dataclasses.dataclass(eq=False)
class Create:
    metaclass: Metaclass
    argument_text: str
    arguments: tuple[Argument, ...]
    features: tuple[Feature, ...]

    @property
    def name(self) -> str:
        return f"create{self.metaclass.name}"

    @property
    def overloads(self) -> tuple[tuple[Argument, ...], ...]:
        """The argument lists of the methods: the empty one, then the full one if there is one."""
        return ((), self.arguments) if self.arguments else ((),)


@dataclasses.dataclass(frozen=True)
class Unit:
    """A unit of the registration pass: kind is factory, metaclass, enumeration or primitive."""

    name: str
    kind: str
    classes: int


@dataclasses.dataclass(eq=False)
class Model:
    metaclasses: list[Metaclass]
    enumerations: list[Enumeration]
    primitives: list[Primitive]
    features: list[Feature]
    operations: list[Operation]
    creates: list[Create]
    kernel_features: list[KernelFeature]
    units: list[Unit]

    @property
    def concrete(self) -> list[Metaclass]:
        return [metaclass for metaclass in self.metaclasses if not metaclass.is_abstract]

    @property
    def value_types(self) -> list[Primitive | Enumeration]:
        return [*self.primitives, *self.enumerations]

    def metaclass(self, name: str) -> Metaclass:
        return next(metaclass for metaclass in self.metaclasses if metaclass.name == name)

    def feature(self, key: str) -> Feature:
        return next(feature for feature in self.features if feature.key == key)

    def role(self, word: str) -> Feature | None:
        """The union that asks the container in a role, if there is one."""
        return next((feature for feature in self.features if feature.role == word), None)
