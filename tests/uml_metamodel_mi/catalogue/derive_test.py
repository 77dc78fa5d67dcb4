"""What follows from the tables, held against facts of the metamodel that are known from elsewhere."""

import pytest


def names(records):
    return [record.name for record in records]


def entries(model, metaclass):
    return [("ClassObject" if entry.is_kernel else entry.feature.owner.name, entry.id, entry.name)
            for entry in model.metaclass(metaclass).meta_properties]


def test_supers_are_visited_depth_first_and_once(model):
    assert names(model.metaclass("Association").ancestors) == [
        "Association", "Relationship", "Element", "Classifier", "RedefinableElement", "NamedElement", "Namespace", "Type",
        "PackageableElement"]
    listed = entries(model, "Association")
    assert len(listed) == 42
    assert [owner for owner, *_ in listed].index("ClassObject") == 5 + 1 + 3
    assert listed[-1] == ("PackageableElement", 1, "Visibility")
    assert ("NamedElement", 2, "Visibility") not in listed


@pytest.mark.parametrize("metaclass, present, absent", [
    ("Class", ("Class", 5, "SuperClass"), ("Classifier", 7, "General")),
    ("Class", ("Class", 1, "IsAbstract"), ("Classifier", 1, "IsAbstract")),
    ("ExtensionEnd", ("ExtensionEnd", 2, "Type"), ("TypedElement", 1, "Type")),
    ("Port", ("Property", 2, "IsReadOnly"), ("StructuralFeature", 1, "IsReadOnly")),
    ("TimeInterval", ("TimeInterval", 1, "Max"), ("Interval", 2, "Max")),
    ("Interval", ("Interval", 2, "Max"), ("TimeInterval", 1, "Max")),
    ("SendObjectAction", ("SendObjectAction", 2, "Request"), ("InvocationAction", 1, "Argument")),
])
def test_redefined_features_are_hidden_below_only(model, metaclass, present, absent):
    listed = entries(model, metaclass)
    assert present in listed and absent not in listed


def test_shortest_and_longest_meta_property_lists(model):
    lengths = {metaclass.name: len(metaclass.meta_properties) for metaclass in model.metaclasses}
    assert min(lengths.items(), key=lambda item: item[1]) == ("Element", 11)
    assert max(lengths.items(), key=lambda item: item[1]) == ("Interaction", 66)


@pytest.mark.parametrize("key, code, multiplicity, mutability, literal", [
    ("DurationConstraint.firstEvent", "PS", 2, 0, "umlmm.ImmutableSequenceOfBoolean"),
    ("TimeConstraint.firstEvent", "OP", 0, 0, "kelmlogical"),
    ("TimeObservation.firstEvent", "PR", 1, 0, "logical scalar"),
    ("LiteralUnlimitedNatural.value", "DT", 1, 0, "char vector"),
    ("MultiplicityElement.upper", "DT", 0, 0, "kelmunlimitedNatural"),
    ("LiteralInteger.value", "PR", 1, 0, "int32 scalar"),
    ("Package.URI", "ST", 1, 0, "char"),
    ("NamedElement.qualifiedName", "ST", 0, 1, "char"),
    ("Message.messageKind", "DT", 1, 1, "umlmm.MessageKind"),
    ("Feature.featuringClassifier", "CO", 2, 1, "umlmm.ImmutableSequenceOfImmutableClassifier"),
    ("Extension.metaclass", "CO", 1, 1, "umlmm.ImmutableClass"),
])
def test_descriptor_codes(model, key, code, multiplicity, mutability, literal):
    feature = model.feature(key)
    assert (feature.code, feature.multiplicity, feature.mutability, feature.literal) == (
        code, multiplicity, mutability, literal)


def test_a_redeclared_operation_overrides_unless_its_arguments_differ(model):
    found = {operation.key: (operation.overrides, operation.hides) for operation in model.operations}
    assert found["ExtensionEnd.lowerBound"][0].key == "MultiplicityElement.lowerBound"
    assert found["LiteralNull.isNull"][0].key == "ValueSpecification.isNull"
    assert found["AssociationClass.allConnections"] == (None, None)
    assert found["Classifier.conformsTo"][0] is None
    assert found["Classifier.conformsTo"][1].key == "Type.conformsTo"


def test_containers(model):
    views = [feature.key for feature in model.features if feature.is_container]
    assert len(views) == 31
    assert {"Type.package", "Package.nestingPackage", "Property.class", "Constraint.context"} <= set(views)
    assert "Property.association" not in views and "Element.owner" not in views
