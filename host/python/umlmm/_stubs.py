"""Stubs for type checkers and editors, written from the filled classes."""

import pathlib
import re

from umlmm import _front, _host
from umlmm._added import stub_lines
from umlmm._classes import Packages, python_name
from umlmm._module_stubs import module_stubs
from umlmm._texts import text_about
from umlmm._types import Types

_COMPARISONS = {"lt": "__lt__", "le": "__le__", "gt": "__gt__", "ge": "__ge__"}

# Features of the kernel that say nothing of UML.
_KERNELS = {"uri", "externalToolInfo"}

_HEAD = '''"""{title}

Written by `python -m umlmm stubs` from the filled classes. A feature that must have a value is typed as if it had one.
"""
# Lists of special elements are lists of general ones, although they take less.
# mypy: disable-error-code="override,misc"

from collections.abc import Callable as _Callable, Iterable as _Iterable, Sequence as _Sequence
from typing import Any as _Any, ClassVar as _ClassVar, Literal as _Literal, NoReturn as _NoReturn, TypeVar as _TypeVar
from typing import overload as _overload

_T = _TypeVar("_T")

'''


def write_stubs(folder):
    """Writes the stub package; the folder is made if need be and may be that of the package itself. Files of an
    earlier run are written over."""
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    packages = Packages()
    added = {kind: stub_lines(members) for kind, members in _host.additions().items()}
    files = {"py.typed": "", "_typing.pyi": pathlib.Path(__file__).with_name("_typing.pyi").read_text("utf-8"),
             "_kinds.pyi": _kinds(added), **module_stubs()}
    for package in packages.packages:
        name = "__init__.pyi" if package.name == "umlmm" else f"{package.name}.pyi"
        files[name] = _PackageStub(packages, package, added).text()
    for name, text in files.items():
        (folder / name).parent.mkdir(exist_ok=True)
        (folder / name).write_text(text, "utf-8")


def _imports(text):
    """Imports of the modules that annotations of added members name."""
    modules = ("collections.abc", "typing", "typing_extensions", "umlmm")
    return "".join(f"import {module}\n" for module in modules if re.search(rf"\b{module}\.", text))


def _later_imports():
    """Imports of what the package brings in when it is asked for."""
    import umlmm
    return [f"from umlmm{'' if name == module else '.' + module} import {name} as {name}"
            for name, module in umlmm._LATER.items()]


def _kinds(added):
    """What is added to all lists and to all enumerations: bases of theirs."""
    body = ""
    for kind in (_front.LISTS, _front.ENUMERATIONS):
        body += f"\nclass {kind}:\n" + "".join(f"    {line}\n" for line in added.get(kind) or ["..."])
    return f"{_HEAD.format(title='What is added to kinds of classes.')}{_imports(body)}from umlmm import _typing\n{body}"


class _PackageStub:
    def __init__(self, packages, package, added):
        self._packages = packages
        self._package = package
        self._added = added
        self._types = Types(packages, package.name)

    def text(self):
        added = [line for cls in self._package.classes for line in self._added.get(cls, [])]
        lines = [_HEAD.format(title=f"The package `{self._package.module.__name__}`.") + _imports("".join(added)),
                 "from umlmm import _typing"]
        if self._package.name == "umlmm":
            lines += ["from umlmm import Kelm as Kelm", *_later_imports(), "", "__version__: str",
                      "_Owner = Element | Kelm.Model | tuple[Element, str] | None"]
        lines += ["", *(self._texts(cls) for cls in self._package.classes.values() if cls.literals)]
        lines += filter(None, (self._member(*member) for member in self._package.other_members.items()))
        lines += [self._definition(function) + "\n" for function in self._package.functions]
        for cls in self._package.classes.values():
            lines += self._class(cls)
        return "\n".join(lines)

    def _member(self, name, value):
        if isinstance(value, type) and issubclass(value, Exception):
            bases = ", ".join(base.__name__ for base in value.__bases__)
            return f'class {name}({bases}):\n    """{value.__doc__}"""\n'
        if name == "extend":
            return "def extend(class_name: str, name: str, function: _Callable[..., _Any], /) -> None: ...\n"
        return ""

    # --- classes

    def _class(self, cls):
        bases = [self._types.shown(name) for name in cls.superclasses]
        lines = []
        if cls.is_list:
            # A base of its own, before the others, tells checkers of what it is a list.
            kind = "ChangeableList" if cls.is_changeable_list else "List"
            lines += [f"class _{cls.short}(_typing.{kind}[{self._types.read(cls.item)}]): ..."]
            lines += self._kind_of_item(cls)
            bases.insert(0, f"_{cls.short}")
        root = "_typing.Enumeration" if cls.literals else "_typing.Instance"
        lines += [f"class {cls.short}({', '.join(bases or [root])}):"]
        body = _doc(self._meaning(cls) or cls.description)
        body += self._constructors(cls)
        body += self._properties(cls)
        names = dict.fromkeys(method.name for method in cls.methods if not method.is_constructor)
        for name in cls.literals:
            body += [f"{python_name(name)}: _ClassVar[{cls.short}]", *_doc(self._meaning(cls, name))]
        for name in names:
            if name not in cls.literals:
                body += self._method(cls, name)
        body += self._added.get(cls.name, []) + self._maker_of_items(cls)
        return lines + ["    " + line for line in body or ["..."]] + [""]

    @staticmethod
    def _texts(cls):
        """What may be given for a literal: its published name, or UML's spelling."""
        texts = [text for name in cls.literals for text in (name, name[:1].lower() + name[1:])]
        return f"_{cls.short}Text = _Literal[{', '.join(map(repr, texts))}]"

    def _meaning(self, cls, member=""):
        """What the catalogue says of the metaclass or enumeration that a class shows, or of a member of it."""
        return "" if cls.item else text_about(cls, member)

    def _constructors(self, cls):
        own = [f"def __init__({self._types.parameters(method, 'self')}) -> None: ..." for method in cls.constructors]
        if cls.subject == cls.short and self._packages.is_element_of_uml(cls):
            return _overloads(self._makers(cls, own))
        inherited = any(base.constructors for base in self._packages.linear(cls)[1:])
        if not own and inherited:
            return ["def __init__(self, has_no_constructor: _NoReturn, /) -> None: ..."]
        return _overloads(own)

    def _makers(self, cls, own):
        """Constructors with keywords. An abstract class takes what some class below it takes, as a script may have the
        class from elsewhere: `def make(kind: type[T]) -> T`."""
        if not own:
            return ["def __init__(self, model: Kelm.Model = ..., /, *, owner: _Owner = ..., **features: _Any) -> None: ..."]
        keywords = ", ".join(f"{name}: {given} = ..." for name, given in self._keywords(cls).items())
        own = [line.replace(", /)", f", /, *, owner: _Owner = ..., {keywords})") for line in own]
        refers = any(len(method.arguments) > 1 for method in cls.constructors)
        return [*own, f"def __init__(self, *, owner: _Owner{' = ...' * refers}, {keywords}) -> None: ..."]

    def _made_in(self, cls):
        """The class of the elements that a list can make; None for other classes."""
        item = self._packages.classes.get(cls.item) if cls.is_list and cls.is_changeable_list else None
        return item if item and self._packages.is_element_of_uml(item) and self._packages.is_changeable(item) else None

    def _kind_of_item(self, cls):
        item = self._made_in(cls)
        return [f'_Of{item.short} = _TypeVar("_Of{item.short}", bound="{item.short}")'] if item else []

    def _maker_of_items(self, cls):
        """`create`, told anew for each list: what it makes, and the keywords of that."""
        item = self._made_in(cls)
        if not item:
            return []
        of_item = f"_Of{item.short}"
        definitions = [f"def create(self, kind: type[{of_item}], /, **features: _Any) -> {of_item}: ..."]
        if item.constructors:
            keywords = ", ".join(f"{name}: {given} = ..." for name, given in self._keywords(item).items())
            definitions.insert(0, f"def create(self, *, {keywords}) -> {item.short}: ...")
        return _overloads(definitions)

    def _keywords(self, cls):
        """What a keyword takes, by name: the features that can be set, and what was added with a setter."""
        found = {}
        for base in self._packages.linear(cls):
            for prop in base.properties:
                if not prop.is_read_only and prop.name not in _KERNELS:
                    found.setdefault(python_name(prop.name), self._types.property_given(prop))
            for line in self._added.get(base.name, []):
                added = re.match(r"(\w+): _typing\.Property\[[^,]*, (.*)\]$", line)
                if added:
                    found.setdefault(added[1], added[2])
        return found

    def _properties(self, cls):
        if self._packages.is_changeable(cls):
            return [line for prop in self._packages.classes[cls.superclasses[0]].properties
                    for line in (self._changeable_property(prop), *_doc(self._meaning(cls, prop.name)))]
        body = []
        for prop in cls.properties:
            read = self._types.property_read(prop, prop.type)
            body += [f"{python_name(prop.name)}: _typing.ReadOnlyProperty[{read}]"]
            body += _doc(" ".join(filter(None, (self._meaning(cls, prop.name), prop.summary))))
        return body

    def _changeable_property(self, prop):
        read = self._types.property_read(prop, self._packages.type_through_changeable(prop))
        kind = "ReadOnlyProperty" if prop.is_read_only else "Property"
        given = "" if prop.is_read_only else ", " + self._types.property_given(prop)
        return f"{python_name(prop.name)}: _typing.{kind}[{read}{given}]"

    def _method(self, cls, name):
        signatures = self._reachable(self._packages.signatures(cls, name))
        is_static = signatures[0].is_static
        receiver = "" if is_static else "self"
        definitions = [self._definition(method, receiver) for method in signatures]
        meaning = self._meaning(cls, name)
        if meaning:
            definitions[0] = definitions[0].removesuffix(" ...") + "".join("\n        " + line for line in _doc(meaning))
        body = _overloads(definitions, is_static)
        if name in _COMPARISONS:
            body += [f"def {_COMPARISONS[name]}(self, other: {cls.short}, /) -> bool: ..."]
        return body

    def _definition(self, method, receiver=""):
        parameters = self._types.parameters(method, receiver)
        return f"def {python_name(method.name)}({parameters}) -> {self._types.read(method.result)}: ..."

    def _reachable(self, groups):
        """The signatures that a call can come to. In a class a special one goes before a general one; what a nearer
        class takes never comes to a farther one."""
        result = []
        for group in groups:
            ordered = []
            for method in group:
                if any(self._covers(other, method) for other in result):
                    continue
                place = next((i for i, other in enumerate(ordered) if self._covers(other, method)), len(ordered))
                if place == len(ordered) or not self._covers(method, ordered[place]):
                    ordered.insert(place, method)
            result += ordered
        return result

    def _covers(self, method, other):
        return len(method.arguments) == len(other.arguments) and all(
            self._packages.accepts(*pair) for pair in zip(method.arguments, other.arguments))


def _doc(text):
    return [f'"""{text}"""'] if text else []


def _overloads(definitions, is_static=False):
    decorators = ["@_overload"] * (len(definitions) > 1) + ["@staticmethod"] * is_static
    return [line for definition in definitions for line in (*decorators, definition)]
