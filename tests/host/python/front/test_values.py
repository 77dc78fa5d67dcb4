"""Values in both directions, calls, failures, literals and the life of objects."""

import gc
import weakref

import pytest


@pytest.mark.parametrize("name, given, read", [
    ("name", "", ""),
    ("name", "plain", "plain"),
    ("name", "é\x80", "é\x80"),
    ("name", "ä€\udc00\ud800\ufeff", "ä€\udc00\ud800\ufeff"),
    ("name", "ä€\U0001f600\ud800\ufeff\ud800", "ä€\U0001f600\ud800\ufeff\ud800"),
    ("name", "\ufeffmark", "\ufeffmark"),
    ("name", None, ""),
    ("name", [], ""),
    ("flag", True, True),
    ("flag", 7, True),
    ("number", -2**31, -2**31),
    ("number", True, 1),
    ("number", 3.0, 3),
    ("upper", "*", "*"),
    ("upper", 5, "5"),
    ("upper", None, None),
    ("maybe", 0, False),
    ("maybe", [], None),
    ("maybe", [True, False], [True, False]),
    ("numbers", 4, 4),
    ("numbers", None, None),
    ("numbers", (1, 2, -3), [1, 2, -3]),
])
def test_what_is_set_is_read(demo, name, given, read):
    thing = demo.Thing("start")
    setattr(thing, name, given)
    assert getattr(thing, name) == read and type(getattr(thing, name)) is type(read)


@pytest.mark.parametrize("name, given, error, text", [
    ("name", 3, TypeError, r"demo\.Thing\.name cannot be set to 3: a str is expected"),
    ("name", "a\0b", ValueError, r"demo\.Thing\.name cannot be set: 'a\\x00b' is not accepted: a str without zero"),
    ("name", "€\0", ValueError, "without zero"),
    ("name", "\U0001f600\0", ValueError, "without zero"),
    ("flag", None, TypeError, "True or False"),
    ("flag", 0.5, TypeError, "True or False"),
    ("number", "1", TypeError, "int of 32 bits"),
    ("number", 2**31, ValueError, "value out of range for int32: 2147483648"),
    ("number", 1.5, TypeError, "1.5"),
    ("upper", -1, ValueError, "natural number"),
    ("maybe", 2, ValueError, "True, False"),
    ("maybe", ["x"], TypeError, "True, False or None"),
    ("numbers", [1, 2**40], ValueError, "out of range"),
    ("class_", "text", TypeError, "'text': demo.ImmutableThing or None is expected"),
    ("color", "Gren", ValueError, "'Gren' is not accepted: one of Red, Green, None"),
    ("parts", [1], TypeError, "a list of demo.Thing"),
    ("parts", 5, TypeError, "a list of demo.Thing"),
])
def test_a_wrong_value_is_refused_with_property_value_and_choice(host, demo, settled, name, given, error, text):
    thing = demo.Thing("start")
    before = getattr(thing, name)
    arrays = host.live_counts()["arrays"]
    with pytest.raises(error, match=text):
        setattr(thing, name, given)
    assert getattr(thing, name) == before
    assert host.live_counts()["arrays"] == arrays


def test_calls_choose_the_nearest_class_then_the_best_fit(demo):
    thing = demo.Thing("a")
    assert thing.which(1) == "number"
    assert thing.which("x") == "text"
    assert thing.which(thing) == "above, thing"
    assert [thing.which(x) for x in (1, "x", thing, 2, "y")] == ["number", "text", "above, thing", "number", "text"]
    assert demo.Thing.which(thing, True) == "number"
    assert demo.Thing.isNull([]) and demo.Thing.isNull(None) and not demo.Thing.isNull(thing)
    assert demo.Thing.living() == thing.living() >= 1


def test_a_call_that_fits_nothing_shows_itself_and_the_signatures(demo):
    with pytest.raises(TypeError) as caught:
        demo.Thing("a").which(1.5, "x", None, demo.Thing("b"))
    text = str(caught.value)
    assert "'which'" in text and "(1.5, 'x', None, demo.Thing)" in text
    assert "which(int32 scalar value) -> char vector" in text and "which(demo.ImmutableThing)" in text
    with pytest.raises(TypeError, match="no keyword arguments"):
        demo.Thing("a").which(value=1)


@pytest.mark.parametrize("how, error, text", [
    (1, MemoryError, ""), (2, RuntimeError, "a plain failure"), (3, RuntimeError, "unknown C\\+\\+ exception")])
def test_no_exception_of_cpp_crosses(demo, how, error, text):
    with pytest.raises(error, match=text):
        demo.Thing.fail(how)


def test_failures_have_the_class_that_the_library_names(demo):
    with pytest.raises(demo.Error, match="a failure with a name"):
        demo.Thing.fail(0)
    assert issubclass(demo.Error, RuntimeError) and demo.Error.__name__ == "Error"
    with pytest.raises(demo.Error) as caught:
        demo.Thing("a").fixed = 2
    assert caught.value.__notes__ == ["while demo.Thing.fixed was set to 2"]
    thing = demo.Thing("a")
    with pytest.raises(demo.Error) as caught:
        thing.asImmutable().parts = [thing]  # the note shows a value whose text runs code of the library
    assert caught.value.__notes__ == ["while demo.ImmutableThing.parts was set to [<demo.Thing 'a'>]"]
    assert type(caught.value) is demo.ReadOnlyError and issubclass(demo.ReadOnlyError, AttributeError)
    assert not isinstance(pytest.raises(demo.Error, demo.Thing.fail, 0).value, AttributeError)


def test_literals(demo):
    Color = demo.Color
    assert Color.Green is Color.Green() is Color.fromString("Green")
    assert str(Color.None_) == "None" and repr(Color.Green) == "demo.Color.Green"
    assert Color.Red < Color.Green and Color.Green >= Color.Red and sorted([Color.Green, Color.Red])[0] is Color.Red
    assert Color.Green == Color.Green and Color.Red != Color.Green and {Color.Red: 1}[Color.Red] == 1
    with pytest.raises(TypeError):
        Color.Red < 3
    thing = demo.Thing("a")
    thing.color = "Green"
    assert thing.color is Color.Green
    thing.color = Color.None_()
    assert thing.color is Color.None_


def test_identity_and_equality(demo):
    thing, other = demo.Thing("a"), demo.Thing("b")
    thing.class_ = other
    assert thing.class_ is thing.class_ is other
    view = other.asImmutable()
    assert view is not other and view == other and hash(view) == hash(other)
    assert thing.asImmutable().class_ is view
    assert thing != other and thing != 3 and {view, other, thing} == {thing, other}


def test_objects_end_with_their_last_reference(host, demo, settled):
    before, living = host.live_counts(), demo.Thing.living()
    thing = demo.Thing("a", demo.Thing("b"))
    watcher = weakref.ref(thing)
    thing.parts = [thing.class_, demo.Thing("c")]
    assert demo.Thing.living() == living + 3
    with pytest.raises(TypeError):
        demo.Thing("d", 5)
    del thing
    assert watcher() is None
    assert demo.Thing.living() == living and host.live_counts() == before


class Number(int):
    """A number whose methods run what they are told to."""

    def __bool__(self):
        raise ZeroDivisionError

    __str__ = __repr__ = __lt__ = __bool__


class Index:
    def __init__(self, action):
        self.action = action

    def __index__(self):
        self.action()
        return 1


def test_code_of_scripts_may_run_in_the_middle_of_a_conversion(demo):
    thing = demo.Thing("a")
    for name in ("flag", "maybe"):
        with pytest.raises(ZeroDivisionError):
            setattr(thing, name, Number(1))
    assert thing.flag is False and thing.maybe is None
    thing.upper = Number(7)
    assert thing.upper == "7"
    values = []
    values[:] = [Index(values.clear), *range(5000)]
    thing.numbers = values
    assert thing.numbers == [1, *range(5000)] and values == []
    values[:] = [Index(lambda: values.__setitem__(1, "x")), 2]
    thing.numbers = values
    assert thing.numbers == [1, 2]


@pytest.mark.parametrize("fail", [False, True])
def test_callbacks_of_weak_references_meet_no_dying_object(host, demo, fail, monkeypatch):
    reported = []
    monkeypatch.setattr("sys.unraisablehook", reported.append)
    owner, before = demo.Thing("owner"), host.live_counts()
    owner.parts = [demo.Thing("part")]
    found = []

    def look(reference):
        found.append((reference(), owner.parts[0]))
        assert not fail

    watcher = weakref.ref(owner.parts[0], look)
    (gone, part), = found
    assert gone is None and part.name == "part" and part is owner.parts[0] and watcher() is None
    assert len(reported) == fail
    found.clear()
    del part
    owner.parts = None
    assert host.live_counts() == before


def test_objects_stay_outside_the_collector(demo):
    thing = demo.Thing("a")
    assert not gc.is_tracked(thing) and not gc.is_tracked(thing.parts)
    assert thing.__sizeof__() <= 80
