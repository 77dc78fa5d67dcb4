"""A slip in any table stops the build with table, row and reason."""

import re
import shutil
import subprocess
import sys

import pytest


@pytest.fixture
def tables(catalogue, tmp_path):
    shutil.copytree(catalogue / "tables", tmp_path / "tables")
    return tmp_path / "tables"


def refusal(catalogue, tables):
    run = subprocess.run([sys.executable, "-B", catalogue / "generate.py", "--tables", tables, "--list", "headers"],
                         capture_output=True, text=True)
    return run.stderr if run.returncode else ""


def change(table, row, old, new):
    """Replaces a text in the one line that starts with the words of `row`, or drops the line."""
    pattern = re.compile(r"\s*\|\s*".join(map(re.escape, row)) + r"\b")
    lines = table.read_text().splitlines()
    hits = [at for at, line in enumerate(lines) if pattern.match(line)]
    assert len(hits) == 1 and old in lines[hits[0]]
    lines[hits[0]] = lines[hits[0]].replace(old, new, 1) if old else "# gone"
    table.write_text("\n".join(lines) + "\n")


def test_the_tables_as_they_stand_are_accepted(catalogue, tables):
    assert refusal(catalogue, tables) == ""


SLIPS = [
    # Rows that have not their form.
    ("metaclasses", ["Actor"], "concrete", "concret", "the kind is 'concret'"),
    ("features", ["Comment", "1"], "0..1", "0-1", "no pair of bounds"),
    ("features", ["Comment", "2"], "0..*", "x", "no pair of bounds"),
    ("features", ["Action", "1"], "composite ordered", "ordered composite", "in this order"),
    ("features", ["Action", "1"], "subsets", "subset", "does not start with one of"),
    ("create_methods", ["Slot"], '"\x20aOwning', "aOwning", "not in double quotes"),
    # Names that nothing bears, or two bear.
    ("metaclasses", ["Actor"], "BehavioredClassifier", "BehavioralClassifier", "'BehavioralClassifier' is not known"),
    ("features", ["Abstraction", "1"], "OpaqueExpression", "OpaqueExpresion", "'OpaqueExpresion' is not known"),
    ("features", ["Activity", "2"], "ActivityEdge.activity", "ActivityEdge.actvity", "is not known"),
    ("features", ["Comment", "2"], "annotatedElement", "body", "stands in line"),
    ("operations", ["Class", "inherit"], "NamedElement[*]", "Named[*]", "'Named' is not known"),
    ("registration", ["Stereotype"], "Stereotype", "Actor", "stands in line"),
    ("registration", ["Stereotype"], "", "", "'Stereotype' is not known"),
    # Values that do not fit.
    ("features", ["Package", "6"], "6", "7", "run from 1 without gaps"),
    ("features", ["MultiplicityElement", "2"], "true", "yes", "'yes' is no value of Boolean"),
    ("features", ["Property", "5"], "None", "Nothing", "'Nothing' is no value of AggregationKind"),
    ("operations", ["MultiplicityElement", "is"], "lowerbound, upperbound", "lowerbound", "differ in number"),
    ("features", ["NamedElement", "4"], "union readonly", "readonly", "only a union has a role"),
    ("features", ["NamedElement", "2"], "0..1", "0..1 | name |", "a name is a text"),
    ("features", ["MultiplicityElement", "5"], "forgets MultiplicityElement.upper", "forgets Property.default", "to forget"),
    # Graphs and pairs.
    ("metaclasses", ["Element"], "abstract", "abstract | Comment", "lead back to it"),
    ("features", ["Namespace", "4"], "Namespace.member", "Association.ownedEnd", "lead back to it"),
    ("features", ["ActivityEdge", "2"], "ActivityNode.outgoing", "ActivityNode.incoming", "names ActivityEdge.target"),
    ("features", ["Port", "5"], "| Port ", "| Slot ", "does not conform to Property"),
    ("features", ["Extension", "3"], "Association.ownedEnd", "Class.ownedAttribute", "has no feature Class.ownedAttribute"),
    ("features", ["Activity", "3"], "; subsets Element.ownedElement", "", "does not lead up to Element.ownedElement"),
    ("features", ["Slot", "1"], "; subsets Element.owner", "", "does not lead up to Element.owner"),
    ("features", ["ExtensionEnd", "1"], "derived", "", "computed and the redefinition stored"),
    # What is made must match what is required.
    ("metaclasses", ["Gate"], "concrete", "abstract", "create methods make it concrete"),
    ("features", ["Trigger", "1"], "1..1", "0..1", "the required references are of the types none"),
    ("create_methods", ["Generalization"], "aSpecific, aGeneral", "aGeneral, aSpecific", "is expected to be"),
    ("create_methods", ["Slot"], '"\x20aOwning', '"aOwning', "is expected to be"),
]


@pytest.mark.parametrize("table, row, old, new, reason", SLIPS)
def test_a_slip_is_refused_with_table_row_and_reason(catalogue, tables, table, row, old, new, reason):
    change(tables / f"{table}.txt", row, old, new)
    text = refusal(catalogue, tables)
    assert reason in text
    assert re.match(r"generate\.py: \w+\.txt, line \d+ \(\S", text)
