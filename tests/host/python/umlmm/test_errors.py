"""One family of failures, which are Python's own too, and tell what to do."""

import pathlib
import re
import shutil
import subprocess
import sys

import pytest

import umlmm
from umlmm import errors


@pytest.mark.parametrize("builtin, fail", [
    (TypeError, lambda model: setattr(umlmm.Class(model), "name", 5)),
    (TypeError, lambda model: umlmm.Class(model).ownedAttribute.append(model)),
    (RuntimeError, lambda model: umlmm.Class()),
    (TypeError, lambda model: umlmm.Class(model, nmae="x")),
    (TypeError, lambda model: setattr(umlmm.Class, "name", "x")),
    (TypeError, lambda model: type("Mine", (umlmm.Class,), {})),
    (ValueError, lambda model: setattr(umlmm.Class(model), "visibility", "secret")),
    (ValueError, lambda model: umlmm.VisibilityKind("secret")),
    (AttributeError, lambda model: umlmm.Class(model).nmae),
    (AttributeError, lambda model: setattr(umlmm.Class(model), "qualifiedName", "x")),
    (AttributeError, lambda model: umlmm.Class.nmae),
    (AttributeError, lambda model: umlmm.Clas),
    (AttributeError, lambda model: model.primitives.Text),
    (KeyError, lambda model: model["nothing"]),
    (LookupError, lambda model: umlmm.Class(model).ownedAttribute[0]),
    (NameError, lambda model: umlmm.Kelm.extend("umlmm.Clas", "f", lambda self: 1)),
    (RuntimeError, lambda model: umlmm.Class(model).ownedAttribute.at(7)),
    (RuntimeError, lambda model: [element := umlmm.Class(model), element.destroy(), element.name]),
    (Exception, lambda model: umlmm.load(b"no model")),
    (OSError, lambda model: umlmm.load("no file")),
])
def test_failures_are_of_one_family(builtin, fail, model):
    with pytest.raises(umlmm.Error) as raised:
        fail(model)
    assert isinstance(raised.value, builtin)


def test_the_librarys_own_failures_keep_their_class():
    assert umlmm.Kelm.Error.__bases__ == (umlmm.Error, RuntimeError)
    assert umlmm.Kelm.ReadOnlyError.__mro__[1:3] == (umlmm.Kelm.Error, umlmm.Error)
    assert str(errors.NotFound("as it stands")) == "as it stands"
    assert all(issubclass(getattr(errors, name), umlmm.Error) for name in errors.__all__)


@pytest.mark.parametrize("feature, value, note", [
    ("name", 3, "NamedElement.name: "), ("visibility", "secret", "NamedElement.visibility: "),
    ("qualifiedName", "x", "NamedElement.qualifiedName: "), ("ownedAttribute", [1], "StructuredClassifier.ownedAttribute: "),
    ("externalId", 3, "ClassObject.externalId: ")])
def test_what_is_refused_tells_what_the_feature_means(model, feature, value, note):
    with pytest.raises(umlmm.Error) as raised:
        setattr(umlmm.Class(model), feature, value)
    assert raised.value.__notes__[-1].startswith(note) and len(raised.value.__notes__[-1]) > len(note)


@pytest.mark.parametrize("name, text", [
    ("StateMachine", r"of UML 2.5.1 \(clause 14, state machines\) is not in this package.*element.unknown"),
    ("DecisionNode", "clause 15"), ("Clas", "did you mean 'Class'"), ("nothing", "has no member 'nothing'")])
def test_names_that_are_not_there_say_why(name, text):
    with pytest.raises(AttributeError, match=text) as raised:
        getattr(umlmm, name)
    assert raised.value.name == name and not hasattr(umlmm, name)


def test_no_other_metaclass_is_in_the_package():
    from umlmm import _others
    names = " ".join(_others._CLAUSES.values()).split()
    assert len(names) == len(set(names)) > 80 and not set(names) & set(dir(umlmm))


@pytest.mark.parametrize("built, text", [
    ("cpython-399-x86_64-linux-gnu", f"This is Python {sys.version.split()[0]} .*built for CPython 3.99 on x86_64: run it"),
    (sys.implementation.cache_tag + "-x86_64-linux-gnu", "file too short")])
def test_a_python_that_cannot_load_the_module_is_told_what_was_built(built, text, tmp_path):
    package = tmp_path / "umlmm"
    shutil.copytree(pathlib.Path(umlmm.__file__).parent, package, ignore=shutil.ignore_patterns("*.so", "*.pyi", "__py*"))
    (package / f"_host.{built}.so").touch()
    done = subprocess.run([sys.executable, "-S", "-c", "import umlmm"], env={"PYTHONPATH": str(tmp_path)},
                          capture_output=True, text=True)
    assert done.returncode == 1 and re.search(text, done.stderr.splitlines()[-1]), done.stderr
