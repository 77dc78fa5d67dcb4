"""Whether a model is what the metamodel says of it: ownership, types and multiplicities, told by reflection alone."""

from umlmm import files


def findings(model):
    """What is wrong with a model, a line each."""
    dangling = set()
    if files.is_loaded(model):
        yield from _wrong_in_files(model, dangling)
    yield from _wrong_owners(model)
    features = _Features()
    for element in model.allElements():
        for feature in features.of(element):
            values = feature.values(element)
            if (element, feature.name) not in dangling:
                yield from feature.wrong_counts(element, values)
            yield from feature.wrong_types(element, values)


def _wrong_in_files(model, dangling):
    """What reading has met; adds elements and features whose references lead nowhere to a set."""
    for duplicate in files.report(model).duplicate_ids:
        yield f"{duplicate.file}:{duplicate.line}: the id '{duplicate.id}' is declared again"
    for reference in files.unresolved(model):
        dangling.add((reference.element, reference.feature.rpartition(".")[2]))
        if _is_local(reference.address):
            target = model.by_id(reference.address, reference.file)
            why = "which is not in the file" if target is None else \
                f"a {target.MetaClass().name}, which it does not take"
            yield (f"{reference.file}:{reference.line}: {shown(reference.element)}: {reference.feature} names "
                   f"'{reference.address}', {why}")
    for finding in files.report(model).findings:
        if finding.kind == "value":
            times = f", {finding.count} times" * (finding.count > 1)
            yield f"{finding.file}:{finding.line}: {finding.what} is no value{times}"


def shown(element):
    """An element in a line: its metaclass and qualified name, or its own name or id."""
    metaclass = element.MetaClass()
    name = element.qualifiedName or element.name if metaclass.property("name") else ""
    name = name or element.externalId
    return f"{metaclass.name} {name}" if name else metaclass.name


def is_standard(element):
    """Whether an element is one of the standard's primitive types, which a reading adds for those that name them."""
    return element.MetaClass().name == "PrimitiveType" and element.owner is None and not element.externalId


def _is_local(address):
    """Whether an address is an id of the same file: what leads to other files is not known here."""
    return not any(mark in address for mark in "#/:")


def _wrong_owners(model):
    reached = 0
    open_elements = list(model.rootElements())
    while open_elements:
        element = open_elements.pop()
        reached += 1
        if element.containerKelm is None and element.mustBeOwned() and not is_standard(element):
            yield f"{shown(element)} has no owner, and needs one"
        for part in element.containeeKelm:
            if part.containerKelm != element:
                yield f"{shown(part)} is owned by {shown(element)}, and names another owner"
            open_elements.append(part)
    if reached != len(model.allElements()):
        yield f"{reached} elements are reached from the top, of {len(model.allElements())}"


class _Features:
    """The stored features of the metaclasses, made when a metaclass is first met."""

    def __init__(self):
        self._by_class = {}

    def of(self, element):
        features = self._by_class.get(type(element))
        if features is None:
            stored = [feature for feature in element.MetaClass().allProperties() if not feature.isDerived]
            hidden = {other.qualified for other in map(_Feature, stored)} & {
                _qualified(other) for feature in stored for other in feature.redefined}
            features = self._by_class[type(element)] = [
                feature for feature in map(_Feature, stored) if feature.qualified not in hidden and feature.is_checked]
        return features


def _qualified(feature):
    return f"{feature.owner().name}.{feature.name}"


class _Feature:
    def __init__(self, feature):
        self.name = feature.name
        self.qualified = _qualified(feature)
        self._lower = feature.lower
        self._upper = feature.upper
        self._is_multivalued = feature.isMultivalued
        self._type = feature.type
        self._is_reference = hasattr(feature.type, "superClasses")
        self._conforming = {}
        self.is_checked = self._is_reference or self._lower > 0 or self._upper > 1

    def values(self, element):
        value = element.getProperty(self.name)
        if value is None:
            return ()
        # What redefines a list reads as one, also where it takes a single value.
        is_list = self._is_multivalued or (self._is_reference and not hasattr(value, "MetaClass"))
        return value if is_list else (value,)

    def wrong_counts(self, element, values):
        count = len(values)
        if count < self._lower:
            yield f"{shown(element)}: {self.name} has {count or 'no'} value{'s' * (count > 1)}, and needs {self._lower}"
        elif 0 <= self._upper < count:
            yield f"{shown(element)}: {self.name} has {count} values, and takes {self._upper}"

    def wrong_types(self, element, values):
        if not self._is_reference:
            return
        for value in values:
            conforms = self._conforming.get(type(value))
            if conforms is None:
                conforms = self._conforming[type(value)] = value.MetaClass().conformsTo(self._type)
            if not conforms:
                yield f"{shown(element)}: {self.name} has a {value.MetaClass().name}, which is no {self._type.name}"
