"""What `help` and `inspect.signature` tell of published classes and their members."""

import inspect
import re

from umlmm import _host
from umlmm._classes import Class, Method
from umlmm._texts import text_about
from umlmm._types import Types


# Records of classes kept for the next question; all of them would slow each collection of garbage.
_KEPT = 100


def described(what, cls, name, own):
    """Documentation as a text, or a signature; None where there is nothing to tell beside what is there."""
    if cls is not None and _record(cls if isinstance(cls, type) else type(cls)) is None:
        return own  # of a package of somebody else
    if len(_Packages.classes) > _KEPT:
        _Packages.classes.clear()
    if what == "signature":
        return _class_signature(cls) if name is None else _method_signature(cls, name)
    return _class_doc(cls, own) if name is None else _member_doc(cls, name, own)


# --- documentation

def _class_doc(cls, own):
    record = _record(cls)
    if record.item:
        kind = "A list" if record.is_list else "An iterator over a list"
        changes = ", which can be changed" if record.is_list and record.is_changeable_list else ""
        return f"{kind} of {_shown(record.item)}{changes}."
    text = text_about(record)
    if not text:
        return own
    if record.changeable and record.changeable != record.name:
        text += f"\n\nA view that changes nothing; {record.changeable} is the class of what can be changed."
    elif record.constructors:
        text += "".join(f"\n\nMade by {record.name}({', '.join(names)})" for names in sorted(
            {tuple(_types.argument_names(method)) for method in record.constructors}))
        text += "; keywords set features, owner= puts it into its owner."
    return text


def _member_doc(cls, name, own):
    record = _record(cls) if cls else None
    for prop in record.properties if record else ():
        if prop.name == name:
            text = text_about(record, name)
            return "\n\n".join(filter(None, (f"{name}: {_shown(prop.type)}", text, prop.summary)))
    methods = _methods(cls, name)
    lines = [f"{name}{_signature(method)}" for method in methods]
    owners = (_record(base) for base in (cls.__mro__ if cls else ()) if methods and type(base) is type(cls))
    meanings = (text_about(owner, name) for owner in owners if owner.methods_named(name))
    descriptions = [*filter(None, (*meanings, *(method.description for method in methods)))][:1]
    return "\n".join(dict.fromkeys(lines)) + "".join(f"\n\n{text}" for text in descriptions) if methods else own


# --- signatures

def _class_signature(cls):
    record = _record(cls)
    if record.literals:
        return inspect.Signature([inspect.Parameter("text", inspect.Parameter.POSITIONAL_ONLY, annotation=str)])
    if not any(method.arguments for method in record.constructors):
        return None
    parameters = _positional(min(record.constructors, key=lambda method: len(method.arguments)))
    if any(base.__name__ == "ImmutableClassObject" for base in cls.__mro__):
        from umlmm import _recipes
        recipe = _recipes._Recipe.of(cls)
        parameters = [parameter.replace(default=None) for parameter in parameters]
        parameters += [inspect.Parameter(keyword, inspect.Parameter.KEYWORD_ONLY, default=None)
                       for keyword in ("owner", *sorted(recipe.settable))]
    return inspect.Signature(parameters)


def _method_signature(target, name):
    cls = target if target is None or isinstance(target, type) else type(target)
    methods = _methods(cls, name)
    if not methods:
        return None
    signatures = [_signature(method) for method in methods]
    longest = max(signatures, key=lambda one: len(one.parameters))
    fewest = min(len(one.parameters) for one in signatures)
    parameters = [parameter.replace(default=...) if at >= fewest else parameter
                  for at, parameter in enumerate(longest.parameters.values())]
    if cls is target and cls is not None and not methods[0].is_static:
        parameters.insert(0, inspect.Parameter("self", inspect.Parameter.POSITIONAL_ONLY))
    returned = {one.return_annotation for one in signatures}
    return inspect.Signature(parameters, return_annotation=returned.pop() if len(returned) == 1 else _Type("Any"))


def _signature(method):
    return inspect.Signature(_positional(method), return_annotation=_Type(_types.read(method.result)))


def _positional(method):
    return [inspect.Parameter(name, inspect.Parameter.POSITIONAL_ONLY, annotation=_Type(_types.given(given)))
            for name, given in zip(_types.argument_names(method), method.arguments)]


def _methods(cls, name):
    """The signatures that a call chooses among: of each class, nearest first, its own; those of a function of a package
    without a class."""
    if cls is None:
        records = [record for package in ("umlmm", "Kelm") for record in _host.describe_functions(package)]
        return [method for method in map(Method, records) if method.name == name]
    found = []
    for base in cls.__mro__:
        own = _record(base).methods_named(name) if type(base) is type(cls) else []
        found += own
        if any(method.overrides_all for method in own):
            break
    return found


# --- records of single classes, as to fill all of them takes a while

class _Package:
    def __init__(self, name):
        import umlmm
        self.name = name
        self.module = umlmm if name == "umlmm" else umlmm.Kelm


class _Classes(dict):
    def get(self, name, default=None):
        return self[name] if name in self else default

    def __contains__(self, name):
        if not dict.__contains__(self, name) and name.partition(".")[0] in ("umlmm", "Kelm"):
            self[name] = Class(_host.describe_class(name), _Package(name.partition(".")[0]))
        return dict.__contains__(self, name)


class _Packages:
    classes = _Classes()

    @staticmethod
    def names_of_constructor(method):
        return ["model"] if method.arguments[:1] == ["Kelm.Model"] else []


_types = Types(_Packages, "")


def _record(cls):
    return _Packages.classes.get(f"{cls.__module__}.{cls.__qualname__}".replace("umlmm.Kelm.", "Kelm."))


def _shown(type_name):
    return _Type(_types.read(type_name))


class _Type(str):
    """A type as scripts write it, shown in signatures as it stands."""

    def __new__(cls, text):
        return str.__new__(cls, re.sub(r"\| _\w+Text", "| str", text).replace("_Any", "Any").replace("_Sequence", "list"))

    def __repr__(self):
        return str(self)
