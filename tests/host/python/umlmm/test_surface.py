"""What is published, read back from the filled classes."""

import json
import re
import subprocess
import sys

import pytest

import umlmm

# What many classes have, in order.
GROUPS = {
    "append clear pop_back pop_front push_back push_front removeAll begin end erase erase erase insert insert replace "
    "back isEmpty front size at make make makeUnique makeUnique": "(changes)",
    "begin end back isEmpty front size at": "(reads)",
    "clone eq ne getNext getPrev item": "(walks)",
}

# Class: its superclasses: its methods, in order.
CLASSES = """
Comment: umlmm.ImmutableComment umlmm.Element: Comment MetaClass MetaProperty getMetaType cast
ImmutableComment: umlmm.ImmutableElement: MetaClass MetaProperty getMetaType cast cast
Association: umlmm.ImmutableAssociation umlmm.Relationship umlmm.Classifier: Association isvalid MetaClass \
MetaProperty destroy asDeviant getMetaType cast asImmutable
ImmutableAssociation: umlmm.ImmutableRelationship umlmm.ImmutableClassifier: isvalid MetaClass MetaProperty \
getMetaType asDeviant asImmutable asMutable cast cast
Element: umlmm.ImmutableElement Kelm.ClassObject: MetaClass MetaProperty allOwnedElements mustBeOwned getMetaType cast
ImmutableElement: Kelm.ImmutableClassObject: MetaClass MetaProperty allOwnedElements mustBeOwned getMetaType cast cast
ImmutableFactory: Kelm.ImmutableFactoryObject: eq ne gt ge lt le cast toKelmImmutableObject cast \
toKelmImmutableFactoryObject
ConnectorKind:: isvalid MetaDataType getMetaDataType getMetaType fromString toString disp Assembly Delegation eq ne \
gt ge lt le
SequenceOfUnlimitedNatural: umlmm.ImmutableSequenceOfUnlimitedNatural: (changes)
ImmutableSequenceOfMessageSort:: (reads)
SequenceOfClass: umlmm.ImmutableSequenceOfClass umlmm.SequenceOfBehavioredClassifier \
umlmm.SequenceOfEncapsulatedClassifier: (changes)
SequenceOfImmutableComment: umlmm.ImmutableSequenceOfImmutableComment umlmm.SequenceOfImmutableElement: (changes)
ImmutableSequenceOfComment: umlmm.ImmutableSequenceOfImmutableComment umlmm.ImmutableSequenceOfElement: (reads)
ImmutableSequenceOfImmutableComment: umlmm.ImmutableSequenceOfImmutableElement: (reads)
SequenceOfElement: umlmm.ImmutableSequenceOfElement Kelm.SequenceOfClassObject: (changes)
CommentIterator: umlmm.CommentImmutableIterator: (walks)
ImmutableCommentIterator: umlmm.ImmutableCommentImmutableIterator: (walks)
CommentImmutableIterator:: (walks)
StringIterator: umlmm.StringImmutableIterator: (walks)
"""

# Class.method, and which of its signatures: names: receiver(arguments) -> result: attribute word.
METHODS = """
Comment.Comment 0:: -(Kelm.Model) -> umlmm.Comment: 0
Comment.MetaClass 0:: -() -> Kelm.ImmutableClass: 520
Comment.MetaProperty 0:: -() -> umlmm.CommentMetaProperty: 520
Comment.getMetaType 0:: Kelm.Object() -> Kelm.ImmutableType: 2
Comment.cast 0: other: -(Kelm.Object) -> Kelm.Object: 8
ImmutableComment.MetaClass 0:: -() -> Kelm.ImmutableClass: 8
ImmutableComment.getMetaType 0:: Kelm.ImmutableObject() -> Kelm.ImmutableType: 2
ImmutableComment.cast 0: other: -(Kelm.ImmutableObject) -> Kelm.ImmutableObject: 8
ImmutableComment.cast 1: other: -(Kelm.Object) -> Kelm.ImmutableObject: 8
Association.asDeviant 0: deviant: umlmm.Association(Kelm.ImmutableModel) -> umlmm.Association: 512
Association.destroy 0:: umlmm.Association() -> void: 0
Association.asImmutable 0:: -(umlmm.Association) -> umlmm.ImmutableAssociation: 4096
ImmutableAssociation.isvalid 0:: umlmm.ImmutableAssociation() -> logical scalar: 0
ImmutableAssociation.asMutable 0:: -(umlmm.ImmutableAssociation) -> umlmm.Association: 4096
ImmutableAssociation.asDeviant 0: deviant: \
umlmm.ImmutableAssociation(Kelm.ImmutableModel) -> umlmm.ImmutableAssociation: 0
MultiplicityElement.is 0: lowerbound, upperbound: \
umlmm.MultiplicityElement(int32 scalar, int32 scalar) -> logical scalar: 512
ImmutableMultiplicityElement.is 0: lowerbound, upperbound: \
umlmm.ImmutableMultiplicityElement(int32 scalar, int32 scalar) -> logical scalar: 0
Classifier.allParents 0:: umlmm.Classifier() -> umlmm.ImmutableSequenceOfImmutableClassifier: 512
Namespace.getNamesOfMember 0: element: \
umlmm.Namespace(umlmm.ImmutableNamedElement) -> umlmm.ImmutableSequenceOfString: 512
ActionExecutionSpecification.ActionExecutionSpecification 1:: -(Kelm.Model, umlmm.Action, \
umlmm.OccurrenceSpecification, umlmm.OccurrenceSpecification) -> umlmm.ActionExecutionSpecification: 0
Factory.createActionExecutionSpecification 0:: umlmm.Factory() -> umlmm.ActionExecutionSpecification: 0
Factory.createActionExecutionSpecification 1:  aAction, aStart, aFinish: umlmm.Factory(umlmm.Action, \
umlmm.OccurrenceSpecification, umlmm.OccurrenceSpecification) -> umlmm.ActionExecutionSpecification: 0
Factory.createNewModel 0:: -() -> Kelm.Model: 8
Factory.createFromString 0:: umlmm.Factory(char vector) -> Kelm.Object: 0
Factory.cast 1:: -(Kelm.FactoryObject) -> umlmm.Factory: 8
ImmutableFactory.cast 1: other: -(Kelm.ImmutableFactoryObject) -> umlmm.ImmutableFactory: 8
ConnectorKind.fromString 0:: -(char) -> umlmm.ConnectorKind: 8
ConnectorKind.disp 0:: -(umlmm.ConnectorKind) -> void: 4096
ConnectorKind.lt 0:: -(umlmm.ConnectorKind, umlmm.ConnectorKind) -> logical scalar: 4096
ConnectorKind.Delegation 0:: -() -> umlmm.ConnectorKind: 8
ConnectorKind.getMetaType 0:: Kelm.Object() -> Kelm.ImmutableType: 2
SequenceOfClass.append 0:: umlmm.SequenceOfClass(umlmm.Class) -> void: 512
SequenceOfClass.insert 1:: -(umlmm.SequenceOfClass, int32 scalar, umlmm.Class) -> void: 4608
SequenceOfClass.front 0:: umlmm.SequenceOfClass() -> umlmm.Class: 512
SequenceOfClass.make 0:: -(Kelm.ImmutableModel) -> umlmm.SequenceOfClass: 520
SequenceOfUnlimitedNatural.erase 1:: umlmm.SequenceOfUnlimitedNatural(umlmm.UnlimitedNaturalIterator, \
umlmm.UnlimitedNaturalIterator) -> umlmm.UnlimitedNaturalIterator: 0
SequenceOfUnlimitedNatural.erase 2:: -(umlmm.SequenceOfUnlimitedNatural, int32 scalar) -> void: 4096
SequenceOfUnlimitedNatural.insert 0:: umlmm.SequenceOfUnlimitedNatural(umlmm.UnlimitedNaturalIterator, \
char vector) -> umlmm.UnlimitedNaturalIterator: 0
SequenceOfUnlimitedNatural.insert 1:: -(umlmm.SequenceOfUnlimitedNatural, int32 scalar, char vector) -> void: 4096
SequenceOfUnlimitedNatural.make 0:: -(Kelm.ImmutableModel) -> umlmm.SequenceOfUnlimitedNatural: 8
SequenceOfUnlimitedNatural.makeUnique 1:: -(Kelm.Model) -> umlmm.SequenceOfUnlimitedNatural: 8
ImmutableSequenceOfMessageSort.begin 0:: \
umlmm.ImmutableSequenceOfMessageSort() -> umlmm.MessageSortImmutableIterator: 0
ImmutableSequenceOfMessageSort.at 0:: \
-(umlmm.ImmutableSequenceOfMessageSort, int32 scalar) -> umlmm.MessageSort: 4096
StringIterator.item 0:: umlmm.StringIterator() -> char vector: 0
"""

DESCRIPTIONS = """
Comment:
ImmutableComment:
CommentMetaProperty: This class has static methods to access meta properties
SequenceOfImmutableComment: A sequence whose values can be changed
ImmutableSequenceOfComment: A sequence whose values cannot be changed
CommentImmutableIterator: An iterator for traversing a modifiable list
ImmutableCommentIterator: An iterator for traversing a non-modifiable list
MessageSort: An enumeration
SequenceOfMessageSort: A sequence of MessageSort whose values can be changed
ImmutableSequenceOfMessageSort: A non-modifiable sequence of MessageSort whose values can be changed
MessageSortImmutableIterator: A iterator for traversing a modifiable list of MessageSort objects
SequenceOfInteger: A Sequence of Integer whose values can be changed
ImmutableSequenceOfInteger: A Sequence of Integer whose values cannot be changed
IntegerIterator: An iterator for a Sequence of Integer
ImmutableFactory: An implementation of the factory design pattern
"""


@pytest.fixture(scope="module")
def description():
    printed = subprocess.run([sys.executable, "-m", "umlmm", "describe"], check=True, capture_output=True, text=True)
    return json.loads(printed.stdout)


@pytest.fixture(scope="module")
def classes(description):
    return {cls["short"]: cls for cls in description["classes"]}


def as_row(method):
    names, receiver, arguments = f" {method['names']}" * bool(method["names"]), method["receiver"], method["arguments"]
    return f"{names}: {receiver or '-'}({', '.join(arguments)}) -> {method['result']}: {method['word']}"


def test_totals(description, classes):
    assert description["package"] == "umlmm"
    (function,) = description["functions"]
    assert (function["name"], as_row(function)) == ("MetaPackage", ": -() -> Kelm.ImmutablePackage: 8")
    assert len(description["classes"]) == 1884 and len(classes) == 1884
    assert sum(len(cls["properties"]) for cls in classes.values()) == 347
    assert sum(len(cls["metaProperties"]) for cls in classes.values()) == 4318


@pytest.mark.parametrize("first, names", [
    (0, "Factory ImmutableFactory ImmutableBehavioralFeature BehavioralFeature BehavioralFeatureMetaProperty"),
    (-1, "ImmutableExtensionPointImmutableIterator"),
    ("ImmutableElement", "ImmutableElement Element ElementMetaProperty SequenceOfElement SequenceOfImmutableElement "
     "ImmutableSequenceOfElement ImmutableSequenceOfImmutableElement ElementIterator ImmutableElementIterator "
     "ElementImmutableIterator ImmutableElementImmutableIterator"),
    ("MessageKind", "MessageKind SequenceOfMessageKind ImmutableSequenceOfMessageKind MessageKindIterator "
     "MessageKindImmutableIterator"),
])
def test_classes_are_announced_in_order(classes, first, names):
    order, names = list(classes), names.split()
    first = order.index(first) if isinstance(first, str) else first
    assert order[first:][:len(names)] == names
    # A class may be announced before its superclasses.
    assert order.index("Port") < order.index("Property")
    assert order.index("UnlimitedNaturalImmutableIterator") < order.index("ImmutableElement")


@pytest.mark.parametrize("row", CLASSES.strip().splitlines())
def test_superclasses_and_methods(classes, row):
    cls = classes[row.split(":")[0]]
    methods = " ".join(method["name"] for method in cls["methods"])
    superclasses = " ".join(cls["superclasses"])
    assert f"{cls['short']}: {superclasses}: {GROUPS.get(methods, methods)}".replace(": :", "::") == row


@pytest.mark.parametrize("row", METHODS.strip().splitlines())
def test_signatures(classes, row):
    cls, name, which = re.match(r"(\w+)\.(\w+) (\d)", row).groups()
    method = [method for method in classes[cls]["methods"] if method["name"] == name][int(which)]
    assert f"{cls}.{name} {which}:{as_row(method)}" == row


@pytest.mark.parametrize("row", DESCRIPTIONS.strip().splitlines())
def test_descriptions(classes, row):
    name, text = row.split(":")
    assert classes[name]["description"] == classes[name]["detailedDescription"] == text.strip()


def test_methods_of_the_factory(classes):
    names = [method["name"] for method in classes["Factory"]["methods"]]
    assert classes["Factory"]["superclasses"] == ["Kelm.FactoryObject"] and len(names) == 203
    assert names[:5] == ["createNewFactory", "createNewModel", "createFromString", "createFromString", "createComment"]
    assert names[-4:] == ["cast", "toKelmObject", "cast", "toKelmFactoryObject"]


def test_the_package_of_the_kernel_is_described_too():
    printed = subprocess.run([sys.executable, "-m", "umlmm", "describe", "Kelm"], check=True, capture_output=True,
                             text=True)
    description = json.loads(printed.stdout)
    classes = {cls["name"]: cls for cls in description["classes"]}
    assert description["package"] == "Kelm" and "Kelm.ImmutableProperty" in classes
    assert "externalId" in [entry["name"] for entry in classes["Kelm.ImmutableClassObject"]["properties"]]


def test_properties(classes):
    assert classes["ImmutableComment"]["properties"] == [
        {"name": "body", "id": 1, "type": "char", "multiplicity": 0, "mutability": 0},
        {"name": "annotatedElement", "id": 2, "type": "umlmm.ImmutableSequenceOfImmutableElement",
         "multiplicity": 2, "mutability": 0}]
    assert classes["Comment"]["properties"] == []
    assert {"name": "RelatedElement", "owner": "Relationship", "id": 1} in \
       classes["AssociationMetaProperty"]["metaProperties"]


def test_every_announced_class_is_a_python_class(description):
    for cls in description["classes"]:
        published = getattr(umlmm, cls["short"])
        assert [f"{base.__module__}.{base.__name__}".replace("umlmm.Kelm.", "Kelm.")
                for base in published.__bases__ if base.__module__ != "umlmm._host"] == cls["superclasses"]


def test_import_makes_no_class():
    script = ("import sys, umlmm; made = [n for n in vars(umlmm) if isinstance(getattr(umlmm, n), type)]; "
              "assert not made, made; assert 'argparse' not in sys.modules and 'json' not in sys.modules")
    subprocess.run([sys.executable, "-c", script], check=True)


def test_help_tells_each_signature_once_and_what_the_metamodel_says():
    assert umlmm.Comment.cast.__doc__.split("\n") == [
        "cast(other: Kelm.Object, /) -> Kelm.Object", "cast(other: Kelm.ImmutableObject, /) -> Kelm.ImmutableObject",
        "cast(other: Kelm.Object, /) -> Kelm.ImmutableObject"]
    assert umlmm.Class.ownedOperation.__doc__ == (
        "ownedOperation: umlmm.ImmutableSequenceOfImmutableOperation\n\nThe operations, in order. (11.4)\n\n"
        "Operation [0..*], composite, ordered; opposite Operation.class")
    assert umlmm.ImmutableMultiplicityElement.upper.__doc__.endswith("UnlimitedNatural [0..1] = 1, derived")
