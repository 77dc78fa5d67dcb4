"""What is published, read back from the filled classes."""

import json
import subprocess
import sys

import pytest

import umlmm


@pytest.fixture(scope="module")
def description():
    printed = subprocess.run([sys.executable, "-m", "umlmm", "describe"], check=True, capture_output=True, text=True)
    return json.loads(printed.stdout)


def test_totals(description):
    classes = description["classes"]
    assert description["package"] == "umlmm"
    assert [function["name"] for function in description["functions"]] == ["MetaPackage"]
    assert len(classes) == 1884 and len({cls["name"] for cls in classes}) == 1884
    assert sum(len(cls["properties"]) for cls in classes) == 347
    assert sum(len(cls["metaProperties"]) for cls in classes) == 4318


def test_the_package_of_the_kernel_is_described_too():
    printed = subprocess.run([sys.executable, "-m", "umlmm", "describe", "Kelm"], check=True, capture_output=True,
                             text=True)
    description = json.loads(printed.stdout)
    classes = {cls["name"]: cls for cls in description["classes"]}
    assert description["package"] == "Kelm" and "Kelm.ImmutableProperty" in classes
    assert "externalId" in [entry["name"] for entry in classes["Kelm.ImmutableClassObject"]["properties"]]


def test_a_class_in_detail(description):
    classes = {cls["name"]: cls for cls in description["classes"]}
    comment = classes["umlmm.ImmutableComment"]
    assert comment["superclasses"] == ["umlmm.ImmutableElement"]
    assert comment["properties"] == [
        {"name": "body", "id": 1, "type": "char", "multiplicity": 0, "mutability": 0},
        {"name": "annotatedElement", "id": 2, "type": "umlmm.ImmutableSequenceOfImmutableElement",
         "multiplicity": 2, "mutability": 0}]
    constructor = classes["umlmm.Comment"]["methods"][0]
    assert constructor == {"name": "Comment", "kind": "constructor", "word": 0, "names": "", "result": "umlmm.Comment",
                           "receiver": None, "arguments": ["Kelm.Model"]}
    assert {"name": "RelatedElement", "owner": "Relationship", "id": 1} in \
        classes["umlmm.AssociationMetaProperty"]["metaProperties"]


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
        "cast(Kelm.Object other) -> Kelm.Object", "cast(Kelm.ImmutableObject other) -> Kelm.ImmutableObject",
        "cast(Kelm.Object other) -> Kelm.ImmutableObject", ""]
    assert umlmm.Class.ownedOperation.__doc__ == (
        "ownedOperation: umlmm.ImmutableSequenceOfImmutableOperation\n\n"
        "Operation [0..*], composite, ordered; opposite Operation.class")
    assert umlmm.ImmutableMultiplicityElement.upper.__doc__.endswith("UnlimitedNatural [0..1] = 1, derived")
