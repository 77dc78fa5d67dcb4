"""Features by name: what `getProperty` and its fellows tell of every feature of every metaclass."""

import pytest

import umlmm
from umlmm import _host

KERNEL = ["appliedStereotypeInstance", "modelKelm", "containerKelm", "containeeKelm", "rootModel", "externalId",
          "externalToolInfo", "uri"]
CONCRETE = [name for name in _host.class_names("umlmm")
            if any(method["kind"] == "constructor" for method in _host.describe_class(name)["methods"])]


def lowered(name):
    return name if name.isupper() else name[0].lower() + name[1:]


def test_all_properties_are_the_meta_properties_in_their_order():
    for name in CONCRETE:
        cls = getattr(umlmm, name.split(".")[1])
        listed = [lowered(method["name"]) for method in _host.describe_class(name + "MetaProperty")["methods"]]
        shown = [prop.name for prop in cls.MetaClass().allProperties()]
        assert shown == listed and set(KERNEL) <= set(shown), name
        assert len(set(shown)) == len(shown)
    assert umlmm.Comment.MetaClass().property("ExternalId") == umlmm.CommentMetaProperty.ExternalId()


@pytest.mark.parametrize("name", CONCRETE)
def test_a_name_is_as_good_as_the_attribute(model, name):
    element = getattr(umlmm, name.split(".")[1])(model)
    for view in (element, element.asImmutable()):
        for prop in view.MetaClass().allProperties():
            expected = getattr(view, prop.name)
            for value in (view.getProperty(prop.name), prop.get(view)):
                assert type(value) is type(expected) and value == expected, prop.name
            assert view.isSet(prop.name) in (True, False)
            if not prop.isReadOnly and view is element:
                prop.set(element, expected)
                element.setProperty(prop.name, expected)
                assert getattr(element, prop.name) == expected, prop.name


def test_values_of_every_kind_are_set_and_taken_away_by_name(model):
    order, item = umlmm.Property(model), umlmm.Class(model)
    expression = umlmm.OpaqueExpression(model)
    cases = [
        (order, "Name", "order"), (order, "isReadOnly", True), (order, "visibility", umlmm.VisibilityKind.Private),
        (order, "lower", 0), (order, "upper", "*"), (order, "type", item), (order, "externalId", "id-1"),
        (order, "ExternalToolInfo", "tool"), (expression, "body", ["a", "b"]), (expression, "language", ["C"]),
        (item, "ownedAttribute", [order]), (item, "nestedClassifier", [umlmm.Class(model)]),
    ]
    for element, name, value in cases:
        prop = element.MetaClass().property(name)
        element.setProperty(name, value)
        read = prop.get(element)
        assert (list(read) if prop.isMultivalued else read) == value and element.isSet(name), name
        if isinstance(value, (str, bool)):
            assert element.getPropertyText(name) == str(value).lower() if value is True else value
        element.unset(name)
        assert element.isSet(name) == bool(prop.lower and not prop.isMultivalued) or name in ("lower", "upper"), name
    # An enumeration takes a literal's name here too, a list any iterable.
    order.setProperty("visibility", "protected")
    item.setProperty("ownedAttribute", (one for one in [order]))
    assert order.visibility == umlmm.VisibilityKind.Protected and list(item.ownedAttribute) == [order]


def test_what_is_refused_is_refused_as_by_the_attribute(model):
    element = umlmm.Class(model)
    name = element.MetaClass().property("name")
    comment = umlmm.Comment(model)
    for action, error, text in (
        (lambda: element.setProperty("name", 5), TypeError, "umlmm.Class.name cannot be set to 5: a str is expected"),
        (lambda: name.set(element, 5), TypeError, "umlmm.Class.name cannot be set to 5"),
        (lambda: element.setProperty("uri", "x"), umlmm.Kelm.Error, "read-only"),
        (lambda: element.setProperty("colour", "red"), umlmm.Kelm.Error, "has no property 'colour'"),
        (lambda: name.get(comment), umlmm.Kelm.Error, "The class 'Comment' has no property 'name'"),
        (lambda: name.set(element.asImmutable(), "x"), TypeError, "set"),
        (lambda: element.unset("uri"), umlmm.Kelm.Error, "read-only"),
    ):
        with pytest.raises(error, match=text):
            action()
    assert not hasattr(element.asImmutable(), "setProperty")


def test_every_query_of_what_is_gone_fails(model):
    given, asked = {"int32 scalar": 0, "umlmm.ImmutableSequenceOfImmutableNamedElement": []}, 0
    common = {method["name"] for method in _host.describe_class("umlmm.ImmutableAssociation")["methods"]}
    gone = [getattr(umlmm, name.split(".")[1])(model) for name in CONCRETE]
    for element in gone:
        element.destroy()
    for name in _host.class_names("umlmm"):
        cls = getattr(umlmm, name.split(".")[1])
        for element in gone if name.startswith("umlmm.Immutable") else ():
            if isinstance(element, cls):
                for method in _host.describe_class(name)["methods"]:
                    if method["name"] not in common:
                        asked += 1
                        with pytest.raises(umlmm.Kelm.Error, match="does not exist"):
                            getattr(cls, method["name"])(element, *(given.get(kind) for kind in method["arguments"]))
    assert asked > 64
