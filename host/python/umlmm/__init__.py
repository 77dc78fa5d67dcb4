"""UML models as Python objects.

    import umlmm

    model = umlmm.Factory.createNewModel()
    package = umlmm.Package(model)
    package.name = "shop"

or `model = umlmm.load("shop.uml")` for one that other tools have made (`umlmm.files`).

The classes of the metamodel are members of this package, those of the kernel below it members of
`umlmm.Kelm`. A class is made when it is first touched.

A model lives until `model.close()`, and owns its elements, an element its parts: an object here keeps neither
in the model. One whose element is gone answers False to `isvalid()`, and its properties raise `Kelm.Error`.
`a.owner is a.owner` holds as long as somebody has the object. A list is live: it shows the property and changes
it. Python's operations count from 0, as `items[0]` does, the published methods (`at`, `insert`, `erase` and
`replace` among them) from 1. What raises has changed nothing.
"""

import sys as _sys

try:
    from umlmm import _host
except ImportError as _error:
    from umlmm import _unloadable
    raise _unloadable.explained(_error) from None

__version__ = _host.__version__


def _show(name, package):
    """The module `name`, which shows the members of a package."""
    module = _sys.modules.get(name)
    if module is None:
        module = _sys.modules[name] = type(_sys)(name)
    _host.attach(module, package)
    return module


def _add():
    """Adds this package's own members to the published classes, before the first of these is made."""
    from umlmm import _copying, _file_members, _finding, _making, _notebook, _pickling, _values


def _family(builtin):
    from umlmm import errors
    return errors._of_family(builtin)


def _described(what, cls, name, own):
    if what == "meaning":
        from umlmm import _texts
        return _texts.meaning(cls, name)
    from umlmm import _help
    return _help.described(what, cls, name, own)


_host.error_family(_family)
_host.describer(_described)
_host.before_first_class(_add)
_host.load("uml_metamodel_mi")
Kelm = _show("umlmm.Kelm", "Kelm")
Kelm.extend = _host.extend
_show(__name__, "umlmm")


# What this package adds to itself is brought in when it is first asked for: by name, the module that has it.
_LATER = {name: "files" for name in ("files", "load", "load_all")} | {
    name: "relations" for name in ("associate", "connect", "depend", "generalize", "realize", "relations", "send")} | {
    name: "changes" for name in ("changes", "new_model", "remove")} | {
    name: name for name in ("errors", "primitives", "queries")} | {
    "Error": "errors", "draw": "drawing"}


def __getattr__(name):
    if name not in _LATER:
        if name[:1].isupper():
            from umlmm import _others
            raise _others.refusal(name) or AttributeError(name)
        raise AttributeError(name)
    import importlib
    module = importlib.import_module("umlmm." + _LATER[name])
    return globals().setdefault(name, getattr(module, name, module))
