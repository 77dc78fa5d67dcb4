"""What `reverse_python.py` wants to know of Python source, read from its syntax trees."""

import ast
import importlib.util
import pathlib
import re

FUNCTION = (ast.FunctionDef, ast.AsyncFunctionDef)


def source_files(name):
    """The files of a package or module, each with its place in it: ("client",) for http/client.py."""
    try:
        spec = importlib.util.find_spec(name)
    except ImportError:
        spec = None
    if spec is not None and spec.submodule_search_locations:
        for folder in map(pathlib.Path, spec.submodule_search_locations):
            for path in sorted(folder.rglob("*.py")):
                place = path.relative_to(folder).with_suffix("").parts
                yield path, place[:-1] if place[-1] == "__init__" else place
    elif spec is not None and spec.has_location and spec.origin.endswith(".py"):
        yield pathlib.Path(spec.origin), ()
    else:
        raise SystemExit(f"There is no package '{name}' whose source could be read.")


def own_nodes(scope):
    """All nodes of a module, class or function, without those of the classes and functions inside it."""
    for node in ast.iter_child_nodes(scope):
        yield node
        if not isinstance(node, (ast.ClassDef, ast.Lambda, *FUNCTION)):
            yield from own_nodes(node)


def classes(scope):
    return [node for node in own_nodes(scope) if isinstance(node, ast.ClassDef)]


def base_names(cls):
    """`Generic` for `class Jar(Generic[T])`."""
    return [ast.unparse(base.value if isinstance(base, ast.Subscript) else base) for base in cls.bases]


def methods(cls):
    """The methods of a class; of those of one name the first, which is the getter of a property."""
    by_name = {}
    for node in own_nodes(cls):
        if isinstance(node, FUNCTION):
            by_name.setdefault(node.name, node)
    return list(by_name.values())


def is_decorated(function, *names):
    return any(ast.unparse(decorator).rpartition(".")[2] in names for decorator in function.decorator_list)


def all_arguments(function):
    """The arguments in order, each with its default or None; `*args` and `**kwargs` too."""
    given = function.args
    plain = given.posonlyargs + given.args
    defaults = [None] * (len(plain) - len(given.defaults)) + given.defaults
    keywords = zip(given.kwonlyargs, given.kw_defaults)
    listed = [*zip(plain, defaults), (given.vararg, None), *keywords, (given.kwarg, None)]
    return [(argument, default) for argument, default in listed if argument is not None]


def arguments(method):
    """The arguments that a caller gives: without the `self` or `cls` in front."""
    return all_arguments(method)[0 if is_decorated(method, "staticmethod") else 1 :]


def assignments(scope):
    """Target, annotation and value of each assignment; `a, b = f()` sets two targets without a value."""
    for node in own_nodes(scope):
        if isinstance(node, (ast.Assign, ast.AnnAssign)):
            for target in node.targets if isinstance(node, ast.Assign) else [node.target]:
                if isinstance(target, ast.Tuple):
                    yield from ((part, None, None) for part in target.elts)
                else:
                    yield target, getattr(node, "annotation", None), node.value


def attributes(cls):
    """Name, annotation and value of what a class and its methods assign, the first time for each name."""
    by_name = {}
    for target, annotation, value in assignments(cls):
        if isinstance(target, ast.Name):
            by_name.setdefault(target.id, (target.id, annotation, value))
    for method in filter(lambda node: isinstance(node, FUNCTION), own_nodes(cls)):
        told = {argument.arg: argument.annotation for argument, _ in all_arguments(method)}
        for target, annotation, value in assignments(method):
            if isinstance(target, ast.Attribute) and ast.unparse(target.value) == "self":
                # In `self.jar = jar` the argument's annotation tells the type.
                annotation = annotation or told.get(getattr(value, "id", None))
                by_name.setdefault(target.attr, (target.attr, annotation, value))
    return list(by_name.values())


def type_names(annotation, value):
    """Names that may tell a type: all in an annotation, else the class that a value names or makes."""
    if annotation is not None:
        return re.findall(r"[\w.]+", ast.unparse(annotation))
    named = value.func if isinstance(value, ast.Call) else value
    return [ast.unparse(named)] if isinstance(named, (ast.Name, ast.Attribute)) else []
