"""Holds two models against each other, element by element and feature by feature: all that files have is equal, but for
ids. The elements of both are paired by their places: the same part of the same owner, in order."""

from umlmm import _check


class Metaclasses:
    """The features that files have, by metaclass: stored ones, each once, parts first."""

    def __init__(self):
        self._features = {}

    def features(self, element):
        found = self._features.get(type(element))
        if found is None:
            stored = [feature for feature in element.MetaClass().allProperties() if not feature.isDerived
                      and feature.owner().name != "ClassObject"]  # ids and what tools note beside
            hidden = {qualified(other) for feature in stored for other in feature.redefined}
            found = [feature for feature in stored if qualified(feature) not in hidden]
            found.sort(key=lambda feature: not feature.isComposite)
            found = self._features[type(element)] = [
                (feature.name, is_list(feature), hasattr(feature.type, "superClasses"), feature.isComposite,
                 feature.opposite is not None and not feature.isOrdered)
                for feature in found]
        return found


def is_list(feature):
    """What redefines a list reads as one, also where it takes a single value."""
    return feature.isMultivalued or any(map(is_list, feature.redefined))


def qualified(feature):
    return f"{feature.owner().name}.{feature.name}"


METACLASSES = Metaclasses()


def roots(model):
    """What stands at the top, the primitive types that a reading adds by name."""
    elements = [element for element in model.rootElements() if not _check.is_standard(element)]
    # New ones come behind the others in a file; their order means nothing.
    elements.sort(key=lambda element: (element.MetaClass().name, getattr(element, "name", ""), element.externalId))
    standard = {element.name: element for element in model.rootElements() if _check.is_standard(element)}
    return elements, standard


def differences(one, other, limit=20):
    """What differs, a line each; none if the models are equal."""
    found = []
    for line in _differences(one, other):
        found.append(line)
        if len(found) == limit:
            break
    return found


def _differences(one, other):
    (one_roots, one_standard), (other_roots, other_standard) = roots(one), roots(other)
    # A primitive type that nobody refers to any more is in no file.
    images = {element: other_standard.get(name) for name, element in one_standard.items()}
    yield from _pair("the top", one_roots, other_roots, images)
    open_pairs = [pair for pair in images.items() if pair[1] is not None]
    pairs = []
    while open_pairs:
        element, image = open_pairs.pop()
        pairs.append((element, image))
        for name, is_many, _, is_composite, _ in METACLASSES.features(element):
            if is_composite:
                parts = [list(value) if is_many else [value] if value is not None else []
                         for value in (element.getProperty(name), image.getProperty(name))]
                yield from _pair(f"{_check.shown(element)}: {name}", *parts, images)
                open_pairs += [pair for pair in zip(*parts) if pair[0].owner == element]
    for element, image in pairs:
        for name, is_many, is_reference, is_composite, is_end in METACLASSES.features(element):
            if is_composite:
                continue
            values = [list(value) if is_many else value
                      for value in (element.getProperty(name), image.getProperty(name))]
            if is_reference:
                values[0] = [images.get(value) for value in values[0]] if is_many else images.get(values[0])
            if is_many and is_end:  # files leave it to the other end, in whose order these come
                values = [set(value) for value in values]
            if values[0] != values[1]:
                yield f"{_check.shown(element)}: {name} is {_text(values[0])} and {_text(values[1])}"


def _pair(where, parts, others, images):
    kinds, other_kinds = ([part.MetaClass().name for part in some] for some in (parts, others))
    if kinds != other_kinds:
        yield f"{where} has {' '.join(kinds)} and {' '.join(other_kinds)}"
        return
    for part, other in zip(parts, others):
        if images.setdefault(part, other) != other:
            yield f"{where}: {_check.shown(part)} is two in the other model"


def _text(value):
    if isinstance(value, (list, set)):
        return "[" + ", ".join(map(_text, value)) + "]"
    return _check.shown(value) if hasattr(value, "MetaClass") else repr(value)
