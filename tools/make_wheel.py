"""Packs what `umlmm_wheel` has linked into a wheel, and holds it against what its name promises: that the libraries
which it needs beside its own are those of every Linux with the glibc that the name tells.

    tools/make_wheel.py --build BUILD --version VERSION --cmake CMAKE --module FILE --libraries FOLDER --bundle FILE...
                        --out FOLDER
"""

import argparse
import base64
import hashlib
import pathlib
import re
import subprocess
import sys
import tempfile
import zipfile

# What the platform tag `manylinux` lets a wheel take from the system, of what is needed here.
FROM_SYSTEM = {"libc.so.6", "libm.so.6", "libdl.so.2", "libpthread.so.0", "ld-linux-x86-64.so.2", "ld-linux-aarch64.so.1",
               "libgcc_s.so.1", "libstdc++.so.6"}
METADATA = """\
Metadata-Version: 2.1
Name: umlmm
Version: {version}
Summary: UML models as Python objects
Requires-Python: =={python}.*
Classifier: Operating System :: POSIX :: Linux
Classifier: Programming Language :: Python :: {python}
Classifier: Typing :: Typed
Description-Content-Type: text/markdown

{description}"""


class Refused(Exception):
    pass


def run(*command):
    return subprocess.run([str(word) for word in command], check=True, stdout=subprocess.PIPE, text=True).stdout


def known_name(library):
    """The name by which other libraries need this one."""
    return re.search(r"\(SONAME\).*\[(.*)\]", run("readelf", "--dynamic", "--wide", library))[1]


def asked_of_system(libraries):
    """The highest version of each family of symbols that libraries ask for, such as GLIBC."""
    own = {pathlib.Path(path).name for path in libraries}
    highest = {}
    for path in libraries.values():
        needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "--dynamic", "--wide", path)))
        if not needed <= FROM_SYSTEM | own:
            raise Refused(f"{path.name} needs {', '.join(sorted(needed - FROM_SYSTEM - own))}, which is not of every "
                          "system: give it with --bundle")
        for family, version in re.findall(r"\b([A-Z]+)_([0-9.]+|ABI_\w+)\b", run("readelf", "--version-info", path)):
            if version.startswith("ABI"):
                raise Refused(f"{path.name} asks for {family}_{version}: it is linked with packed relocations")
            numbers = tuple(map(int, version.split(".")))
            highest[family] = max(highest.get(family, ()), numbers)
    return {family: ".".join(map(str, numbers)) for family, numbers in highest.items()}


def contents(arguments):
    """Files of the wheel by their paths in it, without what tells of them; and where its libraries are now."""
    with tempfile.TemporaryDirectory() as folder:
        run(arguments.cmake, "--install", arguments.build, "--component", "python_files", "--prefix", folder)
        (package,) = pathlib.Path(folder).rglob("umlmm/__init__.py")
        top = package.parents[1]
        files = {str(path.relative_to(top)): path.read_bytes() for path in top.rglob("*") if path.is_file()}
    libraries = [path for path in arguments.libraries.iterdir() if not path.is_symlink()] + arguments.bundle
    binaries = {f"umlmm/lib/{known_name(path)}": path for path in libraries}
    binaries[f"umlmm/{arguments.module.name}"] = arguments.module
    return files | {path: binary.read_bytes() for path, binary in binaries.items()}, binaries


def licences(bundled):
    """What others want to be told with their libraries, as the packages have it that these are from."""
    for path in bundled:
        package = run("dpkg-query", "--search", path.resolve()).partition(":")[0]
        yield package, pathlib.Path("/usr/share/doc", package, "copyright").read_bytes()


def record_line(path, data):
    digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
    return f"{path},sha256={digest},{len(data)}\n"


def make(arguments):
    files, libraries = contents(arguments)
    asked = asked_of_system(libraries)
    [(major, minor, flags, machine)] = re.findall(r"\.cpython-(\d)(\d+)(\w*)-(\w+?)-", arguments.module.name)
    abi = f"cp{major}{minor}{flags}"
    tag = f"cp{major}{minor}-{abi}-manylinux_{asked['GLIBC'].replace('.', '_')}_{machine}"
    told = f"umlmm-{arguments.version}.dist-info"
    readme = pathlib.Path(__file__).parents[1] / "README.md"
    files |= {
        f"{told}/METADATA": METADATA.format(version=arguments.version, python=f"{major}.{minor}",
                                            description=readme.read_text()).encode(),
        f"{told}/WHEEL": f"Wheel-Version: 1.0\nGenerator: umlmm\nRoot-Is-Purelib: false\nTag: {tag}\n".encode(),
        f"{told}/entry_points.txt": b"[console_scripts]\numlmm = umlmm.__main__:main\n"}
    files |= {f"{told}/licenses/{package}.txt": text for package, text in licences(arguments.bundle)}
    record = f"{told}/RECORD"
    files[record] = ("".join(record_line(*each) for each in sorted(files.items())) + f"{record},,\n").encode()

    arguments.out.mkdir(parents=True, exist_ok=True)
    wheel = arguments.out / f"umlmm-{arguments.version}-{tag}.whl"
    with zipfile.ZipFile(wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for path, data in sorted(files.items()):
            entry = zipfile.ZipInfo(path)  # of a fixed date: the same files make the same wheel
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = (0o755 if ".so" in path else 0o644) << 16
            archive.writestr(entry, data)
    needs = ", ".join(f"{family} {version}" for family, version in sorted(asked.items()))
    print(f"{wheel}\n{len(files)} files, {wheel.stat().st_size:,} bytes; asks of the system: {needs}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n\n")[0])
    for name in ("--build", "--module", "--libraries", "--out"):
        parser.add_argument(name, type=pathlib.Path, required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--cmake", default="cmake")
    parser.add_argument("--bundle", type=pathlib.Path, nargs="*", default=[])
    try:
        make(parser.parse_args())
    except Refused as refused:
        sys.exit(f"No wheel is made: {refused}")


if __name__ == "__main__":
    main()
