"""Rows are all that an addition to the metamodel takes: whatever follows from them is made, and compiles."""

import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[3]
COMPILER = os.environ.get("UMLMM_CXX", "c++")

# A metaclass with a value of a new enumeration and a pair of features with a metaclass that is there already.
ROWS = {
    "enumerations": ["Urgency | Low, Medium, High"],
    "metaclasses": ["Milestone | concrete | PackageableElement"],
    "features": ["Milestone | 1 | urgency | Urgency | 1..1 | | High",
                 "Milestone | 2 | deliverable | UseCase | 0..* | ordered | | opposite UseCase.milestone",
                 "UseCase | 5 | milestone | Milestone | 0..1 | | | opposite Milestone.deliverable"],
    "create_methods": ["Milestone"],
    "registration": ["Milestone", "Urgency"],
}

# What the engine makes of the rows; the literal's number and its presence bit are in the flags of a new element.
PROGRAM = """
#include "engine/Feature.h"
#include "engine/ids.h"
using namespace umlmm;
using engine::feature;
int main() {
  engine::Feature const& pair = feature(ids::Milestone::Deliverable);
  if (pair.fType != ids::metaclass::UseCase || pair.fOpposite != ids::UseCase::Milestone || !pair.fOrdered) return 1;
  if (feature(ids::Milestone::Urgency).fStorage != engine::Storage::Enumeration) return 2;
  if (!engine::conforms(ids::metaclass::Milestone, ids::metaclass::NamedElement)) return 3;
  for (engine::Layout const& layout : engine::kLayouts) {
    if (layout.fMetaclass != ids::metaclass::Milestone) continue;
    auto const place = layout.fSlotOfFeature[ids::Milestone::Urgency];
    bool const isHigh = (layout.fDefaultFlags >> place & 31) == (2 | 16);
    return isHigh && (layout.fListWords >> layout.fSlotOfFeature[ids::Milestone::Deliverable] & 1) != 0 ? 0 : 4;
  }
  return 5;
}
"""


def add(table, row):
    """Puts a row where the order of names wants it; at the end of a table that has an order of its own."""
    lines = table.read_text().splitlines()
    owner = row.split(" ")[0]
    rows = [at for at, line in enumerate(lines) if "|" in line and not line.startswith("#")][2:]
    after = [at for at in rows if lines[at].split(" ")[0] <= owner]
    named = table.stem in ("metaclasses", "enumerations", "features")
    lines.insert(after[-1] + 1 if named else len(lines), row)
    table.write_text("\n".join(lines) + "\n")


def generate(catalogue, tables, target):
    outputs = (line.split() for line in (tables / "outputs.txt").read_text().splitlines() if "jinja" in line)
    for name in sorted({name for name, *_ in outputs}):
        made = subprocess.run([sys.executable, "-B", catalogue / "generate.py", "--tables", tables, "--set", name,
                               "--output", target], capture_output=True, text=True)
        assert made.returncode == 0, made.stderr
    return {path.relative_to(target): path.read_text() for path in target.rglob("*") if path.is_file()}


def compile_(target, *arguments):
    roots = [target, target / "platform/uml_metamodel", ROOT, ROOT / "platform/uml_metamodel",
             *sorted(ROOT.glob("platform/*/include"))]
    flags = [f"-I{root}" for root in roots]
    done = subprocess.run([COMPILER, "-std=c++20", "-Wall", "-Wextra", "-Werror", *flags, *arguments],
                          capture_output=True, text=True)
    return done.stderr[:4000] if done.returncode else ""


@pytest.fixture(scope="module")
def generated(catalogue, tmp_path_factory):
    """The folder of what is made with the rows added, and the units that they change."""
    folder = tmp_path_factory.mktemp("additions")
    before = generate(catalogue, catalogue / "tables", folder / "before")
    shutil.copytree(catalogue / "tables", folder / "tables")
    for table, rows in ROWS.items():
        for row in rows:
            add(folder / "tables" / f"{table}.txt", row)
    after = generate(catalogue, folder / "tables", folder / "after")
    units = [path for path, text in after.items() if path.suffix == ".cpp" and before.get(path) != text]
    return folder / "after", units


def test_every_unit_that_new_rows_change_compiles(generated):
    folder, units = generated
    assert {"Milestone.cpp", "UseCase.cpp", "Urgency.cpp", "elements.cpp"} <= {unit.name for unit in units}
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        errors = list(pool.map(lambda unit: compile_(folder, "-fsyntax-only", folder / unit), units))
    assert not any(errors), "\n".join(errors)


def test_the_engine_knows_what_new_rows_say(generated):
    folder, _ = generated
    (folder / "program.cpp").write_text(PROGRAM)
    sources = [folder / "program.cpp", ROOT / "platform/uml_metamodel/catalogue/metamodel.cpp"]
    assert compile_(folder, *sources, "-o", folder / "program") == ""
    assert subprocess.run([folder / "program"]).returncode == 0


def test_a_new_enumeration_brings_its_sequences(generated):
    folder, units = generated
    made = ""
    for unit in (unit for unit in units if unit.name == "Urgency.cpp" and "uml_metamodel_mi" not in unit.parts):
        assert compile_(folder, "-c", folder / unit, "-o", folder / "unit.o") == ""
        made += subprocess.run(["nm", "-C", folder / "unit.o"], capture_output=True, text=True).stdout
    for maker in ("makeList()", "makeMultiIndex(bool)"):
        assert f"SequenceImplementations<umlmm::Urgency>::{maker}" in made
