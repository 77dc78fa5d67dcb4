"""Stubs of this package's own modules, from their source: what is public, without bodies. A checker need not read the
bodies then, which takes most of its time."""

import ast
import pathlib
import re

_FOLDER = pathlib.Path(__file__).parent
# Private modules whose classes public ones show.
_SHOWN = ("_answers", "_stereotypes")

_HEAD = """# Written by `python -m umlmm stubs` from the module.
# mypy: disable-error-code="override,misc"
from typing import Any as _Any
"""


def module_stubs():
    """The text of the stub of each public module, by file name."""
    modules = [path.relative_to(_FOLDER) for path in sorted(_FOLDER.rglob("*.py"))]
    shown = [module for module in modules if str(module) not in ("__init__.py", "Kelm.py") and
             (not module.stem.startswith("_") or module.stem in ("__init__", *_SHOWN))]
    return {str(module.with_suffix(".pyi")): _stub((_FOLDER / module).read_text("utf-8")) for module in shown}


def _stub(source):
    tree = ast.parse(source)
    tree.body = _kept(tree.body)
    doc = tree.body.pop(0) if isinstance(tree.body[0], ast.Expr) else None
    return f"{ast.unparse(doc)}\n" * bool(doc) + _HEAD + ast.unparse(tree) + "\n"


def _kept(statements):
    """What checkers have to see of a body."""
    kept, overloaded = [], set()
    bases = {ast.unparse(base) for statement in statements if isinstance(statement, ast.ClassDef)
             for base in statement.bases}
    for at, statement in enumerate(statements):
        if isinstance(statement, ast.If) and ast.unparse(statement.test) == "TYPE_CHECKING":
            kept += _kept(statement.body)
        elif isinstance(statement, (ast.Import, ast.ImportFrom)):
            kept += _import(statement)
        elif isinstance(statement, ast.ClassDef) and (_is_public(statement.name) or statement.name in bases):
            statement.body = _kept(statement.body) or [ast.Expr(ast.Constant(...))]
            kept.append(statement)
        elif isinstance(statement, ast.FunctionDef):
            is_overload = "overload" in map(ast.unparse, statement.decorator_list)
            overloaded |= {statement.name} if is_overload else set()
            if _is_public(statement.name) and (is_overload or statement.name not in overloaded):
                kept.append(_declared(statement))
        elif isinstance(statement, ast.AnnAssign):
            statement.value = None
            kept.append(statement)
        elif isinstance(statement, ast.Assign) and _is_type(statement):
            kept.append(statement)
        elif isinstance(statement, ast.Assign) and re.fullmatch("[A-Z][A-Z_]*", ast.unparse(statement.targets[0])):
            kept.append(ast.parse(f"{ast.unparse(statement.targets[0])}: _Any").body[0])
        elif at == 0 and isinstance(statement, ast.Expr):
            kept.append(statement)
    return kept


def _is_public(name):
    return not name.startswith("_") or (name.startswith("__") and name.endswith("__"))


def _is_type(assignment):
    """Whether an assignment makes a type, or tells what the module has."""
    value = assignment.value
    return ast.unparse(assignment.targets[0]) == "__all__" or isinstance(value, ast.Subscript) or (
        isinstance(value, ast.Call) and ast.unparse(value.func) == "TypeVar")


def _import(statement):
    if not isinstance(statement, ast.ImportFrom):
        return [statement]
    statement.names = [name for name in statement.names if name.name != "_host"]
    package, _, module = statement.module.partition(".")
    is_hidden = package == "umlmm" and module.startswith("_") and module not in _SHOWN
    return [statement] if statement.names and not is_hidden else []


def _declared(function):
    """A function without its body and the values of its defaults; what is not annotated is of any type."""
    arguments = function.args
    arguments.defaults = [ast.Constant(...) for _ in arguments.defaults]
    arguments.kw_defaults = [default and ast.Constant(...) for default in arguments.kw_defaults]
    named = [*arguments.posonlyargs, *arguments.args, *arguments.kwonlyargs, arguments.vararg, arguments.kwarg]
    for argument in filter(None, named):
        if argument.annotation is None and argument.arg not in ("self", "cls"):
            argument.annotation = ast.Name("_Any")
    if function.returns is None:
        function.returns = ast.Constant(None) if function.name == "__init__" else ast.Name("_Any")
    doc = [function.body[0]] if ast.get_docstring(function) else []
    function.body = [*doc, ast.Expr(ast.Constant(...))]
    return function
