"""The extension module without the metamodel's library, showing the native test package `demo`."""

import importlib.util
import pathlib
import sys
import types

import pytest


def _load_front():
    folder = next(pathlib.Path(path) / "umlmm" for path in sys.path if (pathlib.Path(path) / "umlmm").is_dir())
    file = next(folder.glob("_host.*.so"))
    spec = importlib.util.spec_from_file_location("umlmm._host", file)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


@pytest.fixture(scope="session")
def host():
    return _load_front()


@pytest.fixture(scope="session")
def demo(host):
    assert host.load("front_testpackage") == ("demo",)
    module = types.ModuleType("demo")
    # An extension from before the first use of the class.
    host.extend("demo.Thing", "shout", lambda self, mark="!": self.name.upper() + mark)
    host.attach(module, "demo")
    return module
