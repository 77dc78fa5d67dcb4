"""`Kelm.extend`: what it adds, and what it refuses."""

import subprocess
import sys

import pytest

import umlmm


def describe(self, mark="!"):
    return type(self).__name__ + mark


@pytest.mark.parametrize("cls, name, error, text", [
    ("umlmm.Activity", "", ValueError, "'' cannot name a method: an identifier is expected"),
    ("umlmm.Activity", "two words", ValueError, "an identifier is expected"),
    ("umlmm.Activity", "class", ValueError, "an identifier is expected"),
    ("umlmm.Activity", "__len__", ValueError, "Python's own"),
    ("umlmm.Activty", "f", NameError, "Class 'umlmm.Activty' is not defined; did you mean 'umlmm.Activity'?"),
    ("nowhere.Activity", "f", NameError, "Class 'nowhere.Activity' is not defined"),
    ("Activity", "f", NameError, "did you mean 'umlmm.Activity'?"),
    ("", "f", NameError, "is not defined"),
    ("umlmm.SequenceOfActivity", "f", TypeError, "takes no extensions; the changeable classes of elements do"),
    ("umlmm.ImmutableActivity", "f", TypeError, "takes no extensions"),
    ("umlmm.ActivityMetaProperty", "f", TypeError, "takes no extensions"),
    ("umlmm.AggregationKind", "f", TypeError, "takes no extensions"),
    ("umlmm.Factory", "f", TypeError, "takes no extensions"),
    ("umlmm.Activity", "node", TypeError, "'node' of class 'umlmm.Activity' cannot be replaced"),
    ("umlmm.Activity", "destroy", TypeError, "published members are fixed"),
    ("umlmm.Activity", "name", TypeError, "cannot be replaced"),
    ("umlmm.Activity", "MetaClass", TypeError, "cannot be replaced"),
    ("umlmm.Activity", "externalId", TypeError, "cannot be replaced"),
    ("umlmm.Activity", "Activity", TypeError, "cannot be replaced"),
    ("umlmm.Activity", "ImmutableActivity", TypeError, "cannot be replaced"),
    ("umlmm.Property", "class_", TypeError, "cannot be replaced"),
    # Published beside the class, but behind it on a class below both.
    ("umlmm.Feature", "importMembers", TypeError, "'importMembers' of class 'umlmm.*' cannot be replaced"),
])
def test_what_cannot_be_extended_is_refused_with_the_reason(cls, name, error, text):
    with pytest.raises(error, match=text.replace("?", r"\?")):
        umlmm.Kelm.extend(cls, name, describe)
    umlmm.Activity(umlmm.Factory.createNewModel()).destroy()


def test_an_extension_is_there_before_and_after_the_first_use_and_can_be_given_anew():
    script = """if True:
        import umlmm
        umlmm.Kelm.extend("umlmm.Actor", "early", lambda self: "early " + self.name)
        model = umlmm.Factory.createNewModel()
        actor = umlmm.Actor(model)
        actor.name = "a"
        umlmm.Kelm.extend("umlmm.Classifier", "late", lambda self, end=".": "late " + self.name + end)
        umlmm.Kelm.extend("umlmm.Actor", "late", lambda self: "nearer")
        umlmm.Kelm.extend("umlmm.Actor", "early", lambda self: "anew")
        umlmm.Kelm.extend("umlmm.NamedElement", "shown", repr)
        print(actor.early(), actor.asImmutable().early(), actor.late(), umlmm.Class(model).late(end="!"), actor.shown())
    """
    ran = subprocess.run([sys.executable, "-c", script], check=True, capture_output=True, text=True)
    assert ran.stdout == "anew anew nearer late ! <umlmm.Actor 'a'>\n"


def test_a_member_of_a_class_below_stays_its_own():
    umlmm.Kelm.extend("umlmm.Element", "isAbstract", describe)
    model = umlmm.Factory.createNewModel()
    assert umlmm.Class(model).isAbstract is False and umlmm.Comment(model).isAbstract("?") == "Comment?"
