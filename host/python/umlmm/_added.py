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
            return [f"{name}: _typing.ReadOnlyProperty[{read}]", *_doc(member)]
        *_, value = inspect.signature(member.fset).parameters.values()
        given = read if value.annotation is value.empty else _shown(value.annotation)
        return [f"{name}: _typing.Property[{read}, {given}]", *_doc(member)]
    if isinstance(member, (classmethod, staticmethod)):
        return [f"@{type(member).__name__}", *_definitions(name, member.__func__)]
    return _definitions(name, member) if inspect.isfunction(member) else [f"{name}: _Any"]


def _doc(member):
    """The first paragraph of the documentation, as lines of a stub."""
    text = " ".join(inspect.cleandoc(member.__doc__ or "").partition("\n\n")[0].split())
    return [f'"""{text}"""'] if text else []


def _definitions(name, function):
    """The definition; two where a class may be given of which the answers are, and elements are answered otherwise."""
    signature = inspect.signature(function)
    parameters = [parameter if parameter.default is parameter.empty else parameter.replace(default=_Omitted())
                  for parameter in signature.parameters.values()]
    of_a_kind = [parameter for parameter in parameters if parameter.annotation == "type[_T] | None"]
    if not of_a_kind:
        return _definition(name, function, signature.replace(parameters=parameters))
    elements = signature.replace(parameters=[parameter for parameter in parameters if parameter not in of_a_kind],
                                 return_annotation=signature.return_annotation.replace("_T", "umlmm.Element"))
    kinds = signature.replace(parameters=[parameter.replace(default=parameter.empty, annotation="type[_T]")
                                          if parameter in of_a_kind else parameter for parameter in parameters])
    return ["@_overload", *_definition(name, function, elements), "@_overload", *_definition(name, function, kinds)]


def _definition(name, function, signature):
    doc = [f"    {line}" for line in _doc(function)]
    return [f"def {name}{signature}:" + " ..." * (not doc), *doc]


def _shown(annotation):
    if annotation is inspect.Signature.empty:
        return "_Any"
    return annotation if isinstance(annotation, str) else inspect.formatannotation(annotation)
