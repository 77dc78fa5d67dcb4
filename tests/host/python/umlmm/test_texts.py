"""What help and signatures tell of the published classes."""

import inspect
import pathlib
import pydoc

import pytest

import umlmm
from umlmm import _texts
from umlmm._classes import Packages


def test_everything_published_has_a_text_and_nothing_else_has():
    classes = Packages().classes
    kernel = classes["Kelm.ImmutableClassObject"]
    published = {cls.short: set(cls.literals) for cls in classes.values() if cls.literals}
    of_all = {*dir(umlmm.Kelm.ImmutableClassObject), "MetaProperty"}
    for cls in umlmm.MetaPackage().classes():
        operations = {method.name for method in classes[f"umlmm.Immutable{cls.name}"].methods} - of_all
        published[cls.name] = {feature.name for feature in cls.ownedProperties()} | operations
    names = published.keys() | {f"Kelm.ClassObject.{feature.name}" for feature in kernel.properties}
    names |= {f"{owner}.{member}" for owner, members in published.items() for member in members}
    texts = _texts.texts()
    assert (names - texts.keys(), texts.keys() - names) == (set(), set())
    assert len(names) == 166 + 368 + 64 + 8 + 38 + 8
    assert [name for name, text in texts.items() if not text[0].isupper() or not text.isascii()
            or not text.endswith((".", ")"))] == []


@pytest.mark.parametrize("what, words", [
    (umlmm.Class, ["A description of objects", "Made by umlmm.Class(model)"]),
    (umlmm.ImmutableClass, ["A description of objects", "umlmm.Class is the class of what can be changed"]),
    (umlmm.SequenceOfClass, ["A list of umlmm.Class, which can be changed."]),
    (umlmm.VisibilityKind, ["Where an element may be named"]),
    (umlmm.Kelm.Model, ["Kelm.Model"]),  # which is not UML's
    (umlmm.Property.aggregation, ["aggregation: umlmm.AggregationKind", "holds parts", "[1..1]"]),
    (umlmm.Class.name, ["name: str", "absent reads as an empty text"]),
    (umlmm.Class.conformsTo, ["conformsTo(other: umlmm.ImmutableClassifier, /) -> bool", "a special case", "(9.2)"]),
    (umlmm.Class.externalId, ["externalId: str", "in files"]),
    (umlmm.MetaPackage, ["MetaPackage() -> Kelm.ImmutablePackage"]),
])
def test_help_begins_with_what_it_is(what, words):
    text = inspect.getdoc(what)
    assert text.startswith(words[0]) and all(word in text for word in words[1:])


def test_help_of_a_class_tells_it_before_its_bases():
    text = pydoc.render_doc(umlmm.Class, renderer=pydoc.plaintext)
    assert 0 < text.index("A description of objects") < text.index("Method resolution order")


@pytest.mark.parametrize("what, signature", [
    (umlmm.Class.conformsTo, "(self, other: umlmm.ImmutableClassifier, /) -> bool"),
    (umlmm.VisibilityKind, "(text: str, /)"),
    (umlmm.VisibilityKind.Private.toString, "() -> str"),
    (umlmm.Class.MetaClass, "() -> Kelm.ImmutableClass"),
    (umlmm.MetaPackage, "() -> Kelm.ImmutablePackage"),
    (umlmm.SequenceOfClass.at, "(self, number: int, /) -> umlmm.Class"),
])
def test_signatures(what, signature):
    assert str(inspect.signature(what)) == signature


def test_the_signature_of_a_class_has_what_it_takes(model):
    parameters = inspect.signature(umlmm.Class).parameters
    assert list(parameters)[:2] == ["model", "owner"] and {"name", "isAbstract", "ownedAttribute"} < parameters.keys()
    assert "multiplicity" in inspect.signature(umlmm.Port).parameters and "qualifiedName" not in parameters
    umlmm.Class(model, owner=None, name=None)


def test_the_stubs_show_the_texts():
    folder = pathlib.Path(umlmm.__file__).parent
    stub = (folder / "__init__.pyi").read_text("utf-8") + (folder / "Kelm.pyi").read_text("utf-8")
    for text in ("A description of objects", "Whether the property holds parts.", "Inside of the namespace alone.",
                 "All more general classifiers", "The id of the element in files"):
        assert f'"""{text}' in stub
