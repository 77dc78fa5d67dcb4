"""A wheel and Debian packages: installed elsewhere, they work without the source and build trees."""

import os
import pathlib
import re
import subprocess

import pytest

if "UMLMM_BUILD" not in os.environ:
    pytest.skip("ctest tells of which build packages are made", allow_module_level=True)
BUILD = pathlib.Path(os.environ["UMLMM_BUILD"])
CMAKE = os.environ["UMLMM_CMAKE"]
PROJECT = pathlib.Path(__file__).resolve().parents[2]
VERSION = re.search(r"project\(umlmm VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text())[1]
SCRIPT = """
import sys
sys.path[:0] = sys.argv[2:]
import umlmm
with umlmm.new_model() as model:
    umlmm.Class(owner=umlmm.Package(model, name="shop"), name="Order")
    model.save(sys.argv[1], dialect="omg-2.5.1")
with umlmm.load(sys.argv[1]) as model:
    print(umlmm.__version__, model["shop::Order"], umlmm.Class.__doc__.split(".")[0])
print(*{line.split(maxsplit=5)[-1].strip() for line in open("/proc/self/maps") if "/umlmm/" in line}, sep="\\n")
"""


def run(*command):
    """What a command prints that is run outside the project, with nothing that leads there."""
    environment = {name: value for name, value in os.environ.items() if not name.startswith(("PYTHON", "LD_"))}
    done = subprocess.run([str(word) for word in command], env=environment, capture_output=True, text=True, cwd="/")
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


def check_script(python, root, model, *path):
    """Runs the script, which finds the package under `root` and all of its libraries there."""
    first, *mapped = run(python, "-I", "-c", SCRIPT, model, *path).splitlines()
    assert first.startswith(f"{VERSION} shop::Order ") and len(first) > 40
    assert len(mapped) > 10 and {pathlib.Path(file).is_relative_to(root) for file in mapped} == {True}


@pytest.fixture(scope="module")
def packages():
    run(CMAKE, "--build", BUILD, "--target", "umlmm_wheel", "umlmm_debs")
    return BUILD / "packages"


def test_a_wheel_runs_in_an_empty_environment(packages, tmp_path):
    wheel = max(packages.glob("*.whl"), key=lambda path: path.stat().st_mtime)
    run(os.environ["UMLMM_WHEEL_PYTHON"], "-m", "venv", tmp_path)
    python = tmp_path / "bin" / "python"
    run(python, "-m", "pip", "install", "--no-index", "--disable-pip-version-check", wheel)
    check_script(python, tmp_path, tmp_path / "shop.xmi")
    for command in ([tmp_path / "bin" / "umlmm"], [python, "-m", "umlmm"]):
        assert "1 Class" in run(*command, "info", tmp_path / "shop.xmi")
    (package,) = tmp_path.glob("lib/python3*/site-packages/umlmm")
    assert {"py.typed", "__init__.pyi", "texts.txt"} <= {path.name for path in package.iterdir()}

    libraries = list(package.rglob("*.so*"))
    symbols = "".join(run("objdump", "-T", library) for library in libraries)
    asked = max(tuple(map(int, version.split("."))) for version in re.findall(r"\(GLIBC_([\d.]+)\)", symbols))
    assert "-manylinux_{}_{}_".format(*asked) in wheel.name and wheel.name.startswith(f"umlmm-{VERSION}-")
    for library in libraries:  # packed relocations would ask for more than the symbols do
        assert "RELR" not in run("readelf", "--dynamic", "--version-info", library)


def test_debian_packages_are_complete(packages, tmp_path):
    for name in ("libumlmm", "libumlmm-dev", "python3-umlmm"):
        (package,) = packages.glob(f"{name}_{VERSION}_*.deb")
        depends = run("dpkg-deb", "--field", package, "Depends")
        assert name == "libumlmm" or f"libumlmm (= {VERSION})" in depends
        assert name == "libumlmm-dev" or "libstdc++6 (>= " in depends
        run("dpkg-deb", "-x", package, tmp_path / name)
        run("cp", "-a", tmp_path / name / "usr", tmp_path)
        if name == "libumlmm":
            assert not list(tmp_path.rglob("lib*.so")), "names for the linker are the development package's"
        if name == "python3-umlmm":
            run("rm", "-r", *tmp_path.glob("usr/lib/*/umlmm/*.so"))  # of which scripts have no need
            check_script("/usr/bin/python3", tmp_path, tmp_path / "shop.xmi", tmp_path / "usr/lib/python3/dist-packages")
        else:
            assert not list((tmp_path / name).rglob("*.py"))


def test_a_program_builds_against_the_development_package(packages, tmp_path):
    for package in packages.glob(f"libumlmm*_{VERSION}_*.deb"):
        run("dpkg-deb", "-x", package, tmp_path)
    example = PROJECT / "examples" / "cpp"
    run(CMAKE, "-S", example, "-B", tmp_path / "build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={tmp_path}/usr")
    run(CMAKE, "--build", tmp_path / "build")
    assert run(tmp_path / "build" / "orders") == (example / "orders.txt").read_text()


def test_one_of_several_names_of_a_debian_package_is_enough(tmp_path):
    (tmp_path / "packages.txt").write_text("# remark\nno-such-package-anywhere|dpkg|nor-this\n")
    assert run(PROJECT / "tools" / "install-packages", tmp_path / "packages.txt") == ""


def test_the_changelog_ends_where_the_version_is():
    headings = re.findall(r"^## \[(.*?)\]", (PROJECT / "CHANGELOG.md").read_text(), re.MULTILINE)
    assert [heading for heading in headings if heading != "Unreleased"][0] == VERSION
