"""What the package's own Python code adds to kinds of objects (`umlmm._front`), and what it may not add."""

import subprocess
import sys

import pytest

import umlmm
from umlmm import _front, _host


@pytest.mark.parametrize("kind, name, error, text", [
    # Published on the class itself, above it, below it, on a branch that meets it below, as a second name.
    (_front.MODELS, "close", TypeError, "'close' of class 'Kelm.Model' cannot be replaced"),
    ("umlmm.Class", "name", TypeError, "'name' of class 'umlmm.ImmutableNamedElement' cannot be replaced"),
    (_front.ELEMENTS, "isAbstract", TypeError, "'isAbstract' of class 'umlmm.Immutable[A-Za-z]*' cannot be replaced"),
    (_front.ELEMENTS, "allParents", TypeError, "'allParents' of class 'umlmm.*' cannot be replaced"),
    ("umlmm.Feature", "importMembers", TypeError, "'importMembers' of class 'umlmm.*Namespace' cannot be replaced"),
    (_front.ELEMENTS, "class_", TypeError, "'class_' of class 'umlmm.ImmutableProperty' cannot be replaced"),
    (_front.LISTS, "removeAll", TypeError, "'removeAll' of class '.*SequenceOf.*' cannot be replaced"),
    (_front.LISTS, "sort", TypeError, "'sort' cannot be added to List: all published lists have it"),
    (_front.LISTS_OF_ELEMENTS, "at", TypeError, "'at' of class 'Kelm.*' cannot be replaced"),
    (_front.ENUMERATIONS, "Private", TypeError, "'Private' of class 'umlmm.VisibilityKind' cannot be replaced"),
    ("umlmm.ClassIterator", "getNext", TypeError, "cannot be replaced"),
    # Python's own.
    (_front.LISTS, "__getitem__", TypeError, "lists keep what Python's syntax means on them"),
    (_front.ELEMENTS, "__getattribute__", ValueError, "names like this are Python's own"),
    (_front.ELEMENTS, "class", ValueError, "an identifier is expected"),
    (_front.ELEMENTS, 3, TypeError, "must be a text, not 3"),
    ("umlmm.Clas", "f", NameError, "did you mean 'umlmm.Class'"),
])
def test_what_cannot_be_added_is_refused_as_a_whole(kind, name, error, text):
    with pytest.raises(error, match=text):
        _host.add(kind, {"freeName": len, name: len})
    assert not hasattr(umlmm.Class, "freeName") and not hasattr(umlmm.SequenceOfClass, "freeName")


SCRIPT = '''
import sys, umlmm
from umlmm import _front, _host

_host.before_first_class(lambda: None)  # none of the package's own additions
early = umlmm.Actor  # made before anything is added; others are made afterwards

@_front.adds_to(_front.ELEMENTS)
class _Element:
    def shown(self, mark: str = "!", *more: "umlmm.Class") -> "umlmm.Element | None":
        """Shows it."""
        return self.name + mark
    @property
    def note(self) -> str:
        """A note."""
        return _front.state(self).get(hash(self), "")
    @note.setter
    def note(self, text: "str | None"):
        _front.state(self)[hash(self)] = text
    @note.deleter
    def note(self):
        del _front.state(self)[hash(self)]
    @property
    def fixed(self):
        return 5
    @classmethod
    def everyone(cls) -> int: return cls.__name__
    def __getitem__(self, key): return self.name, key
    def __construct__(cls, arguments, keywords):
        made = cls(*arguments)
        for name, value in keywords.items():
            setattr(made, name, value)
        return made

@_front.adds_to("umlmm.Actor")
class _Actor:
    def shown(self): return "nearer"

@_front.adds_to(_front.MODELS)
class _Model:
    def __getitem__(self, name): return next(e for e in self if e.name == name)
    def __delitem__(self, name): self[name].destroy()
    def __iter__(self): return iter(self.allElements())
    def __contains__(self, name): return any(e.name == name for e in self)
    def __len__(self): return self.allElements().size()
    def __bool__(self): return self.isvalid()

@_front.adds_to(_front.LISTS)
class _List:
    def having(self, **features: object) -> int: return len(self), features

@_front.adds_to(_front.ENUMERATIONS)
class _Enumeration:
    def __construct__(cls, arguments, keywords): return cls[arguments[0].title()]
    def __class_iter__(cls): return iter((cls.Public, cls.Private))
    @classmethod
    def __class_getitem__(cls, text): return getattr(cls, text)
    def __eq__(self, other): return str(self).lower() == str(other).lower()
    def __hash__(self): return hash(str(self).lower())

umlmm.Kelm.extend("umlmm.Signal", "note", lambda self: "a script's own")

model = umlmm.Factory.createNewModel()
actor, order = early(model), umlmm.Class(model, name="Order", isAbstract=True)
signal = umlmm.Signal(model)
assert order.name == "Order" and order.isAbstract and order["a"] == ("Order", "a")
assert actor.shown() == "nearer" and actor.asImmutable().name + "" == "" and order.asImmutable().shown("?") == "Order?"
assert umlmm.Class.everyone() == "Class" and "shown" in dir(order) and "note" in dir(umlmm.ImmutableInteraction)
order.note = "first"
assert order.note == order.asImmutable().note == "first" and signal.note() == "a script's own"
del order.note
assert order.note == ""
for refused, error in ((lambda: setattr(order, "fixed", 6), AttributeError), (lambda: setattr(order, "shown", 6), AttributeError),
                       (lambda: umlmm.Class(model, nmae="x"), AttributeError), (lambda: iter(umlmm.Class), TypeError),
                       (lambda: setattr(umlmm.Class, "note", 6), TypeError), (lambda: umlmm.Element(model), TypeError),
                       (lambda: _front.adds_to(_front.ELEMENTS)(type("_", (), {"note": 1})), TypeError),
                       (lambda: type.__setattr__(umlmm.Class, "note", 6), TypeError), (lambda: order[1, 2].x, AttributeError)):
    try:
        refused()
    except error:
        continue
    raise AssertionError(error)
assert model["Order"] is order and "Order" in model and "Item" not in model and len(model) == len(list(model)) == 4
assert order.ownedAttribute.having(a=1) == (0, {"a": 1})
del model["Order"]
assert "Order" not in model and not order.isvalid()
Kind = umlmm.VisibilityKind
assert list(Kind) == ["public", "private"] and Kind("private") is Kind["Private"] is Kind.Private == "private"
assert {Kind.Public: 1}["public"] == 1 and actor.visibility != "private"
actor.visibility = Kind("private")
assert actor.visibility is Kind.Private

class Dropped:
    def __del__(self): log.append(bool(model))
log = []
_front.state(model)["kept"] = Dropped()
assert _front.state(model.readOnlyVariant()) is _front.state(model.asImmutable()) is _front.state(model)
model.close()
assert log == [False] and not model
try:
    _front.state(model)
except ValueError as error:
    assert "Only an open model and its elements have a state" in str(error)

from umlmm._stubs import write_stubs
write_stubs(sys.argv[1])
'''

STUBS = {"Kelm.pyi": ["import umlmm\n", '    def shown(self, mark: str = ..., *more: \'umlmm.Class\') -> \'umlmm.Element | None\':\n        """Shows it."""\n',
                      '    note: _typing.Property[str, str | None]\n    """A note."""\n', "    fixed: _typing.ReadOnlyProperty[_Any]\n",
                      "    @classmethod\n    def everyone(cls) -> int: ...\n", "    def __contains__(self, name): ...\n"],
         "__init__.pyi": ["    def shown(self): ...\n", "class VisibilityKind(_typing.Enumeration):\n"],
         "_kinds.pyi": ["    def having(self, **features: object) -> int: ...\n"]}


def test_additions_act_as_members_of_the_class_would_and_never_hide_any(tmp_path):
    subprocess.run([sys.executable, "-c", SCRIPT, tmp_path], check=True)
    for file, lines in STUBS.items():
        text = (tmp_path / file).read_text()
        compile(text, file, "exec")
        assert [line for line in lines if line not in text] == []


def test_making_again_is_as_the_first_time(model):
    """From the second time on the host makes what Python has found out how to make."""
    package, inner = umlmm.Package(model), umlmm.Class(model)
    for name in ("a", "b", "c"):
        made = umlmm.Class(owner=package, name=name, isAbstract=True)
        assert (made.name, made.isAbstract, made.owner) == (name, True, package)
    for owner in (package, umlmm.Model(model), inner, (inner, "nestedClassifier")):
        made = umlmm.Class(name="d", owner=owner)
        assert made.owner == (inner if isinstance(owner, tuple) else owner)
    before = len(list(model))
    for _ in range(2):
        with pytest.raises(TypeError, match="name"):
            umlmm.Class(owner=package, name=3)
        with pytest.raises(TypeError, match="isAbstrac"):
            umlmm.Class(owner=package, isAbstrac=True)
        assert len(list(model)) == before
    package.destroy()
    for _ in range(2):
        with pytest.raises(umlmm.Error):
            umlmm.Class(owner=package, name="e")
    with umlmm.new_model("gone") as closed:
        gone = closed["gone"]
        umlmm.Class(owner=gone, name="a")
    with pytest.raises(umlmm.Error):
        umlmm.Class(owner=gone, name="a")
