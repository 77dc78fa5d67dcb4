"""The rows as C++ writes them: what a template places in braces, only what differs from the default."""

from __future__ import annotations

from generator.model import Enumeration, Feature, Metaclass, Model


class Engine:
    """Answers for one model; templates see it as `engine`."""

    def __init__(self, model: Model):
        self._model = model

    def feature_row(self, feature: Feature) -> list[str]:
        """The members of a FeatureRow, in their order."""
        flags = (("Composite", feature.is_composite), ("Ordered", feature.is_ordered), ("Unique", feature.is_unique),
                 ("Derived", feature.is_derived), ("Union", feature.is_union), ("ReadOnly", feature.is_read_only),
                 ("Context", feature.has_context_end), ("Names", feature.is_name))
        members = (("Name", f'"{feature.name}"'), ("Type", _type(feature)), ("Lower", feature.lower or ""),
                   ("Upper", _upper(feature)), *((name, _flag(name, value)) for name, value in flags),
                   ("Role", feature.role and f"Role::{feature.role.capitalize()}"),
                   ("Default", feature.default and f'"{feature.default}"'),
                   ("Opposite", feature.own_opposite and feature_id(feature.own_opposite)),
                   ("Subsets", _list(map(feature_id, feature.subsets))),
                   ("Redefines", _list(map(feature_id, feature.redefines))),
                   ("Forgets", feature.forgets and feature_id(feature.forgets)))
        return [f".f{name} = {value}" for name, value in members if value]

    def supers(self, metaclass: Metaclass) -> str:
        return _list(f"metaclass::{base}" for base in metaclass.supers)

    def derived(self, metaclass: Metaclass) -> list[Feature]:
        """The computed features of a metaclass that have a derivation of their own: no unions, but for those that ask the
        container."""
        return [feature for feature in metaclass.features
                if feature.root.is_derived and (not feature.is_union or feature.role)]

    def first_feature(self, metaclass: Metaclass) -> int:
        """Where the features of a metaclass begin; where they would, if it has none."""
        return sum(len(other.features) for other in self._model.metaclasses[:metaclass.index])


def feature_id(feature: Feature) -> str:
    """The constant of a feature."""
    return f"ids::{feature.owner.name}::{feature.meta_name}"


def _type(feature: Feature) -> str:
    if feature.is_reference:
        return f"metaclass::{feature.type}"
    return f"enumeration::{feature.type}" if isinstance(feature.type, Enumeration) else f"ValueType::{feature.type}"


def _upper(feature: Feature) -> str:
    return {None: "kUnlimited", 1: ""}.get(feature.upper, str(feature.upper))


def _flag(name: str, value: bool) -> str:
    return "" if value == (name == "Unique") else str(value).lower()


def _list(names) -> str:
    text = ", ".join(names)
    return text and f"{{{text}}}"
