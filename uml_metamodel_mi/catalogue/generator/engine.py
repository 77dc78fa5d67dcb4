"""What the storage engine's tables need beside the model: storage classes, resolved ends, slot positions."""

from __future__ import annotations

from generator.model import Enumeration, Feature, Metaclass, Model

_NO_FEATURE = "kNoFeature"
_NO_SLOT = 0xFF
_UNIONS_OF_CONTAINERS = {"Element.owner", "NamedElement.namespace", "Feature.featuringClassifier",
                         "RedefinableElement.redefinitionContext"}
_VALUE_TYPES = {"Boolean", "Integer", "String", "UnlimitedNatural"}


class Engine:
    """Answers for one model; templates see it as `engine`."""

    def __init__(self, model: Model):
        self._model = model

    def value_type(self, feature: Feature) -> str:
        if feature.is_reference:
            return "Reference"
        return feature.type.name if feature.type.name in _VALUE_TYPES else "Enumeration"

    def type_index(self, feature: Feature) -> int:
        if feature.is_reference:
            return feature.type.index
        return self._model.enumerations.index(feature.type) if isinstance(feature.type, Enumeration) else 0

    def storage(self, feature: Feature) -> str:
        root = feature.root
        if root.is_derived:
            return "Computed"
        if root.is_container:
            return "Container"
        if root.is_many:
            return "List" if root.is_reference else "PrimitiveList"
        if root.is_reference:
            return "Reference"
        return {"Boolean": "Flag", "String": "String", "Enumeration": "Enumeration"}.get(self.value_type(root), "Integer")

    def opposite(self, feature: Feature) -> int | str:
        """The far end that a link is kept at as well; a computed one follows by itself, unless it shows a containment."""
        far = feature.opposite and feature.opposite.root
        if not far or self.storage(far) == "Computed" and self.storage(feature) != "Container":
            return _NO_FEATURE
        return far.index

    def containment(self, feature: Feature) -> int | str:
        """The topmost stored containment that holds the parts of a containment, or the element of a far end."""
        if self.storage(feature) == "Container":
            return self.containment(feature.opposite)
        if not (feature.root.is_composite and feature.is_reference) or feature.is_union:
            return self._view_containment(feature)
        return self._top(feature)

    def _view_containment(self, feature: Feature) -> int | str:
        """A stored subset of a containment that is none itself leads to that containment, too."""
        wide = [other.root for other in feature.superset_closure if other.root.is_containment]
        return wide[-1].index if wide and feature.is_reference and not feature.is_union else _NO_FEATURE

    def _top(self, feature: Feature) -> int:
        top = feature.root
        for wide in feature.superset_closure:
            if wide.root.is_containment:
                top = wide.root
        return top.index

    def lists(self, feature: Feature) -> list[tuple[str, list[Feature]]]:
        """The relation lists of a feature, in the order of the record's fields."""
        return [("Supersets", _stored(feature.root.supersets if feature.redefines else feature.supersets)),
                ("Subsets", _stored(feature.subsetted_by)),
                ("Narrowings", self._narrowings(feature)),
                ("AllSupersets", feature.subsets),
                ("Redefined", feature.redefines)]

    def _narrowings(self, feature: Feature) -> list[Feature]:
        """The redefinitions of a root, general metaclasses first."""
        if feature.redefines:
            return []
        found = [other for other in self._model.features if other is not feature and other.root is feature]
        return sorted(found, key=lambda other: len(other.owner.ancestors))

    def ruled(self, metaclass: Metaclass) -> list[Feature]:
        """The computed features of a metaclass that have a rule of their own: no unions, but for those at the far side
        of containments, which are read from the container."""
        return [feature for feature in metaclass.features
                if feature.root.is_derived and (not feature.is_union or feature.key in _UNIONS_OF_CONTAINERS)]

    def concrete(self, metaclass: Metaclass) -> list[Metaclass]:
        return [other for other in self._model.concrete if other.conforms_to(metaclass)]

    def first_feature(self, metaclass: Metaclass) -> int:
        """Where the features of a metaclass begin; where they would, if it has none."""
        return sum(len(other.features) for other in self._model.metaclasses[:metaclass.index])

    def slot_positions(self, metaclass: Metaclass) -> list[int]:
        positions = {slot.feature.root: slot.position for slot in metaclass.layout.slots}
        return [positions.get(feature.root, _NO_SLOT) for feature in self._model.features]

    def list_mask(self, metaclass: Metaclass, references: bool) -> int:
        return sum(1 << slot.position for slot in metaclass.layout.slots
                   if slot.storage == "list" and slot.feature.is_reference == references)

    @property
    def conformance_words(self) -> list[str]:
        bits = [other in metaclass.ancestors for metaclass in self._model.metaclasses for other in self._model.metaclasses]
        return [hex(sum(1 << place for place, bit in enumerate(bits[start:start + 64]) if bit))
                for start in range(0, len(bits), 64)]


def _stored(features: list[Feature]) -> list[Feature]:
    """Roots of the features that have a slot or read the container, each once."""
    roots = []
    for feature in features:
        root = feature.root
        if not root.is_derived and root not in roots:
            roots.append(root)
    return roots
