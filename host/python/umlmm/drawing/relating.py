"""Which relations there are, and how UML draws each."""

from __future__ import annotations

import dataclasses

import umlmm


@dataclasses.dataclass(frozen=True, slots=True)
class Style:
    option: str  # by which it is shown or hidden
    mark: str
    dashed: bool = False
    keyword: str = ""
    upward: bool = False


# Directed relations, by metaclass; one that is not here is drawn as the nearest above it.
_STYLES = {
    "Generalization": Style("generalizations", "triangle", upward=True),
    "Realization": Style("realizations", "triangle", True, upward=True),
    "Substitution": Style("dependencies", "arrow", True, "substitute"),
    "Abstraction": Style("dependencies", "arrow", True, "abstraction"),
    "Usage": Style("dependencies", "arrow", True, "use"),
    "Dependency": Style("dependencies", "arrow", True),
    "PackageImport": Style("imports", "arrow", True, "import"),
    "ElementImport": Style("imports", "arrow", True, "import"),
    "ProfileApplication": Style("imports", "arrow", True, "apply"),
    "Include": Style("dependencies", "arrow", True, "include"),
    "Extend": Style("dependencies", "arrow", True, "extend"),
    "DirectedRelationship": Style("dependencies", "arrow", True),
}


def style_of(relation):
    found = nearest(_STYLES, relation)
    if found.keyword == "import" and relation.visibility != "public":
        return dataclasses.replace(found, keyword="access")
    return found


def nearest(table, element):
    """What a table by metaclass says of an element: the first that is found, going up level by level."""
    level = [element.MetaClass()]
    while level:
        for metaclass in level:
            if metaclass.name in table:
                return table[metaclass.name]
        level = [general for metaclass in level for general in metaclass.superClasses()]
    return None


def relations_of(element):
    """All relations that an element takes part in, from either end, each once."""
    seen = set()
    for relation in _relations_of(element):
        if relation not in seen:
            seen.add(relation)
            yield relation


def _relations_of(element):
    directed = umlmm.ImmutableDirectedRelationship
    for part in element.containeeKelm:
        if isinstance(part, directed):
            yield part
    yield from getattr(element, "clientDependency", ())
    for other in element.referencedBy():
        if isinstance(other, directed):
            yield other
        elif isinstance(other, umlmm.ImmutableProperty) and other.association is not None:
            yield other.association


def related(relation):
    """The elements that a relation is among."""
    if isinstance(relation, umlmm.ImmutableAssociation):
        return [end.type for end in relation.memberEnd]
    return [*relation.source, *relation.target]


def is_navigable(end):
    association = end.association
    return end.owner != association or end in association.navigableOwnedEnd


def other_ends(end):
    return [other for other in end.association.memberEnd if other != end]
