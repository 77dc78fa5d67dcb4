"""Real files, from the folder that `make test MODELS=folder` names: nothing is lost, nothing changes by itself, and what
changes is what is written."""

import os
import pathlib
import xml.etree.ElementTree as ElementTree

import pytest

import counting
import umlmm
from comparing import differences
from sample_models import DIALECTS
from test_edits import change_and_save
from umlmm import files

FOLDER = os.environ.get("MODELS")
MODELS = sorted(path for path in pathlib.Path(FOLDER).rglob("*") if path.is_file()) if FOLDER else []


@pytest.mark.parametrize("path", MODELS, ids=str)
def test_nothing_is_lost(path):
    try:
        model = umlmm.load(path)
    except files.NotUml:
        try:
            assert counting.counted(path) == {}
        except ElementTree.ParseError:
            pass
        return
    assert model.report.elements == counting.counted(path)
    assert files.text(model) == path.read_bytes()


def loaded(path):
    try:
        return umlmm.load(path)
    except files.NotUml:
        pytest.skip("no UML 2")


@pytest.mark.parametrize("path", MODELS, ids=str)
def test_converted_models_are_equal(path):
    model = loaded(path)
    for dialect, other in (("omg-2.5.1", "eclipse"), ("eclipse", "omg-2.5.1")):
        text = files.text(model, dialect=dialect)
        again = umlmm.load(text)
        assert differences(model, again) == []
        back = umlmm.load(files.text(again, dialect=other))
        assert differences(model, back) == [] and files.text(back, dialect=dialect) == text


@pytest.mark.parametrize("seed", range(4))
@pytest.mark.parametrize("path", MODELS, ids=str)
def test_random_changes(tmp_path, path, seed):
    loaded(path).close()
    copy = tmp_path / path.name
    copy.write_bytes(path.read_bytes())
    change_and_save(copy, seed, 4, 25)


def test_counting(tmp_path):
    path = tmp_path / "shop.xmi"
    for text in DIALECTS.values():
        path.write_bytes(text)
        model = umlmm.load(path)
        assert model.report.elements == counting.counted(path) and sum(counting.counted(path).values()) > 3
