"""Figures that need processes of their own: what objects take, and how long it takes until a script runs."""

import pathlib
import shutil
import subprocess
import sys
import tempfile

import figures
from figures import Figure

PROBES = pathlib.Path(__file__).with_name("probes.py")


def _best(name, runs):
    if figures.smoke:
        runs = 1
    command = [sys.executable, PROBES, name]
    return min(float(subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout) for _ in range(runs))


def _stripped(library):
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder, "library.so")
        shutil.copy(library, copy)
        subprocess.run(["strip", copy], check=True)
        return copy.stat().st_size / 1e6


def measure(build):
    bytes_per_object = round(_best("bound_object", 3))
    yield Figure("memory: bound Python object with its id record", bytes_per_object, "B", bound=144)
    yield Figure("memory: bound object of a C type", round(_best("bound_object_limit", 1)), "B")
    yield Figure("import umlmm", _best("import_time", 10), "ms", bound=8, goal=True)
    yield Figure("average class filled", _best("class_time", 5), "us", bound=30, goal=True)
    yield Figure("umlmm.load, to ElementTree.parse of the same file", _best("load_time", 1), "", bound=0.5)
    libraries = pathlib.Path(build, "lib")
    yield Figure("metamodel library, stripped", _stripped(libraries / "libuml_metamodel.so"), "MB", bound=2)
    yield Figure("library of the host, stripped", _stripped(libraries / "libuml_metamodel_mi.so"), "MB")
