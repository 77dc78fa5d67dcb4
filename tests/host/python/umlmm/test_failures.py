"""The failures of the library as scripts see them: what they say, and the place in the sources that they name."""

import re

import pytest

import umlmm

NULL_REFERENCE = "Cannot access NULL ref. Use isValid() before calling methods"
NULL_SEQUENCE = ("Cannot access NULL sequence. Use MakeSequence to create sequences.See testSequenceCreation in "
                 "kelm/kernel/unittest/sequence_tests.")
EMPTY = "sequence is empty"
NOT_POSITIVE = "sequence index must be positive"
OUT_OF_BOUNDS = "sequence index out of bounds"
READ_ONLY = "You cannot set a read-only property"
TOO_MANY = "A scalar or an empty array is expected, but the value has more than one element"
NOT_IN_VARIANT = "The object does not exist in this variant of the model"

ITERATOR = "kelm/kernel/containers/iterator/Iterator"
SEQUENCE = "kelm/kernel/containers/sequence/SequenceRef"
LIST = "kelm/kernel/containers/sequence/list/ListQImplForPrimitives"
MULTI_INDEX = "kelm/kernel/containers/sequence/multi_index/MultiIndexImplForPrimitives"
FEATURE = "uml_metamodel/engine/FeatureSequence"
ENGINE = "uml_metamodel/engine/"
MARSHAL = "kelm_mi/marshal/"


def fails(action, words, source, added="", kind=umlmm.Kelm.Error):
    """The whole text, line number apart, which is the check's own."""
    with pytest.raises(kind) as raised:
        action()
    text = f"Assertion failed: {words} at {source}:"
    assert re.fullmatch(re.escape(text) + r"[1-9]\d*: " + re.escape(added), str(raised.value)), str(raised.value)


def set_(element, name, value):
    return lambda: setattr(element, name, value)


@pytest.mark.parametrize("call, source", [
    (lambda: umlmm.Comment(None), "kelm/Kelm/Model_h"),
    (lambda: umlmm.Association.destroy(None), "uml_metamodel/umlmm/Association_h"),
    (lambda: umlmm.Classifier.allParents(None), "uml_metamodel/umlmm/Classifier_h"),
    (lambda: umlmm.Kelm.ClassObject.getMetaType(None), "kelm/Kelm/Object_h"),
    (lambda: umlmm.Class.cast(None).destroy(), "kelm/Kelm/Object_h"),
    (lambda: umlmm.IntegerIterator.clone(None), ITERATOR),
    (lambda: umlmm.ClassImmutableIterator.clone(None), ITERATOR),
    (lambda: umlmm.SequenceOfInteger.make(None).erase(None), ITERATOR),
    (lambda: umlmm.SequenceOfClass.make(None).erase(None), ITERATOR),
])
def test_null_references(call, source):
    fails(call, NULL_REFERENCE, source)


def test_what_is_missing_is_named():
    for cls in (umlmm.Class, umlmm.Property):
        fails(cls, NULL_REFERENCE, "kelm/Kelm/Model_h", f"umlmm.{cls.__name__} was called without a Kelm.Model")


@pytest.mark.parametrize("call", [
    lambda: umlmm.SequenceOfInteger.append(None, 1), lambda: umlmm.ImmutableSequenceOfMessageSort.at(None, 0),
    lambda: umlmm.SequenceOfClass.size(None), lambda: umlmm.ImmutableSequenceOfImmutableClass.begin(None),
])
def test_null_sequences(call):
    fails(call, NULL_SEQUENCE, SEQUENCE)


def element_list(model):
    return umlmm.Class(model).ownedAttribute, umlmm.Property(model)


SEQUENCES = {
    "repeating": (lambda m: (umlmm.SequenceOfInteger.make(m), 1), MULTI_INDEX),
    "unique": (lambda m: (umlmm.SequenceOfString.makeUnique(m), "a"), MULTI_INDEX),
    "references": (lambda m: (umlmm.SequenceOfClass.make(m), umlmm.Class(m)), MULTI_INDEX),
    "values of a feature": (lambda m: (umlmm.OpaqueExpression(m).body, "a"), LIST),
    "unique values of a feature": (lambda m: (umlmm.OpaqueExpression(m).language, "a"), MULTI_INDEX),
    "elements of a feature": (element_list, FEATURE),
}


@pytest.mark.parametrize("kind", SEQUENCES)
def test_positions_outside_of_a_sequence(model, kind):
    make, source = SEQUENCES[kind]
    sequence, value = make(model)
    for name in ("front", "back", "pop_front", "pop_back"):
        fails(getattr(sequence, name), EMPTY, source)
    sequence.append(value)
    for name, values in (("at", []), ("erase", []), ("replace", [value]), ("insert", [value])):
        change = getattr(sequence, name)
        fails(lambda: change(0, *values), NOT_POSITIVE, source)
        fails(lambda: change(3, *values), OUT_OF_BOUNDS, source)
    for name in ("at", "erase"):
        fails(lambda: getattr(sequence, name)(2), OUT_OF_BOUNDS, source)
    first, end = sequence.begin(), sequence.end()
    for outside in (first.getPrev, end.getNext, end.item, lambda: sequence.erase(end)):
        fails(outside, OUT_OF_BOUNDS, source)
    other, other_value = make(model)
    fails(lambda: sequence.erase(other.begin()), OUT_OF_BOUNDS, source)
    assert list(sequence) == [value]
    sequence.clear()
    fails(first.item, OUT_OF_BOUNDS, source)


def test_query_results_are_lists_of_their_own(model):
    found = umlmm.Class(model).allFeatures()
    fails(found.front, EMPTY, LIST)
    fails(lambda: found.at(0), NOT_POSITIVE, LIST)


def test_properties_that_refuse(model):
    element, attribute = umlmm.Class(model), umlmm.Property(model)
    for action, source in (
        (set_(element, "qualifiedName", "x"), MARSHAL + "KelmmiStringProperty"),
        (set_(umlmm.Extension(model), "isRequired", True), MARSHAL + "KelmmiPrimitiveProperty"),
        (set_(umlmm.Message(model), "messageKind", umlmm.MessageKind.Complete), MARSHAL + "KelmmiDataTypeProperty"),
        (set_(element, "extension", []), MARSHAL + "KelmmiSequenceProperty"),
        (set_(element, "modelKelm", None), MARSHAL + "KelmmiClassObjectProperty"),
        (set_(element, "uri", "x"), MARSHAL + "KelmmiTextProperty"),
        (set_(umlmm.Class.MetaClass(), "name", "x"), MARSHAL + "KelmmiReadOnlyProperty"),
        (lambda: element.unset("qualifiedName"), "kelm/Kelm/ClassObject_h"),
    ):
        fails(action, READ_ONLY, source)
    fails(set_(element, "qualifiedName", "x"), READ_ONLY, MARSHAL + "KelmmiStringProperty", kind=AttributeError)
    fails(set_(attribute, "lower", [1, 2]), TOO_MANY, MARSHAL + "OptionalPrimitiveMarshaling")
    assert attribute.lower == 1
    for action, name, added in (
        (set_(attribute, "upper", "x"), "UnlimitedNatural",
         "'x' is not accepted: a natural number, '*' or None is expected"),
        (lambda: umlmm.SequenceOfUnlimitedNatural.make(model).append("many"), "UnlimitedNatural", ""),
        (lambda: umlmm.AggregationKind.fromString("Nope"), "AggregationKind", ""),
        (lambda: element.getPropertyText("ownedAttribute"), "String", ""),
        (lambda: umlmm.SequenceOfClass.make(model).append(None), "umlmm.Class",
         "None is not accepted: umlmm.Class is expected"),
        (lambda: umlmm.Class(model).ownedAttribute.insert(1, []), "umlmm.Property",
         "[] is not accepted: umlmm.Property is expected"),
    ):
        fails(action, f"Incorrect type: the value is not of type '{name}'", "kelm/Kelm/Error", added)
    with pytest.raises(TypeError, match="does not take None: umlmm.Property is expected"):
        element.ownedAttribute.extend([None])
    for action in (set_(element.asImmutable(), "name", "x"), set_(element.asImmutable(), "isAbstract", True),
                   set_(attribute.asImmutable(), "lower", 2), set_(attribute.asImmutable(), "type", element),
                   set_(element.asImmutable(), "ownedAttribute", [])):
        with pytest.raises(umlmm.Kelm.ReadOnlyError, match="^The object is immutable. Use asMutable"):
            action()


def test_variants_and_what_is_gone(model):
    element, package = umlmm.Class(model), umlmm.Package(model)
    text = umlmm.OpaqueExpression(model)
    view = element.asDeviant(model.readOnlyVariant())
    for action in (set_(view, "name", "x"), view.destroy, lambda: view.ownedAttribute.append(umlmm.Property(model))):
        fails(action, "The object cannot be changed in a read-only variant of its model", "kelm/Kelm/DeviantAssertions")
    lists = [(package, package.packagedElement, "FeatureSequence"), (package, package.ownedMember, "FeatureSequence"),
             (text, text.body, "ValueSequence"), (text, text.language, "ValueSequence")]
    package.name, text.name, element.name = "shop", "x" * 61, ""
    for gone in (package, text, element):
        gone.destroy()
    words = {package: ": the Package 'shop' is", text: f": the OpaqueExpression '{'x' * 60}...' is", element: ": the Class is"}
    words = {gone: f"{NOT_IN_VARIANT}{what} destroyed or its model closed" for gone, what in words.items()}
    for action, source in ((lambda: element.name, "access"), (set_(element, "name", "x"), "access"),
                           (element.destroy, "lifecycle"), (lambda: element.uri, "kernel_features")):
        fails(action, words[element], ENGINE + source)
    fails(element.allParents, words[element], "uml_metamodel/operations/classifiers")
    fails(set_(umlmm.Property(model), "type", element), "TypedElement.type takes elements of the same model only; "
          "the Class is destroyed or its model closed", ENGINE + "links")
    for owner, values, source in lists:
        for read in (len, list, repr, lambda s: s.at(1), lambda s: s.begin(), lambda s: 1 in s, lambda s: s.front()):
            fails(lambda: read(values), words[owner], ENGINE + source)


def test_failures_name_the_line_of_the_check(model):
    package, observed = umlmm.Package(model), umlmm.DurationObservation(model)
    observed.event = [umlmm.Class(model), umlmm.Class(model)]
    lines = set()
    for action in (lambda: package.packagedElement.append(package), lambda: observed.event.append(package),
                   set_(package, "nestingPackage", umlmm.Package(umlmm.Factory.createNewModel()))):
        with pytest.raises(umlmm.Kelm.Error, match=f"{ENGINE}links:") as raised:
            action()
        lines.add(str(raised.value).rsplit(":", 2)[1])
    assert len(lines) == 3


def test_the_lowest_index_of_all_is_too_low(model):
    for values, value in ((umlmm.SequenceOfString.make(model), "x"),
                          (umlmm.Class(model).ownedAttribute, umlmm.Property(model))):
        for index in (0, -1, -2**31 + 1, -2**31):
            for action in (lambda: values.at(index), lambda: values.erase(index), lambda: values.insert(index, value),
                           lambda: values.replace(index, value)):
                with pytest.raises(umlmm.Kelm.Error, match=NOT_POSITIVE):
                    action()
    with pytest.raises(umlmm.Kelm.Error, match=NOT_POSITIVE):
        umlmm.ImmutableSequenceOfString.at(umlmm.SequenceOfString.make(model), -2**31)
