"""Classes and packages: made when first touched, named as Python needs it, closed to scripts, and helpful."""

import pytest


def test_a_package_lists_all_names_and_makes_a_class_once(demo):
    assert {"Thing", "Color", "SequenceOfThing", "Error"} <= set(dir(demo))
    assert demo.Thing is demo.Thing
    assert demo.Thing.__module__ == "demo" and demo.Thing.__name__ == "Thing"
    assert issubclass(demo.Thing, demo.ImmutableThing)


def test_reserved_words_have_a_second_name(demo):
    thing = demo.Thing("a")
    assert thing.is_(thing) and getattr(thing, "is")(thing)
    thing.class_ = thing
    assert getattr(thing, "class") is thing
    assert demo.Color.None_ is getattr(demo.Color, "None")


def test_a_class_whose_filling_fails_says_so_at_each_use(demo):
    for _ in range(2):
        with pytest.raises(NameError, match="'demo.Missing' is not defined"):
            demo.Broken


@pytest.mark.parametrize("action, error, text", [
    (lambda demo: demo.Thong, AttributeError, "did you mean 'Thing'"),
    (lambda demo: demo.Color.Gren, AttributeError, "did you mean 'Green'"),
    (lambda demo: demo.Thing("a").nmae, AttributeError, "did you mean 'name'"),
    (lambda demo: setattr(demo.Thing("a"), "numbr", 1), AttributeError, "did you mean 'number'"),
    (lambda demo: demo.Thing("a").zzzzzz, AttributeError, "no attribute 'zzzzzz'$"),
    (lambda demo: setattr(demo.Thing, "extra", 1), TypeError, "members of published classes are fixed"),
    (lambda demo: setattr(demo, "Thing", 1), TypeError, "cannot be replaced"),
    (lambda demo: type("Mine", (demo.Thing,), {}), TypeError, "cannot be subclassed"),
    (lambda demo: demo.ImmutableThing(), TypeError, "no constructor"),
    (lambda demo: object.__new__(demo.Thing), TypeError, "not safe"),
    *[(lambda demo, name=name: type.__dict__[name].__set__(demo.Thing, "x"), TypeError, "immutable type")
      for name in ("__name__", "__qualname__", "__bases__", "__module__", "__doc__")],
    (lambda demo: type.__dict__["__name__"].__delete__(demo.Thing), TypeError, "immutable type"),
    (lambda demo: type.__setattr__(demo.Thing, "name", 1), TypeError, "can't apply|immutable type"),
    *[(lambda demo, type_=type_: object.__dict__["__class__"].__set__(demo.Thing("a"), getattr(demo, type_)), TypeError,
       "__class__ assignment only supported") for type_ in ("Color", "ImmutableThing")],
    (lambda demo: object.__dict__["__class__"].__set__(demo.Thing, type), TypeError, "__class__ assignment"),
])
def test_what_scripts_may_not_do_is_told(demo, action, error, text):
    with pytest.raises(error, match=text):
        action(demo)


def test_documentation_shows_signatures(demo):
    assert "Thing(char vector, demo.Thing) -> demo.Thing" in demo.Thing.__doc__
    assert "which(int32 scalar value) -> char vector" in demo.Thing.which.__doc__
    assert demo.Thing.name.__doc__.startswith("name: char vector")


def test_descriptions_are_read_back_from_the_filled_class(host, demo):
    assert host.class_names("demo")[0] == "demo.Thing"
    described = host.describe_class("demo.Thing")
    assert described["superclasses"] == ["demo.ImmutableThing"]
    assert [described[query] for query in ("handleQueryFirst", "factoryQuery", "handleQuerySecond")] == [0, 1, 1]
    assert [m["kind"] for m in described["methods"]][:3] == ["constructor", "constructor", "method"]
    which = next(m for m in described["methods"] if m["name"] == "which")
    assert (which["names"], which["result"], which["receiver"]) == ("value", "char vector", "demo.Thing")
    assert which["arguments"] == ["int32 scalar"] and which["word"] == 0
    name = host.describe_class("demo.ImmutableThing")["properties"][0]
    assert name["details"] == {"id": 7, "unit": "metre"}


def test_python_bodies_join_the_published_members(host, demo):
    thing = demo.Thing("abc")
    assert thing.shout() == "ABC!" and thing.shout(mark="?") == "ABC?"  # extended before the first use
    host.extend("demo.Thing", "whisper", lambda self: self.name.lower())
    assert demo.Thing("ABC").asImmutable().whisper() == "abc"
    with pytest.raises(TypeError, match="must be callable"):
        host.extend("demo.Thing", "broken", 3)
    with pytest.raises(demo.Error, match="no such class"):
        host.extend("demo.Color", "broken", len)


def test_the_module_loads_once(host):
    import importlib.util
    spec = importlib.util.spec_from_file_location("again._host", host.__file__)
    with pytest.raises(ImportError, match="once in a process"):
        spec.loader.exec_module(importlib.util.module_from_spec(spec))
