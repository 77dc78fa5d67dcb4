"""Holds every include of the product against `floors.table`: floors look down alone."""

import pathlib
import re

ROOT = pathlib.Path(__file__).parent.parent
CATALOGUE = ROOT / "uml_metamodel_mi" / "catalogue"
TOPS = ("platform", "kelm", "kelm_mi", "uml_metamodel", "uml_metamodel_mi", "host")
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


def floor_of(path):
    while path not in FLOOR_OF:
        path, _, name = path.rpartition("/")
        if not name:
            return None
    return FLOOR_OF[path]


def product():
    """All sources: path in the house, where to look it up, text. A generated file has * for what varies."""
    for top in TOPS:
        for path in sorted((ROOT / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
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
