"""The stubs: everything that the classes have and nothing else, typed as scripts find it."""

import ast
import builtins
import inspect
import keyword
import pathlib
import types

import pytest

import umlmm
from umlmm import _host

STUBS = pathlib.Path(umlmm.__file__).parent
# What stands on the bases that all lists share, and on Python's own.
MEMBERS_OF_KINDS = {"Enumeration": {"name", "value"}, "List": {"index", "count"}, "ChangeableList": {"extend", "remove", "pop", "move", "swap", "reverse", "sort"}}


class Stub:
    """A class of a stub file: bases as written, and members with their annotations."""

    def __init__(self, node):
        self.bases = [ast.unparse(base).partition("[")[0] for base in node.bases]
        self.members = {statement.name: "" for statement in node.body if isinstance(statement, ast.FunctionDef)}
        self.members |= {statement.target.id: ast.unparse(statement.annotation)
                         for statement in node.body if isinstance(statement, ast.AnnAssign)}


@pytest.fixture(scope="module")
def stubs():
    """Stub classes by full name."""
    found = {}
    for package, file in (("umlmm", "__init__.pyi"), ("Kelm", "Kelm.pyi")):
        tree = ast.parse((STUBS / file).read_text())
        found |= {f"{package}.{node.name}": Stub(node) for node in tree.body if isinstance(node, ast.ClassDef)}
    return found


def module_of(package):
    return umlmm if package == "umlmm" else umlmm.Kelm


def full_name(base, package):
    return base if "." in base else f"{package}.{base}"


def members_of(name, stubs):
    """Public members of a stub class, inherited ones too, with the annotation that is found first."""
    package = name.partition(".")[0]
    if package == "_typing":
        return dict.fromkeys(MEMBERS_OF_KINDS.get(name.partition(".")[2], ()), "")
    members = {}
    for base in reversed(stubs[name].bases):
        members |= members_of(full_name(base, package), stubs)
        if base == "_typing.ChangeableList":
            members |= members_of("_typing.List", stubs)
    return members | {member: text for member, text in stubs[name].members.items() if not member.startswith("_")}


def script_name(member):
    return member + "_" if keyword.iskeyword(member) else member


def test_every_class_and_member_is_there_and_no_other(stubs):
    announced = {name for package in ("umlmm", "Kelm") for name in _host.class_names(package)}
    failures = {"Kelm.Error", "Kelm.ReadOnlyError"}
    assert {name for name in stubs if "._" not in name} == announced | failures
    added = {member for members in _host.additions().values() for member in members}
    for name in announced:
        package, _, short = name.partition(".")
        cls = getattr(module_of(package), short)
        # Methods that scripts added are Python functions.
        published = {script_name(member) for member in dir(cls) if not member.startswith("_")
                     and (member in added or not isinstance(inspect.getattr_static(cls, member), types.FunctionType))}
        assert set(members_of(name, stubs)) == published, name
        bases = [full_name(base, package) for base in stubs[name].bases if not base.startswith("_")]
        assert bases == _host.describe_class(name)["superclasses"], name


def test_what_is_read_has_the_type_that_the_stub_tells(stubs, model):
    """Reads every property of an element of every class, through both views."""
    seen = set()
    for name in _host.class_names("umlmm"):
        methods = _host.describe_class(name)["methods"]
        cls = getattr(umlmm, name.removeprefix("umlmm."))
        if not issubclass(cls, umlmm.Element) or not any(method["kind"] == "constructor" for method in methods):
            continue
        for element in (cls(model), cls(model).asImmutable()):
            for member, told in types_of_properties(type(element), stubs).items():
                value = getattr(element, member)
                found = {name_of(base) for base in type(value).__mro__}
                # A feature that must have a value and has none yet reads None.
                assert found & told or value is None, (name, member, told, found)
                seen |= found & told
    assert {"str", "bool", "int", "umlmm.VisibilityKind", "Kelm.ImmutableModel", "umlmm.SequenceOfElement",
            "umlmm.ImmutableSequenceOfImmutableElement"} <= seen


def name_of(cls):
    return f"{cls.__module__}.{cls.__name__}".replace("umlmm.Kelm.", "Kelm.").removeprefix("builtins.")


def types_of_properties(cls, stubs):
    """What each property reads as, told by the class where Python finds it first."""
    found = {}
    for base in map(name_of, reversed(cls.__mro__)):
        for member, text in stubs[base].members.items() if base in stubs else ():
            if "Property[" in text:
                told = text.partition("[")[2].removesuffix("]").partition(",")[0].split(" | ")
                told = [word.partition("[")[0] for word in told]
                found[member] = {word if hasattr(builtins, word) else full_name(word, base.partition(".")[0])
                                 for word in told}
    return found
