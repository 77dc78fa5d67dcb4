"""Stub lines of what was added to the published classes in Python (see `_front`)."""

import inspect

# What checkers learn from other members, or need not know.
_HIDDEN = {"__construct__", "__class_getitem__", "__class_iter__", "__copy__", "__deepcopy__", "__reduce_ex__",
           "_ipython_key_completions_"}


class _Omitted:
    """A default value, as stubs show it."""

    def __repr__(self):
        return "..."


def stub_lines(members):
    """Lines for the body of a class, from a dictionary of added members."""
    return [line for name, member in members.items() if name not in _HIDDEN for line in _lines(name, member)]


def _lines(name, member):
    if isinstance(member, property):
        read = _shown(inspect.signature(member.fget).return_annotation)
        if member.fset is None:
            return _with_doc(f"{name}: _typing.ReadOnlyProperty[{read}]", member)
        *_, value = inspect.signature(member.fset).parameters.values()
        given = read if value.annotation is value.empty else _shown(value.annotation)
        return _with_doc(f"{name}: _typing.Property[{read}, {given}]", member)
    if isinstance(member, (classmethod, staticmethod)):
        return [f"@{type(member).__name__}", _definition(name, member.__func__)]
    return [_definition(name, member)] if inspect.isfunction(member) else [f"{name}: _Any"]


def _with_doc(line, member):
    doc = inspect.getdoc(member)
    return [line, f'"""{doc.splitlines()[0]}"""'] if doc else [line]


def _definition(name, function):
    signature = inspect.signature(function)
    parameters = [parameter if parameter.default is parameter.empty else parameter.replace(default=_Omitted())
                  for parameter in signature.parameters.values()]
    return f"def {name}{signature.replace(parameters=parameters)}: ..."


def _shown(annotation):
    if annotation is inspect.Signature.empty:
        return "_Any"
    return annotation if isinstance(annotation, str) else inspect.formatannotation(annotation)
