"""Holds every include of the product against `floors.table`, and what the build lets each floor find: floors look down
alone."""

import os
import pathlib
import re
import subprocess

import pytest

ROOT = pathlib.Path(__file__).parent.parent
CATALOGUE = ROOT / "uml_metamodel_mi" / "catalogue"
INCLUDE = re.compile(r'\s*#\s*include\s*["<]([^">]+)[">]')
HOLE = re.compile(r"\{\{.*?\}\}|\{\w+\}")


def tables():
    """The rows of each table of floors.table; a row without a first column goes on with the one above it."""
    text = (pathlib.Path(__file__).parent / "floors.table").read_text()
    for table in re.findall(r"(?m)^-[-| ]+\n((?:.+\n)*)", text):
        rows = []
        for line in table.splitlines():
            cells = [cell.strip() for cell in line.split("|")]
            if cells[0]:
                rows.append([[], *(cell.split() for cell in cells[1:])])
                rows[-1][0] = cells[0].split()
            else:
                rows[-1][1] += cells[1].split()
        yield rows


FLOORS, UNCALLED = tables()
NAMES = [name for (name,), *_ in FLOORS]
FLOOR_OF = {path: name for (name,), paths, _ in FLOORS for path in paths}
MAY = {name: {name, *below} for (name,), _, below in FLOORS}
BUILD = os.environ.get("UMLMM_FLOORS")


def floor_of(path):
    while path not in FLOOR_OF:
        path, _, name = path.rpartition("/")
        if not name:
            return None
    return FLOOR_OF[path]


def product():
    """All sources: path in the house, where to look it up, text. A generated file has * for what varies."""
    for top in sorted({path.partition("/")[0] for path in FLOOR_OF}):
        for path in sorted((ROOT / top).rglob("*")):
            if path.suffix in (".h", ".inc", ".cpp"):
                yield path.relative_to(ROOT).as_posix(), path.relative_to(ROOT).as_posix(), path.read_text()
    for line in (CATALOGUE / "tables" / "outputs.txt").read_text().splitlines():
        cells = [cell.strip() for cell in line.split("|")]
        if len(cells) == 4 and cells[1].endswith(".jinja") and not cells[3].startswith("tests/"):
            template = CATALOGUE / "templates" / cells[1]
            yield HOLE.sub("*", cells[3]), template.relative_to(ROOT).as_posix(), template.read_text()


PRODUCT = list(product())
FILES = [path for path, _, _ in PRODUCT]
PLAIN = set(FILES)
PATTERNS = [re.compile(re.escape(path).replace(r"\*", "[^/]*")) for path in FILES if "*" in path]
ROOTS = ["", "platform/uml_metamodel/", "platform/kelm_mi/src/", *(f"platform/{name}/include/" for name in
         ("brond", "foundation", "frame", "kelm", "kelm_mi", "lum", "tarn", "vesk"))]


def target(includer, name):
    """The file of the house that an include names, or None."""
    name = HOLE.sub("*", name)
    for root in (includer.rpartition("/")[0] + "/", *ROOTS):
        path = root + name
        if path in PLAIN or any(pattern.fullmatch(path) for pattern in PATTERNS):
            return path
    return None


def lines():
    for path, place, text in PRODUCT:
        for number, line in enumerate(text.splitlines(), 1):
            yield path, f"{place}:{number}", line


def includes():
    for path, place, line in lines():
        if found := INCLUDE.match(line):
            to = target(path, found[1])
            assert to or '"' not in line, f"{place}: no file of the house is {found[1]}"
            if to:
                yield path, place, to


def test_the_table_goes_from_the_ground_up():
    for at, ((name,), _, below) in enumerate(FLOORS):
        assert not set(below) - set(NAMES[:at]), f"{name} may only include floors above its row"


def test_every_file_has_a_floor():
    assert not [path for path in FILES if floor_of(path) is None]
    assert not [path for path in FLOOR_OF if not any(file == path or file.startswith(path + "/") for file in FILES)]


def test_floors_look_down_alone():
    faults = []
    for path, place, to in includes():
        own, other = floor_of(path), floor_of(to)
        if other in MAY[own]:
            continue
        fix = (f"name {other} in the row of {own} in tests/floors.table if {own} is to stand on it"
               if NAMES.index(other) < NAMES.index(own) else
               f"{other} stands above {own}: move what both need to a floor below")
        faults.append(f"{place}: {own} includes {to}; {fix}")
    assert not faults, "\n" + "\n".join(dict.fromkeys(faults))


def test_nothing_goes_past_the_way_there_is():
    faults = []
    for floors, words, instead in UNCALLED:
        call = re.compile(rf"\b({'|'.join(words)})\s*[<(]")
        faults += [f"{place}: {found[1]}; use {' '.join(instead)}" for path, place, line in lines()
                   if floor_of(path) in floors and (found := call.search(line))]
    assert not faults, "\n" + "\n".join(faults)


def is_public(path):
    return path.endswith(".h") and "/src/" not in path


def shown():
    """For each floor all that its headers bring along: whoever may include them finds these as well."""
    shows = {name: {name} for name in NAMES}
    for path, _, to in includes():
        if is_public(path):
            shows[floor_of(path)].add(floor_of(to))
    for name in NAMES:
        shows[name].update(*(shows[other] for other in shows[name]))
    return shows


@pytest.fixture
def include_paths():
    """What the build has for each floor; a floor may be compiled into more than one library."""
    if not BUILD:
        pytest.skip("ctest tells which build to look at")
    rows = [line.split("|") for line in pathlib.Path(BUILD).read_text().splitlines()]
    assert not [folder for folder, *_ in rows if not floor_of(folder)], "a folder without a row in tests/floors.table"
    return [(floor_of(folder), [f"-I{root}" for root in roots]) for folder, *roots in rows]


def compiler(tmp_path, text, *flags):
    command = [os.environ.get("CXX", "c++"), "-std=c++20", "-x", "c++", *flags, "-"]
    return subprocess.run(command, input=text, cwd=tmp_path, capture_output=True, text=True)


def test_each_floor_finds_what_it_may_include_and_no_more(include_paths, tmp_path):
    headers = [path for path in FILES if is_public(path) and "*" not in path]
    ask = ""
    for number, path in enumerate(headers):
        root = max((root for root in ROOTS if path.startswith(root)), key=len)
        ask += f'#if __has_include("{path.removeprefix(root)}")\n{number}\n#endif\n'
    found = {name: set() for name in NAMES}
    for floor, flags in include_paths:
        found[floor] |= {headers[int(number)] for number in compiler(tmp_path, ask, "-E", "-P", *flags).stdout.split()}
    shows = shown()
    for floor, paths in found.items():
        may = set().union(*(shows[other] for other in MAY[floor]))
        expected = {path for path in headers if floor_of(path) in may}
        assert not paths - expected, f"{floor} finds more than its row: link it to less, or PRIVATE what it links to"
        assert not expected - paths, f"{floor} finds less than its row: link it to what is missing"


@pytest.mark.parametrize("floor, header, is_found", [
    ("kelm", "lum/lum.h", True),
    ("kelm", "vesk/VeskClass.h", False),
    ("cow", "kelm/kernel/containers/Ref.h", False),
    ("umlmm", "engine/Change.h", False),
    ("queries", "metamodel/metamodel.h", False),
    ("frame", "uml_metamodel/umlmm/Class.h", False),
    ("kelm_mi", "uml_metamodel_mi/datatypes/conversions.h", False),
    ("datatypes", "kelm_mi/marshal/PropHelper.h", False),
    ("marshal", "uml_metamodel_mi/wrappers/elementClasses.h", False),
    ("marshal", "uml_metamodel_mi/datatypes/conversions.h", True),
    ("wrappers", "uml_metamodel_mi/package.h", False),
    ("host_python", "kelm/Model.h", False),
])
def test_a_wrong_include_does_not_compile(include_paths, tmp_path, floor, header, is_found):
    flags = dict(include_paths)[floor]
    done = compiler(tmp_path, f'#include "{header}"\n', "-fsyntax-only", *flags)
    assert (done.returncode == 0) == is_found
    assert is_found or f"{header}: No such file" in done.stderr or f"'{header}' file not found" in done.stderr
