"""What help and signatures tell of the published classes."""

import inspect
import pathlib
import pydoc

import pytest

import umlmm
from umlmm import _texts


def test_every_metaclass_and_enumeration_has_a_text_and_nothing_else_has():
    texts = _texts.texts()
    metaclasses = {cls.name: {feature.name for feature in cls.ownedProperties()} for cls in umlmm.MetaPackage().classes()}
    enumerations = {name: set(dir(getattr(umlmm, name))) for name in texts
                    if name.partition(".")[0] not in metaclasses and "." not in name}
    assert metaclasses.keys() <= texts.keys() and len(enumerations) == 8
    for name, text in texts.items():
        owner, _, member = name.partition(".")
        assert not member or member in (metaclasses | enumerations)[owner], name
        assert text[0].isupper() and text.endswith((".", ")")) and text.isascii(), name


@pytest.mark.parametrize("what, words", [
    (umlmm.Class, ["A description of objects", "Made by umlmm.Class(model)"]),
    (umlmm.ImmutableClass, ["A description of objects", "umlmm.Class is the class of what can be changed"]),
    (umlmm.SequenceOfClass, ["A list of umlmm.Class, which can be changed."]),
    (umlmm.VisibilityKind, ["Where an element may be named"]),
    (umlmm.Kelm.Model, ["Kelm.Model"]),  # which is not UML's
    (umlmm.Property.aggregation, ["aggregation: umlmm.AggregationKind", "holds parts", "[1..1]"]),
    (umlmm.Class.name, ["name: str", "absent reads as an empty text"]),
    (umlmm.Class.conformsTo, ["conformsTo(other: umlmm.ImmutableClassifier, /) -> bool"]),
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
    stub = (pathlib.Path(umlmm.__file__).parent / "__init__.pyi").read_text("utf-8")
    for text in ("A description of objects", "Whether the property holds parts.", "Inside of the namespace alone."):
        assert f'"""{text}' in stub
