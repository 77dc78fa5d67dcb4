"""What is installed works without the source and build trees: the C++ example, and the Python package."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

EXAMPLE = pathlib.Path(__file__).resolve().parents[2] / "examples" / "cpp"
if "UMLMM_BUILD" not in os.environ:
    pytest.skip("ctest tells which build to install", allow_module_level=True)
BUILD = pathlib.Path(os.environ["UMLMM_BUILD"])
CMAKE = os.environ["UMLMM_CMAKE"]
# Tools are no place for the sanitizers of the build; what they make gets them by CXXFLAGS.
ENVIRONMENT = {name: value for name, value in os.environ.items() if name not in ("LD_PRELOAD", "PYTHONPATH")}


def run(*command):
    done = subprocess.run([str(word) for word in command], env=ENVIRONMENT, capture_output=True, text=True, cwd="/")
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


@pytest.fixture(scope="module")
def prefix():
    folder = BUILD / "installed"
    shutil.rmtree(folder, ignore_errors=True)
    run(CMAKE, "--install", BUILD, "--prefix", folder)
    return folder


def test_the_example_builds_against_the_installed_package(prefix, tmp_path):
    run(CMAKE, "-S", EXAMPLE, "-B", tmp_path, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}")
    run(CMAKE, "--build", tmp_path)
    assert run(tmp_path / "orders") == (EXAMPLE / "orders.txt").read_text()
    package = (tmp_path / "CMakeCache.txt").read_text().partition("umlmm_DIR:PATH=")[2].splitlines()[0]
    assert pathlib.Path(package).is_relative_to(prefix)


def test_the_installed_python_package_stands_alone(prefix):
    (package,) = prefix.glob("lib/python3*/dist-packages")
    script = (f"import sys; sys.path.insert(0, {str(package)!r}); import umlmm; "
              "print(umlmm.Class(umlmm.Factory.createNewModel()).qualifiedName == ''); "
              "print(*{line.split(maxsplit=5)[-1].strip() for line in open('/proc/self/maps') if 'uml' in line}, sep='\\n')")
    preload = {"LD_PRELOAD": os.environ.get("LD_PRELOAD", "")}
    done = subprocess.run([sys.executable, "-c", script], env=ENVIRONMENT | preload, capture_output=True, text=True)
    answer, *libraries = done.stdout.splitlines()
    assert answer == "True"
    assert {"__init__.pyi", "Kelm.pyi", "_typing.pyi", "py.typed"} <= {path.name for path in package.rglob("*")}
    assert {pathlib.Path(path).is_relative_to(prefix) for path in libraries} == {True}


def test_libraries_are_looked_for_beside_each_other_only(prefix):
    """Any other entry, an empty one too, would load what somebody planted in the current folder."""
    files = [BUILD / "bin" / "engine_test", *BUILD.glob("lib/*.so"), *prefix.rglob("*.so")]
    assert len(files) > 20
    for file in files:
        dynamic = run("readelf", "--dynamic", "--wide", file)
        entries = re.search(r"runpath: \[(.*)\]", dynamic)[1].split(":")
        assert {entry.partition("/")[0] for entry in entries} == {"$ORIGIN"}, (file, entries)
        assert file.name == "engine_test" or "BIND_NOW" in dynamic, file


def test_libraries_and_package_tell_the_version_of_the_project(prefix):
    version = re.search(r"project\(umlmm VERSION (\S+)", (EXAMPLE.parents[1] / "CMakeLists.txt").read_text())[1]
    told = (prefix / "lib" / "cmake" / "umlmm" / "umlmmConfigVersion.cmake").read_text()
    assert f'set(PACKAGE_VERSION "{version}")' in told
    libraries = [path for path in prefix.glob("lib/lib*.so") if path.is_symlink()]
    assert len(libraries) == len([*prefix.glob("lib/lib*.so")]) > 5
    for library in libraries:
        name = f"{library.name}.{version.rpartition('.')[0]}"
        assert f"soname: [{name}]" in run("readelf", "--dynamic", "--wide", library)
        assert (prefix / "lib" / name).resolve().name == f"{library.name}.{version}"
